// Test programs link the factory with every backend in it, the desktop's too. Their windows are
// driven through the headless platform, so they run there even when a display is present, unless
// QUILT_PLATFORM asks otherwise before they start.
#include <cstdlib>

namespace {

const bool headlessUnlessAsked = [] { return setenv("QUILT_PLATFORM", "offscreen", 0) == 0; }();

} // namespace
