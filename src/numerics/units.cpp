#include "orvo/numerics/units.h"

namespace orvo {

namespace {

struct UnitEntry {
    double factor;
    const char* text;
    const char* bracketed;
};

// Indexed by the unit value; entry 0 stands for every value outside the table.
constexpr UnitEntry kUnits[] = {
    {1.0, "??", "??"},
    {0.001, "mm", "[mm]"},
    {0.01, "cm", "[cm]"},
    {1.0, "m", "[m]"},
    // The micro sign is the Latin-1 byte, not UTF-8: the host and the files are Latin-1.
    {1e-6, "\xB5m", "[\xB5m]"},
};

const UnitEntry& Lookup(eOvUnit unit) {
    const auto value = static_cast<std::int32_t>(unit);
    if (value < 1 || value > 4) return kUnits[0];
    return kUnits[value];
}

}  // namespace

const char* GetOvUnitText(eOvUnit unit, bool brackets) {
    const UnitEntry& entry = Lookup(unit);
    return brackets ? entry.bracketed : entry.text;
}

double GetUnitFactor(eOvUnit unit) {
    return Lookup(unit).factor;
}

void ConvertUnit(double* value, eOvUnit from, eOvUnit to) {
    if (value == nullptr) return;
    const double k = GetUnitFactor(from) / GetUnitFactor(to);
    *value *= k;
}

}  // namespace orvo
