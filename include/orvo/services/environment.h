// Two process-wide settings the host decides and any code may ask for: the operating system and
// the mode the application runs in. The library gives them no meaning of its own; it only keeps
// what the host set.
#pragma once

#include <cstdint>

namespace orvo {

/// Fixed-width, so a host may store values beyond the named ones.
enum eOperatingSystem : std::int32_t {
    eOperatingSystemUnknown = 0,
    eOperatingSystemWindows = 1,
    eOperatingSystemLinux = 2,
    eOperatingSystemMacOS = 3,
};

/// Fixed-width, so a host may store values beyond the named ones.
enum eOrvoRunningMode : std::int32_t {
    eOrvoRunningModeStandard = 0,
    eOrvoRunningModeDemo = 1,
    eOrvoRunningModeBatch = 2,
};

/// Static only. Both values start as 0 (`eOperatingSystemUnknown`, `eOrvoRunningModeStandard`).
class OvSystemEnviroment {
public:
    OvSystemEnviroment() = delete;

    static eOperatingSystem GetOperatingSystem();
    static void SetOperatingSystem(eOperatingSystem system);
    static eOrvoRunningMode GetRunningMode();
    static void SetRunningMode(eOrvoRunningMode mode);
};

}  // namespace orvo
