#include "quilt/gtk/gtk_controls.h"

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/gtk/gtk_further_controls.h"
#include "quilt/gtk/gtk_list_controls.h"
#include "quilt/gtk/gtk_support.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/progress_bar.h"

namespace quilt {

namespace {

// A kind of control and what makes its widget.
struct ControlMaker {
    ControlKind kind;
    GtkWidget* (*make)(GtkNative& native, uint32_t style, const char* text);
};

bool IsQuiet(GtkWidget* widget) {
    GtkNative* native = FindNativeAbove(widget);
    return native == nullptr || native->quiet;
}

void Notify(GtkWidget* widget, ControlEvent event, uint32_t detail = 0) {
    if (!IsQuiet(widget)) {
        DeliverNotification(widget, event, detail);
    }
}

// A check box that only the program changes takes back the toggle of a click.
void OnButtonClicked(GtkButton* button, gpointer) {
    GtkWidget* widget = GTK_WIDGET(button);
    GtkNative* native = FindNative(widget);
    if (native == nullptr || native->quiet) {
        return;
    }
    bool manual = (native->style & (StyleCheckBox | StyleAutoCheck)) == StyleCheckBox;
    if (manual) {
        native->quiet = true;
        auto* toggle = GTK_TOGGLE_BUTTON(button);
        gtk_toggle_button_set_active(toggle, !gtk_toggle_button_get_active(toggle));
        native->quiet = false;
    }
    DeliverNotification(widget, ControlEvent::Clicked, 0);
}

void OnEditChanged(GtkWidget* widget) {
    Notify(widget, ControlEvent::TextUpdated);
    Notify(widget, ControlEvent::TextChanged);
}

gboolean OnEditFocusIn(GtkWidget* widget, GdkEvent*, gpointer) {
    Notify(widget, ControlEvent::FocusGained);
    return FALSE;
}

gboolean OnEditFocusOut(GtkWidget* widget, GdkEvent*, gpointer) {
    Notify(widget, ControlEvent::FocusLost);
    return FALSE;
}

struct ScrollKind {
    GtkScrollType type;
    ScrollAction action;
};

constexpr ScrollKind scrollKinds[] = {
    {GTK_SCROLL_STEP_BACKWARD, ScrollLineUp}, {GTK_SCROLL_STEP_LEFT, ScrollLineUp},
    {GTK_SCROLL_STEP_UP, ScrollLineUp},       {GTK_SCROLL_STEP_FORWARD, ScrollLineDown},
    {GTK_SCROLL_STEP_RIGHT, ScrollLineDown},  {GTK_SCROLL_STEP_DOWN, ScrollLineDown},
    {GTK_SCROLL_PAGE_BACKWARD, ScrollPageUp}, {GTK_SCROLL_PAGE_LEFT, ScrollPageUp},
    {GTK_SCROLL_PAGE_UP, ScrollPageUp},       {GTK_SCROLL_PAGE_FORWARD, ScrollPageDown},
    {GTK_SCROLL_PAGE_RIGHT, ScrollPageDown},  {GTK_SCROLL_PAGE_DOWN, ScrollPageDown},
    {GTK_SCROLL_JUMP, ScrollThumbTrack},      {GTK_SCROLL_START, ScrollTop},
    {GTK_SCROLL_END, ScrollBottom},
};

// Runs after the range took the value, so that the dialog reads the new position. A drag ends
// with the thumb's last position; a step by key or click ends at once.
gboolean OnScaleChanged(GtkRange* range, GtkScrollType type, gdouble, gpointer) {
    GtkWidget* widget = GTK_WIDGET(range);
    for (const ScrollKind& kind : scrollKinds) {
        if (kind.type != type) {
            continue;
        }
        Notify(widget, ControlEvent::Scrolled, kind.action);
        if (kind.action != ScrollThumbTrack) {
            Notify(widget, ControlEvent::Scrolled, ScrollEndTrack);
        } else {
            g_object_set_data(G_OBJECT(widget), "quilt-dragging", GINT_TO_POINTER(1));
        }
    }
    return FALSE;
}

gboolean OnScaleReleased(GtkWidget* widget, GdkEvent*, gpointer) {
    if (g_object_get_data(G_OBJECT(widget), "quilt-dragging") != nullptr) {
        g_object_set_data(G_OBJECT(widget), "quilt-dragging", nullptr);
        Notify(widget, ControlEvent::Scrolled, ScrollThumbPosition);
        Notify(widget, ControlEvent::Scrolled, ScrollEndTrack);
    }
    return FALSE;
}

GtkWidget* MakeButton(GtkNative& native, uint32_t style, const char* text) {
    GtkWidget* button = nullptr;
    if ((style & StyleGroupBox) != 0) {
        button = gtk_frame_new(WithoutMnemonic(text).c_str());
        native.inner = button;
        return button;
    }
    std::string label = ToMnemonicText(text);
    if ((style & StyleCheckBox) != 0) {
        button = gtk_check_button_new_with_mnemonic(label.c_str());
    } else {
        button = gtk_button_new_with_mnemonic(label.c_str());
        gtk_widget_set_can_default(button, (style & StyleDefaultButton) != 0);
    }
    g_signal_connect(button, "clicked", G_CALLBACK(OnButtonClicked), nullptr);
    return button;
}

void ConnectEditNotifications(GtkWidget* edit) {
    g_signal_connect(edit, "focus-in-event", G_CALLBACK(OnEditFocusIn), nullptr);
    g_signal_connect(edit, "focus-out-event", G_CALLBACK(OnEditFocusOut), nullptr);
}

GtkWidget* MakeEdit(GtkNative& native, uint32_t style, const char* text) {
    bool editable = (style & StyleReadOnly) == 0;
    if ((style & StyleMultiLine) == 0) {
        GtkWidget* entry = gtk_entry_new();
        gtk_entry_set_text(GTK_ENTRY(entry),
                           (editable ? ToEditableText(text) : ToDisplayText(text)).c_str());
        gtk_editable_set_editable(GTK_EDITABLE(entry), editable);
        gtk_entry_set_has_frame(GTK_ENTRY(entry), (style & StyleBorder) != 0 || editable);
        gtk_entry_set_width_chars(GTK_ENTRY(entry), 1);
        g_signal_connect(entry, "changed", G_CALLBACK(+[](GtkEditable* edit, gpointer) {
                             OnEditChanged(GTK_WIDGET(edit));
                         }),
                         nullptr);
        ConnectEditNotifications(entry);
        return entry;
    }
    GtkWidget* view = gtk_text_view_new();
    GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
    gtk_text_buffer_set_text(buffer,
                             (editable ? ToEditableText(text) : ToDisplayText(text)).c_str(), -1);
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), editable);
    gtk_text_view_set_cursor_visible(GTK_TEXT_VIEW(view), editable);
    bool wraps = (style & StyleAutoHScroll) == 0;
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), wraps ? GTK_WRAP_WORD_CHAR : GTK_WRAP_NONE);
    g_signal_connect_swapped(buffer, "changed", G_CALLBACK(OnEditChanged), view);
    ConnectEditNotifications(view);
    GtkWidget* scroller = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroller), GTK_POLICY_EXTERNAL,
                                   GTK_POLICY_EXTERNAL);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroller), (style & StyleBorder) != 0
                                                                           ? GTK_SHADOW_IN
                                                                           : GTK_SHADOW_NONE);
    gtk_container_add(GTK_CONTAINER(scroller), view);
    gtk_widget_show(view);
    native.inner = view;
    return scroller;
}

GtkWidget* MakeStatic(GtkNative&, uint32_t style, const char* text) {
    GtkWidget* label = gtk_label_new_with_mnemonic(ToMnemonicText(text).c_str());
    float alignment = (style & StyleCentred) != 0 ? 0.5f : (style & StyleRightAligned) ? 1.0f : 0;
    gtk_label_set_xalign(GTK_LABEL(label), alignment);
    gtk_label_set_yalign(GTK_LABEL(label), 0);
    gtk_label_set_justify(GTK_LABEL(label), (style & StyleCentred) != 0        ? GTK_JUSTIFY_CENTER
                                            : (style & StyleRightAligned) != 0 ? GTK_JUSTIFY_RIGHT
                                                                               : GTK_JUSTIFY_LEFT);
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    return label;
}

GtkWidget* MakeTrackBar(GtkNative&, uint32_t, const char*) {
    GtkWidget* scale = gtk_scale_new_with_range(GTK_ORIENTATION_HORIZONTAL, 0, 100, 1);
    gtk_scale_set_draw_value(GTK_SCALE(scale), FALSE);
    gtk_scale_set_digits(GTK_SCALE(scale), 0);
    gtk_range_set_increments(GTK_RANGE(scale), 1, 20);
    g_signal_connect_after(scale, "change-value", G_CALLBACK(OnScaleChanged), nullptr);
    g_signal_connect(scale, "button-release-event", G_CALLBACK(OnScaleReleased), nullptr);
    return scale;
}

GtkWidget* MakeProgressBar(GtkNative&, uint32_t, const char*) {
    return gtk_progress_bar_new();
}

constexpr ControlMaker controlMakers[] = {
    {ControlKind::PushButton, MakeButton},
    {ControlKind::DefaultPushButton, MakeButton},
    {ControlKind::CheckBox, MakeButton},
    {ControlKind::AutoCheckBox, MakeButton},
    {ControlKind::GroupBox, MakeButton},
    {ControlKind::Edit, MakeEdit},
    {ControlKind::TrackBar, MakeTrackBar},
    {ControlKind::ProgressBar, MakeProgressBar},
    {ControlKind::ListView, MakeListView},
    {ControlKind::ComboBoxWithEdit, MakeDropDownList},
    {ControlKind::RadioButton, MakeRadioButton},
    {ControlKind::AutoRadioButton, MakeRadioButton},
    {ControlKind::DateTimePicker, MakeDateTimePicker},
    {ControlKind::TabControl, MakeTabControl},
};

GtkWidget* InnerOf(GtkWidget* control) {
    GtkNative* native = FindNative(control);
    return native != nullptr ? native->inner : control;
}

// A drop-down list's rectangle includes its open list: the field keeps its own height.
void SizeControl(GtkWidget* control, const Rect& rect) {
    GtkNative* native = FindNative(control);
    bool dropsDown = native != nullptr && GTK_IS_COMBO_BOX(native->inner);
    gtk_widget_set_size_request(control, rect.GetWidth(), dropsDown ? -1 : rect.GetHeight());
}

} // namespace

GtkWidget* MakeControl(ControlKind kind, uint32_t style, const char* text) {
    GtkNative probe;
    GtkWidget* widget = nullptr;
    for (const ControlMaker& maker : controlMakers) {
        if (maker.kind == kind) {
            widget = maker.make(probe, style, text);
            break;
        }
    }
    if (widget == nullptr) {
        widget = MakeStatic(probe, style, text);
    }
    GtkNative& native = AttachNative(widget);
    native.style = style;
    native.inner = probe.inner != nullptr ? probe.inner : widget;
    if ((style & StyleTabStop) == 0) {
        gtk_widget_set_can_focus(native.inner, FALSE);
    }
    gtk_widget_set_sensitive(widget, (style & StyleDisabled) == 0);
    return widget;
}

void PlaceControl(GtkWidget* clientArea, GtkWidget* control, int32_t id, const Rect& rect) {
    GtkNative* native = FindNative(control);
    native->id = id;
    native->rect = rect;
    gtk_fixed_put(GTK_FIXED(clientArea), control, rect.left, rect.top);
    SizeControl(control, rect);
    if ((native->style & StyleHidden) == 0) {
        gtk_widget_show(control);
    }
}

void MoveControlTo(GtkWidget* control, const Rect& rect) {
    GtkNative* native = FindNative(control);
    GtkWidget* parent = gtk_widget_get_parent(control);
    if (native == nullptr || !GTK_IS_FIXED(parent)) {
        return;
    }
    native->rect = rect;
    gtk_fixed_move(GTK_FIXED(parent), control, rect.left, rect.top);
    SizeControl(control, rect);
}

bool SetControlText(GtkWidget* control, const loam::String& text) {
    GtkWidget* inner = InnerOf(control);
    std::string shown = ToDisplayText(text);
    if (GTK_IS_WINDOW(inner)) {
        gtk_window_set_title(GTK_WINDOW(inner), shown.c_str());
    } else if (GTK_IS_FRAME(inner)) {
        gtk_frame_set_label(GTK_FRAME(inner), WithoutMnemonic(text.GetCString()).c_str());
    } else if (GTK_IS_BUTTON(inner)) {
        gtk_button_set_label(GTK_BUTTON(inner), ToMnemonicText(text.GetCString()).c_str());
    } else if (GTK_IS_LABEL(inner)) {
        gtk_label_set_text_with_mnemonic(GTK_LABEL(inner),
                                         ToMnemonicText(text.GetCString()).c_str());
    } else if (GTK_IS_ENTRY(inner)) {
        gtk_entry_set_text(GTK_ENTRY(inner), ToBoxText(inner, text).c_str());
    } else if (GTK_IS_COMBO_BOX(inner)) {
        gtk_entry_set_text(GetDropDownEntry(inner), ToEditableText(text).c_str());
    } else if (GTK_IS_TEXT_VIEW(inner)) {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        gtk_text_buffer_set_text(buffer, ToBoxText(inner, text).c_str(), -1);
    } else {
        return false;
    }
    return true;
}

bool GetControlText(GtkWidget* control, loam::String& text) {
    GtkWidget* inner = InnerOf(control);
    if (GTK_IS_WINDOW(inner)) {
        const char* title = gtk_window_get_title(GTK_WINDOW(inner));
        text = title != nullptr ? title : "";
    } else if (GTK_IS_FRAME(inner)) {
        const char* label = gtk_frame_get_label(GTK_FRAME(inner));
        text = label != nullptr ? label : "";
    } else if (GTK_IS_BUTTON(inner)) {
        const char* label = gtk_button_get_label(GTK_BUTTON(inner));
        text = label != nullptr ? label : "";
    } else if (GTK_IS_LABEL(inner)) {
        text = gtk_label_get_text(GTK_LABEL(inner));
    } else if (GTK_IS_ENTRY(inner)) {
        text = gtk_entry_get_text(GTK_ENTRY(inner));
    } else if (GTK_IS_COMBO_BOX(inner)) {
        text = gtk_entry_get_text(GetDropDownEntry(inner));
    } else if (GTK_IS_TEXT_VIEW(inner)) {
        GtkTextBuffer* buffer = gtk_text_view_get_buffer(GTK_TEXT_VIEW(inner));
        GtkTextIter start;
        GtkTextIter end;
        gtk_text_buffer_get_bounds(buffer, &start, &end);
        gchar* all = gtk_text_buffer_get_text(buffer, &start, &end, FALSE);
        text = all;
        g_free(all);
    } else {
        text = "";
    }
    return true;
}

bool IsCheckBox(GtkWidget* control) {
    return control != nullptr && GTK_IS_CHECK_BUTTON(InnerOf(control));
}

bool IsPushButton(GtkWidget* control) {
    GtkWidget* inner = control != nullptr ? InnerOf(control) : nullptr;
    return inner != nullptr && GTK_IS_BUTTON(inner) && !GTK_IS_TOGGLE_BUTTON(inner);
}

int32_t GetCheckState(GtkWidget* control) {
    if (!IsCheckBox(control)) {
        return CheckStateUnchecked;
    }
    auto* toggle = GTK_TOGGLE_BUTTON(InnerOf(control));
    if (gtk_toggle_button_get_inconsistent(toggle)) {
        return CheckStateIndeterminate;
    }
    return gtk_toggle_button_get_active(toggle) ? CheckStateChecked : CheckStateUnchecked;
}

void SetCheckState(GtkWidget* control, int32_t state) {
    if (IsRadioButton(control)) {
        SetRadioState(control, state == CheckStateChecked);
        return;
    }
    GtkNative* native = FindNative(control);
    if (!IsCheckBox(control) || native == nullptr) {
        return;
    }
    auto* toggle = GTK_TOGGLE_BUTTON(InnerOf(control));
    bool wasQuiet = native->quiet;
    native->quiet = true;
    gtk_toggle_button_set_inconsistent(toggle, state == CheckStateIndeterminate);
    gtk_toggle_button_set_active(toggle, state == CheckStateChecked);
    native->quiet = wasQuiet;
}

void PressButton(GtkWidget* control) {
    GtkWidget* inner = InnerOf(control);
    if (GTK_IS_BUTTON(inner) && gtk_widget_is_sensitive(inner) && gtk_widget_get_visible(inner)) {
        gtk_button_clicked(GTK_BUTTON(inner));
    }
}

} // namespace quilt
