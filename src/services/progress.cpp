#include "orvo/services/progress.h"

namespace orvo {

namespace {

// The router's process-wide state, built on first use so that no order of static
// initialisation between translation units matters.
struct ProgressState {
    String text;
    std::int32_t lower = 0;
    std::int32_t upper = 100;
    std::int32_t pos = 0;
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
    return CallIfSet(state.show);
}

std::int32_t OvProgressBarRouter::SetProgressBarPos(std::int32_t pos) {
    State().pos = pos;
    return CallIfSet(State().setPos);
}

std::int32_t OvProgressBarRouter::HideProgressBar() {
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

}  // namespace orvo
