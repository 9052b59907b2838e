// Angle units and the conversions between them.
#pragma once

#include <cstdint>

namespace orvo {

/// Angle unit. The underlying type is fixed at 32 bits; every value other than degrees and gon
/// (including values outside the named ones) means radians.
enum eOvAngleUnit : std::int32_t {
    eOvAngleRadian = 1,
    eOvAngleDegree = 2,
    eOvAngleGon = 3,  ///< 400 gon to the turn
};

/// The value of pi the angle functions work with.
inline constexpr double kOvPi = 3.141592653589793;
/// One full turn in radians.
inline constexpr double kOvTwoPi = 6.283185307179586;

/// Converts an angle: first to radians, then from radians to the target unit. Converting
/// between two radian-meaning units returns the angle unchanged.
double ConvertAngle(const double& angle, eOvAngleUnit from, eOvAngleUnit to);

/// Brings a radian angle into the range [0, 2*pi] by adding or subtracting whole turns one at a
/// time. An angle of exactly 2*pi stays 2*pi (the range is closed at both ends).
/// Angles of more than a million turns are first reduced with an exact remainder so that the
/// call always finishes; NaN and infinities give NaN.
double NormAngle(const double& angle);

}  // namespace orvo
