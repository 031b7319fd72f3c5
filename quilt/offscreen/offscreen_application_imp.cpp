#include "quilt/offscreen/offscreen_application_imp.h"

#include "quilt/offscreen/offscreen_desktop.h"

namespace quilt {

void Offscreen_ApplicationImp::PumpMessages() {
    GetOffscreenDesktop().PumpMessages();
}

bool Offscreen_ApplicationImp::WaitMessage(std::optional<uint32_t> timeout) {
    return GetOffscreenDesktop().WaitMessage(timeout);
}

bool Offscreen_ApplicationImp::CanReceiveEvents() {
    return GetOffscreenDesktop().CanReceiveEvents();
}

bool Offscreen_ApplicationImp::RegisterNativeHotKey(uint32_t id, int32_t key, uint32_t modifiers) {
    return GetOffscreenDesktop().RegisterHotKey(id, key, modifiers);
}

void Offscreen_ApplicationImp::UnregisterNativeHotKey(uint32_t id) {
    GetOffscreenDesktop().UnregisterHotKey(id);
}

} // namespace quilt
