#include "quilt/offscreen/offscreen_application_imp.h"

#include "quilt/offscreen/offscreen_desktop.h"

namespace quilt {

void Offscreen_ApplicationImp::PumpMessages() {
    GetOffscreenDesktop().PumpMessages();
}

bool Offscreen_ApplicationImp::WaitMessage() {
    return GetOffscreenDesktop().WaitMessage();
}

bool Offscreen_ApplicationImp::CanReceiveEvents() {
    return GetOffscreenDesktop().CanReceiveEvents();
}

} // namespace quilt
