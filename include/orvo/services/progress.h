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
    /// True from a `ShowProgressBar` until the next `HideProgressBar`; false initially. The
    /// library's own long jobs look at it so as not to take over a display someone else shows.
    static bool IsProgressBarShown();
};

/// The progress of one long job of the library (reading a large point file, converting a large
/// point list), reported through `OvProgressBarRouter` so that a host with a registered display
/// can follow it:
///
/// - A job of fewer than `minimumTotal` units reports nothing: it ends before a display would be
///   worth showing, and makes no router call at all.
/// - Nor does a job report while a progress bar is already shown, by the host or by an outer
///   job: there is one display, shared by everyone, and it stays with whoever showed it.
/// - Otherwise the job calls `ShowProgressBar(text, 0, 100)` and `SetProgressBarPos(0)`, then
///   `SetProgressBarPos` with the whole percentage done each time that percentage grows, and at
///   the end `SetProgressBarPos(100)` (unless already there) and `HideProgressBar`. That is at
///   most 101 position calls however large the job, and the positions never decrease.
/// - After the hide, the router's stored text, range and position are put back to what they
///   were before the job, without calling any link. The registered links are never touched.
class OvProgressTask {
public:
    OvProgressTask(const String& text, std::uint64_t total, std::uint64_t minimumTotal);
    OvProgressTask(const OvProgressTask&) = delete;
    OvProgressTask& operator=(const OvProgressTask&) = delete;
    /// A job that was not finished (abandoned by an exception, say) hides its bar without
    /// reporting 100 %; an exception thrown by the host's hide handler is dropped here.
    ~OvProgressTask();

    /// Whether this job shows a bar (see above).
    bool IsReporting() const { return reporting_; }
    /// `done` of the total units are complete. A comparison unless a new whole percentage was
    /// reached, so it may be called for every unit. Values beyond the total count as the total;
    /// a value below an earlier one reports nothing.
    void Update(std::uint64_t done) {
        if (reporting_ && done >= nextReport_) Report(done);
    }
    /// Reports 100 % and hides the bar; later calls, and the destructor, do nothing more.
    void Finish();

private:
    void Report(std::uint64_t done);
    void End();
    // The fewest units done that make up `percent` of the total.
    std::uint64_t Threshold(int percent) const;

    bool reporting_ = false;
    std::uint64_t total_ = 0;
    std::uint64_t nextReport_ = 0;
    int percent_ = 0;
    String savedText_;
    std::int32_t savedLower_ = 0;
    std::int32_t savedUpper_ = 0;
    std::int32_t savedPos_ = 0;
};

}  // namespace orvo
