#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/dialog.h"
#include "quilt/geometry.h"
#include "quilt/window.h"
#include "quilt/window_imp.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quilt {

// One page of a tab control: a dialog of its own template, shown in the control's display area
// while its tab is selected.
struct TabPage {
    std::unique_ptr<Dialog> page;
    loam::ResourceId resource;
    int32_t index = 0;  // the tab's position, counted anew from 0 after each removal
    int32_t serial = 0; // names the page for its life
};

// A row of tabs over pages. The dialog that holds the control gets the pages' commands and
// notifications, and a change of tab by the user as MsgTabChange. The control owns its pages.
class TabControlImp : public virtual WindowImp {
public:
    using WindowImp::Create;
    ~TabControlImp() override;

    // The page is made on its template inside the control's parent and goes behind the last
    // tab; the very first page added is shown. `serial` may be null.
    bool AddPage(const loam::ResourceId& resource, const loam::String& title, int32_t* serial);
    // The first page of the template's id, whatever its kind. After a removal the page at the
    // old position is selected, or the last one if the removed page was last.
    bool RemovePageByResource(const loam::ResourceId& resource);
    bool RemovePageBySerial(int32_t serial);
    bool SelectPageByResource(const loam::ResourceId& resource);
    bool SelectPageBySerial(int32_t serial);
    // -1 with no page selected.
    int32_t GetCurrentSerial();
    // A dialog resource of id 0 with no page selected.
    loam::ResourceId GetCurrentResource();
    virtual bool Create(Window* parent, const Rect& rect, int32_t id) = 0;
    // The control's size changed, or is about to: the current page takes the display area
    // again. Both answer false, so that the size change goes on as usual.
    bool OnResizing(int32_t width, int32_t height);
    bool OnResized(int32_t width, int32_t height);

    // A change of tab by the user shows its page before the dialog hears of it.
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;
    const std::vector<TabPage>& GetPages() const { return pages; }

protected:
    // The platform's row of tabs. A tab is inserted at `position` or at the end when there are
    // fewer; its position, or -1 on failure.
    virtual int32_t InsertNativeTab(int32_t position, const loam::String& title) = 0;
    virtual void DeleteNativeTab(int32_t position) = 0;
    virtual void SelectNativeTab(int32_t position) = 0;
    // -1 with none selected.
    virtual int32_t GetNativeSelection() = 0;
    // Where a page goes: the control's rectangle in its parent less the tabs and the frame.
    virtual bool GetDisplayArea(Rect& area) = 0;
    // The keyboard focus goes to the page's first control that takes it: no label, and no
    // radio button that isn't checked.
    virtual void FocusPage(Dialog& page) = 0;

    // The platform calls this as the control is shown or hidden: the pages follow.
    void ShowPages(int32_t mode);

private:
    TabPage* FindByResource(const loam::ResourceId& resource);
    TabPage* FindBySerial(int32_t serial);
    TabPage* FindByIndex(int32_t index);
    bool Remove(TabPage* record);
    bool Select(TabPage* record);
    void ShowPageAt(int32_t position);
    void PlacePage(Dialog& page);

    std::vector<TabPage> pages;
    int32_t nextSerial = 0;
    int32_t pageCount = 0; // pages added so far; a removal doesn't lower it
};

class TabControl : public Window {
public:
    TabControl();

    bool AddPage(const loam::ResourceId& resource, const loam::String& title,
                 int32_t* serial = nullptr) {
        return tabImp->AddPage(resource, title, serial);
    }
    bool RemovePageByResource(const loam::ResourceId& resource) {
        return tabImp->RemovePageByResource(resource);
    }
    bool RemovePageBySerial(int32_t serial) { return tabImp->RemovePageBySerial(serial); }
    bool SelectPageByResource(const loam::ResourceId& resource) {
        return tabImp->SelectPageByResource(resource);
    }
    bool SelectPageBySerial(int32_t serial) { return tabImp->SelectPageBySerial(serial); }
    int32_t GetCurrentSerial() { return tabImp->GetCurrentSerial(); }
    loam::ResourceId GetCurrentResource() { return tabImp->GetCurrentResource(); }
    bool Create(Window* parent, const Rect& rect, int32_t id);
    bool OnSize(int32_t width, int32_t height) override { return tabImp->OnResized(width, height); }
    bool OnConstrainSize(Size& size) override {
        return tabImp->OnResizing(size.width, size.height);
    }
    const std::vector<TabPage>& GetPages() const { return tabImp->GetPages(); }

private:
    TabControlImp* tabImp;
};

} // namespace quilt
