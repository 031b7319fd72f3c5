#include "quilt/wait_cursor.h"

namespace quilt {

int32_t WaitCursor::count = 0;

WaitCursor::WaitCursor() {
    ++count;
}

void WaitCursor::End() {
    if (active) {
        active = false;
        --count;
    }
}

} // namespace quilt
