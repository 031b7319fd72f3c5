#include "quilt/gtk/gtk_application_imp.h"

#include "quilt/gtk/gtk_support.h"
#include "quilt/wait_cursor.h"

#include <gdk/gdkx.h>
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

// The largest size of a window: a cover as large reaches the window's edges whatever its size.
constexpr gint coverSize = 32767;

// GDK gives a window its cursor only as it serves the pointer's events. On X11 the cover is a
// window of the X server's own, and the server shows its cursor at once.
void ShowCursorNow(GdkWindow* cover, GdkCursor* cursor) {
    if (cursor == nullptr || !GDK_IS_X11_WINDOW(cover)) {
        return;
    }
    gdk_window_ensure_native(cover);
    XDefineCursor(GDK_WINDOW_XDISPLAY(cover), GDK_WINDOW_XID(cover),
                  gdk_x11_cursor_get_xcursor(cursor));
}

void CoverWindows(GdkDisplay* display, std::vector<GdkWindow*>& covers) {
    GdkCursor* cursor = gdk_cursor_new_from_name(display, "wait");
    GdkWindowAttr attributes{};
    attributes.wclass = GDK_INPUT_ONLY;
    attributes.window_type = GDK_WINDOW_CHILD;
    attributes.width = coverSize;
    attributes.height = coverSize;
    attributes.cursor = cursor;
    GList* windows = gtk_window_list_toplevels();
    for (GList* item = windows; item != nullptr; item = item->next) {
        GdkWindow* window = gtk_widget_get_window(GTK_WIDGET(item->data));
        if (window == nullptr || !gdk_window_is_visible(window)) {
            continue;
        }
        // Destroying a window drops one reference: the second keeps a cover whose window went
        // first until it is destroyed here too.
        GdkWindow* cover = gdk_window_new(window, &attributes, GDK_WA_CURSOR);
        g_object_ref(cover);
        ShowCursorNow(cover, cursor);
        gdk_window_show(cover);
        covers.push_back(cover);
    }
    g_list_free(windows);
    if (cursor != nullptr) {
        g_object_unref(cursor);
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
    for (int32_t served = 0;
         served < maximumEventsPerPump && g_main_context_iteration(nullptr, FALSE); ++served) {
    }
}

// The context blocks in its poll until a source is ready; a timeout source of our own ends the
// wait when its time is up, and tells that apart from an event.
bool Gtk_ApplicationImp::WaitMessage(std::optional<uint32_t> timeout) {
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

void Gtk_ApplicationImp::OnWaitCursorChanged() {
    for (GdkWindow* cover : busyCovers) {
        gdk_window_destroy(cover);
        g_object_unref(cover);
    }
    busyCovers.clear();
    GdkDisplay* display = gdk_display_get_default();
    if (WaitCursor::IsShowing()) {
        CoverWindows(display, busyCovers);
    }
    gdk_display_flush(display);
}

void Gtk_ApplicationImp::Quit() {
    ApplicationImp::Quit();
    g_main_context_wakeup(nullptr);
}

void RunGtkModalLoop(const std::function<bool()>& running) {
    while (running()) {
        g_main_context_iteration(nullptr, TRUE);
    }
}

} // namespace quilt
