#include "app/settings.h"

#include "loam/error.h"
#include "loam/preferences.h"

#include <algorithm>

namespace {

loam::FileSpec indexFolder;
// Why there is no index folder, for the build that needs one.
loam::String noFolderReason;
int32_t maxResults = SorvantaSettings::DefaultMaxResults;

// Rounds up to a whole step, then holds the value within the bounds; 64 bits, so that a stored
// value near the top of the range cannot overflow while rounding.
int32_t SnapMaxResults(int64_t count) {
    const int64_t step = SorvantaSettings::MaxResultsStep;
    const int64_t rounded = count > 0 ? (count + step - 1) / step * step : 0;
    return static_cast<int32_t>(std::clamp<int64_t>(rounded, SorvantaSettings::DefaultMaxResults,
                                                    SorvantaSettings::MaxResultsCeiling));
}

// A first run: the index goes to the application's own folder, remembered at once. Without one
// the folder stays empty, and a build says why rather than write the index anywhere else.
void TakeHomeFolder(loam::Preferences& preferences) {
    indexFolder.Clear();
    loam::FileSpec home;
    if (!loam::GetApplicationHomeFolder(home)) {
        noFolderReason = loam::GetCurrentErrorInfo().GetMessage();
        loam::ClearErrors();
        return;
    }
    indexFolder = home;
    preferences.SetFileSpec(KeyIndexLocation, indexFolder);
}

} // namespace

bool IsFullFolder(const loam::FileSpec& folder) {
    return folder.GetPath().GetCString()[0] == loam::NativeSeparator;
}

loam::FileSpec SorvantaSettings::GetIndexFolder() {
    return indexFolder;
}

loam::FileSpec SorvantaSettings::GetIndexFile() {
    loam::FileSpec file(indexFolder);
    if (!indexFolder.IsEmpty())
        file.Append(IndexFileName);
    return file;
}

bool SorvantaSettings::GetIndexFileToWrite(loam::FileSpec& file) {
    file = GetIndexFile();
    if (!file.IsEmpty())
        return true;
    const loam::String text = "Sorvanta has no private folder to keep its index in (" +
                              noFolderReason +
                              "). Set XDG_DATA_HOME or HOME to a folder of your own.";
    return loam::RaiseError(loam::ErrorNoSpecialFolder, text.GetCString());
}

void SorvantaSettings::LoadSettings() {
    loam::Preferences& preferences = loam::GetPreferences();
    indexFolder.Clear();
    noFolderReason.Clear();
    preferences.GetFileSpec(KeyIndexLocation, indexFolder);
    // A relative folder would be taken from wherever the program was started.
    if (!IsFullFolder(indexFolder))
        TakeHomeFolder(preferences);
    uint32_t stored = DefaultMaxResults;
    preferences.GetInt(KeyMaxResults, stored);
    maxResults = SnapMaxResults(static_cast<int32_t>(stored));
}

int32_t SorvantaSettings::GetMaxResults() {
    return maxResults;
}

void SorvantaSettings::SetMaxResults(int32_t count) {
    maxResults = SnapMaxResults(count);
    loam::GetPreferences().SetInt(KeyMaxResults, static_cast<uint32_t>(maxResults));
}

bool SorvantaSettings::SetIndexFolder(const loam::FileSpec& folder) {
    if (!loam::GetPreferences().SetFileSpec(KeyIndexLocation, folder))
        return loam::RaiseError(loam::ErrorWrite, "The settings file could not be written.");
    indexFolder = folder;
    return true;
}
