#include "quilt/gtk/gtk_support.h"

#include "quilt/keys.h"

#include <cstdlib>

namespace quilt {

namespace {

constexpr char nativeKey[] = "quilt-native";

// The record is looked up on every call of a control's Imp: by its quark, not by its name.
GQuark NativeQuark() {
    static const GQuark quark = g_quark_from_static_string(nativeKey);
    return quark;
}

// A run of GDK key values that maps onto a run of key codes.
struct KeyRun {
    guint firstKeyval;
    guint lastKeyval;
    int32_t firstKey;
};

constexpr KeyRun keyRuns[] = {
    {GDK_KEY_BackSpace, GDK_KEY_BackSpace, KeyBackspace},
    {GDK_KEY_Tab, GDK_KEY_Tab, KeyTab},
    {GDK_KEY_ISO_Left_Tab, GDK_KEY_ISO_Left_Tab, KeyTab},
    {GDK_KEY_Return, GDK_KEY_Return, KeyReturn},
    {GDK_KEY_KP_Enter, GDK_KEY_KP_Enter, KeyReturn},
    {GDK_KEY_Escape, GDK_KEY_Escape, KeyEscape},
    {GDK_KEY_space, GDK_KEY_space, KeySpace},
    {GDK_KEY_0, GDK_KEY_9, '0'},
    {GDK_KEY_A, GDK_KEY_Z, 'A'},
    {GDK_KEY_a, GDK_KEY_z, 'A'},
    {GDK_KEY_Delete, GDK_KEY_Delete, KeyDelete},
    {GDK_KEY_Left, GDK_KEY_Left, KeyLeft},
    {GDK_KEY_Right, GDK_KEY_Right, KeyRight},
    {GDK_KEY_Up, GDK_KEY_Up, KeyUp},
    {GDK_KEY_Down, GDK_KEY_Down, KeyDown},
    {GDK_KEY_Shift_L, GDK_KEY_Shift_R, KeyShift},
    {GDK_KEY_Control_L, GDK_KEY_Control_R, KeyControl},
    {GDK_KEY_Alt_L, GDK_KEY_Alt_R, KeyAlt},
    {GDK_KEY_F1, GDK_KEY_F24, KeyF1},
    {GDK_KEY_Menu, GDK_KEY_Menu, KeyMenu},
};

struct ModifierBit {
    guint gdkBit;
    uint32_t keyFlag;
    uint32_t mouseFlag;
};

constexpr ModifierBit modifierBits[] = {
    {GDK_SHIFT_MASK, ModifierShift, MouseShift},
    {GDK_CONTROL_MASK, ModifierControl, MouseControl},
    {GDK_MOD1_MASK, ModifierAlt, 0},
    {GDK_SUPER_MASK, ModifierSuper, 0},
};

struct ButtonFlag {
    guint button;
    guint heldMask;
    uint32_t flag;
};

constexpr ButtonFlag buttonFlags[] = {
    {1, GDK_BUTTON1_MASK, MouseLeft},
    {2, GDK_BUTTON2_MASK, MouseMiddle},
    {3, GDK_BUTTON3_MASK, MouseRight},
};

// Both sizes are the children's business: the window's size comes from its template.
void ClientAreaNoSize(GtkWidget*, gint* minimum, gint* natural) {
    *minimum = 0;
    *natural = 0;
}

struct QuiltFixedClass {
    GtkFixedClass parent;
};
struct QuiltFixed {
    GtkFixed parent;
};

void quilt_fixed_class_init(QuiltFixedClass* klass) {
    GtkWidgetClass* widgetClass = GTK_WIDGET_CLASS(klass);
    widgetClass->get_preferred_width = ClientAreaNoSize;
    widgetClass->get_preferred_height = ClientAreaNoSize;
}

void quilt_fixed_init(QuiltFixed*) {}

GType QuiltFixedType() {
    static GType type = g_type_register_static_simple(
        GTK_TYPE_FIXED, "QuiltFixed", sizeof(QuiltFixedClass),
        reinterpret_cast<GClassInitFunc>(+[](gpointer klass, gpointer) {
            quilt_fixed_class_init(static_cast<QuiltFixedClass*>(klass));
        }),
        sizeof(QuiltFixed),
        reinterpret_cast<GInstanceInitFunc>(+[](GTypeInstance* instance, gpointer) {
            quilt_fixed_init(reinterpret_cast<QuiltFixed*>(instance));
        }),
        GTypeFlags(0));
    return type;
}

uint32_t ModifierFlags(guint state, bool forMouse) {
    uint32_t flags = 0;
    for (const ModifierBit& bit : modifierBits) {
        if ((state & bit.gdkBit) != 0) {
            flags |= forMouse ? bit.mouseFlag : bit.keyFlag;
        }
    }
    return flags;
}

} // namespace

bool OpenGtkDisplay() {
    static const bool opened = [] {
        const char* x11 = std::getenv("DISPLAY");
        const char* wayland = std::getenv("WAYLAND_DISPLAY");
        bool named = (x11 != nullptr && *x11 != '\0') || (wayland != nullptr && *wayland != '\0');
        return named && gtk_init_check(nullptr, nullptr) != FALSE;
    }();
    return opened;
}

GtkNative& AttachNative(GtkWidget* widget) {
    auto* native = new GtkNative;
    native->inner = widget;
    g_object_set_qdata_full(G_OBJECT(widget), NativeQuark(), native,
                            [](gpointer data) { delete static_cast<GtkNative*>(data); });
    return *native;
}

GtkNative* FindNative(GtkWidget* widget) {
    if (widget == nullptr) {
        return nullptr;
    }
    return static_cast<GtkNative*>(g_object_get_qdata(G_OBJECT(widget), NativeQuark()));
}

GtkWidget* FindNativeWidgetAbove(GtkWidget* widget) {
    for (; widget != nullptr; widget = gtk_widget_get_parent(widget)) {
        if (FindNative(widget) != nullptr) {
            return widget;
        }
    }
    return nullptr;
}

GtkNative* FindNativeAbove(GtkWidget* widget) {
    return FindNative(FindNativeWidgetAbove(widget));
}

GtkWidget* NewClientArea() {
    return GTK_WIDGET(g_object_new(QuiltFixedType(), nullptr));
}

std::string ToDisplayText(const char* bytes) {
    return loam::MakeDisplayText(bytes).GetCString();
}

std::string ToEditableText(const char* bytes) {
    return g_utf8_validate(bytes, -1, nullptr) ? std::string(bytes) : ToDisplayText(bytes);
}

std::string ToBoxText(GtkWidget* box, const loam::String& bytes) {
    bool editable = GTK_IS_TEXT_VIEW(box) ? gtk_text_view_get_editable(GTK_TEXT_VIEW(box))
                                          : gtk_editable_get_editable(GTK_EDITABLE(box));
    return editable ? ToEditableText(bytes) : ToDisplayText(bytes);
}

std::string ToMnemonicText(const char* text) {
    std::string shown = ToDisplayText(text);
    std::string marked;
    for (size_t i = 0; i < shown.size(); ++i) {
        char c = shown[i];
        if (c == '_') {
            marked += "__";
        } else if (c == '&' && i + 1 < shown.size()) {
            marked += shown[++i] == '&' ? '&' : '_';
            if (shown[i] != '&') {
                marked += shown[i];
            }
        } else {
            marked += c;
        }
    }
    return marked;
}

std::string WithoutMnemonic(const char* text) {
    std::string shown = ToDisplayText(text);
    std::string plain;
    for (size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] == '&' && i + 1 < shown.size()) {
            ++i;
        }
        plain += shown[i];
    }
    return plain;
}

bool TranslateKey(const GdkEventKey& event, int32_t& key, uint32_t& modifiers) {
    for (const KeyRun& run : keyRuns) {
        if (event.keyval >= run.firstKeyval && event.keyval <= run.lastKeyval) {
            key = run.firstKey + static_cast<int32_t>(event.keyval - run.firstKeyval);
            modifiers = ModifierFlags(event.state, false);
            return true;
        }
    }
    return false;
}

uint32_t TranslateButton(guint button, guint state) {
    uint32_t flags = ModifierFlags(state, true);
    for (const ButtonFlag& entry : buttonFlags) {
        if (entry.button == button) {
            flags |= entry.flag;
        }
    }
    return flags;
}

uint32_t TranslateHeldButtons(guint state) {
    uint32_t flags = ModifierFlags(state, true);
    for (const ButtonFlag& entry : buttonFlags) {
        if ((state & entry.heldMask) != 0) {
            flags |= entry.flag;
        }
    }
    return flags;
}

} // namespace quilt
