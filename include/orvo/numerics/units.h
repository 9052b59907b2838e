// Length units: the one table that defines every unit the library expresses lengths in, and the
// conversions of values, points and regions between them.
#pragma once

#include <cstdint>

namespace orvo {

class OvPoint;
class OvRegion;

/// Length unit. The underlying type is fixed at 32 bits so that any stored value is a valid
/// `eOvUnit`; a value outside the named ones behaves like metres (factor 1.0, text "??").
enum eOvUnit : std::int32_t {
    eOvUnitMM = 1,      ///< millimetre
    eOvUnitCM = 2,      ///< centimetre
    eOvUnitM = 3,       ///< metre
    eOvUnitMicron = 4,  ///< micrometre
};

/// The unit's text: "mm", "cm", "m" or "µm" (with brackets "[mm]" ...). The micro sign is the
/// single Latin-1 byte 0xB5, as project files and the host expect it. An unknown unit gives
/// "??" with or without brackets. The text has static storage and must not be freed.
const char* GetOvUnitText(eOvUnit unit, bool brackets);

/// Metres per unit: 0.001, 0.01, 1.0, 1e-6; any other value 1.0.
double GetUnitFactor(eOvUnit unit);

/// Multiplies *value by factor(from) / factor(to). A null pointer is ignored.
void ConvertUnit(double* value, eOvUnit from, eOvUnit to);

/// Multiplies the point's x, y and z by factor(from) / factor(to). A null pointer is ignored.
void ConvertUnit(OvPoint* point, eOvUnit from, eOvUnit to);

/// Multiplies x, y and z of both corner points of the region by factor(from) / factor(to).
/// A null pointer is ignored.
void ConvertUnit(OvRegion* region, eOvUnit from, eOvUnit to);

}  // namespace orvo
