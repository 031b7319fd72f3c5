#pragma once

#include "loam/file_spec.h"

#include <cstdint>

// The program's fixed names.
inline constexpr char PreferenceCompany[] = "Wendlemark";
inline constexpr char PreferenceProduct[] = "Sorvanta";
inline constexpr char IndexFileName[] = "sorvanta.idx";
inline constexpr char BuildIndexSwitch[] = "/buildindex";

// Every preference key of the program.
inline constexpr char KeyIndexLocation[] = "IndexLocation";
inline constexpr char KeyMaxResults[] = "MaxResults";
inline constexpr char KeyAutoWildcards[] = "Options.AutoWildcards";
inline constexpr char KeyUseRegExp[] = "Options.UseRegExp";
inline constexpr char KeySearchPattern[] = "UI.SearchPattern";
inline constexpr char KeyDialogWidth[] = "DialogWidth";
inline constexpr char KeyDialogHeight[] = "DialogHeight";
inline constexpr char KeyMaximised[] = "Maximised";

// Whether a folder is given from the root of the file system, as the index folder must be.
bool IsFullFolder(const loam::FileSpec& folder);

// The application-wide settings that live outside any window: the index folder and the limit on
// the results shown. Both are read from the preferences once, at start. The command-line finder
// reads them as well, so they need nothing of the toolkit; the application and the options
// dialog offer them as their own.
class SorvantaSettings {
public:
    static constexpr int32_t DefaultMaxResults = 1000;
    static constexpr int32_t MaxResultsStep = 1000;
    static constexpr int32_t MaxResultsCeiling = 50000;

    static void LoadSettings();
    static loam::FileSpec GetIndexFolder();
    // Empty when the user has no private folder for the index: never a name in the current
    // folder, which would depend on where the program was started.
    static loam::FileSpec GetIndexFile();
    // The index file for a build to write; false with the error raised, saying why, when there
    // is no folder for it.
    static bool GetIndexFileToWrite(loam::FileSpec& file);
    static int32_t GetMaxResults();
    // Snaps the count to a multiple of 1,000 between 1,000 and 50,000 and stores it at once.
    static void SetMaxResults(int32_t count);
    // Stores the folder in the settings; only a stored folder takes effect. False, with the
    // error raised and the folder in force unchanged, when the settings cannot be written.
    static bool SetIndexFolder(const loam::FileSpec& folder);
};
