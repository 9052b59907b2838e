// What every subcommand shares: parsing its arguments with the standard answers to "--help"
// and to usage errors, sending the library's log messages to the error stream, drawing a
// progress bar for long jobs, and formatting numbers for reports.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "arg_parser.h"
#include "cli.h"
#include "orvo/foundation/link.h"
#include "orvo/services/logger.h"
#include "point_files.h"

namespace orvo::cli {

/// Log levels of the tool's messages (a message reaches the error stream when its level is at
/// most the chosen one): errors, warnings (the library logs read errors at this level), what
/// the command is doing (-v), details (-vv).
inline constexpr int kLogError = 1;
inline constexpr int kLogWarning = 2;
inline constexpr int kLogInfo = 3;
inline constexpr int kLogDebug = 4;

/// Adds "-v, --verbose" (repeatable) and "-q, --quiet" to a command's parser.
void AddLogOptions(ArgParser& parser);
/// The level those options choose: warnings by default, one more per -v, errors only with -q.
int LogLevelOf(const ArgParser& parser);

/// Parses the command's arguments. Returns nothing when the command should go on; otherwise
/// the exit code to return at once: 0 after printing the help for "--help" (to the output
/// stream), 2 after printing the error, the usage line and a hint (to the error stream).
/// `name` is the command's name in messages, e.g. "orvo fit".
std::optional<int> ParseOrExit(ArgParser& parser, const Args& args, Io& io,
                               const std::string& name);

/// An error of the command itself (not of the data): "orvo fit: <text>" on the error stream.
void PrintError(Io& io, const std::string& name, const std::string& text);

/// The columns named by the option `option` (e.g. "columns"): set from its value when it is
/// given, left as they are when it is not. False, with the error printed as one of `command`,
/// for a list that does not parse.
bool ColumnsOption(const ArgParser& parser, const std::string& option, Io& io,
                   const std::string& command, std::optional<OvPointFormat>& columns);
/// Prints every problem of the read as an error of `command`; true when there was none.
bool ReportProblems(const PointFile& file, Io& io, const std::string& command);

/// Routes the library's log messages to a stream for the lifetime of the object: installs a
/// master logger (format "$mesg") with one logger that writes "orvo: <message>" lines, the
/// level word "error: " or "warning: " in front of messages of those levels. The master that
/// was registered before is registered again afterwards. Messages that were waiting for a
/// master are dropped first: they belong to no command of this run.
class LogSession {
public:
    LogSession(std::ostream& stream, int level);
    LogSession(const LogSession&) = delete;
    LogSession& operator=(const LogSession&) = delete;
    ~LogSession();

private:
    class StreamLogger;
    std::unique_ptr<StreamLogger> logger_;
    std::unique_ptr<OvMasterLogger> master_;
    OvMasterLogger* previous_;
};

/// Logs through the application logger (so the active LogSession decides where it goes).
void LogMessage(int level, const std::string& text);

/// A progress bar on a terminal, driven through the library's progress routing: while the
/// object lives, its handlers are the registered show, position and hide links of
/// `OvProgressBarRouter`, and every request is drawn on the stream as one line that is
/// rewritten in place ("\r<text> [#####.....]  45%"). The previous links come back at the end.
/// With `enabled` false nothing is registered and nothing drawn.
class ProgressSession : public LinkHdl {
public:
    ProgressSession(std::ostream& stream, bool enabled);
    ProgressSession(const ProgressSession&) = delete;
    ProgressSession& operator=(const ProgressSession&) = delete;
    ~ProgressSession() override;

private:
    std::int32_t OnShow(void*);
    std::int32_t OnPosition(void*);
    std::int32_t OnHide(void*);
    void Draw();

    std::ostream& stream_;
    bool enabled_;
    bool visible_ = false;
    int shownPercent_ = -1;
    std::size_t drawnWidth_ = 0;
    Link previousShow_;
    Link previousPosition_;
    Link previousHide_;
};

/// One long job reported through `OvProgressBarRouter`: shows the bar with the text and the
/// range 0..total, `Step` moves it, the destructor hides it.
class ProgressTask {
public:
    ProgressTask(const std::string& text, std::int64_t total);
    ProgressTask(const ProgressTask&) = delete;
    ProgressTask& operator=(const ProgressTask&) = delete;
    ~ProgressTask();
    /// Reports that `done` of the total are finished (the bar moves in whole percents only,
    /// so calling this for every item costs little).
    void Step(std::int64_t done);

private:
    std::int64_t total_;
    int lastPercent_ = -1;
};

// -- number formatting for reports ----------------------------------------------------------------

/// The value with `decimals` digits after the point, right-aligned in `width` ("nan" and
/// "inf" for values that are not finite).
std::string Fixed(double value, int decimals, int width = 0);
/// The value with `digits` significant digits in the shortest of fixed and scientific form.
std::string General(double value, int digits, int width = 0);
/// "p0", "p1", ...: the name of a transformation parameter.
std::string ParamName(int index);
/// The text right-aligned in `width`.
std::string Right(const std::string& text, int width);
/// The text left-aligned in `width`.
std::string Left(const std::string& text, int width);

}  // namespace orvo::cli
