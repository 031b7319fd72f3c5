// Test programs link the factory with every backend in it, the desktop's too. Their windows are
// driven through the headless platform, so they run as on a machine without a display even when
// one is present, unless QUILT_PLATFORM asks for the desktop before they start.
#include <cstdlib>
#include <cstring>

namespace {

bool HideDisplay() {
    const char* requested = std::getenv("QUILT_PLATFORM");
    if (requested != nullptr && std::strcmp(requested, "gtk") == 0) {
        return false;
    }
    return unsetenv("DISPLAY") == 0 && unsetenv("WAYLAND_DISPLAY") == 0;
}

const bool displayHidden = HideDisplay();

} // namespace
