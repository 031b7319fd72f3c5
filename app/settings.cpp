#include "app/settings.h"

#include "loam/error.h"
#include "loam/preferences.h"

#include <algorithm>

namespace {

loam::FileSpec indexFolder;
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
// the folder stays empty and the index file is looked for in the current folder.
void TakeHomeFolder(loam::Preferences& preferences) {
    loam::FileSpec home;
    if (!loam::GetApplicationHomeFolder(home)) {
        loam::ClearErrors();
        return;
    }
    indexFolder = home;
    preferences.SetFileSpec(KeyIndexLocation, indexFolder);
}

} // namespace

loam::FileSpec SorvantaSettings::GetIndexFolder() {
    return indexFolder;
}

loam::FileSpec SorvantaSettings::GetIndexFile() {
    loam::FileSpec file(indexFolder);
    file.Append(IndexFileName);
    return file;
}

void SorvantaSettings::LoadSettings() {
    loam::Preferences& preferences = loam::GetPreferences();
    indexFolder.Clear();
    preferences.GetFileSpec(KeyIndexLocation, indexFolder);
    if (indexFolder.IsEmpty())
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

void SorvantaSettings::SetIndexFolder(const loam::FileSpec& folder) {
    indexFolder = folder;
    loam::GetPreferences().SetFileSpec(KeyIndexLocation, indexFolder);
}
