#include "orvo/services/environment.h"

namespace orvo {

namespace {

// Two of the few process-wide values the design has; the host sets them, nothing else does.
eOperatingSystem operatingSystem = eOperatingSystemUnknown;
eOrvoRunningMode runningMode = eOrvoRunningModeStandard;

}  // namespace

eOperatingSystem OvSystemEnviroment::GetOperatingSystem() {
    return operatingSystem;
}
void OvSystemEnviroment::SetOperatingSystem(eOperatingSystem system) {
    operatingSystem = system;
}
eOrvoRunningMode OvSystemEnviroment::GetRunningMode() {
    return runningMode;
}
void OvSystemEnviroment::SetRunningMode(eOrvoRunningMode mode) {
    runningMode = mode;
}

}  // namespace orvo
