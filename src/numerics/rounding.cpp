#include "orvo/numerics/rounding.h"

#include <cmath>

namespace orvo {

namespace {

double Sign(double v) {
    if (v > 0.0) return 1.0;
    if (v < 0.0) return -1.0;
    return 0.0;
}

}  // namespace

double RoundValue(double value, double step, int mode) {
    if (step == 0.0) return value;
    if (mode == 0) return std::floor((std::fabs(value) + step * 0.5) / step) * Sign(value) * step;
    if (mode < 0) return std::floor(value / step) * step;
    return std::floor((std::fabs(value) + step) / step) * Sign(value) * step;
}

}  // namespace orvo
