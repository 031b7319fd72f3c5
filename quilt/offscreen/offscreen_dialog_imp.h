#pragma once

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/dialog_units.h"
#include "quilt/offscreen/offscreen_desktop.h"
#include "quilt/offscreen/offscreen_window_imp.h"
#include "quilt/size_grip.h"

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace quilt {

class Dialog;

// The native dialog of the offscreen backend, with what a platform's dialog manager does:
// Return presses the default button, Escape and the close box give id 2, Tab moves the focus
// between tab stops, unless the control with the focus takes the key itself.
struct OffscreenDialogWindow : OffscreenWindow {
    explicit OffscreenDialogWindow(OffscreenWindow* parentWindow)
        : OffscreenWindow("dialog", parentWindow) {}

    void DefaultHandling(const OffscreenMessage& message) override;
    bool TranslateDialogKey(OffscreenWindow& target, const OffscreenMessage& message) override;

    // Enabled and visible controls with a tab stop, in tab order, those of a page inside the
    // dialog included.
    std::vector<OffscreenWindow*> GetTabStops();
    // An edit box that gets the focus this way has all its text selected.
    static void FocusControl(OffscreenWindow& control);
    // The control's click, or the command alone when no button has the id.
    void PressButton(int32_t id);
    void SendCommand(int32_t id);

    uint16_t templateId = 0;
};

class Offscreen_DialogImp : public DialogImp, public Offscreen_WindowImp {
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
    // Nobody answers a dialog on a desktop that nobody attends.
    bool IsUserPresent() override { return GetOffscreenDesktop().IsAttended(); }

    // A dialog placed by its own OnInitDialog is not centred afterwards.
    void SetRect(const Rect& rect, bool repaint) override;
    bool WindowProc(const OffscreenMessage& message) override;
    void OnNativeWindowGone() override;
    // A control bound to a window translates its own notifications.
    NotificationAnswer TranslateNotification(const NativeNotification& notification,
                                             NotificationTranslation& out) override;

private:
    bool MakeDialog(const loam::ResourceId& resource, Window* parent, bool asChild);
    void AddControl(OffscreenWindow& dialog, const DialogControlTemplate& control,
                    const DialogUnits& units);
    void InitDialog();
    void CreateSizeGrip(Dialog& dialog);
    void RunModalLoop();
    bool IsModalRunning(OffscreenHandle handle) const;
    bool RouteCommand(const OffscreenMessage& message);
    OffscreenWindow* FindControl(int32_t id) const;
    void SetVisible(int32_t id, bool visible);
    DialogUnits GetUnits() const;

    const DialogTemplate* dialogTemplate = nullptr;
    bool centreOnInit = false;
    bool modal = true;
    bool running = false;
    bool ended = false;
    int32_t result = -1;
    bool useSizeGrip = true;
    std::unique_ptr<SizeGrip> sizeGrip;
    int32_t deferDepth = 0;
    std::vector<std::pair<OffscreenHandle, Rect>> deferredMoves;
    // A modeless dialog deletes its own object when its window goes, unless the object is
    // already going, or is still being created: then the deletion waits for the creation's end.
    bool ownerGone = false;
    bool creating = false;
    bool deletionPending = false;
};

} // namespace quilt
