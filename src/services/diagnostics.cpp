// Developer diagnostics: printf to the debugger and a time-of-day stopwatch.
#include <cstdarg>
#include <cstdio>

#include "orvo/services/logger.h"

namespace orvo {

int dbgprintf(const char* format, ...) {
    if (format == nullptr) return -1;
    char buffer[kDbgprintfBufferSize];
    va_list args;
    va_start(args, format);
    // Bounded: an over-long text is cut instead of running past the buffer.
    const int formatted = std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    if (formatted < 0) return formatted;
    OvOutputDebugString(buffer);
    return formatted < kDbgprintfBufferSize ? formatted : kDbgprintfBufferSize - 1;
}

OvDifftime::OvDifftime() : start(), stop(), running(true) {
    OvGetSystemTime(start);
}

OvDifftime::OvDifftime(const OvSystemTime& startTime, const OvSystemTime& stopTime)
    : start(startTime), stop(stopTime), running(false) {}

void OvDifftime::Start() {
    running = true;
    OvGetSystemTime(start);
}

void OvDifftime::Stop() {
    running = false;
    OvGetSystemTime(stop);
}

double OvDifftime::SecondsOfDay(const OvSystemTime& t) {
    return t.wHour * 3600.0 + t.wMinute * 60.0 + t.wSecond + t.wMilliseconds * 0.001;
}

double OvDifftime::Value() const {
    return SecondsOfDay(stop) - SecondsOfDay(start);
}

}  // namespace orvo
