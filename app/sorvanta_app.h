#pragma once

#include "app/settings.h"
#include "quilt/dialog.h"
#include "quilt/message_target.h"

#include <memory>

// The one application object. It sets up what every window relies on, then picks the window
// that the program is from its command line. The index folder lives outside it, in the settings,
// for the life of the process, so that every window can ask for the index file anew.
class SorvantaApp : public quilt::ApplicationDialog, public SorvantaSettings {
public:
    SorvantaApp();
    ~SorvantaApp() override;

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    std::unique_ptr<quilt::Dialog> CreateDialog() override;

    static const quilt::MessageMap messageMap;

private:
    static const quilt::MessageMapEntry entries[];
};
