#pragma once

#include "app/resources/sorvanta_templates.h"
#include "loam/file_spec.h"
#include "quilt/dialog.h"

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

    static void LoadSettings();
    static int32_t GetMaxResults();
    // Snaps the count to a multiple of 1,000 between 1,000 and 50,000 and stores it at once.
    static void SetMaxResults(int32_t count);
    static void SetIndexFolder(const loam::FileSpec& folder);
};
