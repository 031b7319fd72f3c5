#pragma once

#include "quilt/button.h"
#include "quilt/check_box.h"
#include "quilt/date_time_box.h"
#include "quilt/dialog_control.h"
#include "quilt/edit_box.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/image_button.h"
#include "quilt/popup_menu_button.h"
#include "quilt/progress_bar.h"
#include "quilt/radio_button.h"
#include "quilt/slider.h"
#include "quilt/tab_control.h"
#include "quilt/url_button.h"

#include <cstdint>
#include <optional>

namespace quilt {

// Each control Imp adopts only a native window of its own class.

class Gtk_ButtonImp : public ButtonImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool IsPushed() override;
    bool Attach(GtkWidget* native) override;
};

class Gtk_CheckBoxImp : public CheckBoxImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    int32_t GetState() override;
    void SetState(int32_t state) override;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool Attach(GtkWidget* native) override;
};

class Gtk_EditBoxImp : public EditBoxImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect) override;
    void AppendText(const loam::String& text) override;
    void InsertText(const loam::String& text, bool moveCaret) override;
    int32_t GetCaret() override;
    void SetCaret(int32_t position) override;
    bool GetSelection(int32_t* start, int32_t* end) override;
    bool SetSelection(int32_t start, int32_t end) override;
    void ClearSelection() override { SetCaret(0); }
    void SetTextColour(const Colour& colour) override;
    void SetBackColour(const Colour& colour) override;
    void ResetTextColour() override;
    void ResetBackColour() override;
    bool Attach(GtkWidget* native) override;

private:
    GtkWidget* GetInner() const;
    void SelectRange(int32_t start, int32_t end);
    void ApplyColours();

    std::optional<Colour> textColour;
    std::optional<Colour> backColour;
    GtkCssProvider* colours = nullptr;
};

class Gtk_SliderImp : public SliderImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect) override;
    void SetRange(int32_t minimum, int32_t maximum) override;
    void GetRange(int32_t& minimum, int32_t& maximum) override;
    void SetPos(int32_t position) override;
    int32_t GetPos() override;
    bool Attach(GtkWidget* native) override;

private:
    GtkRange* GetRange() const;
};

class Gtk_ProgressBarImp : public ProgressBarImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    void SetRange(int32_t minimum, int32_t maximum) override;
    void SetPos(int32_t value) override;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool Attach(GtkWidget* native) override;

private:
    int32_t rangeMin = 0;
    int32_t rangeMax = 100;
};

class Gtk_RadioButtonImp : public RadioButtonImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    int32_t GetState() override;
    void SetState(int32_t state) override;
    bool Create(Window* parent, const Rect& rect, bool autoCheck, int32_t id) override;
    bool Attach(GtkWidget* native) override;
};

class Gtk_DateTimeBoxImp : public DateTimeBoxImp, public Gtk_WindowImp {
public:
    bool Attach(GtkWidget* native) override;

protected:
    bool GetFields(DateTimeFields& fields) override;
    bool SetFields(const DateTimeFields& fields) override;
    void SetPicture(const loam::String& picture) override;
};

// A label whose text is one link. GTK gives it the hand cursor and opens it on a click, which
// goes through the toolkit's own opening instead.
class Gtk_URLButtonImp : public URLButtonImp, public Gtk_WindowImp {
public:
    bool Attach(GtkWidget* native) override;
    // The new text is the link's.
    bool SetText(const loam::String& text) override;

private:
    void ShowAsLink();
};

class Gtk_TabControlImp : public TabControlImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool Attach(GtkWidget* native) override;
    void Show(int32_t mode) override;
    void SetRect(const Rect& rect, bool repaint) override;

protected:
    int32_t InsertNativeTab(int32_t position, const loam::String& title) override;
    void DeleteNativeTab(int32_t position) override;
    void SelectNativeTab(int32_t position) override;
    int32_t GetNativeSelection() override;
    bool GetDisplayArea(Rect& area) override;
    void FocusPage(Dialog& page) override;

private:
    static void OnAllocated(GtkWidget* widget, GdkRectangle* allocation, gpointer imp);
};

// The child window of a placeholder is a client area with a window of its own, as a window of
// the toolkit's child class is.
class Gtk_DialogControlImp : public DialogControlImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id, bool tabStop) override;
    bool BindToControl(Window* parent, int32_t id) override {
        return DialogControlImp::BindToControl(parent, id);
    }
    bool Attach(GtkWidget* native) override;

protected:
    bool RemovePlaceholder(Window* parent, int32_t id, Rect& rect, bool& tabStop) override;
};

// A GTK button that shows no face of its own: the toolkit paints it over the button.
class Gtk_ImageButtonImp : public virtual ImageButtonImp, public Gtk_WindowImp {
public:
    using Gtk_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool IsPushed() override;
    bool Attach(GtkWidget* native) override;

private:
    static gboolean OnDraw(GtkWidget* widget, cairo_t* cairo, gpointer imp);
    static void OnStateFlags(GtkWidget* widget, GtkStateFlags previous, gpointer imp);
};

class Gtk_PopupMenuButtonImp : public PopupMenuButtonImp, public Gtk_ImageButtonImp {
public:
    using Gtk_ImageButtonImp::Create;
};

} // namespace quilt
