#include "quilt/offscreen/testing/offscreen_driver.h"

#include "quilt/application.h"
#include "quilt/dialog.h"
#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_browse_dialog_imp.h"
#include "quilt/offscreen/offscreen_controls.h"
#include "quilt/offscreen/offscreen_dialog_imp.h"
#include "quilt/offscreen/offscreen_popup_menu_imp.h"
#include "quilt/offscreen/offscreen_window_imp.h"
#include "quilt/wait_cursor.h"
#include "quilt/window.h"

#include <algorithm>

namespace quilt {

namespace {

// Keys that also type a character.
constexpr int32_t characterKeys[] = {KeyBackspace, KeyTab, KeyReturn, KeyEscape, KeySpace};

Dialog* GetDialogOf(OffscreenWindow* window) {
    Dialog* dialog = nullptr;
    if (window == nullptr || window->imp == nullptr || window->imp->GetOwner() == nullptr ||
        !window->imp->GetOwner()->AsDialog(&dialog)) {
        return nullptr;
    }
    return dialog;
}

} // namespace

OffscreenDriver::OffscreenDriver(uint32_t startTime)
    : clock(startTime), desktop(GetOffscreenDesktop()) {
    desktop.Reset();
    SetClock(&clock);
    desktop.SetAttended(true);
    desktop.SetModalHook([this](OffscreenWindow& window) { OnModal(window); });
    Offscreen_BrowseDialogImp::SetAnswerer(
        [this](Offscreen_BrowseDialogImp& chooser) { return AnswerFolderChoice(chooser); });
    Offscreen_PopupMenuImp::SetAnswerer(
        [this](const Offscreen_PopupMenuImp& menu) { return AnswerMenu(menu); });
}

OffscreenDriver::~OffscreenDriver() {
    Offscreen_PopupMenuImp::SetAnswerer({});
    Offscreen_BrowseDialogImp::SetAnswerer({});
    desktop.SetModalHook({});
    desktop.Reset();
    SetClock(nullptr);
}

void OffscreenDriver::Post(Window& window, OffscreenMessage message, std::optional<uint32_t> at) {
    OffscreenWindow* native = GetNative(window);
    if (native == nullptr) {
        return;
    }
    message.time = at.value_or(Now());
    desktop.Post(native, message);
}

void OffscreenDriver::PostKey(Window& window, OffscreenMessageKind kind, int32_t value,
                              uint32_t flags, std::optional<uint32_t> at) {
    OffscreenMessage message{kind};
    message.value = value;
    message.flags = flags;
    Post(window, message, at);
}

void OffscreenDriver::PostMouse(Window& window, OffscreenMessageKind kind, uint32_t flags,
                                Point point, std::optional<uint32_t> at) {
    OffscreenMessage message{kind};
    message.flags = flags;
    message.point = point;
    Post(window, message, at);
}

void OffscreenDriver::PostKeyDown(Window& window, int32_t key, uint32_t modifiers,
                                  std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::KeyDown, key, modifiers, at);
}

void OffscreenDriver::PostKeyUp(Window& window, int32_t key, uint32_t modifiers,
                                std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::KeyUp, key, modifiers, at);
}

void OffscreenDriver::PostChar(Window& window, uint16_t character, std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::Char, character, 0, at);
}

void OffscreenDriver::PostMouseDown(Window& window, uint32_t flags, Point point,
                                    std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseDown, flags, point, at);
}

void OffscreenDriver::PostMouseUp(Window& window, uint32_t flags, Point point,
                                  std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseUp, flags, point, at);
}

void OffscreenDriver::PostMouseDoubleClick(Window& window, uint32_t flags, Point point,
                                           std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseDoubleClick, flags, point, at);
}

void OffscreenDriver::PostMouseMove(Window& window, uint32_t flags, Point point,
                                    std::optional<uint32_t> at) {
    PostMouse(window, OffscreenMessageKind::MouseMove, flags, point, at);
}

void OffscreenDriver::PostMouseWheel(Window& window, int32_t delta, std::optional<uint32_t> at) {
    PostKey(window, OffscreenMessageKind::MouseWheel, delta, 0, at);
}

void OffscreenDriver::PostClose(Window& window, std::optional<uint32_t> at) {
    Post(window, OffscreenMessage{OffscreenMessageKind::Close}, at);
}

void OffscreenDriver::PostActivate(Window& window, std::optional<uint32_t> at) {
    Post(window, OffscreenMessage{OffscreenMessageKind::Activate}, at);
}

void OffscreenDriver::PostHotKey(uint32_t id, std::optional<uint32_t> at) {
    OffscreenMessage message{OffscreenMessageKind::HotKey};
    message.value = static_cast<int32_t>(id);
    message.time = at.value_or(Now());
    desktop.PostHotKey(message);
}

OffscreenDriver::RunEnd OffscreenDriver::Run(const std::function<bool()>& condition,
                                             uint32_t limit) {
    Application* application = Application::GetCurrent();
    if (application == nullptr || application->GetImp() == nullptr) {
        return RunEnd::Rest;
    }
    uint32_t deadline = Now() + limit;
    uint32_t passes = 0;
    RunEnd stopped = RunEnd::Rest;
    auto stop = [&] {
        if (condition && condition()) {
            stopped = RunEnd::Condition;
            return true;
        }
        if (IsTickReached(Now(), deadline) || ++passes > MaximumPasses) {
            stopped = RunEnd::Limit;
            return true;
        }
        return false;
    };
    ApplicationImp& imp = *application->GetImp();
    desktop.SetWaitDeadline(deadline);
    MessageLoop::Outcome outcome = imp.GetLoop().Run(imp, *application, stop);
    desktop.SetWaitDeadline(std::nullopt);
    if (outcome == MessageLoop::Outcome::Quit || stopped != RunEnd::Rest) {
        return stopped;
    }
    // Paused without a stop: either nothing can come, or the wait reached the deadline.
    return desktop.CanReceiveEvents() ? RunEnd::Limit : RunEnd::Rest;
}

bool OffscreenDriver::RunUntilIdle(uint32_t limit) {
    return Run({}, limit) == RunEnd::Rest;
}

bool OffscreenDriver::RunUntil(const std::function<bool()>& condition, uint32_t limit) {
    return Run(condition, limit) == RunEnd::Condition;
}

void OffscreenDriver::RunFor(uint32_t milliseconds) {
    uint32_t end = Now() + milliseconds;
    Run({}, milliseconds);
    // A loop at rest would only have waited for the rest of the time.
    if (!IsTickReached(Now(), end)) {
        clock.Set(end);
    }
}

void OffscreenDriver::PumpMessages() {
    desktop.PumpMessages();
}

bool OffscreenDriver::HasQuit() const {
    Application* application = Application::GetCurrent();
    return application != nullptr && application->GetImp() != nullptr &&
           application->GetImp()->GetLoop().IsQuitting();
}

OffscreenWindow* OffscreenDriver::GetNative(Window& window) const {
    return Offscreen_WindowImp::GetNativeOf(&window);
}

bool OffscreenDriver::IsShowing(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr && native->IsShowing();
}

bool OffscreenDriver::IsEnabled(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr && native->enabled;
}

bool OffscreenDriver::HasFocus(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr && desktop.GetFocus() == native;
}

loam::String OffscreenDriver::GetText(Window& window) const {
    OffscreenWindow* native = GetNative(window);
    return native != nullptr ? native->text : loam::String();
}

Rect OffscreenDriver::GetScreenRect(Window& window) const {
    Rect rect;
    window.GetScreenRect(rect);
    return rect;
}

OffscreenWindow* OffscreenDriver::FindTopWindow(const char* title) const {
    const auto& windows = desktop.GetTopWindows();
    for (auto entry = windows.rbegin(); entry != windows.rend(); ++entry) {
        if ((*entry)->text == title) {
            return entry->get();
        }
    }
    return nullptr;
}

bool OffscreenDriver::IsWaitCursorShowing() const {
    return WaitCursor::IsShowing();
}

Dialog* OffscreenDriver::FindDialog(uint16_t templateId) const {
    const auto& windows = desktop.GetTopWindows();
    for (auto entry = windows.rbegin(); entry != windows.rend(); ++entry) {
        auto* dialog = dynamic_cast<OffscreenDialogWindow*>(entry->get());
        if (dialog != nullptr && dialog->templateId == templateId && dialog->visible) {
            return GetDialogOf(dialog);
        }
    }
    return nullptr;
}

Dialog* OffscreenDriver::GetModalDialog() const {
    return GetDialogOf(desktop.GetModalWindow());
}

void OffscreenDriver::OnNextModal(std::function<void(Dialog&)> action) {
    modalActions.push_back(std::move(action));
}

void OffscreenDriver::OnModal(OffscreenWindow& window) {
    Dialog* dialog = GetDialogOf(&window);
    if (dialog == nullptr || modalActions.empty()) {
        return;
    }
    std::function<void(Dialog&)> action = std::move(modalActions.front());
    modalActions.pop_front();
    action(*dialog);
}

void OffscreenDriver::PostToControl(Dialog& dialog, int32_t id, OffscreenMessage message,
                                    std::optional<uint32_t> at) {
    OffscreenWindow* control = FindControl(dialog, id);
    if (control == nullptr) {
        return;
    }
    message.time = at.value_or(Now());
    desktop.Post(control, message);
}

void OffscreenDriver::Click(Dialog& dialog, int32_t id, std::optional<uint32_t> at) {
    OffscreenWindow* control = FindControl(dialog, id);
    if (control == nullptr) {
        return;
    }
    for (OffscreenMessageKind kind :
         {OffscreenMessageKind::MouseDown, OffscreenMessageKind::MouseUp}) {
        OffscreenMessage message{kind};
        message.flags = MouseLeft;
        message.point = Point{control->rect.GetWidth() / 2, control->rect.GetHeight() / 2};
        PostToControl(dialog, id, message, at);
    }
}

void OffscreenDriver::TypeText(Dialog& dialog, int32_t id, const char* text,
                               std::optional<uint32_t> at) {
    Click(dialog, id, at);
    for (const char* byte = text; *byte != '\0'; ++byte) {
        OffscreenMessage message{OffscreenMessageKind::Char};
        message.value = static_cast<unsigned char>(*byte);
        PostToControl(dialog, id, message, at);
    }
}

void OffscreenDriver::PressKey(Dialog& dialog, int32_t key, uint32_t modifiers,
                               std::optional<uint32_t> at) {
    OffscreenWindow* native = GetNative(dialog);
    if (native == nullptr) {
        return;
    }
    bool typesCharacter = std::find(std::begin(characterKeys), std::end(characterKeys), key) !=
                          std::end(characterKeys);
    for (OffscreenMessageKind kind :
         {OffscreenMessageKind::KeyDown, OffscreenMessageKind::Char, OffscreenMessageKind::KeyUp}) {
        if (kind == OffscreenMessageKind::Char && !typesCharacter) {
            continue;
        }
        OffscreenMessage message{kind};
        message.value = key;
        message.flags = kind == OffscreenMessageKind::Char ? 0 : modifiers;
        message.time = at.value_or(Now());
        desktop.PostToFocus(native, message);
    }
}

void OffscreenDriver::PressReturn(Dialog& dialog, std::optional<uint32_t> at) {
    PressKey(dialog, KeyReturn, 0, at);
}

void OffscreenDriver::PressEscape(Dialog& dialog, std::optional<uint32_t> at) {
    PressKey(dialog, KeyEscape, 0, at);
}

void OffscreenDriver::PressTab(Dialog& dialog, bool backwards, std::optional<uint32_t> at) {
    PressKey(dialog, KeyTab, backwards ? uint32_t{ModifierShift} : 0u, at);
}

void OffscreenDriver::MoveSlider(Dialog& dialog, int32_t id, int32_t position,
                                 std::optional<uint32_t> at) {
    OffscreenMessage message{OffscreenMessageKind::ThumbDrag};
    message.value = position;
    PostToControl(dialog, id, message, at);
}

void OffscreenDriver::ResizeDialog(Dialog& dialog, int32_t width, int32_t height) {
    OffscreenWindow* native = GetNative(dialog);
    if (native == nullptr) {
        return;
    }
    const Rect& rect = native->rect;
    desktop.MoveWindow(native, Rect{rect.left, rect.top, rect.left + width, rect.top + height});
}

OffscreenWindow* OffscreenDriver::FindControl(Dialog& dialog, int32_t id) const {
    OffscreenWindow* native = GetNative(dialog);
    return native != nullptr ? native->FindControl(id) : nullptr;
}

loam::String OffscreenDriver::GetControlText(Dialog& dialog, int32_t id) const {
    OffscreenWindow* control = FindControl(dialog, id);
    return control != nullptr ? control->text : loam::String();
}

int32_t OffscreenDriver::GetCheckState(Dialog& dialog, int32_t id) const {
    auto* button = dynamic_cast<OffscreenButton*>(FindControl(dialog, id));
    return button != nullptr ? button->checkState : 0;
}

int32_t OffscreenDriver::GetSliderPosition(Dialog& dialog, int32_t id) const {
    auto* bar = dynamic_cast<OffscreenTrackBar*>(FindControl(dialog, id));
    return bar != nullptr ? bar->position : 0;
}

int32_t OffscreenDriver::GetProgressPosition(Dialog& dialog, int32_t id) const {
    auto* bar = dynamic_cast<OffscreenProgressBar*>(FindControl(dialog, id));
    return bar != nullptr ? bar->position : 0;
}

bool OffscreenDriver::IsControlEnabled(Dialog& dialog, int32_t id) const {
    OffscreenWindow* control = FindControl(dialog, id);
    return control != nullptr && control->enabled;
}

bool OffscreenDriver::IsControlVisible(Dialog& dialog, int32_t id) const {
    OffscreenWindow* control = FindControl(dialog, id);
    return control != nullptr && control->visible;
}

Rect OffscreenDriver::GetControlRect(Dialog& dialog, int32_t id) const {
    OffscreenWindow* control = FindControl(dialog, id);
    return control != nullptr ? control->rect : Rect{};
}

int32_t OffscreenDriver::GetFocusId(Dialog& dialog) const {
    OffscreenWindow* native = GetNative(dialog);
    OffscreenWindow* focus = desktop.GetFocus();
    if (native == nullptr || focus == nullptr || focus == native || !focus->IsInside(native)) {
        return -1;
    }
    return focus->id;
}

} // namespace quilt
