#include "tools/index_list.h"

#include "app/settings.h"

#include <cstring>

void IndexList::Add(const char* list) {
    for (const char* start = list;;) {
        const char* end = std::strchr(start, ':');
        const size_t length = end ? static_cast<size_t>(end - start) : std::strlen(start);
        loam::String name;
        name.AssignRange(start, 0, static_cast<int32_t>(length));
        names.push_back(name);
        if (!end)
            return;
        start = end + 1;
    }
}

std::vector<loam::FileSpec> IndexList::GetFiles() const {
    std::vector<loam::FileSpec> files;
    bool settingsLoaded = false;
    for (const loam::String& name : names.empty() ? std::vector<loam::String>(1) : names) {
        if (!name.IsEmpty()) {
            files.emplace_back(name);
            continue;
        }
        if (!settingsLoaded)
            SorvantaSettings::LoadSettings();
        settingsLoaded = true;
        files.push_back(SorvantaSettings::GetIndexFile());
    }
    return files;
}
