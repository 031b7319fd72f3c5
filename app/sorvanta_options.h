#pragma once

#include "app/resources/sorvanta_templates.h"
#include "app/settings.h"
#include "loam/file_spec.h"
#include "quilt/auto_pref.h"
#include "quilt/dialog.h"
#include "quilt/edit_box.h"
#include "quilt/slider.h"

// The options dialog. The settings it changes live outside it, for the life of the process.
class SorvantaOptions : public quilt::Dialog, public SorvantaSettings {
public:
    explicit SorvantaOptions(quilt::Window* parent)
        : Dialog(DialogResource(DialogOptions), parent) {}

    const quilt::MessageMap* GetMessageMap() const override { return &messageMap; }
    void OnInitDialog() override;
    // A changed folder moves the index file there first; each way that can fail is talked
    // through with the user.
    void OnOK() override;
    bool OnBrowse();
    // The limit changes, and is stored, while the slider moves: Cancel keeps it.
    bool OnLimitChanged();
    void UpdateLimitLabel();

    static const quilt::MessageMap messageMap;

private:
    // False when the user wants to choose another folder.
    bool MoveIndex(const loam::FileSpec& oldFile, const loam::FileSpec& newFolder);

    static const quilt::MessageMapEntry entries[];

    quilt::EditBox indexFolderBox;
    quilt::Slider limitSlider;
    quilt::Window limitLabel;
    quilt::AutoPrefCheckBox autoWildcards;
};
