#include "loam/format.h"

namespace loam {

namespace {

const char* const units[] = {"bytes", "KB", "MB", "GB", "TB"};
constexpr int lastUnit = 4;

// Whole numbers are shown without decimals once the rounded value is within the step.
void FormatRounded(String& out, double value, double step, const char* withDecimals) {
    const double rounded = value + step / 2;
    const auto whole = static_cast<int>(rounded);
    if (rounded - whole < step)
        out.Format("%d", whole);
    else
        out.Format(withDecimals, value);
}

} // namespace

void FormatByteSize(String& out, int64_t bytes) {
    double value = static_cast<double>(bytes);
    int unit = 0;
    while (value > 1024.0 && unit < lastUnit) {
        value *= 1.0 / 1024;
        ++unit;
    }
    String number;
    if (unit == 0)
        number.Format("%d", static_cast<int>(value));
    else if (unit == 1)
        number.Format("%d", static_cast<int>(value + 0.5));
    else if (unit == 2)
        FormatRounded(number, value, 0.1, "%.1f");
    else
        FormatRounded(number, value, 0.01, "%.2f");
    out.Format("%s %s", number.GetCString(), units[unit]);
}

void FormatThousands(String& out, int32_t value) {
    String digits;
    digits.Format("%i", value);
    String grouped;
    const int32_t count = digits.GetLength();
    const char* text = digits.GetCString();
    for (int32_t i = 0; i < count; ++i) {
        if (i > 0 && (count - i) % 3 == 0 && text[i - 1] != '-')
            grouped.Append(',');
        grouped.Append(text[i]);
    }
    out = grouped;
}

} // namespace loam
