#include "quilt/gtk/gtk_window_imp.h"

#include "quilt/application.h"
#include "quilt/dialog_template.h"
#include "quilt/gtk/gtk_controls.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/message_target.h"
#include "quilt/timer.h"
#include "quilt/window.h"

#include <algorithm>

namespace quilt {

namespace {

constexpr Rect createdWindowRect{100, 100, 400, 400};
constexpr int32_t createdChildId = 1200;
constexpr int32_t firstFreeChildId = 1001;
// A native timer is never faster than this.
constexpr uint32_t minimumTimerInterval = 10;
// A wheel notch, in the units of the toolkit's wheel delta.
constexpr int32_t wheelNotch = 120;
// Characters below this are control codes, which the toolkit receives as keys alone.
constexpr gunichar firstPrintable = 0x20;

constexpr auto eventMask =
    GdkEventMask(GDK_BUTTON_PRESS_MASK | GDK_BUTTON_RELEASE_MASK | GDK_POINTER_MOTION_MASK |
                 GDK_SCROLL_MASK | GDK_FOCUS_CHANGE_MASK);

Gtk_WindowImp* ImpOf(GtkWidget* widget) {
    GtkNative* native = FindNative(widget);
    return native != nullptr ? native->imp : nullptr;
}

gboolean OnDeleteEvent(GtkWidget* window, GdkEvent*, gpointer) {
    if (Gtk_WindowImp* imp = ImpOf(window)) {
        imp->OnCloseRequest();
    }
    return TRUE;
}

gboolean OnConfigureEvent(GtkWidget* window, GdkEvent*, gpointer) {
    if (Gtk_WindowImp* imp = ImpOf(window)) {
        gint width = 0;
        gint height = 0;
        gtk_window_get_size(GTK_WINDOW(window), &width, &height);
        imp->OnConfigure(width, height);
    }
    return FALSE;
}

// The underlined letter of every mnemonic shows at all times, not only while Alt is held.
void KeepMnemonicsVisible(GtkWindow* window, GParamSpec*, gpointer) {
    if (!gtk_window_get_mnemonics_visible(window)) {
        gtk_window_set_mnemonics_visible(window, TRUE);
    }
}

gboolean OnKeyEventSignal(GtkWidget* window, GdkEventKey* event, gpointer) {
    Gtk_WindowImp* imp = ImpOf(window);
    return imp != nullptr && imp->OnKeyEvent(*event) ? TRUE : FALSE;
}

// The widget's origin on the screen.
bool GetScreenOrigin(GtkWidget* widget, Point& origin) {
    GtkWidget* top = gtk_widget_get_toplevel(widget);
    GdkWindow* window = gtk_widget_get_window(top);
    if (window == nullptr) {
        GtkNative* native = FindNative(top);
        if (native == nullptr) {
            return false;
        }
        origin = Point{native->rect.left, native->rect.top};
    } else {
        gdk_window_get_origin(window, &origin.x, &origin.y);
    }
    gint x = 0;
    gint y = 0;
    if (widget != top && gtk_widget_translate_coordinates(widget, top, 0, 0, &x, &y)) {
        origin.x += x;
        origin.y += y;
    }
    return true;
}

} // namespace

Gtk_WindowImp::~Gtk_WindowImp() {
    Unbind();
}

GtkNative* Gtk_WindowImp::GetNative() const {
    return FindNative(widget);
}

GtkWidget* Gtk_WindowImp::GetClientArea() const {
    GtkNative* native = GetNative();
    return native != nullptr ? native->clientArea : nullptr;
}

GtkWidget* Gtk_WindowImp::GetWidgetOf(Window* window) {
    return window != nullptr ? static_cast<GtkWidget*>(window->GetNativeHandle()) : nullptr;
}

GtkWidget* Gtk_WindowImp::FindControlIn(GtkWidget* window, int32_t id) {
    GtkNative* native = FindNative(window);
    if (native == nullptr || native->clientArea == nullptr) {
        return nullptr;
    }
    GList* children = gtk_container_get_children(GTK_CONTAINER(native->clientArea));
    GtkWidget* found = nullptr;
    for (GList* item = children; item != nullptr && found == nullptr; item = item->next) {
        auto* child = GTK_WIDGET(item->data);
        GtkNative* childNative = FindNative(child);
        if (childNative != nullptr && childNative->id == id) {
            found = child;
        }
    }
    for (GList* item = children; item != nullptr && found == nullptr; item = item->next) {
        GtkNative* page = FindNative(GTK_WIDGET(item->data));
        if (page != nullptr && page->clientArea != nullptr) {
            found = FindControlIn(GTK_WIDGET(item->data), id);
        }
    }
    g_list_free(children);
    return found;
}

Gtk_WindowImp* Gtk_WindowImp::FindImpAbove(GtkWidget* widget) {
    for (; widget != nullptr; widget = gtk_widget_get_parent(widget)) {
        if (Gtk_WindowImp* imp = ImpOf(widget)) {
            return imp;
        }
    }
    return nullptr;
}

void Gtk_WindowImp::ConnectTopLevel(GtkWidget* window) {
    g_signal_connect(window, "delete-event", G_CALLBACK(OnDeleteEvent), nullptr);
    g_signal_connect(window, "configure-event", G_CALLBACK(OnConfigureEvent), nullptr);
    g_signal_connect(window, "key-press-event", G_CALLBACK(OnKeyEventSignal), nullptr);
    g_signal_connect(window, "key-release-event", G_CALLBACK(OnKeyEventSignal), nullptr);
    gtk_window_set_mnemonics_visible(GTK_WINDOW(window), TRUE);
    g_signal_connect(window, "notify::mnemonics-visible", G_CALLBACK(KeepMnemonicsVisible),
                     nullptr);
}

bool Gtk_WindowImp::Create(Window&, Window* parentWindow, int32_t kind, const loam::String* title) {
    GtkWidget* parentWidget = GetWidgetOf(parentWindow);
    bool isChild = kind == WindowKindChild;
    GtkNative* parentNative = FindNative(parentWidget);
    if (widget != nullptr || (kind != WindowKindTop && !isChild) ||
        (isChild && (parentNative == nullptr || parentNative->clientArea == nullptr))) {
        return false;
    }
    parent = parentWindow;
    GtkWidget* created = nullptr;
    if (isChild) {
        created = NewClientArea();
        gtk_widget_set_has_window(created, TRUE);
        GtkNative& native = AttachNative(created);
        native.clientArea = created;
        PlaceControl(parentNative->clientArea, created, createdChildId, createdWindowRect);
    } else {
        created = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        GtkNative& native = AttachNative(created);
        native.clientArea = NewClientArea();
        native.rect = createdWindowRect;
        gtk_container_add(GTK_CONTAINER(created), native.clientArea);
        gtk_widget_show(native.clientArea);
        gtk_window_move(GTK_WINDOW(created), createdWindowRect.left, createdWindowRect.top);
        gtk_window_set_default_size(GTK_WINDOW(created), createdWindowRect.GetWidth(),
                                    createdWindowRect.GetHeight());
        ConnectTopLevel(created);
    }
    if (title != nullptr) {
        SetControlText(created, *title);
    }
    if (!Attach(created)) {
        gtk_widget_destroy(created);
        return false;
    }
    GetOwner()->OnCreate();
    return true;
}

void Gtk_WindowImp::Destroy() {
    if (widget != nullptr) {
        gtk_widget_destroy(widget);
    }
}

void Gtk_WindowImp::Center() {
    GtkNative* native = GetNative();
    if (native == nullptr || !IsTopLevel()) {
        return;
    }
    GdkDisplay* display = gtk_widget_get_display(widget);
    GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
    if (monitor == nullptr) {
        monitor = gdk_display_get_monitor(display, 0);
    }
    GdkRectangle area{0, 0, 0, 0};
    if (monitor != nullptr) {
        gdk_monitor_get_workarea(monitor, &area);
    }
    Rect rect = native->rect;
    int32_t left = area.x + area.width / 2 - rect.GetWidth() / 2;
    int32_t top = area.y + area.height / 2 - rect.GetHeight() / 2;
    rect.Offset(left - rect.left, top - rect.top);
    native->rect = rect;
    gtk_window_move(GTK_WINDOW(widget), rect.left, rect.top);
}

void Gtk_WindowImp::Enable(bool enable) {
    if (widget != nullptr) {
        gtk_widget_set_sensitive(widget, enable);
    }
}

bool Gtk_WindowImp::GetRect(Rect& rect) {
    GtkNative* native = GetNative();
    if (native == nullptr) {
        return false;
    }
    rect = native->rect;
    return true;
}

void Gtk_WindowImp::SetRect(const Rect& rect, bool) {
    GtkNative* native = GetNative();
    if (native == nullptr) {
        return;
    }
    if (!IsTopLevel()) {
        MoveControlTo(widget, rect);
        return;
    }
    native->rect = rect;
    gtk_window_move(GTK_WINDOW(widget), rect.left, rect.top);
    int32_t width = std::max(rect.GetWidth(), 1);
    int32_t height = std::max(rect.GetHeight(), 1);
    // GTK holds a window that the user can't size to at least its default size: the default
    // follows, so that such a window can get smaller than it was made.
    if (!gtk_window_get_resizable(GTK_WINDOW(widget))) {
        gtk_widget_set_size_request(native->clientArea, width, height);
        gtk_window_set_default_size(GTK_WINDOW(widget), width, height);
    }
    gtk_window_resize(GTK_WINDOW(widget), width, height);
    ReportSize(width, height);
}

// The owner hears of a new size at once, as from a size that the user gave, so that a size set
// by code is laid out before anything is shown; the window system's later word on the same size
// changes nothing.
void Gtk_WindowImp::ReportSize(int32_t width, int32_t height) {
    if (width == reportedSize.width && height == reportedSize.height) {
        return;
    }
    reportedSize = Size{width, height};
    OnNativeSize(width, height);
}

void Gtk_WindowImp::BringToTop() {
    if (IsTopLevel()) {
        gtk_window_present(GTK_WINDOW(widget));
    }
}

// Only a window of its own can go below its siblings; a control that paints on its parent's is
// beneath every such window already.
void Gtk_WindowImp::SendToBottom() {
    GdkWindow* window = widget != nullptr && gtk_widget_get_has_window(widget)
                            ? gtk_widget_get_window(widget)
                            : nullptr;
    if (window != nullptr) {
        gdk_window_lower(window);
    }
}

// Top-level windows have their frame outside the client area, so the client rectangle is the
// window's own in its parent's coordinates.
void Gtk_WindowImp::SetClientRect(const Rect& rect) {
    Rect present;
    if (!GetRect(present)) {
        return;
    }
    Rect moved = rect;
    moved.Offset(present.left, present.top);
    SetRect(moved, true);
}

void Gtk_WindowImp::SetSize(int32_t width, int32_t height) {
    Rect present;
    if (GetRect(present)) {
        SetRect(Rect{present.left, present.top, present.left + width, present.top + height}, true);
    }
}

void Gtk_WindowImp::GetScrollArea(Rect& area) {
    if (scrollArea.IsAllZero()) {
        GetClientRect(area);
        return;
    }
    area = scrollArea;
}

void Gtk_WindowImp::SetTopMost(bool topMost) {
    if (IsTopLevel()) {
        gtk_window_set_keep_above(GTK_WINDOW(widget), topMost);
    }
}

bool Gtk_WindowImp::SetText(const loam::String& text) {
    return widget != nullptr && SetControlText(widget, text);
}

bool Gtk_WindowImp::GetText(loam::String& text) {
    return widget != nullptr && GetControlText(widget, text);
}

void Gtk_WindowImp::SetFocus() {
    if (IsTopLevel()) {
        gtk_window_present(GTK_WINDOW(widget));
    } else if (GtkNative* native = GetNative()) {
        gtk_widget_grab_focus(native->inner);
    }
}

bool Gtk_WindowImp::HasFocus() {
    if (IsTopLevel()) {
        return gtk_window_is_active(GTK_WINDOW(widget)) &&
               gtk_window_get_focus(GTK_WINDOW(widget)) == nullptr;
    }
    GtkNative* native = GetNative();
    return native != nullptr && gtk_widget_has_focus(native->inner);
}

bool Gtk_WindowImp::CaptureMouse() {
    GtkNative* native = GetNative();
    if (native == nullptr) {
        return false;
    }
    gtk_grab_add(native->inner);
    return true;
}

void Gtk_WindowImp::ReleaseMouse() {
    if (GtkNative* native = GetNative()) {
        gtk_grab_remove(native->inner);
    }
}

bool Gtk_WindowImp::ShowScrollBars(uint32_t mask) {
    scrollBars |= mask;
    return true;
}

bool Gtk_WindowImp::HasScrollBar(uint32_t which) {
    if (widget == nullptr || (which != ScrollBarHorizontal && which != ScrollBarVertical)) {
        return false;
    }
    return (scrollBars & which) != 0;
}

int32_t Gtk_WindowImp::GetScrollPos(uint32_t bar) {
    return widget != nullptr ? scrollPos[bar == ScrollBarVertical ? 1 : 0] : 0;
}

void Gtk_WindowImp::SetScrollPos(uint32_t bar, int32_t position) {
    if (widget != nullptr) {
        scrollPos[bar == ScrollBarVertical ? 1 : 0] = position;
        Invalidate(nullptr);
    }
}

int32_t Gtk_WindowImp::GetShowState() {
    GdkWindow* window = IsTopLevel() ? gtk_widget_get_window(widget) : nullptr;
    if (window == nullptr) {
        return ShowStateNormal;
    }
    GdkWindowState state = gdk_window_get_state(window);
    if ((state & GDK_WINDOW_STATE_ICONIFIED) != 0) {
        return ShowStateMinimised;
    }
    return (state & GDK_WINDOW_STATE_MAXIMIZED) != 0 ? ShowStateMaximised : ShowStateNormal;
}

void Gtk_WindowImp::SetShowState(int32_t state) {
    if (!IsTopLevel()) {
        return;
    }
    auto* window = GTK_WINDOW(widget);
    if (state == ShowStateMinimised) {
        gtk_window_iconify(window);
        return;
    }
    if (state == ShowStateMaximised) {
        gtk_window_maximize(window);
        return;
    }
    gtk_window_unmaximize(window);
    gtk_window_deiconify(window);
    gtk_widget_show(widget);
}

void Gtk_WindowImp::Show(int32_t mode) {
    if (widget == nullptr) {
        return;
    }
    if (mode == ShowModeHide) {
        gtk_widget_hide(widget);
    } else {
        gtk_widget_show(widget);
    }
}

bool Gtk_WindowImp::GetScreenRect(Rect& rect) {
    GtkNative* native = GetNative();
    Point origin;
    if (native == nullptr || !GetScreenOrigin(widget, origin)) {
        return false;
    }
    rect = Rect{origin.x, origin.y, origin.x + native->rect.GetWidth(),
                origin.y + native->rect.GetHeight()};
    return true;
}

bool Gtk_WindowImp::GetClientRect(Rect& rect) {
    GtkNative* native = GetNative();
    if (native == nullptr) {
        return false;
    }
    rect = Rect{0, 0, native->rect.GetWidth(), native->rect.GetHeight()};
    return true;
}

int32_t Gtk_WindowImp::GetId() {
    GtkNative* native = GetNative();
    return native != nullptr ? native->id : -1;
}

int32_t Gtk_WindowImp::GetFreeChildId() {
    if (widget == nullptr) {
        return -1;
    }
    int32_t id = firstFreeChildId;
    while (FindControlIn(widget, id) != nullptr) {
        ++id;
    }
    return id;
}

bool Gtk_WindowImp::BindToControl(Window* parentWindow, int32_t id) {
    parent = parentWindow;
    GtkWidget* parentWidget = GetWidgetOf(parentWindow);
    return parentWidget != nullptr && Attach(FindControlIn(parentWidget, id));
}

bool Gtk_WindowImp::BindToHandle(Window* parentWindow, NativeHandle handle) {
    parent = parentWindow;
    return Attach(static_cast<GtkWidget*>(handle));
}

void Gtk_WindowImp::Unbind() {
    GtkNative* native = GetNative();
    if (native == nullptr) {
        return;
    }
    for (GtkWidget* connected : {widget, native->inner, native->clientArea}) {
        if (connected != nullptr) {
            g_signal_handlers_disconnect_by_data(connected, this);
        }
    }
    if (native->imp == this) {
        native->imp = nullptr;
    }
    widget = nullptr;
}

bool Gtk_WindowImp::GetClientOrigin(Point& origin) const {
    GtkWidget* area = GetClientArea();
    return GetScreenOrigin(area != nullptr ? area : widget, origin);
}

void Gtk_WindowImp::MapPoints(Window* target, Point* points, int32_t count) {
    Point from;
    Point to;
    if (widget == nullptr || !GetClientOrigin(from)) {
        return;
    }
    if (target != nullptr) {
        auto* targetImp = dynamic_cast<Gtk_WindowImp*>(target->GetImp());
        if (targetImp == nullptr || !targetImp->GetClientOrigin(to)) {
            return;
        }
    }
    for (int32_t i = 0; i < count; ++i) {
        points[i].x += from.x - to.x;
        points[i].y += from.y - to.y;
    }
}

// GTK paints on its frame clock, after the events of a pass: a window that must show its state
// before a long call paints now.
void Gtk_WindowImp::Update() {
    GtkWidget* top = widget != nullptr ? gtk_widget_get_toplevel(widget) : nullptr;
    GdkWindow* window = top != nullptr ? gtk_widget_get_window(top) : nullptr;
    if (window == nullptr) {
        return;
    }
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    gdk_window_process_updates(window, TRUE);
    G_GNUC_END_IGNORE_DEPRECATIONS
    gdk_display_flush(gdk_window_get_display(window));
}

void Gtk_WindowImp::Invalidate(const Rect*) {
    GtkNative* native = GetNative();
    if (native != nullptr) {
        gtk_widget_queue_draw(native->clientArea != nullptr ? native->clientArea : native->inner);
    }
}

void Gtk_WindowImp::SetFullScreen(bool flag) {
    if (!IsTopLevel()) {
        return;
    }
    if (flag) {
        gtk_window_fullscreen(GTK_WINDOW(widget));
    } else {
        gtk_window_unfullscreen(GTK_WINDOW(widget));
    }
}

bool Gtk_WindowImp::StartTimer(uint32_t id, uint32_t interval) {
    if (widget == nullptr) {
        return false;
    }
    StopTimer(id);
    timers[id] =
        g_timeout_add(std::max(interval, minimumTimerInterval), OnTimer, GUINT_TO_POINTER(id));
    return true;
}

void Gtk_WindowImp::StopTimer(uint32_t id) {
    auto found = timers.find(id);
    if (found != timers.end()) {
        g_source_remove(found->second);
        timers.erase(found);
    }
}

gboolean Gtk_WindowImp::OnTimer(gpointer id) {
    Timer::OnNativeTimer(GPOINTER_TO_UINT(id));
    return G_SOURCE_CONTINUE;
}

bool Gtk_WindowImp::Attach(GtkWidget* native) {
    GtkNative* record = FindNative(native);
    if (widget != nullptr || record == nullptr || record->imp != nullptr) {
        return false;
    }
    widget = native;
    record->imp = this;
    Connect();
    return true;
}

void Gtk_WindowImp::Connect() {
    GtkNative* native = GetNative();
    GtkWidget* painted = native->clientArea != nullptr ? native->clientArea : native->inner;
    g_signal_connect(painted, "draw", G_CALLBACK(OnDraw), this);
    GtkWidget* input = native->inner;
    gtk_widget_add_events(input, eventMask);
    g_signal_connect(input, "button-press-event", G_CALLBACK(OnButtonPress), this);
    g_signal_connect(input, "button-release-event", G_CALLBACK(OnButtonRelease), this);
    g_signal_connect(input, "motion-notify-event", G_CALLBACK(OnMotion), this);
    g_signal_connect(input, "scroll-event", G_CALLBACK(OnScroll), this);
    g_signal_connect(input, "focus-in-event", G_CALLBACK(OnFocusIn), this);
    g_signal_connect(input, "focus-out-event", G_CALLBACK(OnFocusOut), this);
    g_signal_connect(widget, "destroy", G_CALLBACK(OnDestroyed), this);
}

bool Gtk_WindowImp::OnKeyEvent(const GdkEventKey& event) {
    auto* window = GTK_WINDOW(widget);
    Gtk_WindowImp* target = FindImpAbove(gtk_window_get_focus(window));
    if (target == nullptr) {
        target = this;
    }
    Window* owner = target->GetOwner();
    int32_t key = 0;
    uint32_t modifiers = 0;
    bool known = TranslateKey(event, key, modifiers);
    if (event.type == GDK_KEY_RELEASE) {
        return known && owner->OnKeyUp(key, modifiers);
    }
    if (known && owner->OnKeyDown(key, modifiers)) {
        return true;
    }
    gunichar character = gdk_keyval_to_unicode(event.keyval);
    bool typed = character != 0 && character <= 0xFFFF &&
                 (event.state & (GDK_CONTROL_MASK | GDK_MOD1_MASK)) == 0;
    return typed && (character >= firstPrintable || known) &&
           owner->OnChar(static_cast<uint16_t>(character));
}

void Gtk_WindowImp::OnCloseRequest() {
    if (!GetOwner()->OnClose()) {
        Destroy();
    }
}

void Gtk_WindowImp::OnNativeGone() {
    for (const auto& [id, source] : timers) {
        g_source_remove(source);
    }
    timers.clear();
    Unbind();
    NotifyNativeDestroyed();
}

void Gtk_WindowImp::OnConfigure(int32_t width, int32_t height) {
    GtkNative* native = GetNative();
    gint x = 0;
    gint y = 0;
    gtk_window_get_position(GTK_WINDOW(widget), &x, &y);
    native->rect = Rect{x, y, x + width, y + height};
    if (x != reportedPosition.x || y != reportedPosition.y) {
        reportedPosition = Point{x, y};
        GetOwner()->OnMove(x, y);
    }
    ReportSize(width, height);
}

bool Gtk_WindowImp::CreateNativeChild(Window& control, const ChildControl& childSpec, int32_t id) {
    auto* controlImp = dynamic_cast<Gtk_WindowImp*>(control.GetImp());
    GtkWidget* area = GetClientArea();
    if (area == nullptr || controlImp == nullptr) {
        return false;
    }
    uint32_t style = childSpec.style | (childSpec.tabStop ? uint32_t{StyleTabStop} : 0u);
    GtkWidget* created =
        MakeControl(childSpec.kind, style & ~StyleHidden, childSpec.title.GetCString());
    PlaceControl(area, created, id, childSpec.rect);
    controlImp->parent = GetOwner();
    if (controlImp->Attach(created)) {
        return true;
    }
    gtk_widget_destroy(created);
    return false;
}

Point Gtk_WindowImp::ToClient(GtkWidget* eventWidget, double rootX, double rootY) const {
    Point origin;
    if (!GetScreenOrigin(eventWidget, origin)) {
        return Point{};
    }
    return Point{static_cast<int32_t>(rootX) - origin.x, static_cast<int32_t>(rootY) - origin.y};
}

gboolean Gtk_WindowImp::OnDraw(GtkWidget*, cairo_t* cairo, gpointer data) {
    auto* imp = static_cast<Gtk_WindowImp*>(data);
    GtkNative* native = imp->GetNative();
    if (native == nullptr) {
        return FALSE;
    }
    std::string before = native->paintedText;
    native->paintedText.clear();
    native->paintContext = cairo;
    bool done = imp->GetOwner()->OnPaint();
    native->paintContext = nullptr;
    if (native->paintedText != before) {
        AtkObject* accessible = gtk_widget_get_accessible(gtk_widget_get_toplevel(imp->widget));
        atk_object_set_description(accessible, native->paintedText.c_str());
    }
    // Whatever the window painted, its controls paint on top of it.
    return done && native->clientArea == nullptr ? TRUE : FALSE;
}

gboolean Gtk_WindowImp::OnButtonPress(GtkWidget* widget, GdkEventButton* event, gpointer data) {
    auto* imp = static_cast<Gtk_WindowImp*>(data);
    Point point = imp->ToClient(widget, event->x_root, event->y_root);
    uint32_t flags = TranslateButton(event->button, event->state);
    Window* owner = imp->GetOwner();
    if (event->type == GDK_2BUTTON_PRESS) {
        return owner->OnMouseDoubleClick(flags, &point) ? TRUE : FALSE;
    }
    return event->type == GDK_BUTTON_PRESS && owner->OnMouseDown(flags, &point) ? TRUE : FALSE;
}

gboolean Gtk_WindowImp::OnButtonRelease(GtkWidget* widget, GdkEventButton* event, gpointer data) {
    auto* imp = static_cast<Gtk_WindowImp*>(data);
    Point point = imp->ToClient(widget, event->x_root, event->y_root);
    uint32_t flags = TranslateButton(event->button, event->state);
    return imp->GetOwner()->OnMouseUp(flags, &point) ? TRUE : FALSE;
}

gboolean Gtk_WindowImp::OnMotion(GtkWidget* widget, GdkEventMotion* event, gpointer data) {
    auto* imp = static_cast<Gtk_WindowImp*>(data);
    Point point = imp->ToClient(widget, event->x_root, event->y_root);
    return imp->GetOwner()->OnMouseMove(TranslateHeldButtons(event->state), &point) ? TRUE : FALSE;
}

gboolean Gtk_WindowImp::OnScroll(GtkWidget*, GdkEventScroll* event, gpointer data) {
    auto* imp = static_cast<Gtk_WindowImp*>(data);
    int32_t delta = 0;
    if (event->direction == GDK_SCROLL_UP) {
        delta = wheelNotch;
    } else if (event->direction == GDK_SCROLL_DOWN) {
        delta = -wheelNotch;
    } else if (event->direction == GDK_SCROLL_SMOOTH) {
        delta = static_cast<int32_t>(-event->delta_y * wheelNotch);
    }
    return delta != 0 && imp->GetOwner()->OnMouseWheel(delta) ? TRUE : FALSE;
}

gboolean Gtk_WindowImp::OnFocusIn(GtkWidget*, GdkEvent*, gpointer data) {
    static_cast<Gtk_WindowImp*>(data)->GetOwner()->OnSetFocus();
    return FALSE;
}

gboolean Gtk_WindowImp::OnFocusOut(GtkWidget*, GdkEvent*, gpointer data) {
    static_cast<Gtk_WindowImp*>(data)->GetOwner()->OnKillFocus();
    return FALSE;
}

void Gtk_WindowImp::OnDestroyed(GtkWidget*, gpointer data) {
    static_cast<Gtk_WindowImp*>(data)->OnNativeGone();
}

void DeliverNotification(GtkWidget* control, ControlEvent event, uint32_t detail) {
    GtkWidget* placed = FindNativeWidgetAbove(control);
    GtkNative* controlNative = FindNative(placed);
    GtkNative* window =
        placed != nullptr ? FindNativeAbove(gtk_widget_get_parent(placed)) : nullptr;
    if (controlNative != nullptr && window != nullptr && window->imp != nullptr) {
        window->imp->OnControlEvent(NativeNotification{event, controlNative->id, detail});
    }
}

} // namespace quilt
