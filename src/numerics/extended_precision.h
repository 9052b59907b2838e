// The wider floating type used where sums of large terms cancel (polynomials on coordinates far
// from their origin), and the way back to double.
#pragma once

#include <cmath>
#include <limits>

namespace orvo {

/// Extended precision (64-bit mantissa) where the platform has it, else the same as double.
using OvWide = long double;

/// The double nearest to `value`; beyond the range of double the infinity of its sign, so that
/// the conversion never leaves the range it is defined for.
inline double OvNarrow(OvWide value) {
    constexpr OvWide kLargest = std::numeric_limits<double>::max();
    if (value > kLargest) return std::numeric_limits<double>::infinity();
    if (value < -kLargest) return -std::numeric_limits<double>::infinity();
    return static_cast<double>(value);
}

}  // namespace orvo
