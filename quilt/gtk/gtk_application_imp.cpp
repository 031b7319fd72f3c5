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

// The context blocks in its poll until a source is ready; a timeout source of our own ends the
// wait when its time is up, and tells that apart from an event.
bool Gtk_ApplicationImp::WaitMessage(std::optional<uint32_t> timeout) {
    UpdateWaitCursor();
    if (!timeout) {
        g_main_context_iteration(nullptr, TRUE);
        return true;
    }
    bool timedOut = false;
    GSource* timer = g_timeout_source_new(*timeout);
    g_source_set_callback(
        timer,
        [](gpointer flag) {
            *static_cast<bool*>(flag) = true;
            return G_SOURCE_REMOVE;
        },
        &timedOut, nullptr);
    g_source_attach(timer, nullptr);
    g_main_context_iteration(nullptr, TRUE);
    g_source_destroy(timer);
    g_source_unref(timer);
    return !timedOut;
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
