// System calls of the platform layer for POSIX systems.
#ifndef _WIN32

#include <time.h>

#include <chrono>
#include <cstring>

#include "orvo/foundation/platform.h"
#include "platform_internal.h"

namespace orvo {

namespace platform_detail {

// There is no debugger channel on these systems; a host that wants the text installs a sink.
void DefaultDebugOutput(const char*) {}

}  // namespace platform_detail

void OvGetSystemTime(OvSystemTime& out) {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const auto sinceEpoch = now.time_since_epoch();
    const std::time_t seconds =
        static_cast<std::time_t>(duration_cast<std::chrono::seconds>(sinceEpoch).count());
    const auto millis = duration_cast<milliseconds>(sinceEpoch).count() % 1000;

    std::tm utc{};
    if (gmtime_r(&seconds, &utc) == nullptr) {
        out = OvSystemTime{};
        return;
    }
    out.wYear = static_cast<std::uint16_t>(utc.tm_year + 1900);
    out.wMonth = static_cast<std::uint16_t>(utc.tm_mon + 1);
    out.wDayOfWeek = static_cast<std::uint16_t>(utc.tm_wday);
    out.wDay = static_cast<std::uint16_t>(utc.tm_mday);
    out.wHour = static_cast<std::uint16_t>(utc.tm_hour);
    out.wMinute = static_cast<std::uint16_t>(utc.tm_min);
    out.wSecond = static_cast<std::uint16_t>(utc.tm_sec);
    out.wMilliseconds = static_cast<std::uint16_t>(millis < 0 ? 0 : millis);
}

std::time_t OvGetCalendarTime() {
    return std::time(nullptr);
}

bool OvGetLocalTime(std::time_t when, std::tm& out) {
    if (localtime_r(&when, &out) != nullptr) return true;
    std::memset(&out, 0, sizeof out);
    return false;
}

}  // namespace orvo

#endif  // !_WIN32
