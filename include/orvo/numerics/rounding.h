// Rounding a value to a multiple of a step.
#pragma once

namespace orvo {

/// Rounds `value` to a multiple of `step`.
/// - step 0: `value` is returned unchanged.
/// - mode 0: to the nearest multiple, halves away from zero (2.5 -> 3, -2.5 -> -3).
/// - mode < 0: down, towards minus infinity (-2.4 -> -3).
/// - mode > 0: away from zero by one step beyond the magnitude, so an exact multiple also moves
///   on (2.0 with step 1 gives 3.0). This is how callers build "next grid line" values and is
///   kept deliberately.
double RoundValue(double value, double step, int mode);

}  // namespace orvo
