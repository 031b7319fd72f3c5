#pragma once

#include <cstdint>

namespace quilt {

// While any WaitCursor lives, the program's windows show the busy cursor.
class WaitCursor {
public:
    WaitCursor();
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
    ~WaitCursor() { End(); }

    // Ends this one's share early; a second call does nothing.
    void End();

    static bool IsShowing() { return count > 0; }

private:
    static int32_t count;
    bool active = true;
};

} // namespace quilt
