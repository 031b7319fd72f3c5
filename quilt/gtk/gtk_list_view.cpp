#include "quilt/gtk/gtk_list_view.h"

#include <gtk/gtk-a11y.h>

namespace quilt {

namespace {

constexpr char heldStatesKey[] = "quilt-held-states";

GQuark HeldStatesQuark() {
    static const GQuark quark = g_quark_from_static_string(heldStatesKey);
    return quark;
}

// The view's states while it takes a model: none until the first notice asks for them.
struct HeldStates {
    AtkStateSet* states = nullptr;

    HeldStates() = default;
    HeldStates(const HeldStates&) = delete;
    HeldStates& operator=(const HeldStates&) = delete;
    ~HeldStates() {
        if (states != nullptr) {
            g_object_unref(states);
        }
    }
};

AtkObjectClass* accessibleParentClass = nullptr;

// The view makes an object for a cell only when it is asked for one, and forgets it again: it
// manages its descendants, and says so, so that the desktop's bridge does not make an object for
// every cell that the view announces.
AtkStateSet* ReadStates(AtkObject* accessible) {
    AtkStateSet* states = accessibleParentClass->ref_state_set(accessible);
    atk_state_set_add_state(states, ATK_STATE_MANAGES_DESCENDANTS);
    return states;
}

AtkStateSet* RefStates(AtkObject* accessible) {
    GtkWidget* view = gtk_accessible_get_widget(GTK_ACCESSIBLE(accessible));
    auto* held =
        view != nullptr
            ? static_cast<HeldStates*>(g_object_get_qdata(G_OBJECT(view), HeldStatesQuark()))
            : nullptr;
    if (held == nullptr) {
        return ReadStates(accessible);
    }
    if (held->states == nullptr) {
        held->states = ReadStates(accessible);
    }
    return ATK_STATE_SET(g_object_ref(held->states));
}

GType ListViewAccessibleType() {
    static const GType type = g_type_register_static_simple(
        gtk_tree_view_accessible_get_type(), "QuiltListViewAccessible",
        sizeof(GtkTreeViewAccessibleClass),
        [](gpointer klass, gpointer) {
            accessibleParentClass = ATK_OBJECT_CLASS(g_type_class_peek_parent(klass));
            ATK_OBJECT_CLASS(klass)->ref_state_set = RefStates;
        },
        sizeof(GtkTreeViewAccessible), nullptr, GTypeFlags(0));
    return type;
}

GType ListViewType() {
    static const GType type = g_type_register_static_simple(
        GTK_TYPE_TREE_VIEW, "QuiltListView", sizeof(GtkTreeViewClass),
        [](gpointer klass, gpointer) {
            gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(klass), ListViewAccessibleType());
        },
        sizeof(GtkTreeView), nullptr, GTypeFlags(0));
    return type;
}

} // namespace

GtkWidget* NewListView(GtkTreeModel* model) {
    return GTK_WIDGET(g_object_new(ListViewType(), "model", model, nullptr));
}

void SetListViewModel(GtkWidget* view, GtkTreeModel* model) {
    g_object_set_qdata_full(G_OBJECT(view), HeldStatesQuark(), new HeldStates,
                            [](gpointer held) { delete static_cast<HeldStates*>(held); });
    gtk_tree_view_set_model(GTK_TREE_VIEW(view), model);
    g_object_set_qdata(G_OBJECT(view), HeldStatesQuark(), nullptr);
}

} // namespace quilt
