// Declarations shared by the portable and the per-system parts of the platform layer.
#pragma once

namespace orvo::platform_detail {

// Writes the text to the system's debugger channel, if the system has one.
void DefaultDebugOutput(const char* text);

}  // namespace orvo::platform_detail
