#pragma once

// A dialog that holds one of each of the toolkit's further controls, with three tab pages: the
// offscreen tests drive it, and the desktop test shows it on GTK.

#include "quilt/date_time_box.h"
#include "quilt/dialog.h"
#include "quilt/dialog_control.h"
#include "quilt/dialog_template.h"
#include "quilt/font.h"
#include "quilt/gc.h"
#include "quilt/icon.h"
#include "quilt/image_button.h"
#include "quilt/menu_template.h"
#include "quilt/popup_menu_button.h"
#include "quilt/radio_button.h"
#include "quilt/tab_control.h"
#include "quilt/url_button.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace further_controls {

inline constexpr uint16_t DialogId = 640;
inline constexpr uint16_t GeneralPageId = 641;
inline constexpr uint16_t AdvancedPageId = 642;
inline constexpr uint16_t AboutPageId = 643;
inline constexpr uint16_t FolderIconId = 650;
inline constexpr uint16_t ActionsMenuId = 660;

enum ControlId : int32_t {
    Small = 1101,
    Medium = 1102,
    Large = 1103,
    Manual = 1104,
    Date = 1110,
    Time = 1111,
    Link = 1120,
    Unchecked = 1130,
    Checked = 1131,
    Arrow = 1132,
    IconButton = 1133,
    MenuButton = 1134,
    Swatch = 1140,
    Tabs = 1150,
    PageOption = 1160,
    PageEdit = 1161,
    PageApply = 1162,
    PageLabel = 1163,
    PageFirstChoice = 1164,
    PageSecondChoice = 1165,
    CopyCommand = 2001,
    PasteCommand = 2002,
    RenameCommand = 2003,
};

using quilt::ControlKind;

inline constexpr quilt::DialogControlTemplate controls[] = {
    {Small, ControlKind::AutoRadioButton, "&Small", {10, 8, 60, 10}, quilt::StyleGroup},
    {Medium, ControlKind::AutoRadioButton, "&Medium", {10, 20, 60, 10}, 0},
    {Large, ControlKind::AutoRadioButton, "&Large", {10, 32, 60, 10}, 0},
    {Manual, ControlKind::RadioButton, "Ma&nual", {10, 46, 60, 10}, quilt::StyleGroup},
    {Date, ControlKind::DateTimePicker, "", {10, 62, 110, 14}, 0},
    {Time, ControlKind::DateTimePicker, "", {10, 80, 110, 14}, 0},
    {Link, ControlKind::StaticLeft, "example.com/sorvanta", {10, 100, 110, 10}, 0},
    {Unchecked, ControlKind::PushButton, "Unchecked", {10, 114, 18, 18}, 0},
    {Checked, ControlKind::PushButton, "Checked", {32, 114, 18, 18}, 0},
    {Arrow, ControlKind::PushButton, "Arrow", {54, 114, 18, 18}, 0},
    {IconButton, ControlKind::PushButton, "Icon", {76, 114, 24, 24}, 0},
    {MenuButton, ControlKind::PushButton, "Actions", {104, 114, 16, 18}, 0},
    {Swatch, ControlKind::StaticLeft, "", {10, 142, 110, 36}, quilt::StyleBorder},
    {Tabs, ControlKind::TabControl, "", {130, 8, 170, 130}, 0},
    {quilt::IdOK, ControlKind::DefaultPushButton, "OK", {196, 164, 50, 14}, 0},
    {quilt::IdCancel, ControlKind::PushButton, "Cancel", {250, 164, 50, 14}, 0},
};

inline constexpr quilt::DialogControlTemplate generalControls[] = {
    {quilt::NoControlId, ControlKind::StaticLeft, "&Name:", {6, 6, 40, 10}, 0},
    {PageEdit, ControlKind::Edit, "", {6, 18, 140, 12}, quilt::StyleBorder},
    {PageOption, ControlKind::AutoCheckBox, "&Remember it", {6, 36, 100, 10}, 0},
};

inline constexpr quilt::DialogControlTemplate advancedControls[] = {
    {PageFirstChoice, ControlKind::AutoRadioButton, "&First", {6, 6, 60, 10}, quilt::StyleGroup},
    {PageSecondChoice, ControlKind::AutoRadioButton, "Se&cond", {6, 18, 60, 10}, 0},
    {PageApply, ControlKind::PushButton, "&Apply", {6, 36, 50, 14}, 0},
};

inline constexpr quilt::DialogControlTemplate aboutControls[] = {
    {PageLabel, ControlKind::StaticLeft, "Further controls of the toolkit", {6, 6, 140, 20}, 0},
};

inline constexpr quilt::DialogTemplate templates[] = {
    {DialogId, "Further controls", 306, 184, "MS Sans Serif", 8,
     quilt::DialogStyleCaption | quilt::DialogStyleSystemMenu | quilt::DialogStyleCentre, controls},
    {GeneralPageId, "", 156, 100, "MS Sans Serif", 8, 0, generalControls},
    {AdvancedPageId, "", 156, 100, "MS Sans Serif", 8, 0, advancedControls},
    {AboutPageId, "", 156, 100, "MS Sans Serif", 8, 0, aboutControls},
};

inline constexpr quilt::MenuItemTemplate actionItems[] = {
    {CopyCommand, "&Copy", 0},
    {PasteCommand, "&Paste", quilt::MenuItemGreyed},
    {0, "", quilt::MenuItemSeparator},
    {RenameCommand, "&Rename", 0},
};

inline constexpr quilt::MenuTemplate menus[] = {
    {ActionsMenuId, actionItems},
};

inline constexpr quilt::IconTableEntry icons[] = {
    {FolderIconId, "folder"},
};

inline loam::ResourceId Page(uint16_t id) {
    return loam::ResourceId{loam::ResourceKindDialog, id};
}

inline void Register() {
    quilt::RegisterDialogTemplates(templates);
    quilt::RegisterIconTable(icons);
    quilt::RegisterMenuTemplates(menus);
}

} // namespace further_controls

// A window of the toolkit's own in the placeholder's place: a coloured field with an icon and a
// line of underlined text on its own white background.
class SwatchControl : public quilt::DialogControl {
public:
    static constexpr quilt::Colour Fill{64, 160, 160};

    bool OnPaint() override {
        quilt::RedrawGC gc(*this);
        quilt::Rect client;
        GetClientRect(client);
        gc.SetBrushColour(Fill);
        gc.DrawRect(client, quilt::DrawFill);
        if (!prepared) {
            icon.Load({loam::ResourceKindIcon, further_controls::FolderIconId});
            font.Create(loam::String("Sans"), 10, quilt::FontWeightNormal,
                        quilt::FontStyleUnderline);
            prepared = true;
        }
        gc.DrawIcon(icon, 4, 4);
        gc.SetFont(&font);
        gc.SetBackMode(quilt::BackModeOpaque);
        gc.DrawTextAt(loam::String("Swatch"), 44, 10);
        return true;
    }

    quilt::Icon icon;
    quilt::Font font;
    bool prepared = false;
};

// Asked by the dialog's menu button; it logs what it hears, and takes the commands back when
// `returns` says so.
class ActionsHandler : public quilt::PopupMenuHandler {
public:
    explicit ActionsHandler(std::vector<std::string>& sharedLog) : log(sharedLog) {}

    bool PrepareMenu(quilt::PopupMenu& menu) override {
        log.push_back("prepare " + std::to_string(menu.GetItems().size()));
        return returns;
    }
    void OnMenuCommand(int32_t command) override {
        log.push_back("handler " + std::to_string(command));
    }

    std::vector<std::string>& log;
    bool returns = true;
};

// What reaches the dialog's map is logged as "kind id".
class FurtherControlsDialog : public quilt::Dialog {
public:
    FurtherControlsDialog() : Dialog(further_controls::Page(further_controls::DialogId), nullptr) {}

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    void OnInitDialog() override {
        using namespace further_controls;
        Dialog::OnInitDialog();
        small.BindToControl(this, Small);
        medium.BindToControl(this, Medium);
        large.BindToControl(this, Large);
        manual.BindToControl(this, Manual);
        date.BindToControl(this, Date);
        time.BindToControl(this, Time);
        link.BindToControl(this, Link);
        unchecked.BindToControl(this, Unchecked);
        checked.BindToControl(this, Checked);
        arrow.BindToControl(this, Arrow);
        iconButton.BindToControl(this, IconButton);
        swatch.BindToControl(this, Swatch);
        tabs.BindToControl(this, Tabs);
        menuButton.BindToControl(this, MenuButton, quilt::MenuResource(ActionsMenuId), &handler);
        Fill();
        if (init) {
            init(*this);
        }
    }

    void Fill() {
        using namespace further_controls;
        medium.SetChecked(true);
        manual.SetChecked(true);
        date.SetFormat(quilt::DateTimeFormatShortDate);
        time.SetFormat(quilt::DateTimeFormatTime24Seconds);
        unchecked.SetMode(quilt::ImageButtonUnchecked);
        checked.SetMode(quilt::ImageButtonChecked);
        arrow.SetMode(quilt::ImageButtonArrow);
        iconButton.SetIcon({loam::ResourceKindIcon, FolderIconId});
        tabs.AddPage(Page(GeneralPageId), loam::String("General"), &serials[0]);
        tabs.AddPage(Page(AdvancedPageId), loam::String("Advanced"), &serials[1]);
        tabs.AddPage(Page(AboutPageId), loam::String("About"), &serials[2]);
    }

    bool OnNotification(int32_t kind, int32_t, int32_t id) {
        log.push_back(std::to_string(kind) + " " + std::to_string(id));
        return true;
    }
    bool OnApply() {
        log.push_back("apply");
        return true;
    }
    bool OnAction(int32_t command) {
        log.push_back("command " + std::to_string(command));
        return true;
    }

    quilt::RadioButton small;
    quilt::RadioButton medium;
    quilt::RadioButton large;
    quilt::RadioButton manual;
    quilt::DateTimeBox date;
    quilt::DateTimeBox time;
    quilt::URLButton link;
    quilt::ImageButton unchecked;
    quilt::ImageButton checked;
    quilt::ImageButton arrow;
    quilt::ImageButton iconButton;
    SwatchControl swatch;
    quilt::TabControl tabs;
    quilt::PopupMenuButton menuButton;
    int32_t serials[3] = {-1, -1, -1};
    std::function<void(FurtherControlsDialog&)> init;
    std::vector<std::string> log;
    ActionsHandler handler{log};

    static const quilt::MessageMapEntry entries[];
    static const quilt::MessageMap messageMap;
};

inline const quilt::MessageMapEntry FurtherControlsDialog::entries[] = {
    quilt::NotificationRange(quilt::MsgClicked, further_controls::Small, further_controls::Manual,
                             &FurtherControlsDialog::OnNotification),
    quilt::NotificationRange(quilt::MsgClicked, further_controls::Unchecked,
                             further_controls::IconButton, &FurtherControlsDialog::OnNotification),
    quilt::Notification(quilt::MsgTabChange, further_controls::Tabs,
                        &FurtherControlsDialog::OnNotification),
    quilt::Command(further_controls::PageApply, &FurtherControlsDialog::OnApply),
    quilt::CommandRange(further_controls::CopyCommand, further_controls::RenameCommand,
                        &FurtherControlsDialog::OnAction),
    quilt::NotificationRange(quilt::MsgClicked, further_controls::MenuButton,
                             further_controls::MenuButton, &FurtherControlsDialog::OnNotification),
    quilt::EndOfMap,
};
inline const quilt::MessageMap FurtherControlsDialog::messageMap{&Dialog::messageMap, entries};
