#include "quilt/gtk/gtk_control_imps.h"

#include "quilt/dialog.h"
#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/gc.h"
#include "quilt/gtk/gtk_controls.h"
#include "quilt/gtk/gtk_further_controls.h"
#include "quilt/gtk/gtk_gc_imp.h"
#include "quilt/gtk/gtk_support.h"

#include <string>

namespace quilt {

namespace {

// The widget that holds a control's text, value or state, when `widget` stands for a control.
GtkWidget* InnerOf(GtkWidget* widget) {
    GtkNative* native = FindNative(widget);
    return native != nullptr ? native->inner : nullptr;
}

bool IsButtonWidget(GtkWidget* widget) {
    GtkWidget* inner = InnerOf(widget);
    return inner != nullptr && (GTK_IS_BUTTON(inner) || GTK_IS_FRAME(inner));
}

bool IsEditWidget(GtkWidget* widget) {
    GtkWidget* inner = InnerOf(widget);
    return inner != nullptr && (GTK_IS_ENTRY(inner) || GTK_IS_TEXT_VIEW(inner));
}

bool IsTrackBarWidget(GtkWidget* widget) {
    GtkWidget* inner = InnerOf(widget);
    return inner != nullptr && GTK_IS_SCALE(inner);
}

bool IsProgressBarWidget(GtkWidget* widget) {
    GtkWidget* inner = InnerOf(widget);
    return inner != nullptr && GTK_IS_PROGRESS_BAR(inner);
}

constexpr char linkClass[] = "quilt-link";
constexpr char imageButtonClass[] = "quilt-image-button";

// Links are pure blue and underlined whatever the theme says; an image button's face is all
// the toolkit's. Installed once for the screen, for the widgets that carry the classes.
void InstallFurtherControlStyle() {
    static bool installed = false;
    GdkScreen* screen = gdk_screen_get_default();
    if (installed || screen == nullptr) {
        return;
    }
    installed = true;
    GtkCssProvider* provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider,
                                    "label.quilt-link link { color: #0000ff; "
                                    "text-decoration-line: underline; }\n"
                                    "button.quilt-image-button { background: none; border: none; "
                                    "box-shadow: none; padding: 0; min-width: 0; "
                                    "min-height: 0; }\n",
                                    -1, nullptr);
    gtk_style_context_add_provider_for_screen(screen, GTK_STYLE_PROVIDER(provider),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION + 1);
    g_object_unref(provider);
}

bool IsLabelWidget(GtkWidget* widget) {
    GtkWidget* inner = InnerOf(widget);
    return inner != nullptr && GTK_IS_LABEL(inner);
}

// A window of the toolkit's child class: a client area of its own inside its parent's.
bool IsChildWindow(GtkWidget* widget) {
    GtkNative* native = FindNative(widget);
    return native != nullptr && native->clientArea == widget && !GTK_IS_WINDOW(widget);
}

// What the focus passes over as a page comes up: labels, frames, and radio buttons not checked.
bool TakesPageFocus(GtkWidget* control) {
    GtkWidget* inner = InnerOf(control);
    if (inner == nullptr || GTK_IS_LABEL(inner) || GTK_IS_FRAME(inner) ||
        !gtk_widget_get_can_focus(inner) || !gtk_widget_is_sensitive(inner)) {
        return false;
    }
    return !IsRadioButton(control) || GetRadioState(control) == CheckStateChecked;
}

std::string ToCss(const Colour& colour) {
    char text[8];
    g_snprintf(text, sizeof text, "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text;
}

} // namespace

bool Gtk_ButtonImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::PushButton, StyleTabStop, rect,
                               id);
}

bool Gtk_ButtonImp::IsPushed() {
    GtkNative* native = GetNative();
    return native != nullptr && GTK_IS_BUTTON(native->inner) &&
           gtk_widget_get_state_flags(native->inner) & GTK_STATE_FLAG_ACTIVE;
}

bool Gtk_ButtonImp::Attach(GtkWidget* native) {
    return IsButtonWidget(native) && Gtk_WindowImp::Attach(native);
}

int32_t Gtk_CheckBoxImp::GetState() {
    return GetCheckState(GetWidget());
}

void Gtk_CheckBoxImp::SetState(int32_t state) {
    if (GetWidget() != nullptr) {
        SetCheckState(GetWidget(), state);
    }
}

bool Gtk_CheckBoxImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::CheckBox, StyleCheckBox, rect, id);
}

bool Gtk_CheckBoxImp::Attach(GtkWidget* native) {
    return IsButtonWidget(native) && Gtk_WindowImp::Attach(native);
}

GtkWidget* Gtk_EditBoxImp::GetInner() const {
    GtkNative* native = GetNative();
    return native != nullptr ? native->inner : nullptr;
}

bool Gtk_EditBoxImp::Create(Window* parent, const Rect& rect) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::Edit, StyleBorder | StyleTabStop,
                               rect, -1);
}

void Gtk_EditBoxImp::AppendText(const loam::String& text) {
    GtkWidget* inner = GetInner();
    if (inner == nullptr || !(GTK_IS_ENTRY(inner) || GTK_IS_TEXT_VIEW(inner))) {
        return;
    }
    std::string shown = ToBoxText(inner, text);
    if (GTK_IS_ENTRY(inner)) {
        gint end = gtk_entry_get_text_length(GTK_ENTRY(inner));
        gtk_editable_insert_text(GTK_EDITABLE(inner), shown.c_str(), -1, &end);
        gtk_editable_set_position(GTK_EDITABLE(inner), end);
    } else {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        GtkTextIter end;
        gtk_text_buffer_get_end_iter(buffer, &end);
        gtk_text_buffer_insert(buffer, &end, shown.c_str(), -1);
        gtk_text_buffer_place_cursor(buffer, &end);
    }
}

// An entry keeps its selection when it loses the focus, so the text replaces what was selected
// then.
void Gtk_EditBoxImp::InsertText(const loam::String& text, bool moveCaret) {
    GtkWidget* inner = GetInner();
    if (inner == nullptr || !(GTK_IS_ENTRY(inner) || GTK_IS_TEXT_VIEW(inner))) {
        return;
    }
    std::string shown = ToBoxText(inner, text);
    gint caret = 0;
    if (GTK_IS_ENTRY(inner)) {
        auto* editable = GTK_EDITABLE(inner);
        gtk_editable_delete_selection(editable);
        caret = gtk_editable_get_position(editable);
        gtk_editable_insert_text(editable, shown.c_str(), -1, &caret);
    } else {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        gtk_text_buffer_delete_selection(buffer, TRUE, TRUE);
        gtk_text_buffer_insert_at_cursor(buffer, shown.c_str(), -1);
        caret = GetCaret();
    }
    if (moveCaret) {
        SetFocus();
        SetCaret(caret);
    }
}

int32_t Gtk_EditBoxImp::GetCaret() {
    GtkWidget* inner = GetInner();
    if (inner != nullptr && GTK_IS_ENTRY(inner)) {
        return gtk_editable_get_position(GTK_EDITABLE(inner));
    }
    if (inner != nullptr && GTK_IS_TEXT_VIEW(inner)) {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        GtkTextIter caret;
        gtk_text_buffer_get_iter_at_mark(buffer, &caret, gtk_text_buffer_get_insert(buffer));
        return gtk_text_iter_get_offset(&caret);
    }
    return 0;
}

void Gtk_EditBoxImp::SelectRange(int32_t start, int32_t end) {
    GtkWidget* inner = GetInner();
    if (inner != nullptr && GTK_IS_ENTRY(inner)) {
        gtk_editable_select_region(GTK_EDITABLE(inner), start, end);
    } else if (inner != nullptr && GTK_IS_TEXT_VIEW(inner)) {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        GtkTextIter from;
        GtkTextIter to;
        gtk_text_buffer_get_iter_at_offset(buffer, &from, start);
        gtk_text_buffer_get_iter_at_offset(buffer, &to, end);
        gtk_text_buffer_select_range(buffer, &to, &from);
    }
}

void Gtk_EditBoxImp::SetCaret(int32_t position) {
    SelectRange(position, position);
}

bool Gtk_EditBoxImp::GetSelection(int32_t* start, int32_t* end) {
    GtkWidget* inner = GetInner();
    gint from = 0;
    gint to = 0;
    if (inner != nullptr && GTK_IS_ENTRY(inner)) {
        gtk_editable_get_selection_bounds(GTK_EDITABLE(inner), &from, &to);
    } else if (inner != nullptr && GTK_IS_TEXT_VIEW(inner)) {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        GtkTextIter first;
        GtkTextIter last;
        gtk_text_buffer_get_selection_bounds(buffer, &first, &last);
        from = gtk_text_iter_get_offset(&first);
        to = gtk_text_iter_get_offset(&last);
    }
    if (from == to) {
        return false;
    }
    if (start != nullptr) {
        *start = from;
    }
    if (end != nullptr) {
        *end = to;
    }
    return true;
}

bool Gtk_EditBoxImp::SetSelection(int32_t start, int32_t end) {
    if (GetInner() == nullptr || end <= start) {
        return false;
    }
    SelectRange(start, end);
    return true;
}

void Gtk_EditBoxImp::ApplyColours() {
    GtkWidget* inner = GetInner();
    if (inner == nullptr) {
        return;
    }
    GtkStyleContext* context = gtk_widget_get_style_context(inner);
    if (colours == nullptr) {
        colours = gtk_css_provider_new();
        gtk_style_context_add_provider(context, GTK_STYLE_PROVIDER(colours),
                                       GTK_STYLE_PROVIDER_PRIORITY_APPLICATION + 1);
    }
    std::string rules;
    for (const char* node : {"entry", "textview text"}) {
        rules += node;
        rules += " {";
        if (textColour) {
            rules += " color: " + ToCss(*textColour) + ";";
        }
        if (backColour) {
            rules += " background-color: " + ToCss(*backColour) + "; background-image: none;";
        }
        rules += " }\n";
    }
    gtk_css_provider_load_from_data(colours, rules.c_str(), -1, nullptr);
}

void Gtk_EditBoxImp::SetTextColour(const Colour& colour) {
    textColour = colour;
    ApplyColours();
}

void Gtk_EditBoxImp::SetBackColour(const Colour& colour) {
    backColour = colour;
    ApplyColours();
}

void Gtk_EditBoxImp::ResetTextColour() {
    textColour.reset();
    ApplyColours();
}

void Gtk_EditBoxImp::ResetBackColour() {
    backColour.reset();
    ApplyColours();
}

bool Gtk_EditBoxImp::Attach(GtkWidget* native) {
    return IsEditWidget(native) && Gtk_WindowImp::Attach(native);
}

GtkRange* Gtk_SliderImp::GetRange() const {
    GtkNative* native = GetNative();
    return native != nullptr && GTK_IS_RANGE(native->inner) ? GTK_RANGE(native->inner) : nullptr;
}

bool Gtk_SliderImp::Create(Window* parent, const Rect& rect) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::TrackBar,
                               StyleBorder | StyleTabStop, rect, -1);
}

void Gtk_SliderImp::SetRange(int32_t minimum, int32_t maximum) {
    if (GtkRange* range = GetRange()) {
        gtk_range_set_range(range, minimum, maximum > minimum ? maximum : minimum + 1);
    }
}

void Gtk_SliderImp::GetRange(int32_t& minimum, int32_t& maximum) {
    GtkRange* range = GetRange();
    GtkAdjustment* adjustment = range != nullptr ? gtk_range_get_adjustment(range) : nullptr;
    minimum =
        adjustment != nullptr ? static_cast<int32_t>(gtk_adjustment_get_lower(adjustment)) : 0;
    maximum =
        adjustment != nullptr ? static_cast<int32_t>(gtk_adjustment_get_upper(adjustment)) : 0;
}

void Gtk_SliderImp::SetPos(int32_t position) {
    if (GtkRange* range = GetRange()) {
        gtk_range_set_value(range, position);
    }
}

int32_t Gtk_SliderImp::GetPos() {
    GtkRange* range = GetRange();
    return range != nullptr ? static_cast<int32_t>(gtk_range_get_value(range) + 0.5) : 0;
}

bool Gtk_SliderImp::Attach(GtkWidget* native) {
    return IsTrackBarWidget(native) && Gtk_WindowImp::Attach(native);
}

void Gtk_ProgressBarImp::SetRange(int32_t minimum, int32_t maximum) {
    rangeMin = minimum;
    rangeMax = maximum;
}

void Gtk_ProgressBarImp::SetPos(int32_t value) {
    GtkNative* native = GetNative();
    std::optional<int32_t> position = ScaleProgress(value, rangeMin, rangeMax);
    if (native != nullptr && position && GTK_IS_PROGRESS_BAR(native->inner)) {
        gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(native->inner),
                                      static_cast<double>(*position) / ProgressNativeMaximum);
    }
}

bool Gtk_ProgressBarImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::ProgressBar, StyleBorder, rect,
                               id);
}

bool Gtk_ProgressBarImp::Attach(GtkWidget* native) {
    return IsProgressBarWidget(native) && Gtk_WindowImp::Attach(native);
}

int32_t Gtk_RadioButtonImp::GetState() {
    return GetWidget() != nullptr ? GetRadioState(GetWidget()) : CheckStateIndeterminate;
}

void Gtk_RadioButtonImp::SetState(int32_t state) {
    if (GetWidget() != nullptr) {
        SetRadioState(GetWidget(), state == CheckStateChecked);
    }
}

bool Gtk_RadioButtonImp::Create(Window* parent, const Rect& rect, bool autoCheck, int32_t id) {
    ControlKind kind = autoCheck ? ControlKind::AutoRadioButton : ControlKind::RadioButton;
    return CreateControlOfKind(*GetOwner(), parent, kind, GetControlKindStyle(kind), rect, id);
}

bool Gtk_RadioButtonImp::Attach(GtkWidget* native) {
    return IsRadioButton(native) && Gtk_WindowImp::Attach(native);
}

bool Gtk_DateTimeBoxImp::Attach(GtkWidget* native) {
    return IsDateTimePicker(native) && Gtk_WindowImp::Attach(native);
}

bool Gtk_DateTimeBoxImp::GetFields(DateTimeFields& fields) {
    return GetDateTimeFields(GetWidget(), fields);
}

bool Gtk_DateTimeBoxImp::SetFields(const DateTimeFields& fields) {
    return SetDateTimeFields(GetWidget(), fields);
}

void Gtk_DateTimeBoxImp::SetPicture(const loam::String& picture) {
    SetDateTimePicture(GetWidget(), picture);
}

bool Gtk_URLButtonImp::Attach(GtkWidget* native) {
    if (!IsLabelWidget(native) || !Gtk_WindowImp::Attach(native)) {
        return false;
    }
    InstallFurtherControlStyle();
    GtkWidget* label = GetNative()->inner;
    gtk_style_context_add_class(gtk_widget_get_style_context(label), linkClass);
    g_signal_connect(label, "activate-link", G_CALLBACK(+[](GtkLabel*, gchar*, gpointer imp) {
                         static_cast<Gtk_URLButtonImp*>(imp)->OpenLink();
                         return TRUE;
                     }),
                     this);
    ShowAsLink();
    return true;
}

bool Gtk_URLButtonImp::SetText(const loam::String& text) {
    if (!Gtk_WindowImp::SetText(text)) {
        return false;
    }
    ShowAsLink();
    return true;
}

// The link's target is never read: a press opens the text through OpenLink.
void Gtk_URLButtonImp::ShowAsLink() {
    GtkLabel* label = GTK_LABEL(GetNative()->inner);
    gchar* escaped = g_markup_escape_text(gtk_label_get_text(label), -1);
    gchar* markup = g_strdup_printf("<a href=\"#\">%s</a>", escaped);
    gtk_label_set_markup(label, markup);
    g_free(markup);
    g_free(escaped);
}

bool Gtk_TabControlImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::TabControl,
                               GetControlKindStyle(ControlKind::TabControl), rect, id);
}

bool Gtk_TabControlImp::Attach(GtkWidget* native) {
    if (GetNotebook(native) == nullptr || !Gtk_WindowImp::Attach(native)) {
        return false;
    }
    g_signal_connect(native, "size-allocate", G_CALLBACK(OnAllocated), this);
    return true;
}

void Gtk_TabControlImp::OnAllocated(GtkWidget*, GdkRectangle* allocation, gpointer imp) {
    static_cast<Gtk_TabControlImp*>(imp)->OnResized(allocation->width, allocation->height);
}

void Gtk_TabControlImp::Show(int32_t mode) {
    Gtk_WindowImp::Show(mode);
    ShowPages(mode);
}

void Gtk_TabControlImp::SetRect(const Rect& rect, bool repaint) {
    Gtk_WindowImp::SetRect(rect, repaint);
    OnResized(rect.GetWidth(), rect.GetHeight());
}

int32_t Gtk_TabControlImp::InsertNativeTab(int32_t position, const loam::String& title) {
    return InsertNotebookTab(GetWidget(), position, title);
}

void Gtk_TabControlImp::DeleteNativeTab(int32_t position) {
    DeleteNotebookTab(GetWidget(), position);
}

void Gtk_TabControlImp::SelectNativeTab(int32_t position) {
    SelectNotebookTab(GetWidget(), position);
}

int32_t Gtk_TabControlImp::GetNativeSelection() {
    GtkNotebook* notebook = GetNotebook(GetWidget());
    return notebook != nullptr ? gtk_notebook_get_current_page(notebook) : -1;
}

bool Gtk_TabControlImp::GetDisplayArea(Rect& area) {
    return GetNotebookDisplayArea(GetWidget(), area);
}

void Gtk_TabControlImp::FocusPage(Dialog& page) {
    GtkNative* native = FindNative(GetWidgetOf(&page));
    if (native == nullptr || native->clientArea == nullptr) {
        return;
    }
    GList* children = gtk_container_get_children(GTK_CONTAINER(native->clientArea));
    for (GList* item = children; item != nullptr; item = item->next) {
        if (TakesPageFocus(GTK_WIDGET(item->data))) {
            gtk_widget_grab_focus(InnerOf(GTK_WIDGET(item->data)));
            break;
        }
    }
    g_list_free(children);
}

bool Gtk_DialogControlImp::Create(Window* parent, const Rect& rect, int32_t id, bool tabStop) {
    GtkNative* parentNative = FindNative(GetWidgetOf(parent));
    if (parentNative == nullptr || parentNative->clientArea == nullptr || GetWidget() != nullptr) {
        return false;
    }
    GtkWidget* created = NewClientArea();
    gtk_widget_set_has_window(created, TRUE);
    gtk_widget_set_can_focus(created, tabStop);
    GtkNative& native = AttachNative(created);
    native.clientArea = created;
    native.style = tabStop ? uint32_t{StyleTabStop} : 0u;
    PlaceControl(parentNative->clientArea, created, id, rect);
    SetParentWindow(parent);
    if (!Attach(created)) {
        gtk_widget_destroy(created);
        return false;
    }
    return true;
}

bool Gtk_DialogControlImp::Attach(GtkWidget* native) {
    return IsChildWindow(native) && Gtk_WindowImp::Attach(native);
}

// The placeholder's rectangle is its whole widget: GTK draws a control's frame inside it.
bool Gtk_DialogControlImp::RemovePlaceholder(Window* parent, int32_t id, Rect& rect,
                                             bool& tabStop) {
    GtkWidget* parentWidget = GetWidgetOf(parent);
    GtkWidget* placeholder = parentWidget != nullptr ? FindControlIn(parentWidget, id) : nullptr;
    GtkNative* native = FindNative(placeholder);
    if (native == nullptr) {
        return false;
    }
    rect = native->rect;
    tabStop = (native->style & StyleTabStop) != 0;
    gtk_widget_destroy(placeholder);
    return true;
}

bool Gtk_ImageButtonImp::Create(Window* parent, const Rect& rect, int32_t id) {
    return CreateControlOfKind(*GetOwner(), parent, ControlKind::PushButton, StyleTabStop, rect,
                               id);
}

bool Gtk_ImageButtonImp::IsPushed() {
    GtkNative* native = GetNative();
    return native != nullptr &&
           (gtk_widget_get_state_flags(native->inner) & GTK_STATE_FLAG_ACTIVE) != 0;
}

// The button's label goes, so that the button takes the size it is given; the accessibility
// layer keeps its text as the button's name.
bool Gtk_ImageButtonImp::Attach(GtkWidget* native) {
    if (!IsPushButton(native) || !Gtk_WindowImp::Attach(native)) {
        return false;
    }
    InstallFurtherControlStyle();
    GtkWidget* button = GetNative()->inner;
    gtk_style_context_add_class(gtk_widget_get_style_context(button), imageButtonClass);
    if (GtkWidget* label = gtk_bin_get_child(GTK_BIN(button)); GTK_IS_LABEL(label)) {
        atk_object_set_name(gtk_widget_get_accessible(button),
                            gtk_label_get_text(GTK_LABEL(label)));
        gtk_container_remove(GTK_CONTAINER(button), label);
    }
    g_signal_connect_after(button, "draw", G_CALLBACK(OnDraw), this);
    g_signal_connect(button, "state-flags-changed", G_CALLBACK(OnStateFlags), this);
    return true;
}

gboolean Gtk_ImageButtonImp::OnDraw(GtkWidget* widget, cairo_t* cairo, gpointer data) {
    auto* imp = static_cast<Gtk_ImageButtonImp*>(data);
    auto gcImp = std::make_unique<Gtk_GCImp>();
    gcImp->UseContext(cairo, *imp->GetOwner());
    GC gc(std::move(gcImp));
    Rect face{0, 0, gtk_widget_get_allocated_width(widget),
              gtk_widget_get_allocated_height(widget)};
    imp->PaintFace(gc, face, imp->IsPushed());
    return FALSE;
}

void Gtk_ImageButtonImp::OnStateFlags(GtkWidget* widget, GtkStateFlags, gpointer data) {
    bool hot = (gtk_widget_get_state_flags(widget) & GTK_STATE_FLAG_PRELIGHT) != 0;
    static_cast<Gtk_ImageButtonImp*>(data)->SetHot(hot);
}

} // namespace quilt
