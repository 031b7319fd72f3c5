#include "quilt/gtk/gtk_application_imp.h"

#include "quilt/gtk/gtk_support.h"

#include <gtk/gtk.h>

namespace quilt {

namespace {

// An event loop that serves a never-ending stream stops here and lets the caller's loop run.
constexpr int32_t maximumEventsPerPump = 10000;

bool IsUserInput(const GdkEvent& event) {
    switch (event.type) {
    case GDK_KEY_PRESS:
    case GDK_KEY_RELEASE:
    case GDK_BUTTON_PRESS:
    case GDK_2BUTTON_PRESS:
    case GDK_3BUTTON_PRESS:
    case GDK_BUTTON_RELEASE:
    case GDK_SCROLL:
        return true;
    case GDK_FOCUS_CHANGE:
        return event.focus_change.in != 0;
    default:
        return false;
    }
}

void HandleEvent(GdkEvent* event, gpointer) {
    if (IsUserInput(*event)) {
        NoteUserInput(0);
    }
    gtk_main_do_event(event);
}

} // namespace

bool Gtk_ApplicationImp::Initialise() {
    if (!OpenGtkDisplay()) {
        return false;
    }
    gdk_event_handler_set(HandleEvent, nullptr, nullptr);
    return true;
}

void Gtk_ApplicationImp::PumpMessages() {
    UpdateWaitCursor();
    for (int32_t served = 0;
         served < maximumEventsPerPump && g_main_context_iteration(nullptr, FALSE); ++served) {
    }
}

bool Gtk_ApplicationImp::WaitMessage() {
    UpdateWaitCursor();
    g_main_context_iteration(nullptr, TRUE);
    return true;
}

void Gtk_ApplicationImp::Quit() {
    ApplicationImp::Quit();
    g_main_context_wakeup(nullptr);
}

void RunGtkModalLoop(const std::function<bool()>& running) {
    while (running()) {
        UpdateWaitCursor();
        g_main_context_iteration(nullptr, TRUE);
    }
}

} // namespace quilt
