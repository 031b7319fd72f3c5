#include "quilt/tab_control.h"

#include "quilt/dialog.h"
#include "quilt/imp_factory.h"
#include "quilt/message_target.h"

#include <algorithm>

namespace quilt {

TabControlImp::~TabControlImp() = default;

bool TabControlImp::AddPage(const loam::ResourceId& resource, const loam::String& title,
                            int32_t* serial) {
    Window* holder = GetOwner()->GetParent();
    auto page = std::make_unique<Dialog>(resource, holder);
    if (holder == nullptr || !page->CreateChildDialog()) {
        return false;
    }
    page->Show(ShowModeHide);
    page->GetImp()->SetCommandTarget(holder);
    int32_t position = InsertNativeTab(pageCount, title);
    if (position < 0) {
        return false;
    }
    TabPage record;
    record.page = std::move(page);
    record.resource = resource;
    record.index = position;
    record.serial = nextSerial++;
    if (serial != nullptr) {
        *serial = record.serial;
    }
    pages.push_back(std::move(record));
    Invalidate(nullptr);
    if (++pageCount == 1) {
        ShowPageAt(position);
    }
    return true;
}

TabPage* TabControlImp::FindByResource(const loam::ResourceId& resource) {
    auto found = std::find_if(pages.begin(), pages.end(), [&resource](const TabPage& record) {
        return record.resource.id == resource.id;
    });
    return found != pages.end() ? &*found : nullptr;
}

TabPage* TabControlImp::FindBySerial(int32_t serial) {
    auto found = std::find_if(pages.begin(), pages.end(),
                              [serial](const TabPage& record) { return record.serial == serial; });
    return found != pages.end() ? &*found : nullptr;
}

TabPage* TabControlImp::FindByIndex(int32_t index) {
    auto found = std::find_if(pages.begin(), pages.end(),
                              [index](const TabPage& record) { return record.index == index; });
    return found != pages.end() ? &*found : nullptr;
}

bool TabControlImp::RemovePageByResource(const loam::ResourceId& resource) {
    return Remove(FindByResource(resource));
}

bool TabControlImp::RemovePageBySerial(int32_t serial) {
    return Remove(FindBySerial(serial));
}

bool TabControlImp::Remove(TabPage* record) {
    if (record == nullptr) {
        return false;
    }
    int32_t position = record->index;
    DeleteNativeTab(position);
    pages.erase(pages.begin() + (record - pages.data()));
    int32_t index = 0;
    for (TabPage& remaining : pages) {
        remaining.index = index++;
    }
    if (pages.empty()) {
        return true;
    }
    position = std::min(position, static_cast<int32_t>(pages.size()) - 1);
    SelectNativeTab(position);
    ShowPageAt(position);
    return true;
}

bool TabControlImp::SelectPageByResource(const loam::ResourceId& resource) {
    return Select(FindByResource(resource));
}

bool TabControlImp::SelectPageBySerial(int32_t serial) {
    return Select(FindBySerial(serial));
}

bool TabControlImp::Select(TabPage* record) {
    if (record == nullptr) {
        return false;
    }
    SelectNativeTab(record->index);
    ShowPageAt(record->index);
    return true;
}

int32_t TabControlImp::GetCurrentSerial() {
    TabPage* current = FindByIndex(GetNativeSelection());
    return current != nullptr ? current->serial : -1;
}

loam::ResourceId TabControlImp::GetCurrentResource() {
    TabPage* current = FindByIndex(GetNativeSelection());
    return current != nullptr ? current->resource : loam::ResourceId{loam::ResourceKindDialog, 0};
}

// Only the page on show may take input: the others are hidden and disabled.
void TabControlImp::ShowPageAt(int32_t position) {
    TabPage* shown = FindByIndex(position);
    for (TabPage& record : pages) {
        if (&record != shown) {
            record.page->Show(ShowModeHide);
            record.page->Enable(false);
        }
    }
    if (shown == nullptr) {
        return;
    }
    shown->page->Show(ShowModeShow);
    shown->page->Enable(true);
    FocusPage(*shown->page);
    PlacePage(*shown->page);
}

// A page already in place is not moved again: a move makes the platform lay out the parent
// anew, which would give the control its size once more.
void TabControlImp::PlacePage(Dialog& page) {
    Rect area;
    Rect present;
    if (GetDisplayArea(area) && !(page.GetRect(present) && present.Equals(area))) {
        page.SetRect(area, true);
    }
}

bool TabControlImp::OnResizing(int32_t, int32_t) {
    if (TabPage* current = FindByIndex(GetNativeSelection())) {
        PlacePage(*current->page);
    }
    return false;
}

bool TabControlImp::OnResized(int32_t width, int32_t height) {
    return OnResizing(width, height);
}

void TabControlImp::ShowPages(int32_t mode) {
    if (mode != ShowModeHide) {
        ShowPageAt(GetNativeSelection());
        return;
    }
    for (TabPage& record : pages) {
        record.page->Show(ShowModeHide);
    }
}

NotificationAnswer TabControlImp::TranslateNotification(const NativeNotification& notification,
                                                        NotificationTranslation& out) {
    if (notification.event != ControlEvent::SelectionChanged) {
        return AnswerDefault;
    }
    ShowPageAt(GetNativeSelection());
    out.kind = MsgTabChange;
    out.parameter = notification.id;
    return AnswerDispatch;
}

TabControl::TabControl() : Window(GetImpFactory().CreateTabControlImp()) {
    tabImp = dynamic_cast<TabControlImp*>(GetImp());
}

bool TabControl::Create(Window* parent, const Rect& rect, int32_t id) {
    SetParent(parent);
    return tabImp->Create(parent, rect, id);
}

} // namespace quilt
