// Feeds arbitrary patterns to the search pass over a small index, in both modes and with and
// without automatic wildcards. A pattern may be refused, but never crash, hang or leak, and the
// fast pass must find exactly what the plain pass finds, in the same order.
#include "index/index_data.h"
#include "index/index_format.h"
#include "loam/error.h"
#include "search/index_searcher.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

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
    const char* names[] = {
        "readme.txt",
        "Report 2024.DOC",
        "a",
        "",
        ".hidden",
        "x.tar.gz",
        "\xC9t\xE9.jpg",
        "(paren)[bracket]{brace}",
        "dots...",
        "a*b?c",
        "README",
        "old readme.TXT",
        "img_0042.jpg",
        "DSC1234.JPEG",
        "txt",
        "a.b.c.d.e.f.g.h",
        "line\nend",
        "\n",
        "tab\there\r",
        "\xE9\xC9\xFF\x80",
        "IMG_20240611_1234.PNG",
        "backup-2023-12-31.tar.gz",
        "a b\fc\vd",
        "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
        "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"
        "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa",
        "Zz9_-+.~!@#$%^&()[]{}",
        "0123456789"};
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

// The results of one whole pass, or nothing when the pattern was refused.
std::vector<const IndexRecord*> Search(IndexSearcher::Pass pass, const std::string& text,
                                       uint8_t flags) {
    IndexData& index = LoadedIndex();
    IndexSearcher searcher(pass);
    std::vector<const IndexRecord*> found;
    if (!searcher.Start(&index, loam::String(text.c_str()), flags & 1, flags & 2))
        return found;
    int32_t percent = 0;
    while (searcher.RunSlice(nullptr, &percent) == 1) {
    }
    for (int32_t result = 0; result < index.GetResultCount(); ++result)
        found.push_back(index.GetResult(result));
    return found;
}

// Control bytes that a pattern rarely holds stand for pieces of regular-expression syntax, so
// that the fuzzer meets groups, alternatives, classes and intervals often.
const char* const syntax[] = {
    ".*",          "(jpg|png)", "[0-9]", "{2,4}", "[a-z]+",      "\\s", "\\d",    "\\w", "[^a]",
    "(?:",         ")",         "|",     "{3}",   "[[:alpha:]]", "\\.", "+",      "*",   "?",
    "[\xC0-\xFF]", "(a|ab)",    "{1,}",  "^",     "$",           "\\<", "[\\d.]", "\\S"};

std::string Expand(const std::string& text) {
    std::string pattern;
    for (char byte : text) {
        const auto value = static_cast<uint8_t>(byte);
        const int token = value < 9 ? value - 1 : value >= 14 && value < 32 ? value - 6 : -1;
        if (token >= 0 && token < static_cast<int>(std::size(syntax)))
            pattern += syntax[token];
        else
            pattern += byte;
    }
    return pattern;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 512)
        return 0;
    const std::string raw(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (raw.find('\0') != std::string::npos)
        return 0;
    const std::string text = Expand(raw);
    const auto plain = Search(IndexSearcher::Pass::Plain, text, data[0]);
    const auto fast = Search(IndexSearcher::Pass::Fast, text, data[0]);
    loam::ClearErrors();
    if (plain != fast)
        std::abort();
    return 0;
}
