// OvProgressTask: when a job shows a bar, how often it moves it, and that the router is left
// as it was found.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "orvo/services/progress.h"

namespace {

using orvo::Link;
using orvo::OvProgressBarRouter;
using orvo::OvProgressTask;

// A host display that counts what it is asked and records what it reads through the getters.
class CountingDisplay : public orvo::LinkHdl {
public:
    std::int32_t OnShow(void*) {
        ++shows;
        shownText = OvProgressBarRouter::GetProgressBarText().chars();
        shownLower = OvProgressBarRouter::GetProgressBarLower();
        shownUpper = OvProgressBarRouter::GetProgressBarUpper();
        return 0;
    }
    std::int32_t OnPos(void*) {
        positions.push_back(OvProgressBarRouter::GetProgressBarPos());
        doneAtPosition.push_back(currentDone);
        return 0;
    }
    std::int32_t OnHide(void*) {
        ++hides;
        if (throwOnHide) throw std::runtime_error("display gone");
        return 0;
    }

    int shows = 0;
    int hides = 0;
    bool throwOnHide = false;
    std::string shownText;
    std::int32_t shownLower = -1;
    std::int32_t shownUpper = -1;
    std::vector<std::int32_t> positions;
    std::vector<std::uint64_t> doneAtPosition;  // the test's `currentDone` at each position
    std::uint64_t currentDone = 0;
};

// Stores known values in the router (with no link registered, so nobody is called), then
// registers the counting display. At the end the earlier links come back and the earlier
// values are stored again, so other tests in this program find the router as it was.
class ProgressTaskTest : public ::testing::Test {
protected:
    void SetUp() override {
        savedText_ = OvProgressBarRouter::GetProgressBarText().chars();
        savedLower_ = OvProgressBarRouter::GetProgressBarLower();
        savedUpper_ = OvProgressBarRouter::GetProgressBarUpper();
        savedPos_ = OvProgressBarRouter::GetProgressBarPos();
        StoreQuietly("host text", -3, 77, 12);
        oldShow_ = OvProgressBarRouter::RegisterShowProgressBarLnk(show_);
        oldPos_ = OvProgressBarRouter::RegisterSetProgressBarPosLnk(pos_);
        oldHide_ = OvProgressBarRouter::RegisterHideProgressBarLnk(hide_);
    }

    void TearDown() override {
        // The job never replaces a link: ours are still the registered ones.
        EXPECT_TRUE(OvProgressBarRouter::RegisterShowProgressBarLnk(oldShow_) == show_);
        EXPECT_TRUE(OvProgressBarRouter::RegisterSetProgressBarPosLnk(oldPos_) == pos_);
        EXPECT_TRUE(OvProgressBarRouter::RegisterHideProgressBarLnk(oldHide_) == hide_);
        const Link noShow = OvProgressBarRouter::RegisterShowProgressBarLnk(Link());
        const Link noPos = OvProgressBarRouter::RegisterSetProgressBarPosLnk(Link());
        const Link noHide = OvProgressBarRouter::RegisterHideProgressBarLnk(Link());
        StoreQuietly(savedText_, savedLower_, savedUpper_, savedPos_);
        OvProgressBarRouter::RegisterShowProgressBarLnk(noShow);
        OvProgressBarRouter::RegisterSetProgressBarPosLnk(noPos);
        OvProgressBarRouter::RegisterHideProgressBarLnk(noHide);
    }

    // Must be called while no link is registered.
    static void StoreQuietly(const std::string& text, std::int32_t lower, std::int32_t upper,
                             std::int32_t pos) {
        OvProgressBarRouter::ShowProgressBar(text.c_str(), lower, upper);
        OvProgressBarRouter::SetProgressBarPos(pos);
        OvProgressBarRouter::HideProgressBar();
    }

    // The values SetUp stored, unchanged, and no bar shown.
    static void ExpectRouterAsStored() {
        EXPECT_STREQ(OvProgressBarRouter::GetProgressBarText().chars(), "host text");
        EXPECT_EQ(OvProgressBarRouter::GetProgressBarLower(), -3);
        EXPECT_EQ(OvProgressBarRouter::GetProgressBarUpper(), 77);
        EXPECT_EQ(OvProgressBarRouter::GetProgressBarPos(), 12);
        EXPECT_FALSE(OvProgressBarRouter::IsProgressBarShown());
    }

    CountingDisplay display;

private:
    const Link show_{&display, &CountingDisplay::OnShow};
    const Link pos_{&display, &CountingDisplay::OnPos};
    const Link hide_{&display, &CountingDisplay::OnHide};
    Link oldShow_, oldPos_, oldHide_;
    std::string savedText_;
    std::int32_t savedLower_ = 0, savedUpper_ = 0, savedPos_ = 0;
};

TEST_F(ProgressTaskTest, ShownFlagFollowsShowAndHide) {
    EXPECT_FALSE(OvProgressBarRouter::IsProgressBarShown());
    OvProgressBarRouter::ShowProgressBar("a", 0, 5);
    EXPECT_TRUE(OvProgressBarRouter::IsProgressBarShown());
    OvProgressBarRouter::ShowProgressBar("b", 0, 5);  // shown again: still shown
    EXPECT_TRUE(OvProgressBarRouter::IsProgressBarShown());
    OvProgressBarRouter::SetProgressBarPos(3);
    EXPECT_TRUE(OvProgressBarRouter::IsProgressBarShown());
    OvProgressBarRouter::HideProgressBar();
    EXPECT_FALSE(OvProgressBarRouter::IsProgressBarShown());
    display.shows = display.hides = 0;  // (the TearDown stores the values back)
}

TEST_F(ProgressTaskTest, SmallJobMakesNoCall) {
    {
        OvProgressTask task("small", 999, 1000);
        EXPECT_FALSE(task.IsReporting());
        for (std::uint64_t done = 1; done <= 999; ++done)
            task.Update(done);
        task.Finish();
    }
    EXPECT_EQ(display.shows, 0);
    EXPECT_EQ(display.hides, 0);
    EXPECT_TRUE(display.positions.empty());
    ExpectRouterAsStored();
}

TEST_F(ProgressTaskTest, MillionUnitsGiveEveryPercentOnce) {
    {
        OvProgressTask task("Working", 1000000, 1000);
        EXPECT_TRUE(task.IsReporting());
        EXPECT_TRUE(OvProgressBarRouter::IsProgressBarShown());
        for (std::uint64_t done = 1; done <= 1000000; ++done)
            task.Update(done);
        task.Finish();
        EXPECT_FALSE(task.IsReporting());
        task.Finish();  // a second Finish does nothing
    }
    EXPECT_EQ(display.shows, 1);
    EXPECT_EQ(display.hides, 1);
    EXPECT_EQ(display.shownText, "Working");
    EXPECT_EQ(display.shownLower, 0);
    EXPECT_EQ(display.shownUpper, 100);
    std::vector<std::int32_t> everyPercent;
    for (std::int32_t p = 0; p <= 100; ++p)
        everyPercent.push_back(p);
    EXPECT_EQ(display.positions, everyPercent);
    ExpectRouterAsStored();
}

// Each position is reported at the first unit that reaches it: position p appears when
// 100 * done >= p * total for the first time (checked with an odd total, so that the
// percentages do not fall on whole units).
TEST_F(ProgressTaskTest, PositionsAppearWhenTheirShareIsDone) {
    constexpr std::uint64_t kTotal = 257;
    {
        OvProgressTask task("odd", kTotal, 0);
        for (std::uint64_t done = 1; done <= kTotal; ++done) {
            display.currentDone = done;
            task.Update(done);
        }
        task.Finish();
    }
    ASSERT_EQ(display.positions.size(), display.doneAtPosition.size());
    ASSERT_EQ(display.positions.front(), 0);
    // After the initial 0, every report names the largest percentage reached, and no earlier
    // unit had reached it.
    for (std::size_t i = 1; i < display.positions.size(); ++i) {
        const std::uint64_t done = display.doneAtPosition[i];
        const auto pos = static_cast<std::uint64_t>(display.positions[i]);
        EXPECT_EQ(pos, done * 100 / kTotal) << "at unit " << done;
        EXPECT_LT((done - 1) * 100 / kTotal, pos) << "at unit " << done;
        EXPECT_GT(display.positions[i], display.positions[i - 1]);
    }
    EXPECT_EQ(display.positions.back(), 100);
    // 257 units cover all 100 steps.
    EXPECT_EQ(display.positions.size(), 101U);
}

TEST_F(ProgressTaskTest, JumpsOverrunsAndStepsBackAreReportedMonotonically) {
    {
        OvProgressTask task("jumps", 1000, 10);
        task.Update(305);   // 30 %
        task.Update(200);   // earlier than before: nothing
        task.Update(305);   // same: nothing
        task.Update(999);   // 99 %
        task.Update(5000);  // beyond the total counts as the total
        task.Update(6000);  // already at 100 %: nothing
        task.Finish();      // already at 100 %: only the hide
    }
    EXPECT_EQ(display.positions, (std::vector<std::int32_t>{0, 30, 99, 100}));
    EXPECT_EQ(display.hides, 1);
    ExpectRouterAsStored();
}

TEST_F(ProgressTaskTest, HugeTotalsDoNotOverflow) {
    const std::uint64_t total = std::numeric_limits<std::uint64_t>::max();
    {
        OvProgressTask task("huge", total, 1);
        task.Update(total / 4);
        task.Update(total / 2 + 1);
        task.Update(total - 1);
        task.Update(total);
    }
    EXPECT_EQ(display.positions, (std::vector<std::int32_t>{0, 24, 50, 99, 100}));
}

TEST_F(ProgressTaskTest, BarShownByTheHostIsLeftAlone) {
    OvProgressBarRouter::ShowProgressBar("host job", 0, 10);
    OvProgressBarRouter::SetProgressBarPos(4);
    display.shows = 0;
    display.positions.clear();
    {
        OvProgressTask task("inner", 1000000, 1);
        EXPECT_FALSE(task.IsReporting());
        task.Update(500000);
        task.Finish();
    }
    EXPECT_EQ(display.shows, 0);
    EXPECT_EQ(display.hides, 0);
    EXPECT_TRUE(display.positions.empty());
    EXPECT_TRUE(OvProgressBarRouter::IsProgressBarShown());
    EXPECT_STREQ(OvProgressBarRouter::GetProgressBarText().chars(), "host job");
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarUpper(), 10);
    EXPECT_EQ(OvProgressBarRouter::GetProgressBarPos(), 4);
    OvProgressBarRouter::HideProgressBar();
}

TEST_F(ProgressTaskTest, NestedJobsShowOneBar) {
    {
        OvProgressTask outer("outer", 100, 1);
        outer.Update(50);
        {
            OvProgressTask inner("inner", 1000, 1);
            EXPECT_FALSE(inner.IsReporting());
            inner.Update(1000);
        }
        EXPECT_TRUE(OvProgressBarRouter::IsProgressBarShown());
        outer.Finish();
    }
    EXPECT_EQ(display.shows, 1);
    EXPECT_EQ(display.shownText, "outer");
    EXPECT_EQ(display.positions, (std::vector<std::int32_t>{0, 50, 100}));
    EXPECT_EQ(display.hides, 1);
    ExpectRouterAsStored();
}

TEST_F(ProgressTaskTest, AbandonedJobHidesWithoutReportingDone) {
    {
        OvProgressTask task("abandoned", 1000, 1);
        task.Update(420);
    }
    EXPECT_EQ(display.positions, (std::vector<std::int32_t>{0, 42}));
    EXPECT_EQ(display.hides, 1);
    ExpectRouterAsStored();
}

TEST_F(ProgressTaskTest, FailingHideHandlerStillLeavesTheValuesAsTheyWere) {
    display.throwOnHide = true;
    {
        OvProgressTask task("failing", 10, 1);
        EXPECT_THROW(task.Finish(), std::runtime_error);
    }  // the destructor does not hide a second time
    EXPECT_EQ(display.hides, 1);
    ExpectRouterAsStored();

    {
        OvProgressTask task("failing in destructor", 10, 1);
        task.Update(5);
    }  // the exception is dropped in the destructor
    EXPECT_EQ(display.hides, 2);
    ExpectRouterAsStored();
}

}  // namespace
