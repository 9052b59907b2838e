// Library version, for hosts that want to log what they were built against.
#pragma once

namespace orvo {

/// The library version as "major.minor.patch".
const char* Version();

}  // namespace orvo
