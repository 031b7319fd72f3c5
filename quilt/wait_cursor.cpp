#include "quilt/wait_cursor.h"

#include "quilt/application.h"

namespace quilt {

namespace {

void TellPlatform() {
    Application* application = Application::GetCurrent();
    if (application != nullptr && application->GetImp() != nullptr) {
        application->GetImp()->OnWaitCursorChanged();
    }
}

} // namespace

int32_t WaitCursor::count = 0;

WaitCursor::WaitCursor() {
    if (++count == 1) {
        TellPlatform();
    }
}

void WaitCursor::End() {
    if (!active) {
        return;
    }
    active = false;
    if (--count == 0) {
        TellPlatform();
    }
}

} // namespace quilt
