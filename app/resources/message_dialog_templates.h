#pragma once

#include "quilt/dialog_template.h"
#include "quilt/error_dialog.h"

#include <cstdint>

// The templates of the toolkit's message and error dialogs, with the ids the program gives the
// toolkit at start.
inline constexpr uint16_t DebugErrorDialogId = 110;
inline constexpr uint16_t PlainErrorDialogId = 111;
inline constexpr uint16_t AlertDialogId = 112;
inline constexpr uint16_t QuestionDialogId = 113;

inline constexpr int32_t AlertTextId = 1011;
inline constexpr int32_t AlertOkId = 1;
inline constexpr int32_t QuestionTextId = 1012;
inline constexpr int32_t QuestionFirstButtonId = 1009;
inline constexpr int32_t QuestionSecondButtonId = 1010;

inline constexpr quilt::ErrorDialogIds MessageErrorDialogIds{
    {loam::ResourceKindDialog, DebugErrorDialogId}, 1001, 1000, 1002, 1004, 1003,
    {loam::ResourceKindDialog, PlainErrorDialogId}, 1006, 1008,
};

namespace message_dialog_templates {

using quilt::ControlKind;
using quilt::DialogControlTemplate;

inline constexpr uint32_t frame = quilt::DialogStyleCaption | quilt::DialogStyleSystemMenu |
                                  quilt::DialogStyleModalFrame | quilt::DialogStyleCentre;

// The text controls only say where the text goes: the dialogs paint it themselves.
inline constexpr DialogControlTemplate alertControls[] = {
    {AlertTextId, ControlKind::StaticLeft, "", {7, 7, 172, 34}, 0},
    {AlertOkId, ControlKind::DefaultPushButton, "OK", {68, 50, 50, 14}, 0},
};

inline constexpr DialogControlTemplate questionControls[] = {
    {QuestionTextId, ControlKind::StaticLeft, "", {7, 7, 172, 42}, 0},
    {QuestionFirstButtonId, ControlKind::DefaultPushButton, "Default", {35, 61, 50, 14}, 0},
    {QuestionSecondButtonId, ControlKind::PushButton, "Other Choice", {101, 61, 50, 14}, 0},
};

inline constexpr DialogControlTemplate plainErrorControls[] = {
    {1003, ControlKind::StaticLeft, "", {7, 7, 234, 50}, quilt::StyleHidden},
    {1001, ControlKind::DefaultPushButton, "OK", {99, 64, 50, 14}, 0},
};

inline constexpr DialogControlTemplate debugErrorControls[] = {
    {1001, ControlKind::DefaultPushButton, "&Continue", {44, 96, 50, 14}, 0},
    {1000, ControlKind::PushButton, "&Debug", {99, 96, 50, 14}, 0},
    {1002, ControlKind::PushButton, "&Abort", {154, 96, 50, 14}, 0},
    {1004, ControlKind::StaticLeft, "", {7, 7, 234, 10}, 0},
    {1003, ControlKind::StaticLeft, "", {7, 21, 234, 50}, quilt::StyleHidden},
    {1006, ControlKind::PushButton, "More Info", {191, 76, 50, 14}, 0},
    {1008, ControlKind::PushButton, "Back", {7, 76, 50, 14}, 0},
};

} // namespace message_dialog_templates

inline constexpr quilt::DialogTemplate MessageDialogTemplates[] = {
    {DebugErrorDialogId, "Debug Error", 248, 117, quilt::DialogFontFace, quilt::DialogFontPoints,
     message_dialog_templates::frame, message_dialog_templates::debugErrorControls},
    {PlainErrorDialogId, "Error", 248, 85, quilt::DialogFontFace, quilt::DialogFontPoints,
     message_dialog_templates::frame, message_dialog_templates::plainErrorControls},
    {AlertDialogId, "Dialog", 186, 71, quilt::DialogFontFace, quilt::DialogFontPoints,
     message_dialog_templates::frame, message_dialog_templates::alertControls},
    {QuestionDialogId, "Dialog", 186, 82, quilt::DialogFontFace, quilt::DialogFontPoints,
     message_dialog_templates::frame, message_dialog_templates::questionControls},
};

// Tells the toolkit the templates above; the application calls it once at start.
void RegisterMessageDialogTemplates();
