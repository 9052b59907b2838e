// The few operating-system services the library needs: the UTC time of day, the local
// calendar time, text for an attached debugger and the location of the protocol file.
//
// Everything else in the library is portable standard C++; these calls are kept here so a
// port (or a test) has exactly one place to look at or to redirect.
#pragma once

#include <cstdint>
#include <ctime>
#include <functional>

#include "orvo/foundation/string.h"

namespace orvo {

// Calendar time in UTC with millisecond resolution. The fields are those of the Windows
// SYSTEMTIME record (and in the same order), so the Windows build fills it directly.
struct OvSystemTime {
    std::uint16_t wYear = 0;
    std::uint16_t wMonth = 0;      // 1-12
    std::uint16_t wDayOfWeek = 0;  // 0 = Sunday
    std::uint16_t wDay = 0;        // 1-31
    std::uint16_t wHour = 0;       // 0-23
    std::uint16_t wMinute = 0;
    std::uint16_t wSecond = 0;
    std::uint16_t wMilliseconds = 0;
};

// Fills `out` with the present moment in UTC (GetSystemTime on Windows).
void OvGetSystemTime(OvSystemTime& out);

// The present calendar time as the C library counts it (std::time).
std::time_t OvGetCalendarTime();

// Converts a calendar time to local time (time zone and daylight saving applied) without
// touching the C library's shared static result. Returns false when the conversion fails;
// `out` is then zeroed.
bool OvGetLocalTime(std::time_t when, std::tm& out);

// Where text for the debugger goes. On Windows the default sink is OutputDebugStringA; on other
// systems there is no debugger channel and the default sink discards the text. A host (or a
// test) may install its own sink on any system.
using OvDebugOutputSink = std::function<void(const char* text)>;

// Sends a NUL-terminated text to the current debug sink. A null text is ignored.
void OvOutputDebugString(const char* text);

// Installs `sink` as the debug sink and returns the one that was installed before (an empty
// function while the default was in force). Passing an empty function restores the default.
OvDebugOutputSink OvSetDebugOutputSink(OvDebugOutputSink sink);

// The protocol file of the debug logger. Its location is chosen in this order:
//   1. a path given to OvSetProtocolFilePath,
//   2. the environment variable ORVO_PROTOCOL_FILE when it is set and not empty,
//   3. the default: "\OrvoProtokoll.log" (the root of the current drive) on Windows,
//      "/OrvoProtokoll.log" elsewhere.
// The environment is consulted on every call, so a change to it takes effect at once.
String OvGetProtocolFilePath();

// The built-in default location (rule 3 above), whatever is redirected.
String OvGetDefaultProtocolFilePath();

// Redirects the protocol file to `path`; an empty path removes the redirection again.
void OvSetProtocolFilePath(const String& path);

}  // namespace orvo
