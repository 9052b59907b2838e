// Reading an id from an integer token (private to the library).
#pragma once

#include <cstdint>
#include <limits>

#include "orvo/textfile/tokenizer.h"

namespace orvo::detail {

// Integer tokens carry their exact value in `dvalue` (the 32-bit `ivalue` is clamped to the
// signed range), so ids above 2^31 read back as written. Ids are unsigned 32-bit: the value is
// clamped to 0..4294967295.
inline std::uint32_t IdFromToken(const OvParserToken& token) {
    constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
    const double value = token.dvalue;
    if (!(value > 0.0)) return 0;
    return value >= static_cast<double>(kLargest) ? kLargest : static_cast<std::uint32_t>(value);
}

}  // namespace orvo::detail
