// Long jobs of the data model report their progress through OvProgressBarRouter: reading a
// large point file and converting a large point list. A registered counting display checks
// that the bar is shown and hidden once, moved a bounded number of times with positions that
// never decrease, and that the router is left as it was; small jobs make no call at all.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "orvo/model/photo.h"
#include "orvo/model/point_list.h"
#include "orvo/numerics/trafo2d.h"
#include "orvo/services/progress.h"
#include "temp_dir.h"

namespace orvo {
namespace {

class CountingDisplay : public LinkHdl {
public:
    std::int32_t OnShow(void*) {
        ++shows;
        texts.push_back(OvProgressBarRouter::GetProgressBarText().chars());
        ranges.push_back({OvProgressBarRouter::GetProgressBarLower(),
                          OvProgressBarRouter::GetProgressBarUpper()});
        return 0;
    }
    std::int32_t OnPos(void*) {
        positions.push_back(OvProgressBarRouter::GetProgressBarPos());
        return 0;
    }
    std::int32_t OnHide(void*) {
        ++hides;
        return 0;
    }

    int shows = 0;
    int hides = 0;
    std::vector<std::string> texts;
    std::vector<std::pair<std::int32_t, std::int32_t>> ranges;
    std::vector<std::int32_t> positions;
};

// Stores known router values (while no link is registered), registers the display, and puts
// back the earlier links at the end.
class ProgressReporting : public ::testing::Test {
protected:
    void SetUp() override {
        OvProgressBarRouter::ShowProgressBar("before", 2, 9);
        OvProgressBarRouter::SetProgressBarPos(5);
        OvProgressBarRouter::HideProgressBar();
        oldShow_ = OvProgressBarRouter::RegisterShowProgressBarLnk(show_);
        oldPos_ = OvProgressBarRouter::RegisterSetProgressBarPosLnk(pos_);
        oldHide_ = OvProgressBarRouter::RegisterHideProgressBarLnk(hide_);
    }
    void TearDown() override {
        EXPECT_TRUE(OvProgressBarRouter::RegisterShowProgressBarLnk(oldShow_) == show_);
        EXPECT_TRUE(OvProgressBarRouter::RegisterSetProgressBarPosLnk(oldPos_) == pos_);
        EXPECT_TRUE(OvProgressBarRouter::RegisterHideProgressBarLnk(oldHide_) == hide_);
    }

    void ExpectRouterAsBefore() const {
        EXPECT_STREQ(OvProgressBarRouter::GetProgressBarText().chars(), "before");
        EXPECT_EQ(OvProgressBarRouter::GetProgressBarLower(), 2);
        EXPECT_EQ(OvProgressBarRouter::GetProgressBarUpper(), 9);
        EXPECT_EQ(OvProgressBarRouter::GetProgressBarPos(), 5);
        EXPECT_FALSE(OvProgressBarRouter::IsProgressBarShown());
    }

    // One bar with the text and range 0..100, at most 101 positions from 0 to 100, each
    // greater than the one before, and one hide.
    void ExpectOneBoundedBar(const char* text) const {
        EXPECT_EQ(display.shows, 1);
        EXPECT_EQ(display.hides, 1);
        ASSERT_EQ(display.texts.size(), 1U);
        EXPECT_EQ(display.texts[0], text);
        EXPECT_EQ(display.ranges[0], (std::pair<std::int32_t, std::int32_t>{0, 100}));
        ASSERT_GE(display.positions.size(), 2U);
        EXPECT_LE(display.positions.size(), 101U);
        EXPECT_EQ(display.positions.front(), 0);
        EXPECT_EQ(display.positions.back(), 100);
        for (std::size_t i = 1; i < display.positions.size(); ++i)
            EXPECT_GT(display.positions[i], display.positions[i - 1]) << "report " << i;
    }

    void ExpectNoCall() const {
        EXPECT_EQ(display.shows, 0);
        EXPECT_EQ(display.hides, 0);
        EXPECT_TRUE(display.positions.empty());
    }

    CountingDisplay display;

private:
    const Link show_{&display, &CountingDisplay::OnShow};
    const Link pos_{&display, &CountingDisplay::OnPos};
    const Link hide_{&display, &CountingDisplay::OnHide};
    Link oldShow_, oldPos_, oldHide_;
};

OvTrafo2d Helmert(double p0, double p1, double p2, double p3) {
    OvTrafo2d t;
    t.SetType(eOvTrafo2DHelmert);
    t.SetParam(0, p0);
    t.SetParam(1, p1);
    t.SetParam(2, p2);
    t.SetParam(3, p3);
    return t;
}

// Pre stage: x' = 10 + 2x, y' = -4 + 2y. Main stage: a quarter turn, x' = 1 - y, y' = x.
// Measured (x, y) therefore become (1 - (-4 + 2y), 10 + 2x) = (5 - 2y, 10 + 2x).
OvPhoto ConvertingPhoto() {
    OvPhoto photo(4, "img.tif");
    photo.SetReseauPreTrafo(Helmert(10.0, 2.0, -4.0, 0.0));
    photo.SetReseauMainTrafo(Helmert(1.0, 0.0, 0.0, 1.0));
    return photo;
}

void FillList(OvPointList& list, std::uint32_t count) {
    for (std::uint32_t i = 1; i <= count; ++i)
        list.Add(new OvPoint(i, 0.25 * i, -0.5 * i, 1.0, 0));
}

TEST_F(ProgressReporting, ConvertingAMillionPointsMovesTheBarAtMost101Times) {
    constexpr std::uint32_t kPoints = 1000000;
    OvPointList list;
    FillList(list, kPoints);
    ConvertingPhoto().ConvertList(&list, eConvertMeasureToBiko);

    ExpectOneBoundedBar("Converting points");
    // Every point is counted, so every whole percent is reached once on the way.
    EXPECT_EQ(display.positions.size(), 101U);
    ExpectRouterAsBefore();
    // The conversion itself is the same as without a display.
    std::uint32_t seen = 0;
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next(), ++seen) {
        const double x = 0.25 * p->GetId(), y = -0.5 * p->GetId();
        if (p->GetX() != 5.0 - 2.0 * y || p->GetY() != 10.0 + 2.0 * x) {
            ADD_FAILURE() << "point " << p->GetId() << " converted to " << p->GetX() << ", "
                          << p->GetY();
            break;
        }
    }
    EXPECT_EQ(seen, kPoints);
}

TEST_F(ProgressReporting, ConvertingASmallListMakesNoCall) {
    OvPointList list;
    FillList(list, 1000);
    ConvertingPhoto().ConvertList(&list, eConvertMeasureToBiko);
    ExpectNoCall();
    ExpectRouterAsBefore();
    EXPECT_EQ(list.Last()->GetX(), 5.0 + 1000.0);
}

TEST_F(ProgressReporting, ConvertingInsideTheHostsOwnBarLeavesItAlone) {
    OvPointList list;
    FillList(list, 100000);
    OvProgressBarRouter::ShowProgressBar("host", 0, 3);
    ConvertingPhoto().ConvertList(&list, eConvertMeasureToBiko);
    EXPECT_EQ(display.shows, 1);  // the host's own
    EXPECT_TRUE(display.positions.empty());
    EXPECT_EQ(display.hides, 0);
    EXPECT_STREQ(OvProgressBarRouter::GetProgressBarText().chars(), "host");
    EXPECT_TRUE(OvProgressBarRouter::IsProgressBarShown());
    OvProgressBarRouter::HideProgressBar();
}

// A point file of `count` records "id x y z" with long numbers, written here plainly.
std::uint64_t WritePointFile(const std::string& name, std::uint32_t count) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) return 0;
    for (std::uint32_t i = 1; i <= count; ++i) {
        std::fprintf(file, "%u %.15f %.15f %.15f\n", i, 1000.0 + i / 7.0, -2000.0 - i / 3.0,
                     0.125 * (i % 100));
    }
    std::fclose(file);
    return std::filesystem::file_size(name);
}

TOvFormatTable<eOvPointRWMask> IdXyz() {
    TOvFormatTable<eOvPointRWMask> table;
    for (eOvPointRWMask code : {eOvPointRWId, eOvPointRWX, eOvPointRWY, eOvPointRWZ})
        table.AddEntry(code);
    return table;
}

TEST_F(ProgressReporting, ReadingALargePointFileFollowsThePositionInTheFile) {
    test::TempDir dir;
    const std::string name = dir.file("large.pts");
    constexpr std::uint32_t kPoints = 70000;
    ASSERT_GT(WritePointFile(name, kPoints), std::uint64_t{4} << 20);

    OvPointList list;
    EXPECT_EQ(list.ReadFile(name.c_str(), IdXyz()), static_cast<int>(kPoints));

    ExpectOneBoundedBar("Reading points");
    // The position is looked at every 1,024 records: the bar moves on the way, not only at
    // the end.
    EXPECT_GE(display.positions.size(), 30U);
    ExpectRouterAsBefore();
    ASSERT_NE(list.Last(), nullptr);
    EXPECT_EQ(list.Last()->GetId(), kPoints);
    EXPECT_DOUBLE_EQ(list.Last()->GetX(), 1000.0 + kPoints / 7.0);
    EXPECT_EQ(list.Last()->GetZ(), 0.0);
}

TEST_F(ProgressReporting, ReadingASmallPointFileMakesNoCall) {
    test::TempDir dir;
    const std::string name = dir.file("small.pts");
    ASSERT_LT(WritePointFile(name, 20000), std::uint64_t{4} << 20);
    OvPointList list;
    EXPECT_EQ(list.ReadFile(name.c_str(), IdXyz()), 20000);
    ExpectNoCall();
    ExpectRouterAsBefore();

    // Nor does a file that cannot be read.
    EXPECT_EQ(list.ReadFile(dir.file("missing.pts").c_str(), IdXyz()), 20000);
    ExpectNoCall();
}

}  // namespace
}  // namespace orvo
