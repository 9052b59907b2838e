// The columns of point files as the writer sees them: header label and width of each code.
// Internal to the model sources.
#pragma once

#include <cstdint>
#include <ostream>

namespace orvo::detail {

using OvManipulator = std::ostream& (*)(std::ostream&);

struct OvPointColumn {
    const char* label;    // header label; null: the column writes nothing
    OvManipulator width;  // width manipulator written before the value
    int fieldWidth;       // the field that manipulator sets up after its blank
};

/// The label and width of a column code; {null, null, 0} for 17, 0 and unknown codes.
OvPointColumn GetPointColumn(std::uint32_t code);

}  // namespace orvo::detail
