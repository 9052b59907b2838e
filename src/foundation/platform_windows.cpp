// System calls of the platform layer for Windows.
#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <cstring>
#include <ctime>

#include "orvo/foundation/platform.h"
#include "platform_internal.h"

namespace orvo {

namespace platform_detail {

void DefaultDebugOutput(const char* text) {
    ::OutputDebugStringA(text);
}

}  // namespace platform_detail

void OvGetSystemTime(OvSystemTime& out) {
    SYSTEMTIME now;
    ::GetSystemTime(&now);
    out.wYear = now.wYear;
    out.wMonth = now.wMonth;
    out.wDayOfWeek = now.wDayOfWeek;
    out.wDay = now.wDay;
    out.wHour = now.wHour;
    out.wMinute = now.wMinute;
    out.wSecond = now.wSecond;
    out.wMilliseconds = now.wMilliseconds;
}

std::time_t OvGetCalendarTime() {
    return std::time(nullptr);
}

bool OvGetLocalTime(std::time_t when, std::tm& out) {
    if (localtime_s(&out, &when) == 0) return true;
    std::memset(&out, 0, sizeof out);
    return false;
}

}  // namespace orvo

#endif  // _WIN32
