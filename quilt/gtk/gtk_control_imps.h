#pragma once

#include "quilt/button.h"
#include "quilt/check_box.h"
#include "quilt/edit_box.h"
#include "quilt/gtk/gtk_window_imp.h"
#include "quilt/progress_bar.h"
#include "quilt/slider.h"

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

} // namespace quilt
