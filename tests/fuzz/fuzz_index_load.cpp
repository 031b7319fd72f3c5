// Feeds arbitrary bytes to the index loader as the image of an index file. What loads must then
// answer every path, result and status question without leaving its buffer.
#include "index/index_data.h"
#include "index/index_status.h"
#include "loam/error.h"
#include "loam/format.h"

#include <cstring>
#include <memory>

namespace {

void AskEverything(IndexData& index) {
    loam::String text;
    loam::FormatThousands(text, static_cast<int32_t>(index.GetFileCount()));
    loam::FormatThousands(text, static_cast<int32_t>(index.GetFolderCount()));
    loam::FormatByteSize(text, static_cast<int64_t>(index.GetTotalSize()));
    for (int32_t ordinal = 0; ordinal < index.GetRecordCount(); ++ordinal) {
        const IndexRecord* record = index.GetRecord(ordinal);
        index.AddResult(record);
        FormatIndexAge(text, loam::DateTimeSpan(record->GetModified()));
    }
    for (int32_t result = 0; result < index.GetResultCount(); ++result) {
        index.IsResultFolder(result);
        index.GetResultSize(result);
        index.GetResultDate(result);
        index.GetResultName(result);
        index.GetResultFolder(result);
        index.GetResultPath(result);
    }
    index.GetResultsTotalSize();
    index.ClearResults();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > UINT32_MAX)
        return 0;
    auto image = std::make_unique_for_overwrite<char[]>(size);
    if (size > 0)
        std::memcpy(image.get(), data, size);
    IndexData index;
    if (index.LoadImage(std::move(image), static_cast<uint32_t>(size)))
        AskEverything(index);
    loam::ClearErrors();
    return 0;
}
