#include "point_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <locale>
#include <ostream>
#include <typeinfo>

#include "orvo/model/point.h"
#include "point_columns.h"

namespace orvo::detail {

namespace {

// Longer than any number this file prints: "%.16g" of a double takes at most 23 characters
// ("-1.234567890123457e-308"), an integer at most 11.
constexpr std::size_t kNumberRoom = 32;

// One column: the blank, then the text right-aligned in the field.
void PutField(OvTextBuffer& text, int fieldWidth, char fill, const char* value,
              std::size_t length) {
    const std::size_t field = static_cast<std::size_t>(fieldWidth);
    const std::size_t padding = length < field ? field - length : 0;
    char* out = text.Room(1 + padding + length);
    *out++ = ' ';
    std::memset(out, fill, padding);
    std::memcpy(out + padding, value, length);
    text.Commit(1 + padding + length);
}

// The stream prints a double with its precision (16) in general notation, which is printf's
// "%.16g"; to_chars with the general format and a precision is specified as that conversion.
void PutDouble(OvTextBuffer& text, int fieldWidth, char fill, double value) {
    char digits[kNumberRoom];
    const std::to_chars_result r =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 16);
    PutField(text, fieldWidth, fill, digits, static_cast<std::size_t>(r.ptr - digits));
}

template <typename Integer>
void PutInteger(OvTextBuffer& text, int fieldWidth, char fill, Integer value) {
    char digits[kNumberRoom];
    const std::to_chars_result r = std::to_chars(digits, digits + sizeof digits, value);
    PutField(text, fieldWidth, fill, digits, static_cast<std::size_t>(r.ptr - digits));
}

void PutText(OvTextBuffer& text, int fieldWidth, char fill, const char* value) {
    PutField(text, fieldWidth, fill, value, std::strlen(value));
}

}  // namespace

void OvTextBuffer::Grow(std::size_t n) {
    const std::size_t capacity = std::max(capacity_ * 2, size_ + n);
    std::unique_ptr<char[]> bigger(new char[capacity]);
    std::memcpy(bigger.get(), data_, size_);
    heap_ = std::move(bigger);
    data_ = heap_.get();
    capacity_ = capacity;
}

bool StreamPrintsPlainNumbers(const std::ostream& out) {
    if (!out.good() || out.width() != 0) return false;
    const std::ios_base::fmtflags flags = out.flags();
    constexpr std::ios_base::fmtflags kChangesNumbers =
        std::ios_base::showpos | std::ios_base::showpoint | std::ios_base::uppercase |
        std::ios_base::unitbuf | std::ios_base::floatfield;
    if ((flags & kChangesNumbers) != 0) return false;
    const std::ios_base::fmtflags base = flags & std::ios_base::basefield;
    if (base != std::ios_base::dec && base != std::ios_base::fmtflags{}) return false;

    // The standard facets print as printf does in the "C" locale, apart from the decimal point
    // and the digit grouping; a facet of the host's own making could print anything.
    const std::locale locale = out.getloc();
    const std::num_put<char>& numbers = std::use_facet<std::num_put<char>>(locale);
    const std::ctype<char>& characters = std::use_facet<std::ctype<char>>(locale);
    if (typeid(numbers) != typeid(std::num_put<char>)) return false;
    if (typeid(characters) != typeid(std::ctype<char>)) return false;
    const std::numpunct<char>& punctuation = std::use_facet<std::numpunct<char>>(locale);
    return punctuation.decimal_point() == '.' && punctuation.grouping().empty();
}

bool AppendPointRecord(OvTextBuffer& text, const OvPoint& point, const OvPointFormat& format,
                       char fill) {
    bool wrote = false;
    for (int i = 0; format[i] != eOvPointRWEnd; ++i) {
        const std::uint32_t code = format[i];
        const int width = GetPointColumn(code).fieldWidth;
        if (width == 0) continue;
        wrote = true;
        switch (code) {
            case eOvPointRWId:
                PutInteger(text, width, fill, point.GetId());
                break;
            case eOvPointRWCode123:
                PutText(text, width, fill, point.GetControlFlagsAs123());
                break;
            case eOvPointRWCode:
                PutInteger(text, width, fill, static_cast<std::int16_t>(point.GetControlFlags()));
                break;
            case eOvPointRWName:
                PutText(text, width, fill, point.GetName().chars());
                break;
            case eOvPointRWPhoto:
                PutInteger(text, width, fill, point.GetPhotoId());
                break;
            case eOvPointRWCamera:
                PutInteger(text, width, fill, point.GetCameraId());
                break;
            case eOvPointRWX:
                PutDouble(text, width, fill, point.GetX());
                break;
            case eOvPointRWY:
                PutDouble(text, width, fill, point.GetY());
                break;
            case eOvPointRWZ:
                PutDouble(text, width, fill, point.GetZ());
                break;
            case eOvPointRWDx:
            case eOvPointRWSx:
                PutDouble(text, width, fill, point.GetD(0));
                break;
            case eOvPointRWDy:
            case eOvPointRWSy:
                PutDouble(text, width, fill, point.GetD(1));
                break;
            case eOvPointRWDz:
            case eOvPointRWSz:
                PutDouble(text, width, fill, point.GetD(2));
                break;
            case eOvPointRWDs: {
                const double dx = point.GetD(0);
                const double dy = point.GetD(1);
                const double dz = point.GetD(2);
                PutDouble(text, width, fill, std::sqrt(dx * dx + dy * dy + dz * dz));
                break;
            }
            case eOvPointRWRedu:
            case eOvPointRWResidualX:
                PutDouble(text, width, fill, point.GetR(0));
                break;
            case eOvPointRWRedu2:
            case eOvPointRWResidualY:
                PutDouble(text, width, fill, point.GetR(1));
                break;
            case eOvPointRWRedu3:
            case eOvPointRWResidualZ:
                PutDouble(text, width, fill, point.GetR(2));
                break;
            default:
                break;
        }
    }
    return wrote;
}

}  // namespace orvo::detail
