#pragma once

#include "loam/error.h"
#include "loam/resource.h"
#include "quilt/dialog.h"
#include "quilt/window.h"

#include <cstdint>

namespace quilt {

// The templates and control ids of the error dialogs. An id of -1 means the control is not
// there.
struct ErrorDialogIds {
    loam::ResourceId debugDialog{loam::ResourceKindDialog, 0};
    int32_t continueButton = NoControlId;
    int32_t debugButton = NoControlId;
    int32_t abortButton = NoControlId;
    int32_t headlineText = NoControlId;
    int32_t messageText = NoControlId;
    loam::ResourceId plainDialog{loam::ResourceKindDialog, 0};
    int32_t moreInfoButton = NoControlId;
    int32_t backButton = NoControlId;
};

// Shows an error of a stack, and lets the user step to its older and newer neighbours where the
// template has the buttons for it. Any other button ends the dialog with its id.
class ErrorDialog : public Dialog {
public:
    // Neither the error nor the ids are owned; both outlive the dialog.
    ErrorDialog(const loam::ResourceId& resource, const loam::ErrorInfo* error,
                const ErrorDialogIds* ids, Window* parent);

    const MessageMap* GetMessageMap() const override { return &messageMap; }
    bool OnPaint() override;
    void OnInitDialog() override;
    // Names how bad the error is, in the headline where the template has one.
    virtual void UpdateHeadline();

    const loam::ErrorInfo* GetError() const { return error; }

    static const MessageMap messageMap;

protected:
    // The headline's text, where the template has a headline.
    void SetHeadline(const loam::String& text);

    const loam::ErrorInfo* error;
    const ErrorDialogIds* ids;
    Window headline;
    Window messageControl;
    Window moreInfo;
    Window back;

private:
    static const MessageMapEntry entries[];

    bool OnClicked(int32_t kind, int32_t subKind, int32_t id);
    void Refresh();
};

// The error dialog of a debug build: the headline also tells where the error was raised.
class ErrorDialog_Dbg : public ErrorDialog {
public:
    using ErrorDialog::ErrorDialog;

    void UpdateHeadline() override;
};

// Puts a stack of errors on the screen: the newest error in the plain error dialog, parented
// to the main window. The error state owns it once installed.
class QuiltErrorReporter : public loam::ErrorReporter {
public:
    explicit QuiltErrorReporter(const ErrorDialogIds& dialogIds) : ids(dialogIds) {}

    void Report(loam::ErrorStack& stack) override;

private:
    ErrorDialogIds ids;
};

} // namespace quilt
