// Progress-bar routing: any code can show, advance and hide a progress display without knowing
// the host's display class. The host registers links to its own handlers; the library only
// stores the request's values and calls the link.
#pragma once

#include <cstdint>

#include "orvo/foundation/link.h"
#include "orvo/foundation/string.h"

namespace orvo {

/// Forwards progress-bar requests to the handlers the host registered.
///
/// Everything is process-wide and static; instances carry no data. The request's values (text,
/// range, position) are stored here and a handler is called with a null argument: it reads them
/// through the getters. Nested progress displays therefore share one text, range and position.
/// Initially the text is empty, the range is 0..100 and the position 0.
///
/// Not thread-safe: the host calls it from one thread at a time.
class OvProgressBarRouter {
public:
    virtual ~OvProgressBarRouter();

    /// Each replaces the stored link and returns the previous one, so a caller that installs a
    /// handler for a while can put the old one back afterwards.
    static Link RegisterShowProgressBarLnk(const Link& link);
    static Link RegisterHideProgressBarLnk(const Link& link);
    static Link RegisterSetProgressBarPosLnk(const Link& link);

    /// Stores text and range, then calls the show link; returns its result, or 0 without a link.
    static std::int32_t ShowProgressBar(const String& text, std::int32_t lower, std::int32_t upper);
    /// Stores the position, then calls the set-position link; its result, or 0 without a link.
    static std::int32_t SetProgressBarPos(std::int32_t pos);
    /// Calls the hide link; its result, or 0 without a link. The stored values are kept.
    static std::int32_t HideProgressBar();

    static const String& GetProgressBarText();
    static std::int32_t GetProgressBarLower();
    static std::int32_t GetProgressBarUpper();
    static std::int32_t GetProgressBarPos();
};

}  // namespace orvo
