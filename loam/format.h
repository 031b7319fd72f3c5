#pragma once

#include "loam/string.h"

#include <cstdint>

namespace loam {

// "1.5 MB", "1 bytes": the size column's and the status line's form of a byte count.
void FormatByteSize(String& out, int64_t bytes);

// "1,234,567": a count with a comma between groups of three digits.
void FormatThousands(String& out, int32_t value);

} // namespace loam
