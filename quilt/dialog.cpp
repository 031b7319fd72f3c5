#include "quilt/dialog.h"

#include "quilt/imp_factory.h"

#include <algorithm>

namespace quilt {

namespace {

int32_t GetOffset(LayoutAnchor anchor, int32_t change) {
    return anchor == AnchorMoveHalf ? change / 2 : change;
}

// Applies one anchor to the near and far edge of one dimension.
void ApplyAnchor(LayoutAnchor anchor, int32_t change, int32_t& nearEdge, int32_t& farEdge) {
    if (anchor == AnchorNone) {
        return;
    }
    if (anchor != AnchorStretch) {
        nearEdge += GetOffset(anchor, change);
    }
    farEdge += GetOffset(anchor, change);
}

Rect GetLaidOutRect(const LayoutEntry& entry, int32_t dx, int32_t dy) {
    Rect rect = entry.rect;
    ApplyAnchor(entry.horizontal, dx, rect.left, rect.right);
    ApplyAnchor(entry.vertical, dy, rect.top, rect.bottom);
    return rect;
}

} // namespace

const MessageMapEntry Dialog::entries[] = {
    Notification(MsgClicked, IdOK, &Dialog::OnOKClicked),
    Notification(MsgClicked, IdCancel, &Dialog::OnCancelClicked),
    EndOfMap,
};

const MessageMap Dialog::messageMap{&MessageTarget::messageMap, entries};

Dialog::Dialog(const loam::ResourceId& dialogResource, Window* parent)
    : Window(GetImpFactory().CreateDialogImp()), resource(dialogResource) {
    dialogImp = dynamic_cast<DialogImp*>(GetImp());
    SetParent(parent);
}

Dialog::~Dialog() {
    dialogImp->OnOwnerDestroyed();
}

bool Dialog::AsDialog(Dialog** dialog) {
    *dialog = this;
    return true;
}

bool Dialog::OnConstrainSize(Size& size) {
    if (layout.empty()) {
        return false;
    }
    size.width = std::max(size.width, initialWidth);
    size.height = std::max(size.height, initialHeight);
    return true;
}

bool Dialog::OnSize(int32_t width, int32_t height) {
    if (layout.empty()) {
        return false;
    }
    std::vector<Window*> windows;
    for (const LayoutEntry& entry : layout) {
        Window* window = nullptr;
        windows.push_back(GetControlWindow(entry.id, &window) ? window : nullptr);
    }
    for (Window* window : windows) {
        if (window != nullptr) {
            window->BeginResize();
        }
    }
    dialogImp->BeginLayout();
    int32_t dx = width - initialWidth;
    int32_t dy = height - initialHeight;
    for (const LayoutEntry& entry : layout) {
        Rect wanted = GetLaidOutRect(entry, dx, dy);
        Rect present;
        if (!GetControlRect(entry.id, present) || !present.Equals(wanted)) {
            SetControlRect(entry.id, wanted);
        }
    }
    dialogImp->EndLayout();
    for (Window* window : windows) {
        if (window != nullptr) {
            window->EndResize();
        }
    }
    return false;
}

void Dialog::OnOK() {
    SaveAutoPrefs();
    EndDialog(IdOK);
}

void Dialog::OnCancel() {
    EndDialog(IdCancel);
}

bool Dialog::OnOKClicked() {
    OnOK();
    return true;
}

bool Dialog::OnCancelClicked() {
    OnCancel();
    return true;
}

int32_t Dialog::RunModal(bool centre) {
    return dialogImp->RunModal(resource, GetParent(), centre);
}

NativeHandle Dialog::RunModeless(bool centre) {
    return dialogImp->RunModeless(resource, GetParent(), centre);
}

bool Dialog::CreateChildDialog() {
    return dialogImp->CreateChildDialog(resource, GetParent());
}

void Dialog::EndDialog(int32_t code) {
    dialogImp->EndDialog(code);
}

void Dialog::InitDialog() {
    Rect client;
    GetClientRect(client);
    initialWidth = client.GetWidth();
    initialHeight = client.GetHeight();
    OnInitDialog();
}

void Dialog::AddLayoutControl(int32_t id, LayoutAnchor horizontal, LayoutAnchor vertical) {
    LayoutEntry entry{id, horizontal, vertical, Rect{}};
    GetControlRect(id, entry.rect);
    layout.push_back(entry);
}

void Dialog::AddLayoutControls(const LayoutControl* table) {
    for (; table->id != -1; ++table) {
        AddLayoutControl(table->id, table->horizontal, table->vertical);
    }
}

void Dialog::SaveAutoPrefs() {
    for (IAutoPref* pref : autoPrefs) {
        pref->SavePreference();
    }
}

void Dialog::SetControlSize(int32_t id, int32_t width, int32_t height) {
    dialogImp->SetControlSize(id, width, height);
    if (LayoutEntry* entry = FindLayoutEntry(id)) {
        entry->rect.right = entry->rect.left + width;
        entry->rect.bottom = entry->rect.top + height;
    }
}

void Dialog::GrowInitialSize(int32_t dx, int32_t dy) {
    initialWidth += dx;
    initialHeight += dy;
}

void Dialog::ForEachId(const int32_t* ids, void (DialogImp::*operation)(int32_t)) {
    for (; *ids != -1; ++ids) {
        (dialogImp->*operation)(*ids);
    }
}

void Dialog::EnableControls(const int32_t* ids) {
    ForEachId(ids, &DialogImp::EnableControlById);
}

void Dialog::DisableControls(const int32_t* ids) {
    ForEachId(ids, &DialogImp::DisableControlById);
}

void Dialog::ShowControls(const int32_t* ids) {
    ForEachId(ids, &DialogImp::ShowControl);
}

void Dialog::HideControls(const int32_t* ids) {
    ForEachId(ids, &DialogImp::HideControl);
}

LayoutEntry* Dialog::FindLayoutEntry(int32_t id) {
    auto found = std::find_if(layout.begin(), layout.end(),
                              [id](const LayoutEntry& entry) { return entry.id == id; });
    return found != layout.end() ? &*found : nullptr;
}

bool ApplicationDialog::CreateMainWindow() {
    mainWindow = CreateDialog();
    return mainWindow != nullptr;
}

bool ApplicationDialog::Start() {
    // The dialog's constructor is the application's code: whatever it throws stops the start.
    try {
        if (!CreateMainWindow()) {
            return false;
        }
    } catch (...) {
        return false;
    }
    Dialog* dialog = nullptr;
    if (!mainWindow->AsDialog(&dialog)) {
        return true;
    }
    return dialog->RunModeless(true) != nullptr;
}

} // namespace quilt
