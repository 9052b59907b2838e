// The logger chain: the library reports through OvApplicationLogger::Log; the host registers
// an OvMasterLogger that stamps each message with the local time and hands it to every
// registered OvLogger whose level admits it. OvOrvoDebugLogger appends messages to the
// protocol file. dbgprintf and OvDifftime are small diagnostics for developers.
//
// None of this is locked: the host logs from one thread at a time.
#pragma once

#include <cstdint>
#include <ctime>

#include "orvo/foundation/list.h"
#include "orvo/foundation/object.h"
#include "orvo/foundation/platform.h"
#include "orvo/foundation/string.h"

namespace orvo {

// Base of all loggers. A logger receives a message when the message's level is at most the
// logger's level, so a larger level means a more talkative logger. The base does nothing.
class OvLogger {
public:
    explicit OvLogger(int level = 3) : level(level) {}
    OvLogger(const OvLogger&) = default;
    OvLogger& operator=(const OvLogger&) = default;

    virtual int Start() { return 0; }
    virtual int Stop() { return 0; }
    virtual int Log(int /*level*/, const char* /*text*/) { return 0; }
    virtual ~OvLogger() = default;

    int GetLevel() const { return level; }
    void SetLevel(int newLevel) { level = newLevel; }

protected:
    std::int32_t level;
};

// A list entry that refers to a logger without owning it.
class OvLoggerRef : public OvListnode {
public:
    explicit OvLoggerRef(OvLogger* logger = nullptr) : logger(logger) {}
    OvLoggerRef(const OvLoggerRef&) = default;
    OvLoggerRef& operator=(const OvLoggerRef&) = default;
    ~OvLoggerRef() override = default;

    OvLogger* GetLogger() const { return logger; }

private:
    OvLogger* logger;
};

// The host's logger: expands its format template for each message and passes the result to
// every registered logger whose level admits the message, in registration order.
//
// The template's placeholders are "$day", "$month", "$year", "$hour12", "$hour24", "$minute",
// "$second", "$ampm" and "$mesg" (the message). They are replaced in one left-to-right pass
// over the template; text that was inserted is never scanned again, so a message that holds a
// placeholder word keeps it literally.
//
// The master never deletes the loggers it refers to. A master that is destroyed while it is
// registered with OvApplicationLogger unregisters itself first.
class OvMasterLogger : public OvLogger {
public:
    static constexpr const char* kDefaultFormat = "[$hour24:$minute:$second] $mesg";

    OvMasterLogger();
    OvMasterLogger(const OvMasterLogger& other);
    OvMasterLogger& operator=(const OvMasterLogger& other);
    ~OvMasterLogger() override;

    // Calls Start resp. Stop of every registered logger; 1 when any of them returned non-zero.
    int Start() override;
    int Stop() override;
    // Expands the template and hands the text to every logger whose level is at least `level`;
    // 1 when any of them returned non-zero.
    int Log(int level, const char* text) override;

    // Appends a reference; a logger added twice receives every message twice.
    void AddLogger(OvLogger* logger);
    // Removes the first reference to `logger`; the logger itself is left alone.
    void SubtractLogger(OvLogger* logger);
    // Replaces the format template (a null text gives an empty template).
    void SetFormat(const char* format);
    const String& GetFormat() const { return format; }
    int GetLoggerCount() const;

protected:
    // Expands `templ` in place for the message `text` at the present local time.
    void Format(String& templ, const char* text);
    // The same for a given local time, so the expansion does not depend on the clock.
    static void Format(String& templ, const char* text, const std::tm& localTime);

private:
    TOvListHeader<OvLoggerRef> loggers;
    String format;
};

// The library's one entry point for messages. Messages logged while no master is registered
// wait in a queue and are delivered, oldest first, by the first Log call made while one is.
class OvApplicationLogger {
public:
    // Registers the master (not owned); null unregisters.
    static void RegisterMasterLogger(OvMasterLogger* master);
    static OvMasterLogger* GetMasterLogger();

    // Queues the message, then delivers the whole queue if a master is registered. Returns the
    // number of messages still queued (0 with a master). Each message leaves the queue before it
    // is delivered, so a logger that logs from inside its own Log does not recurse forever.
    static int Log(int level, const String& text);

    // The number of messages waiting for a master.
    static int GetPendingCount();
    // Drops every waiting message without delivering it.
    static void DiscardPending();
};

// The library's own logger: appends every message it receives (level 4 and below by default)
// to the protocol file, one line "<level> : <text>", opening and closing the file for each
// message so that the protocol survives a crash. The file's location is given by
// OvGetProtocolFilePath (orvo/foundation/platform.h). Failures are not reported.
class OvOrvoDebugLogger : public OvLogger {
public:
    OvOrvoDebugLogger() : OvLogger(4) {}
    OvOrvoDebugLogger(const OvOrvoDebugLogger&) = default;
    OvOrvoDebugLogger& operator=(const OvOrvoDebugLogger&) = default;
    ~OvOrvoDebugLogger() override = default;

    int Log(int level, const char* text) override;  // always 0
};

// Creates the debug logger and adds it to the registered master; does nothing without a master
// or when one is installed already. Logs "InstallOrvoDebugLogger()" at level 4.
void InstallOrvoDebugLogger();
// Logs "UninstallOrvoDebugLogger()" at level 4, removes the debug logger from the master and
// deletes it; does nothing without a master or without an installed debug logger.
void UninstallOrvoDebugLogger();
bool IsOrvoDebugLoggerInstalled();

// Size of dbgprintf's buffer, its terminating NUL included.
inline constexpr int kDbgprintfBufferSize = 1500;

// Formats like printf and sends the text to the debugger (OvOutputDebugString). A text longer
// than kDbgprintfBufferSize - 1 characters is cut at that length. Returns the number of
// characters sent, or a negative value when the format is invalid (nothing is sent then).
int dbgprintf(const char* format, ...)
#if defined(__GNUC__) || defined(__clang__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

// A wall-clock stopwatch over the UTC time of day. Only the time of day counts: a measurement
// across UTC midnight is negative, and Value() of a running stopwatch uses the last stop time.
class OvDifftime {
public:
    OvDifftime();  // starts running
    // A stopped stopwatch holding two recorded times (to evaluate a measurement taken earlier).
    OvDifftime(const OvSystemTime& startTime, const OvSystemTime& stopTime);
    OvDifftime(const OvDifftime&) = default;
    OvDifftime& operator=(const OvDifftime&) = default;

    void Start();
    void Stop();
    bool IsRunning() const { return running; }
    // Stop minus start in seconds of the day (with milliseconds).
    double Value() const;

    const OvSystemTime& GetStartTime() const { return start; }
    const OvSystemTime& GetStopTime() const { return stop; }

    // The time of day of a record in seconds, as Value counts it.
    static double SecondsOfDay(const OvSystemTime& t);

private:
    OvSystemTime start;
    OvSystemTime stop;
    bool running;
};

}  // namespace orvo
