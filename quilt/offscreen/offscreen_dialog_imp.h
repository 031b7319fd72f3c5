#pragma once

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/dialog_units.h"
#include "quilt/offscreen/offscreen_desktop.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace quilt {

// The native dialog of the offscreen backend, with what a platform's dialog manager does:
// Return presses the default button, Escape and the close box give id 2, Tab moves the focus
// between tab stops, unless the control with the focus takes the key itself.
struct OffscreenDialogWindow : OffscreenWindow {
    explicit OffscreenDialogWindow(OffscreenWindow* parentWindow) : OffscreenWindow(parentWindow) {}

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
    // Nobody answers a dialog on a desktop that nobody attends.
    bool IsUserPresent() override { return GetOffscreenDesktop().IsAttended(); }

    void SetRect(const Rect& rect, bool repaint) override;

protected:
    bool RunNativeModal(const loam::ResourceId& resource, Window* parent) override;
    bool CreateNativeDialog(const loam::ResourceId& resource, Window* parent,
                            bool asChild) override;
    void EndNativeModal() override;
    void GetChildRects(std::vector<Rect>& rects) override;
    bool HasFocusWithin() override;
    void FocusFirstTabStop() override;

private:
    void AddControl(OffscreenWindow& dialog, const DialogControlTemplate& control,
                    const DialogUnits& units);
    void RunModalLoop();
    bool IsModalRunning(OffscreenHandle handle) const;
    OffscreenWindow* FindControl(int32_t id) const;
    void SetVisible(int32_t id, bool visible);
    DialogUnits GetUnits() const;

    const DialogTemplate* dialogTemplate = nullptr;
    int32_t deferDepth = 0;
    std::vector<std::pair<OffscreenHandle, Rect>> deferredMoves;
};

} // namespace quilt
