#include "quilt/font.h"

#include "quilt/font_imp.h"
#include "quilt/imp_factory.h"

namespace quilt {

Font::Font() : Font(GetImpFactory().CreateFontImp()) {}

Font::Font(std::unique_ptr<FontImp> fontImp) : imp(std::move(fontImp)) {}

Font::~Font() = default;

bool Font::Create(const loam::String& face, int32_t points, FontWeight weight, uint32_t style,
                  FontFamily family, FontPitch pitch) {
    return imp->Create(face, points, weight, style, family, pitch);
}

int32_t Font::GetHeight() {
    return imp->GetHeight();
}

int32_t Font::GetAverageWidth() {
    return imp->GetAverageWidth();
}

int32_t Font::GetPointSize() {
    return imp->GetPointSize();
}

} // namespace quilt
