#include "quilt/gtk/gtk_control_imps.h"

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/gtk/gtk_controls.h"
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
    std::string shown = ToDisplayText(text);
    if (inner != nullptr && GTK_IS_ENTRY(inner)) {
        gint end = gtk_entry_get_text_length(GTK_ENTRY(inner));
        gtk_editable_insert_text(GTK_EDITABLE(inner), shown.c_str(), -1, &end);
        gtk_editable_set_position(GTK_EDITABLE(inner), end);
    } else if (inner != nullptr && GTK_IS_TEXT_VIEW(inner)) {
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
    std::string shown = ToDisplayText(text);
    gint caret = 0;
    if (inner != nullptr && GTK_IS_ENTRY(inner)) {
        auto* editable = GTK_EDITABLE(inner);
        gtk_editable_delete_selection(editable);
        caret = gtk_editable_get_position(editable);
        gtk_editable_insert_text(editable, shown.c_str(), -1, &caret);
    } else if (inner != nullptr && GTK_IS_TEXT_VIEW(inner)) {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        gtk_text_buffer_delete_selection(buffer, TRUE, TRUE);
        gtk_text_buffer_insert_at_cursor(buffer, shown.c_str(), -1);
        caret = GetCaret();
    }
    if (moveCaret && GetInner() != nullptr) {
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

} // namespace quilt
