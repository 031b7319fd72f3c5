#pragma once

#include "index/index_data.h"
#include "loam/scratch_folder.h"
#include "loam/string.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

inline std::string CurrentMessage() {
    return loam::GetCurrentErrorInfo().GetMessage().GetCString();
}

namespace loam {
// Shows a String's text in a failed expectation.
inline void PrintTo(const String& text, std::ostream* out) {
    *out << '"' << text.GetCString() << '"';
}
} // namespace loam

// Index file bytes put together field by field, damaged ones included.
class IndexImage {
public:
    IndexImage& Header(int32_t version, uint32_t unfinished, int32_t count) {
        return Int(version).Int(unfinished).Int(count);
    }
    // A record with a well-formed name block, rounded as the writer rounds it.
    IndexImage& Record(uint8_t kind, uint32_t parent, const std::string& name, uint32_t size = 0,
                       int32_t modified = 0) {
        const auto block = static_cast<uint8_t>((name.size() + 1 + 3) & ~3u);
        Fixed(kind, block, parent, size, modified);
        return Raw(name + std::string(block - name.size(), '\0'));
    }
    IndexImage& Fixed(uint8_t kind, uint8_t nameLength, uint32_t parent, uint32_t size = 0,
                      int32_t modified = 0) {
        bytes += {static_cast<char>(kind), static_cast<char>(nameLength)};
        return Int(parent).Int(size).Int(modified);
    }
    IndexImage& Raw(const std::string& raw) {
        bytes += raw;
        return *this;
    }
    IndexImage& Int(uint32_t value) {
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(value >> shift);
        return *this;
    }
    const std::string& GetBytes() const { return bytes; }
    // Loads these bytes as the image of an index file.
    bool LoadInto(IndexData& index) const {
        auto buffer = std::make_unique<char[]>(bytes.size());
        std::memcpy(buffer.get(), bytes.data(), bytes.size());
        return index.LoadImage(std::move(buffer), static_cast<uint32_t>(bytes.size()));
    }

private:
    std::string bytes;
};
