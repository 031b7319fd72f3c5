#pragma once

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/dialog_units.h"
#include "quilt/gtk/gtk_window_imp.h"

#include <cstdint>
#include <vector>

namespace quilt {

// A dialog of the desktop backend: a GtkWindow whose client area holds one widget per control
// of the template, placed by dialog units. GTK has no dialog manager of the kind the toolkit
// expects: its key events go to the toolkit's own first.
class Gtk_DialogImp : public DialogImp, public Gtk_WindowImp {
public:
    void EnableControl(int32_t id, bool enable) override;
    bool GetControlRect(int32_t id, Rect& rect) override;
    void SetCheck(int32_t id, int32_t state) override;
    bool GetControlWindow(int32_t id, Window** window) override;
    bool GetControlText(int32_t id, loam::String& text) override;
    bool SetControlText(int32_t id, const loam::String& text) override;
    bool SetControlId(int32_t id, int32_t newId) override;

    // A dialog placed by its own OnInitDialog is not centred afterwards.
    void SetRect(const Rect& rect, bool repaint) override;
    void Show(int32_t mode) override;
    bool OnKeyEvent(const GdkEventKey& event) override;
    void OnCloseRequest() override { CloseByUser(); }

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
    GtkWidget* MakeNativeDialog(Window* parent, bool asChild, const DialogUnits& units);
    void AddControls(GtkWidget* clientArea, const DialogUnits& units);
    void LimitSize();
    int32_t GetWidthShortfall();
    bool IsModalRunning() const;
    GtkWidget* FindControl(int32_t id) const;
    DialogUnits GetTemplateFontUnits() const;
    static gboolean OnGripPress(GtkWidget* window, GdkEventButton* event, gpointer imp);

    const DialogTemplate* dialogTemplate = nullptr;
    // The units of the template, fitted to its texts when the dialog is made.
    DialogUnits units{0, 0};
};

} // namespace quilt
