#include "quilt/offscreen/offscreen_further_controls.h"

#include "quilt/dialog_imp.h"
#include "quilt/dialog_template.h"
#include "quilt/keys.h"
#include "quilt/offscreen/offscreen_controls.h"
#include "quilt/radio_button.h"

#include <algorithm>

namespace quilt {

namespace {

void TabMouseDown(OffscreenTabControl& control, const OffscreenMessage& message) {
    if (!IsLeftButton(message)) {
        return;
    }
    OffscreenHandle handle = control.handle;
    GetOffscreenDesktop().SetFocus(&control);
    auto* stillThere = dynamic_cast<OffscreenTabControl*>(GetOffscreenDesktop().Find(handle));
    if (stillThere != nullptr && message.point.y >= 0 &&
        message.point.y < OffscreenTabControl::TabHeight && message.point.x >= 0) {
        stillThere->ChooseTab(message.point.x / OffscreenTabControl::TabWidth);
    }
}

void TabKeyDown(OffscreenTabControl& control, const OffscreenMessage& message) {
    if (message.value == KeyLeft) {
        control.ChooseTab(control.selected - 1);
    } else if (message.value == KeyRight) {
        control.ChooseTab(control.selected + 1);
    }
}

constexpr NativeRoute<OffscreenTabControl> tabRoutes[] = {
    {OffscreenMessageKind::MouseDown, TabMouseDown},
    {OffscreenMessageKind::KeyDown, TabKeyDown},
};

} // namespace

void CheckRadioInGroup(OffscreenButton& button) {
    if (button.parent == nullptr) {
        button.checkState = CheckStateChecked;
        return;
    }
    const auto& siblings = button.parent->children;
    std::vector<uint32_t> styles;
    size_t index = 0;
    for (size_t i = 0; i < siblings.size(); ++i) {
        styles.push_back(siblings[i]->style);
        if (siblings[i].get() == &button) {
            index = i;
        }
    }
    auto [first, last] = FindRadioGroup(styles, index);
    for (size_t i = first; i < last; ++i) {
        if (auto* radio = dynamic_cast<OffscreenButton*>(siblings[i].get())) {
            radio->checkState = i == index ? CheckStateChecked : CheckStateUnchecked;
            radio->needsPaint = true;
        }
    }
}

OffscreenDateTimeBox::OffscreenDateTimeBox(OffscreenWindow* parentWindow)
    : OffscreenWindow(parentWindow), fields(DateTimeFields::FromDateTime(loam::DateTime::Now())),
      picture(GetLocaleShortDateFormat()) {
    ShowValue();
}

void OffscreenDateTimeBox::SetFields(const DateTimeFields& newFields) {
    fields = newFields;
    ShowValue();
}

void OffscreenDateTimeBox::SetPicture(const loam::String& newPicture) {
    picture = newPicture;
    ShowValue();
}

void OffscreenDateTimeBox::ShowValue() {
    text = fields.valid ? FormatDateTime(picture.GetCString(), fields) : loam::String();
    needsPaint = true;
}

void OffscreenTabControl::DefaultHandling(const OffscreenMessage& message) {
    if (!RouteNative(*this, tabRoutes, message)) {
        OffscreenWindow::DefaultHandling(message);
    }
}

int32_t OffscreenTabControl::GetNativeDialogCode(KeyEventKind, int32_t) const {
    return DialogCodeWantArrows;
}

int32_t OffscreenTabControl::InsertTab(int32_t position, const loam::String& title) {
    int32_t count = static_cast<int32_t>(tabs.size());
    position = std::clamp(position, 0, count);
    tabs.insert(tabs.begin() + position, title);
    if (selected >= position) {
        ++selected;
    }
    if (selected < 0) {
        selected = 0;
    }
    needsPaint = true;
    return position;
}

void OffscreenTabControl::DeleteTab(int32_t position) {
    if (position < 0 || position >= static_cast<int32_t>(tabs.size())) {
        return;
    }
    tabs.erase(tabs.begin() + position);
    if (selected == position) {
        selected = -1;
    } else if (selected > position) {
        --selected;
    }
    needsPaint = true;
}

void OffscreenTabControl::SelectTab(int32_t position) {
    bool inside = position >= 0 && position < static_cast<int32_t>(tabs.size());
    selected = inside ? position : -1;
    needsPaint = true;
}

void OffscreenTabControl::ChooseTab(int32_t position) {
    if (position < 0 || position >= static_cast<int32_t>(tabs.size()) || position == selected) {
        return;
    }
    SelectTab(position);
    NotifyParent(*this, ControlEvent::SelectionChanged, static_cast<uint32_t>(position));
}

Rect OffscreenTabControl::GetDisplayArea() const {
    return Rect{rect.left + FrameWidth, rect.top + TabHeight + FrameWidth, rect.right - FrameWidth,
                rect.bottom - FrameWidth};
}

} // namespace quilt
