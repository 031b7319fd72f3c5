#pragma once

#include "quilt/button.h"
#include "quilt/check_box.h"
#include "quilt/date_time_box.h"
#include "quilt/dialog_control.h"
#include "quilt/edit_box.h"
#include "quilt/image_button.h"
#include "quilt/offscreen/offscreen_controls.h"
#include "quilt/offscreen/offscreen_further_controls.h"
#include "quilt/offscreen/offscreen_window_imp.h"
#include "quilt/popup_menu_button.h"
#include "quilt/progress_bar.h"
#include "quilt/radio_button.h"
#include "quilt/slider.h"
#include "quilt/tab_control.h"
#include "quilt/url_button.h"

#include <cstdint>

namespace quilt {

// Each control Imp adopts only a native window of its own class.

class Offscreen_ButtonImp : public ButtonImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool IsPushed() override;
    bool Attach(OffscreenWindow* window) override;
};

class Offscreen_CheckBoxImp : public CheckBoxImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    int32_t GetState() override;
    void SetState(int32_t state) override;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool Attach(OffscreenWindow* window) override;

private:
    OffscreenButton* GetButton() const;
};

class Offscreen_EditBoxImp : public EditBoxImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect) override;
    void AppendText(const loam::String& text) override;
    void InsertText(const loam::String& text, bool moveCaret) override;
    int32_t GetCaret() override;
    void SetCaret(int32_t position) override;
    bool GetSelection(int32_t* start, int32_t* end) override;
    bool SetSelection(int32_t start, int32_t end) override;
    void ClearSelection() override;
    void SetTextColour(const Colour& colour) override;
    void SetBackColour(const Colour& colour) override;
    void ResetTextColour() override;
    void ResetBackColour() override;
    bool Attach(OffscreenWindow* window) override;
    // Keeps the selection that the box had when it lost the focus.
    bool WindowProc(const OffscreenMessage& message) override;

private:
    OffscreenEdit* GetEdit() const;

    int32_t savedStart = 0;
    int32_t savedEnd = 0;
};

class Offscreen_SliderImp : public SliderImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect) override;
    void SetRange(int32_t minimum, int32_t maximum) override;
    void GetRange(int32_t& minimum, int32_t& maximum) override;
    void SetPos(int32_t position) override;
    int32_t GetPos() override;
    bool Attach(OffscreenWindow* window) override;

private:
    OffscreenTrackBar* GetTrackBar() const;
};

class Offscreen_ProgressBarImp : public ProgressBarImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    void SetRange(int32_t minimum, int32_t maximum) override;
    void SetPos(int32_t value) override;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool Attach(OffscreenWindow* window) override;

private:
    int32_t rangeMin = 0;
    int32_t rangeMax = 100;
};

class Offscreen_RadioButtonImp : public RadioButtonImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    int32_t GetState() override;
    void SetState(int32_t state) override;
    bool Create(Window* parent, const Rect& rect, bool autoCheck, int32_t id) override;
    bool Attach(OffscreenWindow* window) override;

private:
    OffscreenButton* GetButton() const;
};

class Offscreen_DateTimeBoxImp : public DateTimeBoxImp, public Offscreen_WindowImp {
public:
    bool Attach(OffscreenWindow* window) override;

protected:
    bool GetFields(DateTimeFields& fields) override;
    bool SetFields(const DateTimeFields& fields) override;
    void SetPicture(const loam::String& picture) override;

private:
    OffscreenDateTimeBox* GetBox() const;
};

// A static text of the offscreen desktop shows as a link by its Imp's word alone.
class Offscreen_URLButtonImp : public URLButtonImp, public Offscreen_WindowImp {
public:
    bool Attach(OffscreenWindow* window) override;
    // A press of the left button opens the link.
    bool WindowProc(const OffscreenMessage& message) override;

    bool IsUnderlined() const { return underlined; }
    const Colour& GetTextColour() const { return textColour; }

private:
    bool underlined = false;
    Colour textColour = Black;
};

class Offscreen_TabControlImp : public TabControlImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool Attach(OffscreenWindow* window) override;
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
    OffscreenTabControl* GetTabs() const;
};

// The child window that takes a placeholder's place is a plain window of the desktop.
class Offscreen_DialogControlImp : public DialogControlImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id, bool tabStop) override;
    bool BindToControl(Window* parent, int32_t id) override {
        return DialogControlImp::BindToControl(parent, id);
    }
    bool Attach(OffscreenWindow* window) override;

protected:
    bool RemovePlaceholder(Window* parent, int32_t id, Rect& rect, bool& tabStop) override;
};

// Paints its face whenever the desktop repaints it.
class Offscreen_ImageButtonImp : public virtual ImageButtonImp, public Offscreen_WindowImp {
public:
    using Offscreen_WindowImp::Create;
    bool Create(Window* parent, const Rect& rect, int32_t id) override;
    bool IsPushed() override;
    bool Attach(OffscreenWindow* window) override;
    bool WindowProc(const OffscreenMessage& message) override;
};

class Offscreen_PopupMenuButtonImp : public PopupMenuButtonImp, public Offscreen_ImageButtonImp {
public:
    using Offscreen_ImageButtonImp::Create;
};

} // namespace quilt
