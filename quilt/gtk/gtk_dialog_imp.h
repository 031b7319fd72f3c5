#pragma once

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/dialog_units.h"
#include "quilt/gtk/gtk_window_imp.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace quilt {

// A dialog of the desktop backend: a GtkWindow whose client area holds one widget per control
// of the template, placed by dialog units. GTK has no dialog manager of the kind the toolkit
// expects, so this does its work: Return presses the default button, Escape and the close box
// give id 2, Tab moves the focus between tab stops in template order, unless the control with
// the focus takes the key itself.
class Gtk_DialogImp : public DialogImp, public Gtk_WindowImp {
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

    // A dialog placed by its own OnInitDialog is not centred afterwards.
    void SetRect(const Rect& rect, bool repaint) override;
    void Show(int32_t mode) override;
    bool OnKeyEvent(const GdkEventKey& event) override;
    void OnCloseRequest() override;

protected:
    bool RunNativeModal(const loam::ResourceId& resource, Window* parent) override;
    bool CreateNativeDialog(const loam::ResourceId& resource, Window* parent,
                            bool asChild) override;
    void EndNativeModal() override;
    void GetChildRects(std::vector<Rect>& rects) override;
    bool HasFocusWithin() override;
    void FocusFirstTabStop() override;

private:
    GtkWidget* MakeNativeDialog(Window* parent, bool asChild, const DialogUnits& units);
    void AddControls(GtkWidget* clientArea, const DialogUnits& units);
    void LimitSize();
    int32_t GetWidthShortfall();
    bool IsModalRunning() const;
    void SendCommand(int32_t id);
    void PressDefault(GtkWidget* focus, uint32_t modifiers);
    void PressCancel(GtkWidget* focus, uint32_t modifiers);
    void MoveFocus(GtkWidget* focus, uint32_t modifiers);
    std::vector<GtkWidget*> GetTabStops() const;
    GtkWidget* FindControl(int32_t id) const;
    DialogUnits GetUnits() const;
    DialogUnits GetTemplateFontUnits() const;
    static gboolean OnGripPress(GtkWidget* window, GdkEventButton* event, gpointer imp);

    struct DialogKey {
        int32_t key;
        void (Gtk_DialogImp::*press)(GtkWidget* focus, uint32_t modifiers);
    };
    static const DialogKey dialogKeys[];

    const DialogTemplate* dialogTemplate = nullptr;
    // The units of the template, fitted to its texts when the dialog is made.
    DialogUnits units{0, 0};
    int32_t deferDepth = 0;
    std::vector<std::pair<int32_t, Rect>> deferredMoves;
};

} // namespace quilt
