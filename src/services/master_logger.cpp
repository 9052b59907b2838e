// The master logger: time-stamped expansion of each message and fan-out to the registered
// loggers.
#include <cstdio>
#include <cstring>
#include <string>

#include "orvo/services/logger.h"

namespace orvo {

namespace {

struct Placeholder {
    const char* word;
    std::size_t length;
};

// The words the template understands. None is a prefix of another, so the single left-to-right
// scan in Format never has to choose between two of them.
enum PlaceholderIndex { kDay, kMonth, kYear, kHour12, kHour24, kMinute, kSecond, kAmPm, kMesg };

constexpr Placeholder kPlaceholders[] = {
    {"$day", 4},    {"$month", 6},  {"$year", 5}, {"$hour12", 7}, {"$hour24", 7},
    {"$minute", 7}, {"$second", 7}, {"$ampm", 5}, {"$mesg", 5},
};

OvLoggerRef* NextRef(const OvLoggerRef* ref) {
    return static_cast<OvLoggerRef*>(ref->GetNext());
}

std::string TwoDigits(int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d", value);
    return text;
}

std::string FourDigitYear(int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%4d", value);
    return text;
}

}  // namespace

OvMasterLogger::OvMasterLogger() : OvLogger(3), format(kDefaultFormat) {}

OvMasterLogger::OvMasterLogger(const OvMasterLogger& other)
    : OvLogger(other), loggers(other.loggers), format(other.format) {}

OvMasterLogger& OvMasterLogger::operator=(const OvMasterLogger& other) {
    if (this != &other) {
        OvLogger::operator=(other);
        loggers = other.loggers;
        format = other.format;
    }
    return *this;
}

OvMasterLogger::~OvMasterLogger() {
    // The application logger must never call a master that is gone.
    if (OvApplicationLogger::GetMasterLogger() == this) {
        OvApplicationLogger::RegisterMasterLogger(nullptr);
    }
}

int OvMasterLogger::Start() {
    int anyStarted = 0;
    for (OvLoggerRef* ref = loggers.First(); ref != nullptr; ref = NextRef(ref)) {
        if (ref->GetLogger() != nullptr && ref->GetLogger()->Start() != 0) anyStarted = 1;
    }
    return anyStarted;
}

int OvMasterLogger::Stop() {
    int anyStopped = 0;
    for (OvLoggerRef* ref = loggers.First(); ref != nullptr; ref = NextRef(ref)) {
        if (ref->GetLogger() != nullptr && ref->GetLogger()->Stop() != 0) anyStopped = 1;
    }
    return anyStopped;
}

int OvMasterLogger::Log(int messageLevel, const char* text) {
    String expanded(format);
    Format(expanded, text);
    int anyLogged = 0;
    for (OvLoggerRef* ref = loggers.First(); ref != nullptr; ref = NextRef(ref)) {
        OvLogger* logger = ref->GetLogger();
        if (logger == nullptr || messageLevel > logger->GetLevel()) continue;
        if (logger->Log(messageLevel, expanded.chars()) != 0) anyLogged = 1;
    }
    return anyLogged;
}

void OvMasterLogger::AddLogger(OvLogger* logger) {
    loggers.Add(new OvLoggerRef(logger));
}

void OvMasterLogger::SubtractLogger(OvLogger* logger) {
    for (OvLoggerRef* ref = loggers.First(); ref != nullptr; ref = NextRef(ref)) {
        if (ref->GetLogger() == logger) {
            delete loggers.Subtract(ref);
            return;
        }
    }
}

void OvMasterLogger::SetFormat(const char* newFormat) {
    format = String(newFormat != nullptr ? newFormat : "");
}

int OvMasterLogger::GetLoggerCount() const {
    return loggers.Count();
}

void OvMasterLogger::Format(String& templ, const char* text) {
    std::tm localTime{};
    OvGetLocalTime(OvGetCalendarTime(), localTime);
    Format(templ, text, localTime);
}

void OvMasterLogger::Format(String& templ, const char* text, const std::tm& localTime) {
    const int hour = localTime.tm_hour;
    const std::string values[] = {
        TwoDigits(localTime.tm_mday),
        TwoDigits(localTime.tm_mon + 1),
        FourDigitYear(localTime.tm_year + 1900),
        TwoDigits(hour < 13 ? hour : hour - 12),
        TwoDigits(hour),
        TwoDigits(localTime.tm_min),
        TwoDigits(localTime.tm_sec),
        hour < 12 ? "AM" : "PM",
        text != nullptr ? text : "",
    };

    const char* source = templ.chars();
    const std::size_t sourceLength = static_cast<std::size_t>(templ.length());
    std::string expanded;
    expanded.reserve(sourceLength + values[kMesg].size());
    std::size_t pos = 0;
    while (pos < sourceLength) {
        bool replaced = false;
        if (source[pos] == '$') {
            for (int i = kDay; i <= kMesg; ++i) {
                const Placeholder& p = kPlaceholders[i];
                if (sourceLength - pos >= p.length &&
                    std::memcmp(source + pos, p.word, p.length) == 0) {
                    expanded += values[i];
                    pos += p.length;
                    replaced = true;
                    break;
                }
            }
        }
        if (!replaced) expanded += source[pos++];
    }
    templ = String(expanded.c_str());
}

}  // namespace orvo
