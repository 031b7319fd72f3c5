#pragma once

#include "quilt/application.h"

#include <gtk/gtk.h>

#include <functional>
#include <optional>
#include <vector>

namespace quilt {

// The application's side of the desktop backend: its events are GLib's main context's, with
// GTK's event handler in it. Every key and button event, the wheel and a window's focus gain
// count as user input on their way to GTK; pointer motion and timers don't.
class Gtk_ApplicationImp : public ApplicationImp {
public:
    bool Initialise() override;
    void PumpMessages() override;
    bool WaitMessage(std::optional<uint32_t> timeout) override;
    bool CanReceiveEvents() override { return true; }
    void Quit() override;
    // Each window on the screen is covered by an input-only pane with the busy cursor, above
    // the controls that have cursors of their own, until the last WaitCursor ends.
    void OnWaitCursorChanged() override;

    // GTK shows no icon in a notification area for this toolkit.
    bool AddTrayIcon(const loam::ResourceId&, const loam::ResourceId&) override { return false; }
    bool ModifyTrayIcon(const loam::ResourceId&, const loam::ResourceId&) override { return false; }
    void RemoveTrayIcon() override {}
    uint32_t ShowTrayMenu(const loam::ResourceId&, uint32_t) override { return 0; }

protected:
    // A system-wide key needs a grab on the whole desktop, which GTK does not offer.
    bool RegisterNativeHotKey(uint32_t, int32_t, uint32_t) override { return false; }
    void UnregisterNativeHotKey(uint32_t) override {}

private:
    std::vector<GdkWindow*> busyCovers;
};

// A modal loop: serves events, waiting for each, while `running` answers true. No idle round
// runs in it; timers do.
void RunGtkModalLoop(const std::function<bool()>& running);

} // namespace quilt
