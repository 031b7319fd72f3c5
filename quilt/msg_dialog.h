#pragma once

#include "loam/resource.h"
#include "loam/string.h"
#include "quilt/check_box.h"
#include "quilt/dialog.h"
#include "quilt/geometry.h"
#include "quilt/window.h"

#include <cstdint>
#include <initializer_list>

namespace quilt {

// The toolkit's standard margin, in pixels: around a message's text and a button's caption.
constexpr int32_t StandardMargin = 8;
constexpr int32_t GetStandardMargin() {
    return StandardMargin;
}

// Runs a message dialog modal and centred when someone is at the screen. In a headless run
// nobody can answer: each non-empty line goes to standard error instead, and the dialog is
// taken as answered with `unattendedResult` without ever coming up.
int32_t RunMessageDialog(Dialog& dialog, std::initializer_list<const loam::String*> lines,
                         int32_t unattendedResult);

// A dialog that paints a text of its own in the place of its template's text control, and
// fits its height to that text. The template's other controls follow through LayoutControls.
class MsgDialog : public Dialog {
public:
    MsgDialog(const loam::ResourceId& resource, int32_t textControlId, Window* parent);

    bool OnPaint() override;
    void OnInitDialog() override;

    // A subclass moves its controls by the changes and may alter them; the rest is then grown.
    virtual void LayoutControls(int32_t* dx, int32_t* dy);
    // Adds the changes to the right and bottom of the dialog and of the text's rectangle.
    virtual void GrowDialog(int32_t dx, int32_t dy);
    // A subclass binds or makes its further controls here, before the text is measured.
    virtual void CreateControls() {}
    virtual void GrowTextRect(int32_t dx, int32_t dy);

    void SetTitle(const loam::String& newTitle) { title = newTitle; }
    void SetMessage(const loam::String& newText) { text = newText; }
    const loam::String& GetTitle() const { return title; }
    const loam::String& GetMessage() const { return text; }
    const Rect& GetTextRect() const { return textRect; }

protected:
    // The change of a control's place when the dialog changes by dx: it stays centred.
    static int32_t HalfOf(int32_t change) { return change / 2; }
    // What a check box below the text does with the changes: moves with them when it is in
    // use; otherwise it is hidden and the text takes the room it leaves.
    void LayoutCheckBox(int32_t boxId, bool inUse, int32_t* dx, int32_t* dy);

    Rect textRect;
    int32_t textControlId;
    Window textControl;
    loam::String title;
    loam::String text;
};

// A message with one button, and optionally a check box that lets the user turn it off.
class AlertDialog : public MsgDialog {
public:
    AlertDialog(const loam::String& titleText, const loam::String& messageText, Window* parent);

    // Set once at start, before the first alert. A check box id of -1 means none.
    static void SetTemplate(const loam::ResourceId& resource, int32_t textId, int32_t okId,
                            int32_t showAgainId = NoControlId);

    void OnOK() override;
    void LayoutControls(int32_t* dx, int32_t* dy) override;
    void CreateControls() override;

    void UseShowAgainBox(bool use) { useShowAgainBox = use; }
    // False when the user ticked the box that turns the alert off.
    bool GetShowAgain() const { return showAgain; }

private:
    static loam::ResourceId templateResource;
    static int32_t templateTextId;
    static int32_t templateOkId;
    static int32_t templateShowAgainId;

    CheckBox showAgainBox;
    bool useShowAgainBox = false;
    bool showAgain = true;
};

// A modal, centred alert with an OK button. A null parent means the application's main window.
// With a preference name the user may turn the alert off: the bool of that name (default true)
// says whether to show it, and the check box's answer is written back.
void ShowAlert(const loam::String& title, const loam::String& text, Window* parent = nullptr,
               const char* preferenceName = nullptr);
// The texts are loaded from the string table first; a missing one stays empty.
void ShowAlert(const loam::ResourceId& title, const loam::ResourceId& text,
               Window* parent = nullptr, const char* preferenceName = nullptr);

} // namespace quilt
