#include "orvo/services/progress.h"

#include <limits>

namespace orvo {

namespace {

// The router's process-wide state, built on first use so that no order of static
// initialisation between translation units matters.
struct ProgressState {
    String text;
    std::int32_t lower = 0;
    std::int32_t upper = 100;
    std::int32_t pos = 0;
    bool shown = false;
    Link show;
    Link hide;
    Link setPos;
};

ProgressState& State() {
    static ProgressState state;
    return state;
}

Link Replace(Link& stored, const Link& link) {
    Link previous = stored;
    stored = link;
    return previous;
}

// Calls a copy, so a handler that registers another link meanwhile does not pull the stored one
// out from under the running call.
std::int32_t CallIfSet(const Link& stored) {
    const Link link = stored;
    return link.IsSet() ? link.Call(nullptr) : 0;
}

}  // namespace

OvProgressBarRouter::~OvProgressBarRouter() = default;

Link OvProgressBarRouter::RegisterShowProgressBarLnk(const Link& link) {
    return Replace(State().show, link);
}

Link OvProgressBarRouter::RegisterHideProgressBarLnk(const Link& link) {
    return Replace(State().hide, link);
}

Link OvProgressBarRouter::RegisterSetProgressBarPosLnk(const Link& link) {
    return Replace(State().setPos, link);
}

std::int32_t OvProgressBarRouter::ShowProgressBar(const String& text, std::int32_t lower,
                                                  std::int32_t upper) {
    ProgressState& state = State();
    state.text = text;
    state.lower = lower;
    state.upper = upper;
    state.shown = true;
    return CallIfSet(state.show);
}

std::int32_t OvProgressBarRouter::SetProgressBarPos(std::int32_t pos) {
    State().pos = pos;
    return CallIfSet(State().setPos);
}

std::int32_t OvProgressBarRouter::HideProgressBar() {
    State().shown = false;
    return CallIfSet(State().hide);
}

const String& OvProgressBarRouter::GetProgressBarText() {
    return State().text;
}
std::int32_t OvProgressBarRouter::GetProgressBarLower() {
    return State().lower;
}
std::int32_t OvProgressBarRouter::GetProgressBarUpper() {
    return State().upper;
}
std::int32_t OvProgressBarRouter::GetProgressBarPos() {
    return State().pos;
}
bool OvProgressBarRouter::IsProgressBarShown() {
    return State().shown;
}

// ---- OvProgressTask -------------------------------------------------------------------------

namespace {
// The next report of a job that reached 100 %.
constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();
}  // namespace

OvProgressTask::OvProgressTask(const String& text, std::uint64_t total, std::uint64_t minimumTotal)
    : total_(total) {
    if (total < minimumTotal || OvProgressBarRouter::IsProgressBarShown()) return;
    const ProgressState& state = State();
    savedText_ = state.text;
    savedLower_ = state.lower;
    savedUpper_ = state.upper;
    savedPos_ = state.pos;
    reporting_ = true;
    percent_ = 0;
    nextReport_ = Threshold(1);
    try {
        OvProgressBarRouter::ShowProgressBar(text, 0, 100);
        OvProgressBarRouter::SetProgressBarPos(0);
    } catch (...) {
        End();  // a host handler failed: leave the router as it was, then let the error go on
        throw;
    }
}

OvProgressTask::~OvProgressTask() {
    try {
        End();
    } catch (...) {
        // A destructor must not throw; the display is the host's to repair.
    }
}

void OvProgressTask::Report(std::uint64_t done) {
    if (done > total_) done = total_;
    while (percent_ < 100 && done >= Threshold(percent_ + 1))
        ++percent_;
    nextReport_ = percent_ < 100 ? Threshold(percent_ + 1) : kNever;
    OvProgressBarRouter::SetProgressBarPos(percent_);
}

void OvProgressTask::Finish() {
    if (!reporting_) return;
    if (percent_ < 100) {
        percent_ = 100;
        nextReport_ = kNever;
        OvProgressBarRouter::SetProgressBarPos(100);
    }
    End();
}

void OvProgressTask::End() {
    if (!reporting_) return;
    reporting_ = false;
    const auto restore = [this] {
        ProgressState& state = State();
        state.text = savedText_;
        state.lower = savedLower_;
        state.upper = savedUpper_;
        state.pos = savedPos_;
    };
    try {
        OvProgressBarRouter::HideProgressBar();
    } catch (...) {
        restore();
        throw;
    }
    restore();
}

std::uint64_t OvProgressTask::Threshold(int percent) const {
    // ceil(percent * total / 100), split so that no product can overflow.
    const auto p = static_cast<std::uint64_t>(percent);
    return p * (total_ / 100) + (p * (total_ % 100) + 99) / 100;
}

}  // namespace orvo
