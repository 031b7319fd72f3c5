#pragma once

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/dialog_units.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/size_grip.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace quilt {

class Dialog;

// A dialog of the desktop backend: a GtkWindow whose client area holds one widget per control
// of the template, placed by dialog units. GTK has no dialog manager of the kind the toolkit
// expects, so this does its work: Return presses the default button, Escape and the close box
// give id 2, Tab moves the focus between tab stops in template order, unless the control with
// the focus takes the key itself.
class Gtk_DialogImp : public DialogImp, public Gtk_WindowImp {
public:
    int32_t RunModal(const loam::ResourceId& resource, Window* parent, bool centre) override;
    NativeHandle RunModeless(const loam::ResourceId& resource, Window* parent,
                             bool centre) override;
    void EndDialog(int32_t code) override;
    bool CreateChildDialog(const loam::ResourceId& resource, Window* parent) override;
    void DisableSizeGrip() override { useSizeGrip = false; }
    void EnableControl(int32_t id, bool enable) override;
    void MoveControl(int32_t id, int32_t x, int32_t y) override;
    void OffsetControl(int32_t id, int32_t dx, int32_t dy) override;
    void SetControlSize(int32_t id, int32_t width, int32_t height) override;
    void EnableControlById(int32_t id) override { EnableControl(id, true); }
    void DisableControlById(int32_t id) override { EnableControl(id, false); }
    void ShowControl(int32_t id) override;
    void HideControl(int32_t id) override;
    bool GetControlRect(int32_t id, Rect& rect) override;
    void SetControlRect(int32_t id, const Rect& rect) override;
    void SetCheck(int32_t id, int32_t state) override;
    int32_t GetCheck(int32_t id) override;
    bool GetControlWindow(int32_t id, Window** window) override;
    bool GetControlText(int32_t id, loam::String& text) override;
    bool SetControlText(int32_t id, const loam::String& text) override;
    bool SetControlId(int32_t id, int32_t newId) override;
    void BeginLayout() override { ++deferDepth; }
    void EndLayout() override;
    void MapDialogRect(Rect& rect) override;
    void OnOwnerDestroyed() override { ownerGone = true; }

    // A dialog placed by its own OnInitDialog is not centred afterwards.
    void SetRect(const Rect& rect, bool repaint) override;
    bool OnKeyEvent(const GdkEventKey& event) override;
    void OnControlNotification(GtkWidget* control, int32_t code, int32_t id,
                               uint32_t detail) override;
    void OnCloseRequest() override;
    void OnNativeGone() override;
    void OnConfigure(int32_t width, int32_t height) override;
    // A control bound to a window translates its own notifications.
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;

private:
    bool MakeDialog(const loam::ResourceId& resource, Window* parent, bool asChild);
    GtkWidget* MakeNativeDialog(Window* parent, bool asChild, const DialogUnits& units);
    void AddControls(GtkWidget* clientArea, const DialogUnits& units);
    void InitDialog();
    void CreateSizeGrip(Dialog& dialog);
    void LimitSize();
    bool IsModalRunning() const;
    void SendCommand(int32_t id);
    void PressDefault(GtkWidget* focus, uint32_t modifiers);
    void PressCancel(GtkWidget* focus, uint32_t modifiers);
    void MoveFocus(GtkWidget* focus, uint32_t modifiers);
    std::vector<GtkWidget*> GetTabStops() const;
    GtkWidget* FindControl(int32_t id) const;
    DialogUnits GetUnits() const;
    static gboolean OnGripPress(GtkWidget* window, GdkEventButton* event, gpointer imp);

    struct DialogKey {
        int32_t key;
        void (Gtk_DialogImp::*press)(GtkWidget* focus, uint32_t modifiers);
    };
    static const DialogKey dialogKeys[];

    const DialogTemplate* dialogTemplate = nullptr;
    bool centreOnInit = false;
    bool modal = true;
    bool running = false;
    bool ended = false;
    int32_t result = -1;
    bool useSizeGrip = true;
    std::unique_ptr<SizeGrip> sizeGrip;
    int32_t deferDepth = 0;
    std::vector<std::pair<int32_t, Rect>> deferredMoves;
    // A modeless dialog deletes its own object when its window goes, unless the object is
    // already going, or is still being created: then the deletion waits for the creation's end.
    bool ownerGone = false;
    bool creating = false;
    bool deletionPending = false;
};

} // namespace quilt
