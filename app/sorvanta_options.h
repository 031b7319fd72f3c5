#pragma once

#include "app/resources/sorvanta_templates.h"
#include "app/settings.h"
#include "quilt/dialog.h"

// The options dialog. The settings it changes live outside it, for the life of the process.
class SorvantaOptions : public quilt::Dialog, public SorvantaSettings {
public:
    explicit SorvantaOptions(quilt::Window* parent)
        : Dialog(DialogResource(DialogOptions), parent) {}
};
