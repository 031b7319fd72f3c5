#include "index/index_status.h"

#include "loam/disk_file.h"
#include "loam/error.h"
#include "loam/format.h"
#include "loam/resource.h"

namespace {

constexpr uint16_t StatusLineString = 106;
const char* const noIndexFileText = "Index not found.";

enum AgeUnit { Years, Weeks, Days, Hours, Minutes, AgeUnitCount };

struct AgeRule {
    AgeUnit unit;
    int32_t atLeast;
    const char* text;
};

// The first rule that holds names the age; younger than six minutes is "just now".
const AgeRule ageRules[] = {
    {Years, 1, "over a year ago"},   {Weeks, 2, "%d weeks ago"},
    {Weeks, 1, "last week"},         {Days, 2, "%d days ago"},
    {Days, 1, "yesterday"},          {Hours, 2, "%d hours ago"},
    {Hours, 1, "about an hour ago"}, {Minutes, 6, "about %d minutes ago"},
};

const uint16_t stateStrings[] = {109, 108, 107};

} // namespace

IndexFileState ReadIndexFileState(const loam::FileSpec& indexFile) {
    loam::DiskFile file;
    IndexFileHeader header{};
    if (!file.OpenFile(indexFile, loam::FileModeRead) ||
        !file.Read(&header, sizeof header, nullptr)) {
        loam::ClearErrors();
        return IndexFileState::Unknown;
    }
    return header.unfinished != 0 ? IndexFileState::Incomplete : IndexFileState::Good;
}

uint16_t GetIndexStateStringId(IndexFileState state) {
    return stateStrings[static_cast<int>(state)];
}

void FormatIndexAge(loam::String& out, loam::DateTimeSpan age) {
    const int32_t span = age.GetSeconds();
    if (span < 0) {
        out = "in the future";
        return;
    }
    int32_t units[AgeUnitCount];
    units[Minutes] = span / 60;
    units[Hours] = units[Minutes] / 60;
    units[Days] = units[Hours] / 24;
    units[Weeks] = units[Days] / 7;
    units[Years] = units[Days] / 365;
    for (const AgeRule& rule : ageRules) {
        if (units[rule.unit] < rule.atLeast)
            continue;
        // Minutes are told to the nearest five.
        const int32_t shown =
            rule.unit == Minutes ? (units[Minutes] + 2) / 5 * 5 : units[rule.unit];
        out.Format(rule.text, shown);
        return;
    }
    out = "just now";
}

void FormatIndexFileAge(loam::String& out, const loam::FileSpec& indexFile, loam::DateTime now) {
    loam::DateTime modified;
    if (!indexFile.GetModifiedTime(modified)) {
        loam::ClearErrors();
        modified = loam::DateTime();
    }
    FormatIndexAge(out, now - modified);
}

void FormatIndexStatus(loam::String& out, const IndexData& index, const loam::FileSpec& indexFile,
                       loam::DateTime now) {
    if (indexFile.GetKind() != loam::FileKindFile) {
        out = noIndexFileText;
        return;
    }
    loam::String word, age, files, folders, total;
    loam::LoadResourceString(
        loam::StringResource(GetIndexStateStringId(ReadIndexFileState(indexFile))), word);
    FormatIndexFileAge(age, indexFile, now);
    loam::FormatThousands(files, static_cast<int32_t>(index.GetFileCount()));
    loam::FormatThousands(folders, static_cast<int32_t>(index.GetFolderCount()));
    loam::FormatByteSize(total, static_cast<int64_t>(index.GetTotalSize()));
    loam::FormatResource(loam::StringResource(StatusLineString), out, word.GetCString(),
                         age.GetCString(), files.GetCString(), folders.GetCString(),
                         total.GetCString());
}
