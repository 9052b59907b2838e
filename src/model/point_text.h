// Formatting point records into memory, byte for byte as a plain stream prints them. Writing a
// large point file spends most of its time in the stream's number formatting (a locale lookup,
// a printf-style conversion and a padding pass for every number); `std::to_chars` gives the
// same digits far faster. Internal to the model sources.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string_view>

#include "orvo/model/format_table.h"

namespace orvo {
class OvPoint;
}

namespace orvo::detail {

/// A growable run of bytes, kept on the stack while it is small.
class OvTextBuffer {
public:
    OvTextBuffer() = default;
    OvTextBuffer(const OvTextBuffer&) = delete;
    OvTextBuffer& operator=(const OvTextBuffer&) = delete;

    /// Room for at least n more bytes at the end; fill them, then `Commit` how many were used.
    char* Room(std::size_t n) {
        if (capacity_ - size_ < n) Grow(n);
        return data_ + size_;
    }
    void Commit(std::size_t n) { size_ += n; }
    void Put(char c) {
        *Room(1) = c;
        ++size_;
    }

    const char* Data() const { return data_; }
    std::size_t Size() const { return size_; }
    std::string_view View() const { return {data_, size_}; }
    void Clear() { size_ = 0; }

private:
    void Grow(std::size_t n);

    static constexpr std::size_t kInline = 512;
    char inline_[kInline];
    std::unique_ptr<char[]> heap_;
    char* data_ = inline_;
    std::size_t size_ = 0;
    std::size_t capacity_ = kInline;
};

/// Whether the stream, with its precision at 16, prints every column of a point record exactly
/// as `AppendPointRecord` does: good, no field width pending, general floating-point notation,
/// decimal integers, none of showpos, showpoint, uppercase and unitbuf, and a locale whose
/// number formatting is the standard one with a '.' and no digit grouping. The fill character
/// may be any; the caller passes it on.
bool StreamPrintsPlainNumbers(const std::ostream& out);

/// Appends the record of `point` in the columns of `format` as `OvPoint::Write` prints it to
/// such a stream: each column a blank and then its value right-aligned in the column's field,
/// padded with `fill`, doubles with 16 significant digits in general notation. Returns whether
/// any column was written (the stream would then be left right-aligned).
bool AppendPointRecord(OvTextBuffer& text, const OvPoint& point, const OvPointFormat& format,
                       char fill);

}  // namespace orvo::detail
