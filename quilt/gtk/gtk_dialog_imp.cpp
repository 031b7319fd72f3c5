#include "quilt/gtk/gtk_dialog_imp.h"

#include "quilt/application.h"
#include "quilt/dialog.h"
#include "quilt/font.h"
#include "quilt/gtk/gtk_application_imp.h"
#include "quilt/gtk/gtk_controls.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/keys.h"
#include "quilt/size_grip.h"

#include <algorithm>

namespace quilt {

namespace {

// GTK's own controls are roomier than the templates' rectangles: this lets them keep to the
// rectangles that dialog units give, as the templates were laid out for.
constexpr char compactStyle[] = R"(
window.quilt-dialog button { min-height: 0; min-width: 0; padding: 0 6px; }
window.quilt-dialog entry { min-height: 0; padding-top: 0; padding-bottom: 0; }
window.quilt-dialog checkbutton { min-height: 0; padding-top: 0; padding-bottom: 0; }
window.quilt-dialog scale { min-height: 0; padding-top: 0; padding-bottom: 0; }
window.quilt-dialog progressbar trough, window.quilt-dialog progressbar progress {
    min-height: 10px; }
)";

void InstallCompactStyle() {
    static bool installed = false;
    if (installed) {
        return;
    }
    installed = true;
    GtkCssProvider* provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, compactStyle, -1, nullptr);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(),
                                              GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
}

// Controls whose template text is the whole of what they show, on one line: a rectangle under
// two lines' height, a line being eight vertical units.
constexpr ControlKind textKinds[] = {
    ControlKind::PushButton,   ControlKind::DefaultPushButton, ControlKind::CheckBox,
    ControlKind::AutoCheckBox, ControlKind::StaticLeft,        ControlKind::StaticCentred,
    ControlKind::StaticRight,
};
constexpr int32_t twoLines = 16;

bool HoldsOneLineText(const DialogControlTemplate& control) {
    return control.text[0] != '\0' && control.rect.height < twoLines &&
           std::find(std::begin(textKinds), std::end(textKinds), control.kind) !=
               std::end(textKinds);
}

// A desktop font's words can run wider for its average character than those of the font the
// templates were laid out for, and a label would wrap or a check box clip. The horizontal unit
// widens until each one-line text of the template fits its rectangle, measured on the widget
// that shows it, in the dialogs' own style.
DialogUnits FitUnitsToTexts(const DialogTemplate& dialog, DialogUnits units) {
    GtkWidget* scratch = gtk_offscreen_window_new();
    gtk_style_context_add_class(gtk_widget_get_style_context(scratch), "quilt-dialog");
    GtkWidget* area = gtk_fixed_new();
    gtk_container_add(GTK_CONTAINER(scratch), area);
    for (const DialogControlTemplate& control : dialog.controls) {
        if (!HoldsOneLineText(control)) {
            continue;
        }
        GtkWidget* widget = MakeControl(
            control.kind, GetControlKindStyle(control.kind) | control.style, control.text);
        gtk_fixed_put(GTK_FIXED(area), widget, 0, 0);
        gtk_widget_show(widget);
        int natural = 0;
        gtk_widget_get_preferred_width(widget, nullptr, &natural);
        units = units.WidenedToSpan(natural, control.rect.width);
    }
    gtk_widget_destroy(scratch);
    return units;
}

// A text view learns the width of its text only as it lays it out, after it is shown: its text
// is measured here.
int32_t GetNaturalWidth(GtkWidget* control, GtkWidget* inner) {
    if (!GTK_IS_TEXT_VIEW(inner)) {
        int natural = 0;
        gtk_widget_get_preferred_width(control, nullptr, &natural);
        return natural;
    }
    auto* view = GTK_TEXT_VIEW(inner);
    GtkTextIter start;
    GtkTextIter end;
    gtk_text_buffer_get_bounds(gtk_text_view_get_buffer(view), &start, &end);
    gchar* text = gtk_text_iter_get_text(&start, &end);
    PangoLayout* layout = gtk_widget_create_pango_layout(inner, text);
    g_free(text);
    int width = 0;
    pango_layout_get_pixel_size(layout, &width, nullptr);
    g_object_unref(layout);
    return width + gtk_text_view_get_left_margin(view) + gtk_text_view_get_right_margin(view);
}

bool IsApplicationQuitting() {
    Application* application = Application::GetCurrent();
    return application != nullptr && application->GetImp() != nullptr &&
           application->GetImp()->GetLoop().IsQuitting();
}

// The upper-case key of the mnemonic that a label, or a button's label, underlines.
int32_t GetMnemonicOf(GtkWidget* inner) {
    GtkWidget* label = GTK_IS_BUTTON(inner) ? gtk_bin_get_child(GTK_BIN(inner)) : inner;
    if (label == nullptr || !GTK_IS_LABEL(label)) {
        return 0;
    }
    guint key = gdk_keyval_to_upper(gtk_label_get_mnemonic_keyval(GTK_LABEL(label)));
    return key < 128 ? static_cast<int32_t>(key) : 0;
}

// An editable text of several lines takes Return and Tab itself, as a person typing into it
// expects.
bool TakesDialogKeys(GtkWidget* focus) {
    return focus != nullptr && GTK_IS_TEXT_VIEW(focus) &&
           gtk_text_view_get_editable(GTK_TEXT_VIEW(focus));
}

// Each static label names the next control in tab order, for its mnemonic and for the
// accessibility layer; the search wraps around, as the last label of a template may name the
// first control.
void TieLabels(GtkWidget* clientArea) {
    GList* children = gtk_container_get_children(GTK_CONTAINER(clientArea));
    std::vector<GtkWidget*> controls;
    for (GList* item = children; item != nullptr; item = item->next) {
        controls.push_back(GTK_WIDGET(item->data));
    }
    g_list_free(children);
    for (size_t i = 0; i < controls.size(); ++i) {
        GtkNative* label = FindNative(controls[i]);
        if (label == nullptr || !GTK_IS_LABEL(label->inner)) {
            continue;
        }
        for (size_t step = 1; step < controls.size(); ++step) {
            GtkNative* named = FindNative(controls[(i + step) % controls.size()]);
            if (named != nullptr && (named->style & StyleTabStop) != 0) {
                gtk_label_set_mnemonic_widget(GTK_LABEL(label->inner), named->inner);
                break;
            }
        }
    }
}

} // namespace

bool Gtk_DialogImp::RunNativeModal(const loam::ResourceId& resource, Window* parent) {
    if (!CreateNativeDialog(resource, parent, false)) {
        return false;
    }
    if (GtkWidget* window = GetWidget()) {
        gtk_window_set_modal(GTK_WINDOW(window), TRUE);
    }
    RunGtkModalLoop([this] { return IsModalRunning(); });
    Destroy();
    return true;
}

void Gtk_DialogImp::RaiseTopLevel(Window* window) {
    GtkWidget* widget = GetWidgetOf(window);
    GtkWidget* top = widget != nullptr ? gtk_widget_get_toplevel(widget) : nullptr;
    if (top != nullptr && GTK_IS_WINDOW(top)) {
        gtk_window_present(GTK_WINDOW(top));
    }
}

void Gtk_DialogImp::EndNativeModal() {
    if (GtkWidget* window = GetWidget()) {
        gtk_widget_hide(window);
    }
}

bool Gtk_DialogImp::CreateNativeDialog(const loam::ResourceId& resource, Window* parent,
                                       bool asChild) {
    dialogTemplate = FindDialogTemplate(resource);
    GtkNative* parentNative = FindNative(GetWidgetOf(parent));
    if (dialogTemplate == nullptr || (asChild && parentNative == nullptr)) {
        return false;
    }
    InstallCompactStyle();
    units = FitUnitsToTexts(*dialogTemplate, GetTemplateFontUnits());
    GtkWidget* window = MakeNativeDialog(parent, asChild, units);
    AddControls(FindNative(window)->clientArea, units);
    if (!Attach(window)) {
        gtk_widget_destroy(window);
        return false;
    }
    SetParentWindow(parent);
    if (!asChild && (dialogTemplate->style & DialogStyleCentre) != 0) {
        Gtk_WindowImp::Center();
    }
    StartDialog((dialogTemplate->style & DialogStyleSizingFrame) != 0);
    return GetWidget() != nullptr;
}

// The least size holds from the first showing on, once OnInitDialog has set the dialog's sizes.
void Gtk_DialogImp::Show(int32_t mode) {
    if (mode == ShowModeHide) {
        Gtk_WindowImp::Show(mode);
        return;
    }
    LimitSize();
    Gtk_WindowImp::Show(mode);
    if (GtkWidget* window = GetWidget(); window != nullptr && GTK_IS_WINDOW(window)) {
        gtk_window_present(GTK_WINDOW(window));
    }
}

void Gtk_DialogImp::GetChildRects(std::vector<Rect>& rects) {
    GList* children = gtk_container_get_children(GTK_CONTAINER(GetClientArea()));
    for (GList* item = children; item != nullptr; item = item->next) {
        if (GtkNative* native = FindNative(GTK_WIDGET(item->data))) {
            rects.push_back(native->rect);
        }
    }
    g_list_free(children);
}

bool Gtk_DialogImp::HasFocusWithin() {
    GtkWidget* window = gtk_widget_get_toplevel(GetWidget());
    GtkWidget* focus = GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
    return focus != nullptr && (focus == GetWidget() || gtk_widget_is_ancestor(focus, GetWidget()));
}

void Gtk_DialogImp::GetControls(NativeHandle page, std::vector<DialogControl>& controls) {
    GtkNative* container =
        FindNative(page != nullptr ? static_cast<GtkWidget*>(page) : GetWidget());
    if (container == nullptr || container->clientArea == nullptr) {
        return;
    }
    GList* children = gtk_container_get_children(GTK_CONTAINER(container->clientArea));
    for (GList* item = children; item != nullptr; item = item->next) {
        auto* child = GTK_WIDGET(item->data);
        GtkNative* native = FindNative(child);
        if (native == nullptr) {
            continue;
        }
        DialogControl control;
        control.handle = child;
        control.id = native->id;
        control.style = native->style;
        control.usable = gtk_widget_get_visible(child) && gtk_widget_is_sensitive(child);
        control.page = native->clientArea != nullptr;
        control.pushButton = IsPushButton(child);
        control.checkable = IsCheckBox(child);
        control.mnemonic = GetMnemonicOf(native->inner);
        controls.push_back(control);
    }
    g_list_free(children);
}

NativeHandle Gtk_DialogImp::GetFocusControl() {
    GtkWidget* window = gtk_widget_get_toplevel(GetWidget());
    GtkWidget* focus = GTK_IS_WINDOW(window) ? gtk_window_get_focus(GTK_WINDOW(window)) : nullptr;
    GtkWidget* placed = FindNativeWidgetAbove(focus);
    return placed != GetWidget() ? placed : nullptr;
}

void Gtk_DialogImp::FocusControl(NativeHandle control) {
    if (GtkNative* native = FindNative(static_cast<GtkWidget*>(control))) {
        gtk_widget_grab_focus(native->inner);
    }
}

void Gtk_DialogImp::ClickControl(NativeHandle control) {
    PressButton(static_cast<GtkWidget*>(control));
}

GtkWidget* Gtk_DialogImp::MakeNativeDialog(Window* parent, bool asChild, const DialogUnits& units) {
    int32_t width = units.ToPixelsX(dialogTemplate->width);
    int32_t height = units.ToPixelsY(dialogTemplate->height);
    GtkWidget* area = NewClientArea();
    if (asChild) {
        gtk_widget_set_has_window(area, TRUE);
        GtkNative& native = AttachNative(area);
        native.clientArea = area;
        PlaceControl(FindNative(GetWidgetOf(parent))->clientArea, area, 0,
                     Rect{0, 0, width, height});
        return area;
    }
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkNative& native = AttachNative(window);
    native.clientArea = area;
    gtk_style_context_add_class(gtk_widget_get_style_context(window), "quilt-dialog");
    gtk_window_set_title(GTK_WINDOW(window), ToDisplayText(dialogTemplate->title).c_str());
    bool sizable = (dialogTemplate->style & DialogStyleSizingFrame) != 0;
    gtk_window_set_resizable(GTK_WINDOW(window), sizable);
    gtk_window_set_default_size(GTK_WINDOW(window), width, height);
    gtk_widget_set_size_request(area, width, height);
    // A top-level dialog comes up at its owner's corner unless it is centred.
    Rect ownerRect;
    GtkWidget* owner = GetWidgetOf(parent);
    if (owner != nullptr) {
        GtkWidget* ownerWindow = gtk_widget_get_toplevel(owner);
        gtk_window_set_transient_for(GTK_WINDOW(window), GTK_WINDOW(ownerWindow));
        if (GtkNative* ownerNative = FindNative(ownerWindow)) {
            ownerRect = ownerNative->rect;
        }
    }
    native.rect =
        Rect{ownerRect.left, ownerRect.top, ownerRect.left + width, ownerRect.top + height};
    gtk_window_move(GTK_WINDOW(window), ownerRect.left, ownerRect.top);
    gtk_container_add(GTK_CONTAINER(window), area);
    gtk_widget_show(area);
    ConnectTopLevel(window);
    g_signal_connect(window, "button-press-event", G_CALLBACK(OnGripPress), this);
    return window;
}

void Gtk_DialogImp::AddControls(GtkWidget* clientArea, const DialogUnits& units) {
    for (const DialogControlTemplate& control : dialogTemplate->controls) {
        uint32_t style = GetControlKindStyle(control.kind) | control.style;
        GtkWidget* widget = MakeControl(control.kind, style, control.text);
        PlaceControl(clientArea, widget, control.id, units.ToPixels(control.rect.ToRect()));
        if ((style & StyleDefaultButton) != 0) {
            gtk_widget_grab_default(widget);
        }
    }
    TieLabels(clientArea);
}

// A dialog that the owner holds to a least size can't be made smaller on the screen. A
// resizable one comes up wide enough for what its controls hold: the anchors give the added
// width to the controls that stretch, such as a status line.
void Gtk_DialogImp::LimitSize() {
    GtkWidget* area = GetClientArea();
    if (area == nullptr || !GTK_IS_WINDOW(GetWidget()) ||
        !gtk_window_get_resizable(GTK_WINDOW(GetWidget()))) {
        return;
    }
    Size least{1, 1};
    if (!ConstrainSize(least)) {
        least = Size{1, 1};
    }
    gtk_widget_set_size_request(area, least.width, least.height);
    Rect client;
    GetClientRect(client);
    int32_t shortfall = gtk_widget_get_realized(GetWidget()) ? 0 : GetWidthShortfall();
    if (shortfall > 0) {
        client.right += shortfall;
        SetClientRect(client);
    }
}

// How much wider than its rectangle the widest-reaching control would have to be to show all it
// holds, such as a status line whose words run past its end.
int32_t Gtk_DialogImp::GetWidthShortfall() {
    int32_t shortfall = 0;
    GList* children = gtk_container_get_children(GTK_CONTAINER(GetClientArea()));
    for (GList* item = children; item != nullptr; item = item->next) {
        auto* child = GTK_WIDGET(item->data);
        GtkNative* native = FindNative(child);
        if (native == nullptr || !gtk_widget_get_visible(child)) {
            continue;
        }
        shortfall =
            std::max(shortfall, GetNaturalWidth(child, native->inner) - native->rect.GetWidth());
    }
    g_list_free(children);
    return shortfall;
}

bool Gtk_DialogImp::IsModalRunning() const {
    return !HasRunEnded() && GetWidget() != nullptr && !IsApplicationQuitting();
}

void Gtk_DialogImp::EnableControl(int32_t id, bool enable) {
    if (GtkWidget* control = FindControl(id)) {
        gtk_widget_set_sensitive(control, enable);
    }
}

void Gtk_DialogImp::SetControlVisible(int32_t id, bool visible) {
    if (GtkWidget* control = FindControl(id)) {
        gtk_widget_set_visible(control, visible);
    }
}

bool Gtk_DialogImp::GetControlRect(int32_t id, Rect& rect) {
    GtkNative* native = FindNative(FindControl(id));
    if (native == nullptr) {
        return false;
    }
    rect = native->rect;
    return true;
}

void Gtk_DialogImp::PlaceControlNow(int32_t id, const Rect& rect) {
    if (GtkWidget* control = FindControl(id)) {
        MoveControlTo(control, rect);
    }
}

void Gtk_DialogImp::SetCheck(int32_t id, int32_t state) {
    if (GtkWidget* control = FindControl(id)) {
        SetCheckState(control, state);
    }
}

int32_t Gtk_DialogImp::GetNativeCheck(int32_t id) {
    return GetCheckState(FindControl(id));
}

bool Gtk_DialogImp::GetControlWindow(int32_t id, Window** window) {
    GtkNative* native = FindNative(FindControl(id));
    if (native == nullptr || native->imp == nullptr) {
        return false;
    }
    *window = native->imp->GetOwner();
    return true;
}

bool Gtk_DialogImp::GetControlText(int32_t id, loam::String& text) {
    GtkWidget* control = FindControl(id);
    return control != nullptr && quilt::GetControlText(control, text);
}

bool Gtk_DialogImp::SetControlText(int32_t id, const loam::String& text) {
    GtkWidget* control = FindControl(id);
    return control != nullptr && quilt::SetControlText(control, text);
}

bool Gtk_DialogImp::SetControlId(int32_t id, int32_t newId) {
    GtkNative* native = FindNative(FindControl(id));
    if (native == nullptr) {
        return false;
    }
    native->id = newId;
    return true;
}

void Gtk_DialogImp::SetRect(const Rect& rect, bool repaint) {
    Gtk_WindowImp::SetRect(rect, repaint);
    KeepPlacement();
}

bool Gtk_DialogImp::OnKeyEvent(const GdkEventKey& event) {
    int32_t key = 0;
    uint32_t modifiers = 0;
    if (event.type == GDK_KEY_PRESS && TranslateKey(event, key, modifiers)) {
        GtkWidget* focus = gtk_window_get_focus(GTK_WINDOW(GetWidget()));
        int32_t nativeCode = TakesDialogKeys(focus) ? DialogCodeWantAllKeys : 0;
        if (OnDialogKey(KeyEventDown, key, modifiers, FindImpAbove(focus), nativeCode)) {
            return true;
        }
    }
    return Gtk_WindowImp::OnKeyEvent(event);
}

GtkWidget* Gtk_DialogImp::FindControl(int32_t id) const {
    return GetWidget() != nullptr ? FindControlIn(GetWidget(), id) : nullptr;
}

DialogUnits Gtk_DialogImp::GetDialogUnits() const {
    return dialogTemplate != nullptr ? units : DialogUnits::OfDialogFont();
}

DialogUnits Gtk_DialogImp::GetTemplateFontUnits() const {
    Font font;
    font.Create(loam::String(dialogTemplate->fontName), dialogTemplate->fontPoints);
    return DialogUnits(font);
}

// The grip's corner of a resizable dialog is its sizing corner, wherever the grip is drawn.
gboolean Gtk_DialogImp::OnGripPress(GtkWidget* window, GdkEventButton* event, gpointer data) {
    auto* imp = static_cast<Gtk_DialogImp*>(data);
    Rect client;
    if (!gtk_window_get_resizable(GTK_WINDOW(window)) || event->button != 1 ||
        !imp->GetClientRect(client)) {
        return FALSE;
    }
    Point point{static_cast<int32_t>(event->x), static_cast<int32_t>(event->y)};
    Rect grip = SizeGrip::GetGripRect(client);
    if (point.x < grip.left || point.y < grip.top) {
        return FALSE;
    }
    gtk_window_begin_resize_drag(GTK_WINDOW(window), GDK_WINDOW_EDGE_SOUTH_EAST,
                                 static_cast<gint>(event->button), static_cast<gint>(event->x_root),
                                 static_cast<gint>(event->y_root), event->time);
    return TRUE;
}

} // namespace quilt
