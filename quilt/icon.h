#pragma once

#include "loam/resource.h"

#include <cstdint>
#include <memory>
#include <span>

namespace quilt {

// An icon's size when its image gives none of its own: what the desktop's icon theme draws at
// the size of a window's icon.
constexpr int32_t IconNaturalSize = 32;

// Where the image of an icon resource comes from: an absolute path names an image file, any
// other text an icon of the desktop's icon theme.
struct IconTableEntry {
    uint16_t id;
    const char* image;
};

// Adds a program's icons to those that FindIconImage finds. The table must outlive the process's
// use of it; a later table's entry wins over an earlier one's for the same id.
void RegisterIconTable(std::span<const IconTableEntry> icons);
// The image of an icon resource (kind 6), or null.
const char* FindIconImage(const loam::ResourceId& resource);

// The platform side of an Icon: the loaded image at its natural size.
class IconImp {
public:
    IconImp() = default;
    IconImp(const IconImp&) = delete;
    IconImp& operator=(const IconImp&) = delete;
    virtual ~IconImp() = default;

    // False when the resource names no image that can be loaded; the icon then stays empty.
    virtual bool Load(const loam::ResourceId& resource) = 0;
    virtual int32_t GetWidth() const = 0;
    virtual int32_t GetHeight() const = 0;
};

// An image from the program's icon resources, drawn at its natural size.
class Icon {
public:
    Icon();
    explicit Icon(std::unique_ptr<IconImp> imp);
    Icon(const Icon&) = delete;
    Icon& operator=(const Icon&) = delete;
    ~Icon();

    // Replaces what the icon held; on false the icon is empty.
    bool Load(const loam::ResourceId& resource);
    bool IsLoaded() const { return loaded; }
    // 0 while empty.
    int32_t GetWidth() const { return loaded ? imp->GetWidth() : 0; }
    int32_t GetHeight() const { return loaded ? imp->GetHeight() : 0; }
    IconImp* GetImp() const { return imp.get(); }

private:
    std::unique_ptr<IconImp> imp;
    bool loaded = false;
};

} // namespace quilt
