#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/application.h"
#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/geometry.h"
#include "quilt/window.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quilt {

// What a control does when its dialog's width (or height) changes by d.
enum LayoutAnchor : int32_t {
    AnchorNone = 0,     // stays
    AnchorStretch = 1,  // the right (bottom) edge follows: the size grows by d
    AnchorMove = 2,     // moves by d
    AnchorMoveHalf = 3, // moves by d / 2, rounded toward zero
};

// A control of the layout, with its rectangle at registration in the dialog's client
// coordinates.
struct LayoutEntry {
    int32_t id = 0;
    LayoutAnchor horizontal = AnchorNone;
    LayoutAnchor vertical = AnchorNone;
    Rect rect;
};

// A row of a layout table; a table ends at a row whose id is -1.
struct LayoutControl {
    int32_t id;
    LayoutAnchor horizontal;
    LayoutAnchor vertical;
};

// A control that keeps its state in the preferences; its dialog tells it to save on OK.
class IAutoPref {
public:
    virtual void SavePreference() = 0;

protected:
    // The dialog never deletes its entries.
    ~IAutoPref() = default;
};

// A window built from a dialog template. Its controls exist natively before any object knows of
// them: a derived class holds one wrapper per control it talks to, as a member, and binds each
// to its control id in OnInitDialog. A layout makes a fixed template resizable.
class Dialog : public Window {
public:
    // `parent` owns the dialog natively and gets its unhandled commands; it may be null.
    Dialog(const loam::ResourceId& resource, Window* parent);
    ~Dialog() override;

    const MessageMap* GetMessageMap() const override { return &messageMap; }
    bool AsDialog(Dialog** dialog) override;
    // With a layout the dialog can't get smaller than it was at OnInitDialog.
    bool OnConstrainSize(Size& size) override;
    // Lays the controls out anew from their rectangles at registration; always false.
    bool OnSize(int32_t width, int32_t height) override;

    // Reached by a click on id 1: saves the automatic preferences and ends the dialog with 1.
    virtual void OnOK();
    // Reached by a click on id 2, by Escape and by the close box: ends the dialog with 2.
    virtual void OnCancel();
    // The controls exist now; a derived class calls the base first, then binds and fills them.
    virtual void OnInitDialog() {}

    // Blocks until the dialog ends; the result code, -1 when the template can't be used.
    int32_t RunModal(bool centre);
    NativeHandle RunModeless(bool centre);
    bool CreateChildDialog();
    void EndDialog(int32_t code);

    // Called by the platform side when the native dialog has its controls: takes the client
    // size as the reference of all layout, then runs OnInitDialog.
    void InitDialog();

    // A wrong id records an empty rectangle.
    void AddLayoutControl(int32_t id, LayoutAnchor horizontal, LayoutAnchor vertical);
    void AddLayoutControls(const LayoutControl* table);
    bool HasLayout() const { return !layout.empty(); }
    void AddAutoPref(IAutoPref* pref) { autoPrefs.push_back(pref); }
    void SaveAutoPrefs();
    // The new size also holds for later layout passes.
    void SetControlSize(int32_t id, int32_t width, int32_t height);
    void GrowInitialSize(int32_t dx, int32_t dy);
    Size GetInitialSize() const { return Size{initialWidth, initialHeight}; }
    const loam::ResourceId& GetResource() const { return resource; }

    // Each over an array of ids that ends at -1.
    void EnableControls(const int32_t* ids);
    void DisableControls(const int32_t* ids);
    void ShowControls(const int32_t* ids);
    void HideControls(const int32_t* ids);

    bool IsChecked(int32_t id) { return GetCheck(id) == CheckStateChecked; }
    bool IsNotChecked(int32_t id) { return !IsChecked(id); }
    void Check(int32_t id) { SetCheck(id, CheckStateChecked); }
    void Uncheck(int32_t id) { SetCheck(id, CheckStateUnchecked); }

    void DisableSizeGrip() { dialogImp->DisableSizeGrip(); }
    void EnableControl(int32_t id, bool enable) { dialogImp->EnableControl(id, enable); }
    void MoveControl(int32_t id, int32_t x, int32_t y) { dialogImp->MoveControl(id, x, y); }
    void OffsetControl(int32_t id, int32_t dx, int32_t dy) { dialogImp->OffsetControl(id, dx, dy); }
    void EnableControlById(int32_t id) { dialogImp->EnableControlById(id); }
    void DisableControlById(int32_t id) { dialogImp->DisableControlById(id); }
    void ShowControl(int32_t id) { dialogImp->ShowControl(id); }
    void HideControl(int32_t id) { dialogImp->HideControl(id); }
    bool GetControlRect(int32_t id, Rect& rect) { return dialogImp->GetControlRect(id, rect); }
    void SetControlRect(int32_t id, const Rect& rect) { dialogImp->SetControlRect(id, rect); }
    // 1 checked, 2 indeterminate, any other unchecked.
    void SetCheck(int32_t id, int32_t state) { dialogImp->SetCheck(id, ToCheckState(state)); }
    // 0 or 1, 2 for any other state; 2 when the dialog has no native window.
    int32_t GetCheck(int32_t id) { return ReadCheckState(dialogImp->GetCheck(id)); }
    bool GetControlWindow(int32_t id, Window** window) {
        return dialogImp->GetControlWindow(id, window);
    }
    bool GetControlText(int32_t id, loam::String& text) {
        return dialogImp->GetControlText(id, text);
    }
    bool SetControlText(int32_t id, const loam::String& text) {
        return dialogImp->SetControlText(id, text);
    }
    bool SetControlId(int32_t id, int32_t newId) { return dialogImp->SetControlId(id, newId); }
    void MapDialogRect(Rect& rect) { dialogImp->MapDialogRect(rect); }

    DialogImp* GetDialogImp() const { return dialogImp; }

    static const MessageMap messageMap;

private:
    bool OnOKClicked();
    bool OnCancelClicked();
    void ForEachId(const int32_t* ids, void (DialogImp::*operation)(int32_t));
    LayoutEntry* FindLayoutEntry(int32_t id);

    static const MessageMapEntry entries[];

    DialogImp* dialogImp;
    loam::ResourceId resource;
    int32_t initialWidth = 0;
    int32_t initialHeight = 0;
    std::vector<LayoutEntry> layout;
    std::vector<IAutoPref*> autoPrefs;
};

// The application of a program whose main window is a dialog, run modeless and centred.
class ApplicationDialog : public Application {
public:
    bool Start() override;
    bool CreateMainWindow() override;

    // The dialog to use as the main window; null stops the program.
    virtual std::unique_ptr<Dialog> CreateDialog() = 0;
};

} // namespace quilt
