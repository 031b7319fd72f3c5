#include "quilt/gtk/gtk_further_controls.h"

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/radio_button.h"

#include <memory>
#include <string>
#include <vector>

namespace quilt {

namespace {

constexpr char partnerKey[] = "quilt-radio-partner";
constexpr char programStateKey[] = "quilt-radio-checked"; // what the program last set
constexpr char dateTimeKey[] = "quilt-date-time";
// Until GTK has given the notebook its size, a page is placed below a tab row of this height.
constexpr int32_t assumedTabHeight = 30;
constexpr int32_t assumedFrameWidth = 1;

// Runs `change` as a change by the program, which notifies nobody.
template <class Change> void Quietly(GtkWidget* control, Change change) {
    GtkNative* native = FindNative(control);
    bool wasQuiet = native != nullptr && native->quiet;
    if (native != nullptr) {
        native->quiet = true;
    }
    change();
    if (native != nullptr) {
        native->quiet = wasQuiet;
    }
}

bool IsQuiet(GtkWidget* widget) {
    GtkNative* native = FindNativeAbove(widget);
    return native == nullptr || native->quiet;
}

// A GTK radio button can't be unchecked by itself: each button has an unseen partner in its
// group that is checked while the button is not.
GtkToggleButton* PartnerOf(GtkWidget* button) {
    return GTK_TOGGLE_BUTTON(g_object_get_data(G_OBJECT(button), partnerKey));
}

void SetButtonChecked(GtkWidget* button, bool checked) {
    gtk_toggle_button_set_active(checked ? GTK_TOGGLE_BUTTON(button) : PartnerOf(button), TRUE);
}

// The automatic buttons check themselves in their group; the others stay as the program set
// them.
void OnRadioClicked(GtkButton* button, gpointer) {
    GtkWidget* widget = GTK_WIDGET(button);
    GtkNative* native = FindNative(widget);
    if (native == nullptr || native->quiet) {
        return;
    }
    bool automatic = (native->style & StyleAutoCheck) != 0;
    bool checked = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(button));
    if (!automatic) {
        bool set = g_object_get_data(G_OBJECT(widget), programStateKey) != nullptr;
        Quietly(widget, [&] { SetButtonChecked(widget, set); });
    }
    if (automatic && checked) {
        GtkWidget* area = gtk_widget_get_parent(widget);
        GList* children = gtk_container_get_children(GTK_CONTAINER(area));
        std::vector<GtkWidget*> siblings;
        std::vector<uint32_t> styles;
        size_t index = 0;
        for (GList* item = children; item != nullptr; item = item->next) {
            GtkNative* sibling = FindNative(GTK_WIDGET(item->data));
            if (sibling == nullptr) {
                continue;
            }
            index = item->data == widget ? siblings.size() : index;
            siblings.push_back(GTK_WIDGET(item->data));
            styles.push_back(sibling->style);
        }
        g_list_free(children);
        auto [first, last] = FindRadioGroup(styles, index);
        for (size_t i = first; i < last; ++i) {
            if (i != index && IsRadioButton(siblings[i])) {
                Quietly(siblings[i], [&] { SetButtonChecked(siblings[i], false); });
            }
        }
    }
    DeliverNotification(widget, ControlEvent::Clicked, 0);
}

// What a date and time box holds beside its widgets.
struct DateTimeValue {
    DateTimeFields fields = DateTimeFields::FromDateTime(loam::DateTime::Now());
    loam::String picture = GetLocaleShortDateFormat();
    GtkWidget* entry = nullptr;
    GtkWidget* calendar = nullptr;
    GtkWidget* spins[3] = {nullptr, nullptr, nullptr}; // hour, minute, second
    bool showing = false;                              // the widgets are being set from the value
};

DateTimeValue* ValueOf(GtkWidget* control) {
    return control != nullptr
               ? static_cast<DateTimeValue*>(g_object_get_data(G_OBJECT(control), dateTimeKey))
               : nullptr;
}

void ShowValue(DateTimeValue& value) {
    value.showing = true;
    loam::String text = value.fields.valid
                            ? FormatDateTime(value.picture.GetCString(), value.fields)
                            : loam::String();
    gtk_entry_set_text(GTK_ENTRY(value.entry), ToDisplayText(text).c_str());
    gtk_calendar_select_month(GTK_CALENDAR(value.calendar), value.fields.month - 1,
                              value.fields.year);
    gtk_calendar_select_day(GTK_CALENDAR(value.calendar), value.fields.day);
    const int32_t parts[] = {value.fields.hour, value.fields.minute, value.fields.second};
    for (int i = 0; i < 3; ++i) {
        gtk_spin_button_set_value(GTK_SPIN_BUTTON(value.spins[i]), parts[i]);
    }
    value.showing = false;
}

// The user changed the day or a part of the time in the box's pop-over.
void OnPartChanged(GtkWidget*, gpointer data) {
    auto* value = static_cast<DateTimeValue*>(data);
    if (value->showing) {
        return;
    }
    guint year = 0;
    guint month = 0;
    guint day = 0;
    gtk_calendar_get_date(GTK_CALENDAR(value->calendar), &year, &month, &day);
    DateTimeFields fields = value->fields;
    fields.year = static_cast<int32_t>(year);
    fields.month = static_cast<int32_t>(month) + 1;
    fields.day = static_cast<int32_t>(day);
    fields.hour = gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(value->spins[0]));
    fields.minute = gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(value->spins[1]));
    fields.second = gtk_spin_button_get_value_as_int(GTK_SPIN_BUTTON(value->spins[2]));
    fields.valid = true;
    loam::DateTime checked;
    if (fields.ToDateTime(checked)) {
        value->fields = fields;
    }
    ShowValue(*value);
}

GtkWidget* MakeTimePart(DateTimeValue& value, int index, int maximum) {
    GtkWidget* spin = gtk_spin_button_new_with_range(0, maximum, 1);
    gtk_spin_button_set_wrap(GTK_SPIN_BUTTON(spin), TRUE);
    gtk_entry_set_width_chars(GTK_ENTRY(spin), 2);
    value.spins[index] = spin;
    g_signal_connect(spin, "value-changed", G_CALLBACK(OnPartChanged), &value);
    return spin;
}

GtkWidget* MakeDateTimePopover(GtkWidget* button, DateTimeValue& value) {
    GtkWidget* popover = gtk_popover_new(button);
    GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 6);
    gtk_container_set_border_width(GTK_CONTAINER(column), 6);
    value.calendar = gtk_calendar_new();
    g_signal_connect(value.calendar, "day-selected", G_CALLBACK(OnPartChanged), &value);
    gtk_box_pack_start(GTK_BOX(column), value.calendar, FALSE, FALSE, 0);
    GtkWidget* time = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 4);
    gtk_box_pack_start(GTK_BOX(time), MakeTimePart(value, 0, 23), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(time), MakeTimePart(value, 1, 59), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(time), MakeTimePart(value, 2, 59), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), time, FALSE, FALSE, 0);
    gtk_widget_show_all(column);
    gtk_container_add(GTK_CONTAINER(popover), column);
    return popover;
}

void OnNotebookSwitched(GtkNotebook* notebook, GtkWidget*, guint page, gpointer) {
    GtkWidget* widget = GTK_WIDGET(notebook);
    if (!IsQuiet(widget)) {
        DeliverNotification(widget, ControlEvent::SelectionChanged, page);
    }
}

} // namespace

GtkWidget* MakeRadioButton(GtkNative&, uint32_t, const char* text) {
    GtkWidget* button = gtk_radio_button_new_with_mnemonic(nullptr, ToMnemonicText(text).c_str());
    GtkWidget* partner = gtk_radio_button_new_from_widget(GTK_RADIO_BUTTON(button));
    g_object_ref_sink(partner);
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(partner), TRUE);
    g_object_set_data_full(G_OBJECT(button), partnerKey, partner, [](gpointer widget) {
        gtk_widget_destroy(GTK_WIDGET(widget));
        g_object_unref(widget);
    });
    g_signal_connect(button, "clicked", G_CALLBACK(OnRadioClicked), nullptr);
    return button;
}

// An entry that shows the value in its picture, and a button whose pop-over changes it.
GtkWidget* MakeDateTimePicker(GtkNative& native, uint32_t, const char*) {
    auto value = std::make_unique<DateTimeValue>();
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_style_context_add_class(gtk_widget_get_style_context(box), GTK_STYLE_CLASS_LINKED);
    value->entry = gtk_entry_new();
    gtk_editable_set_editable(GTK_EDITABLE(value->entry), FALSE);
    gtk_entry_set_width_chars(GTK_ENTRY(value->entry), 1);
    GtkWidget* button = gtk_menu_button_new();
    gtk_menu_button_set_popover(GTK_MENU_BUTTON(button), MakeDateTimePopover(button, *value));
    gtk_box_pack_start(GTK_BOX(box), value->entry, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    gtk_widget_show(value->entry);
    gtk_widget_show(button);
    ShowValue(*value);
    native.inner = value->entry;
    g_object_set_data_full(G_OBJECT(box), dateTimeKey, value.release(),
                           [](gpointer data) { delete static_cast<DateTimeValue*>(data); });
    return box;
}

GtkWidget* MakeTabControl(GtkNative&, uint32_t, const char*) {
    GtkWidget* notebook = gtk_notebook_new();
    gtk_notebook_set_scrollable(GTK_NOTEBOOK(notebook), TRUE);
    g_signal_connect_after(notebook, "switch-page", G_CALLBACK(OnNotebookSwitched), nullptr);
    return notebook;
}

bool IsRadioButton(GtkWidget* control) {
    GtkNative* native = FindNative(control);
    return native != nullptr && GTK_IS_RADIO_BUTTON(native->inner);
}

int32_t GetRadioState(GtkWidget* control) {
    if (!IsRadioButton(control)) {
        return CheckStateUnchecked;
    }
    bool active = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(FindNative(control)->inner));
    return active ? CheckStateChecked : CheckStateUnchecked;
}

void SetRadioState(GtkWidget* control, bool checked) {
    if (!IsRadioButton(control)) {
        return;
    }
    GtkWidget* button = FindNative(control)->inner;
    g_object_set_data(G_OBJECT(button), programStateKey, checked ? button : nullptr);
    Quietly(control, [&] { SetButtonChecked(button, checked); });
}

bool IsDateTimePicker(GtkWidget* control) {
    return ValueOf(control) != nullptr;
}

bool GetDateTimeFields(GtkWidget* control, DateTimeFields& fields) {
    DateTimeValue* value = ValueOf(control);
    if (value == nullptr) {
        return false;
    }
    fields = value->fields;
    return true;
}

bool SetDateTimeFields(GtkWidget* control, const DateTimeFields& fields) {
    DateTimeValue* value = ValueOf(control);
    loam::DateTime checked;
    if (value == nullptr || !fields.ToDateTime(checked)) {
        return false;
    }
    value->fields = fields;
    ShowValue(*value);
    return true;
}

void SetDateTimePicture(GtkWidget* control, const loam::String& picture) {
    if (DateTimeValue* value = ValueOf(control)) {
        value->picture = picture;
        ShowValue(*value);
    }
}

GtkNotebook* GetNotebook(GtkWidget* control) {
    GtkNative* native = FindNative(control);
    return native != nullptr && GTK_IS_NOTEBOOK(native->inner) ? GTK_NOTEBOOK(native->inner)
                                                               : nullptr;
}

int32_t InsertNotebookTab(GtkWidget* control, int32_t position, const loam::String& title) {
    GtkNotebook* notebook = GetNotebook(control);
    if (notebook == nullptr) {
        return -1;
    }
    GtkWidget* stand = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_show(stand);
    GtkWidget* label = gtk_label_new_with_mnemonic(ToMnemonicText(title.GetCString()).c_str());
    int32_t inserted = -1;
    Quietly(control,
            [&] { inserted = gtk_notebook_insert_page(notebook, stand, label, position); });
    return inserted;
}

void DeleteNotebookTab(GtkWidget* control, int32_t position) {
    if (GtkNotebook* notebook = GetNotebook(control)) {
        Quietly(control, [&] { gtk_notebook_remove_page(notebook, position); });
    }
}

void SelectNotebookTab(GtkWidget* control, int32_t position) {
    if (GtkNotebook* notebook = GetNotebook(control)) {
        Quietly(control, [&] { gtk_notebook_set_current_page(notebook, position); });
    }
}

bool GetNotebookDisplayArea(GtkWidget* control, Rect& area) {
    GtkNotebook* notebook = GetNotebook(control);
    GtkNative* native = FindNative(control);
    if (notebook == nullptr) {
        return false;
    }
    area = native->rect;
    GtkWidget* stand = gtk_notebook_get_nth_page(notebook, gtk_notebook_get_current_page(notebook));
    GtkAllocation shown;
    GtkAllocation whole;
    gtk_widget_get_allocation(control, &whole);
    if (stand == nullptr || !gtk_widget_get_realized(control)) {
        area = Rect{area.left + assumedFrameWidth, area.top + assumedTabHeight,
                    area.right - assumedFrameWidth, area.bottom - assumedFrameWidth};
        return true;
    }
    gtk_widget_get_allocation(stand, &shown);
    int32_t left = area.left + shown.x - whole.x;
    int32_t top = area.top + shown.y - whole.y;
    area = Rect{left, top, left + shown.width, top + shown.height};
    return true;
}

} // namespace quilt
