#include "orvo/numerics/angle.h"

#include <cmath>
#include <limits>

namespace orvo {

double ConvertAngle(const double& angle, eOvAngleUnit from, eOvAngleUnit to) {
    double r = angle;
    if (from == eOvAngleDegree) {
        r = kOvPi * angle * 0.005555555555555556;
    } else if (from == eOvAngleGon) {
        r = kOvPi * angle * 0.005;
    }
    if (to == eOvAngleDegree) return r / kOvPi * 180.0;
    if (to == eOvAngleGon) return r / kOvPi * 200.0;
    return r;
}

double NormAngle(const double& angle) {
    // Whole turns are added or subtracted one at a time, so results for ordinary angles carry
    // exactly the rounding of that stepping. Far away from the range the stepping would run
    // for ages (or forever, once a turn vanishes in the rounding), so such angles are first
    // brought near the range with an exact remainder.
    constexpr double kStepLimit = 1048576.0 * kOvTwoPi;
    double a = angle;
    if (!std::isfinite(a)) return std::numeric_limits<double>::quiet_NaN();
    if (std::fabs(a) > kStepLimit) a = std::fmod(a, kOvTwoPi);
    if (a < 0.0) {
        while (a < 0.0)
            a += kOvTwoPi;
    } else {
        while (a > kOvTwoPi)
            a -= kOvTwoPi;
    }
    return a;
}

}  // namespace orvo
