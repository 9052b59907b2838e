#include "command_support.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "orvo/foundation/string.h"
#include "orvo/services/progress.h"

namespace orvo::cli {

void AddLogOptions(ArgParser& parser) {
    parser.Flag("verbose", 'v', "tell what is being done (twice: more detail)");
    parser.Flag("quiet", 'q', "report errors only, no warnings");
}

int LogLevelOf(const ArgParser& parser) {
    if (parser.Has("quiet")) return kLogError;
    return std::min(kLogWarning + parser.Count("verbose"), kLogDebug);
}

std::optional<int> ParseOrExit(ArgParser& parser, const Args& args, Io& io,
                               const std::string& name) {
    if (!parser.Parse(args)) {
        io.err << name << ": " << parser.Error() << "\n"
               << parser.Usage() << "\n"
               << "Try '" << name << " --help' for more information.\n";
        return 2;
    }
    if (parser.HelpRequested()) {
        parser.PrintHelp(io.out);
        return 0;
    }
    return std::nullopt;
}

void PrintError(Io& io, const std::string& name, const std::string& text) {
    io.err << name << ": " << text << "\n";
}

// -- logging -------------------------------------------------------------------------------------

class LogSession::StreamLogger : public OvLogger {
public:
    StreamLogger(std::ostream& stream, int level) : OvLogger(level), stream_(stream) {}
    int Log(int level, const char* text) override {
        stream_ << "orvo: ";
        if (level <= kLogError) {
            stream_ << "error: ";
        } else if (level == kLogWarning) {
            stream_ << "warning: ";
        }
        stream_ << (text != nullptr ? text : "") << "\n";
        return 1;
    }

private:
    std::ostream& stream_;
};

LogSession::LogSession(std::ostream& stream, int level)
    : logger_(std::make_unique<StreamLogger>(stream, level)),
      master_(std::make_unique<OvMasterLogger>()),
      previous_(OvApplicationLogger::GetMasterLogger()) {
    master_->SetFormat("$mesg");
    master_->AddLogger(logger_.get());
    // The master passes on every level; the stream logger's own level decides.
    master_->SetLevel(kLogDebug);
    OvApplicationLogger::DiscardPending();
    OvApplicationLogger::RegisterMasterLogger(master_.get());
}

LogSession::~LogSession() {
    OvApplicationLogger::RegisterMasterLogger(previous_);
    master_->SubtractLogger(logger_.get());
}

void LogMessage(int level, const std::string& text) {
    OvApplicationLogger::Log(level, String(text.c_str()));
}

// -- progress ------------------------------------------------------------------------------------

namespace {
constexpr int kBarWidth = 30;
}

ProgressSession::ProgressSession(std::ostream& stream, bool enabled)
    : stream_(stream), enabled_(enabled) {
    if (!enabled_) return;
    previousShow_ =
        OvProgressBarRouter::RegisterShowProgressBarLnk(MakeLink(this, &ProgressSession::OnShow));
    previousPosition_ = OvProgressBarRouter::RegisterSetProgressBarPosLnk(
        MakeLink(this, &ProgressSession::OnPosition));
    previousHide_ =
        OvProgressBarRouter::RegisterHideProgressBarLnk(MakeLink(this, &ProgressSession::OnHide));
}

ProgressSession::~ProgressSession() {
    if (!enabled_) return;
    OnHide(nullptr);
    OvProgressBarRouter::RegisterShowProgressBarLnk(previousShow_);
    OvProgressBarRouter::RegisterSetProgressBarPosLnk(previousPosition_);
    OvProgressBarRouter::RegisterHideProgressBarLnk(previousHide_);
}

std::int32_t ProgressSession::OnShow(void*) {
    visible_ = true;
    shownPercent_ = -1;
    Draw();
    return 1;
}

std::int32_t ProgressSession::OnPosition(void*) {
    if (visible_) Draw();
    return 1;
}

std::int32_t ProgressSession::OnHide(void*) {
    if (!visible_) return 1;
    // Blank the line and leave the cursor at its start, so the next output starts clean.
    stream_ << "\r" << std::string(drawnWidth_, ' ') << "\r" << std::flush;
    visible_ = false;
    drawnWidth_ = 0;
    return 1;
}

void ProgressSession::Draw() {
    const double lower = OvProgressBarRouter::GetProgressBarLower();
    const double upper = OvProgressBarRouter::GetProgressBarUpper();
    const double pos = OvProgressBarRouter::GetProgressBarPos();
    double fraction = upper > lower ? (pos - lower) / (upper - lower) : 1.0;
    fraction = std::clamp(fraction, 0.0, 1.0);
    const int percent = static_cast<int>(fraction * 100.0);
    if (percent == shownPercent_) return;
    shownPercent_ = percent;
    const int filled = static_cast<int>(fraction * kBarWidth);
    char tail[16];
    std::snprintf(tail, sizeof tail, "] %3d%%", percent);
    std::string line = OvProgressBarRouter::GetProgressBarText().chars();
    line += " [" + std::string(static_cast<std::size_t>(filled), '#') +
            std::string(static_cast<std::size_t>(kBarWidth - filled), '.') + tail;
    stream_ << "\r" << line;
    if (line.size() < drawnWidth_) stream_ << std::string(drawnWidth_ - line.size(), ' ');
    stream_ << std::flush;
    drawnWidth_ = std::max(drawnWidth_, line.size());
}

ProgressTask::ProgressTask(const std::string& text, std::int64_t total)
    : total_(std::max<std::int64_t>(total, 1)) {
    // The position is process-wide and still holds the end of the last job: start afresh
    // before the bar is shown.
    OvProgressBarRouter::SetProgressBarPos(0);
    OvProgressBarRouter::ShowProgressBar(String(text.c_str()), 0, 100);
}

ProgressTask::~ProgressTask() {
    OvProgressBarRouter::HideProgressBar();
}

void ProgressTask::Step(std::int64_t done) {
    const int percent = static_cast<int>(std::clamp<std::int64_t>(done * 100 / total_, 0, 100));
    if (percent == lastPercent_) return;
    lastPercent_ = percent;
    OvProgressBarRouter::SetProgressBarPos(percent);
}

// -- numbers -------------------------------------------------------------------------------------

std::string ParamName(int index) {
    // Built up rather than as "p" + std::to_string(index), which g++ 12 at -O2 warns about
    // (a false -Wrestrict in the library's string concatenation).
    std::string name = "p";
    name += std::to_string(index);
    return name;
}

std::string Right(const std::string& text, int width) {
    const auto w = static_cast<std::size_t>(std::max(width, 0));
    return text.size() >= w ? text : std::string(w - text.size(), ' ') + text;
}

std::string Left(const std::string& text, int width) {
    const auto w = static_cast<std::size_t>(std::max(width, 0));
    return text.size() >= w ? text : text + std::string(w - text.size(), ' ');
}

std::string Fixed(double value, int decimals, int width) {
    if (!std::isfinite(value)) return Right(std::isnan(value) ? "nan" : "inf", width);
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    // "-0.000" says nothing a plain "0.000" does not.
    std::string shown = text;
    if (shown[0] == '-' && shown.find_first_not_of("-0.") == std::string::npos) shown.erase(0, 1);
    return Right(shown, width);
}

std::string General(double value, int digits, int width) {
    if (!std::isfinite(value)) return Right(std::isnan(value) ? "nan" : "inf", width);
    char text[64];
    std::snprintf(text, sizeof text, "%.*g", digits, value);
    return Right(text, width);
}

bool ColumnsOption(const ArgParser& parser, const std::string& option, Io& io,
                   const std::string& command, std::optional<OvPointFormat>& columns) {
    if (!parser.Has(option)) return true;
    std::string error;
    columns = ParseColumns(parser.Value(option), &error);
    if (columns) return true;
    PrintError(io, command, error);
    return false;
}

bool ReportProblems(const PointFile& file, Io& io, const std::string& command) {
    for (const FileProblem& problem : file.problems)
        PrintError(io, command, FormatProblem(problem));
    return file.problems.empty();
}

}  // namespace orvo::cli
