#pragma once

#include "loam/string.h"
#include "quilt/font.h"

#include <cstdint>

namespace quilt {

// The platform side of a Font. Sizes are in pixels, but for the point size.
class FontImp {
public:
    FontImp() = default;
    FontImp(const FontImp&) = delete;
    FontImp& operator=(const FontImp&) = delete;
    virtual ~FontImp() = default;

    virtual bool Create(const loam::String& face, int32_t points, FontWeight weight, uint32_t style,
                        FontFamily family, FontPitch pitch) = 0;
    virtual int32_t GetHeight() = 0;
    virtual int32_t GetAverageWidth() = 0;
    virtual int32_t GetPointSize() = 0;
};

} // namespace quilt
