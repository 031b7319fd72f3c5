#pragma once

#include "loam/string.h"
#include "quilt/date_time_box.h"
#include "quilt/geometry.h"
#include "quilt/offscreen/offscreen_desktop.h"

#include <cstdint>
#include <vector>

namespace quilt {

struct OffscreenButton;

// A click on an automatic radio button checks it and unchecks the rest of its group.
void CheckRadioInGroup(OffscreenButton& button);

// A date and time box shows its value in its picture as its text, empty without a value. It
// starts with the present time, in the locale's short date.
struct OffscreenDateTimeBox : OffscreenWindow {
    explicit OffscreenDateTimeBox(OffscreenWindow* parentWindow);

    void SetFields(const DateTimeFields& newFields);
    void SetPicture(const loam::String& newPicture);

    DateTimeFields fields;
    loam::String picture;

private:
    void ShowValue();
};

// A row of tabs above a display area. Tabs are TabWidth pixels wide from the control's left
// edge, TabHeight high; the display area is what lies below them, inside a frame of
// FrameWidth. A press on a tab, or Left and Right, selects a tab and tells the parent.
struct OffscreenTabControl : OffscreenWindow {
    static constexpr int32_t TabWidth = 60;
    static constexpr int32_t TabHeight = 20;
    static constexpr int32_t FrameWidth = 2;

    using OffscreenWindow::OffscreenWindow;

    void DefaultHandling(const OffscreenMessage& message) override;
    int32_t GetNativeDialogCode(KeyEventKind kind, int32_t value) const override;
    // Inserts at `position`, or at the end when there are fewer tabs; the first tab of an empty
    // row is selected. The tab's position.
    int32_t InsertTab(int32_t position, const loam::String& title);
    void DeleteTab(int32_t position);
    // A position outside the tabs selects none.
    void SelectTab(int32_t position);
    // The user chose the tab.
    void ChooseTab(int32_t position);
    Rect GetDisplayArea() const;

    std::vector<loam::String> tabs;
    int32_t selected = -1;
};

} // namespace quilt
