// Feeds arbitrary patterns to the search pass over a small index, in both modes and with and
// without automatic wildcards. A pattern may be refused, but never crash, hang or leak.
#include "index/index_data.h"
#include "index/index_format.h"
#include "loam/error.h"
#include "search/index_searcher.h"

#include <cstring>
#include <memory>
#include <string>

namespace {

void AppendInt(std::string& bytes, uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift);
}

void AppendRecord(std::string& bytes, uint8_t kind, uint32_t parent, const std::string& name) {
    const auto block = static_cast<uint8_t>((name.size() + 4) & ~3u);
    bytes += static_cast<char>(kind);
    bytes += static_cast<char>(block);
    AppendInt(bytes, parent);
    AppendInt(bytes, static_cast<uint32_t>(name.size()));
    AppendInt(bytes, 0);
    bytes += name;
    bytes.append(block - name.size(), '\0');
}

std::string MakeImage() {
    const char* names[] = {"readme.txt", "Report 2024.DOC", "a", "", ".hidden", "x.tar.gz",
                           "\xC9t\xE9.jpg", "(paren)[bracket]{brace}", "dots...", "a*b?c"};
    std::string bytes;
    AppendInt(bytes, IndexFormatVersion);
    AppendInt(bytes, 0);
    AppendInt(bytes, 1 + std::size(names));
    AppendRecord(bytes, IndexKindFolder, IndexNoParent, "/data");
    for (const char* name : names)
        AppendRecord(bytes, IndexKindFile, 0, name);
    return bytes;
}

IndexData& LoadedIndex() {
    static IndexData index;
    if (!index.IsLoaded()) {
        static const std::string image = MakeImage();
        auto buffer = std::make_unique<char[]>(image.size());
        std::memcpy(buffer.get(), image.data(), image.size());
        index.LoadImage(std::move(buffer), static_cast<uint32_t>(image.size()));
    }
    return index;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 512)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (text.find('\0') != std::string::npos)
        return 0;
    IndexSearcher searcher;
    if (searcher.Start(&LoadedIndex(), loam::String(text.c_str()), data[0] & 1, data[0] & 2)) {
        int32_t percent = 0;
        while (searcher.RunSlice(nullptr, &percent) == 1) {
        }
    }
    loam::ClearErrors();
    return 0;
}
