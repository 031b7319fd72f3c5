#pragma once

#include "app/resources/sorvanta_templates.h"
#include "loam/file_spec.h"
#include "quilt/auto_pref.h"
#include "quilt/dialog.h"
#include "quilt/edit_box.h"
#include "quilt/slider.h"

#include <cstdint>

// The options dialog, and the application-wide settings that live outside any window: the index
// folder and the limit on the results shown. Both are read from the preferences once, at start.
class SorvantaOptions : public quilt::Dialog {
public:
    static constexpr int32_t DefaultMaxResults = 1000;
    static constexpr int32_t MaxResultsStep = 1000;
    static constexpr int32_t MaxResultsCeiling = 50000;

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

    static void LoadSettings();
    static int32_t GetMaxResults();
    // Snaps the count to a multiple of 1,000 between 1,000 and 50,000 and stores it at once.
    static void SetMaxResults(int32_t count);
    static void SetIndexFolder(const loam::FileSpec& folder);

    static const quilt::MessageMap messageMap;

private:
    // False when the user wants to choose another folder.
    bool MoveIndex(const loam::FileSpec& oldFile, const loam::FileSpec& newFile);

    static const quilt::MessageMapEntry entries[];

    quilt::EditBox indexFolderBox;
    quilt::Slider limitSlider;
    quilt::Window limitLabel;
    quilt::AutoPrefCheckBox autoWildcards;
};
