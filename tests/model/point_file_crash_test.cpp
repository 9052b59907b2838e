// What an interrupted point file write leaves behind: a writer killed in the middle of a large
// file, and a disk that fills up during the write, must both leave the previous file exactly
// as it was.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "child_process.h"
#include "orvo/model/point_list.h"
#include "orvo/textfile/writer.h"
#include "temp_dir.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;
using Table = TOvFormatTable<eOvPointRWMask>;
using test::KilledWrite;
using test::ReadWholeFile;
using test::TempDir;

Table IdXyzTable() {
    Table table;
    for (std::uint32_t code : {1U, 7U, 8U, 9U, 10U, 11U, 12U}) {
        table.AddEntry(static_cast<eOvPointRWMask>(code));
    }
    return table;
}

// `count` points whose coordinates depend on `variant`, so two lists never write the same text.
void FillList(OvPointList& list, unsigned count, double variant) {
    for (unsigned id = 1; id <= count; ++id) {
        auto* point = new OvPoint(id, id * 0.001 + variant, id * -2.5 - variant, variant / id, 0);
        point->SetD(0, 1.0 / (id + variant));
        list.Add(point);
    }
}

// The text WriteFile must produce for the list, built through the list's own stream writer.
std::string ExpectedText(const OvPointList& list) {
    std::ostringstream out;
    OvWriterReset();
    list.Write(out);
    OvWriterReset();
    return out.str();
}

std::vector<std::string> EntryNames(const fs::path& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

// The file size allowed on the "full disk": more than a small list needs, less than a large one.
constexpr std::size_t kLimit = 128 * 1024;

class PointFileCrashTest : public ::testing::Test {
protected:
    void SetUp() override {
        OvWriterReset();
        target_ = dir_.file("points.coo");
        OvPointList previous(IdXyzTable());
        FillList(previous, 3000, 7.0);
        ASSERT_EQ(previous.WriteFile(String(target_.c_str())), 1);
        previousText_ = ReadWholeFile(target_);
        ASSERT_EQ(previousText_, ExpectedText(previous));
    }
    void TearDown() override { OvWriterReset(); }

    TempDir dir_;
    std::string target_;
    std::string previousText_;
};

TEST_F(PointFileCrashTest, WriterKilledMidwayLeavesPreviousFileByteIdentical) {
    OvPointList replacement(IdXyzTable());
    FillList(replacement, 8000, 3.0);
    const std::string replacementText = ExpectedText(replacement);
    constexpr std::size_t kStallBytes = 256 * 1024;
    ASSERT_GT(replacementText.size(), 2 * kStallBytes);  // the kill lands well inside the write

    const KilledWrite outcome = test::KillWriterMidway(
        kStallBytes, [&] { replacement.WriteFile(String(target_.c_str())); });
    ASSERT_EQ(outcome, KilledWrite::kKilledMidway);

    EXPECT_EQ(ReadWholeFile(target_), previousText_);

    // The killed writer's temporary file is all that is left of it: a hidden file next to the
    // target holding exactly the first bytes of the new text.
    std::vector<std::string> names = EntryNames(dir_.path());
    ASSERT_EQ(names.size(), 2U);
    const std::string leftover = names[0] == "points.coo" ? names[1] : names[0];
    EXPECT_EQ(leftover.rfind(".points.coo", 0), 0U) << leftover;
    EXPECT_EQ(ReadWholeFile(dir_.file(leftover)), replacementText.substr(0, kStallBytes));

    // The next write is not disturbed by the leftover.
    EXPECT_EQ(replacement.WriteFile(String(target_.c_str())), 1);
    EXPECT_EQ(ReadWholeFile(target_), replacementText);
}

TEST_F(PointFileCrashTest, KillBeforeTheFirstByteLeavesPreviousFile) {
    // With no room at all the very first write stalls: the temporary file exists, empty.
    OvPointList replacement(IdXyzTable());
    FillList(replacement, 10, 1.0);
    ASSERT_EQ(test::KillWriterMidway(0, [&] { replacement.WriteFile(String(target_.c_str())); }),
              KilledWrite::kKilledMidway);
    EXPECT_EQ(ReadWholeFile(target_), previousText_);
}

TEST_F(PointFileCrashTest, FullDiskLeavesPreviousFileAndStillReturnsOne) {
    OvPointList replacement(IdXyzTable());
    FillList(replacement, 4000, 5.0);
    ASSERT_GT(ExpectedText(replacement).size(), kLimit);

    const std::optional<std::int64_t> returned =
        test::RunOnFullDisk(kLimit, [&] { return replacement.WriteFile(String(target_.c_str())); });
    ASSERT_TRUE(returned.has_value());
    // Point file writers report no failure; the old file is what protects the data.
    EXPECT_EQ(*returned, 1);
    EXPECT_EQ(ReadWholeFile(target_), previousText_);
    EXPECT_EQ(EntryNames(dir_.path()), std::vector<std::string>{"points.coo"});
}

TEST_F(PointFileCrashTest, FullDiskWithRoomForTheWholeFileReplacesIt) {
    // The same limit, a file that fits: the limit itself does not spoil a write.
    OvPointList replacement(IdXyzTable());
    FillList(replacement, 100, 5.0);
    const std::string replacementText = ExpectedText(replacement);
    ASSERT_LT(replacementText.size(), kLimit);

    const std::optional<std::int64_t> returned =
        test::RunOnFullDisk(kLimit, [&] { return replacement.WriteFile(String(target_.c_str())); });
    ASSERT_TRUE(returned.has_value());
    EXPECT_EQ(*returned, 1);
    EXPECT_EQ(ReadWholeFile(target_), replacementText);
}

TEST_F(PointFileCrashTest, NewFileOnFullDiskIsNotCreated) {
    OvPointList replacement(IdXyzTable());
    FillList(replacement, 4000, 5.0);
    const std::string fresh = dir_.file("fresh.coo");
    const std::optional<std::int64_t> returned =
        test::RunOnFullDisk(4096, [&] { return replacement.WriteFile(String(fresh.c_str())); });
    ASSERT_TRUE(returned.has_value());
    EXPECT_EQ(*returned, 1);
    // No truncated file appears under the new name either.
    EXPECT_FALSE(fs::exists(fresh));
    EXPECT_EQ(EntryNames(dir_.path()), std::vector<std::string>{"points.coo"});
}

}  // namespace
}  // namespace orvo

#endif  // _WIN32
