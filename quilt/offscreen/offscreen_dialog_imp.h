#pragma once

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/dialog_units.h"
#include "quilt/offscreen/offscreen_desktop.h"
#include "quilt/offscreen/offscreen_window_imp.h"

#include <cstdint>
#include <vector>

namespace quilt {

// The native dialog of the offscreen backend. Its key events and its close box go to the
// toolkit's dialog keys, through the Imp bound to it.
struct OffscreenDialogWindow : OffscreenWindow {
    explicit OffscreenDialogWindow(OffscreenWindow* parentWindow) : OffscreenWindow(parentWindow) {}

    void DefaultHandling(const OffscreenMessage& message) override;
    bool TranslateDialogKey(OffscreenWindow& target, const OffscreenMessage& message) override;

    uint16_t templateId = 0;
};

class Offscreen_DialogImp : public DialogImp, public Offscreen_WindowImp {
public:
    void EnableControl(int32_t id, bool enable) override;
    bool GetControlRect(int32_t id, Rect& rect) override;
    void SetCheck(int32_t id, int32_t state) override;
    bool GetControlWindow(int32_t id, Window** window) override;
    bool GetControlText(int32_t id, loam::String& text) override;
    bool SetControlText(int32_t id, const loam::String& text) override;
    bool SetControlId(int32_t id, int32_t newId) override;
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
    void GetControls(NativeHandle page, std::vector<DialogControl>& controls) override;
    NativeHandle GetFocusControl() override;
    void FocusControl(NativeHandle control) override;
    void ClickControl(NativeHandle control) override;
    void PlaceControlNow(int32_t id, const Rect& rect) override;
    void SetControlVisible(int32_t id, bool visible) override;
    int32_t GetNativeCheck(int32_t id) override;
    void RaiseTopLevel(Window* window) override;
    DialogUnits GetDialogUnits() const override;

private:
    void AddControl(OffscreenWindow& dialog, const DialogControlTemplate& control,
                    const DialogUnits& units);
    void RunModalLoop();
    bool IsModalRunning(OffscreenHandle handle) const;
    OffscreenWindow* FindControl(int32_t id) const;

    const DialogTemplate* dialogTemplate = nullptr;
};

} // namespace quilt
