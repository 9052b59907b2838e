// What an interrupted replacement leaves behind, for the atomic file writer itself and for the
// settings files that go through it: a writer killed in the middle, or a disk that fills up,
// leaves the previous file exactly as it was, and the writers report the failure.
#ifndef _WIN32

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "child_process.h"
#include "orvo/textfile/atomic_file.h"
#include "orvo/textfile/profile.h"
#include "temp_dir.h"

namespace {

namespace fs = std::filesystem;
using orvo::test::KilledWrite;
using orvo::test::ReadWholeFile;
using orvo::test::TempDir;
using orvo::test::WriteWholeFile;

std::vector<std::string> EntryNames(const fs::path& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

// A settings file of `keys` lines in one section, about 30 bytes a line.
std::string LargeSettings(int keys) {
    std::string text = "[General]\nName=first\n\n[Paths]\n";
    for (int i = 0; i < keys; ++i) {
        text += "Entry" + std::to_string(i) + "=C:\\data\\project\\" + std::to_string(i * 7) + "\n";
    }
    return text;
}

TEST(AtomicReplacement, WriterKilledMidwayLeavesTarget) {
    TempDir dir;
    const std::string target = dir.file("data.bin");
    const std::string previous(100000, 'p');
    WriteWholeFile(target, previous);
    const std::string replacement(3 << 20, 'r');

    EXPECT_EQ(orvo::test::KillWriterMidway(
                  1 << 20, [&] { orvo::OvWriteFileAtomically(target.c_str(), replacement); }),
              KilledWrite::kKilledMidway);
    EXPECT_EQ(ReadWholeFile(target), previous);
}

TEST(AtomicReplacement, FullDiskFailsAndLeavesTarget) {
    TempDir dir;
    const std::string target = dir.file("data.bin");
    const std::string previous = "previous content\n";
    WriteWholeFile(target, previous);

    const std::string replacement(200000, 'r');
    const auto returned = orvo::test::RunOnFullDisk(
        65536, [&] { return orvo::OvWriteFileAtomically(target.c_str(), replacement) ? 1 : 0; });
    ASSERT_TRUE(returned.has_value());
    EXPECT_EQ(*returned, 0);
    EXPECT_EQ(ReadWholeFile(target), previous);
    EXPECT_EQ(EntryNames(dir.path()), std::vector<std::string>{"data.bin"});

    // A write that fits under the same limit goes through.
    const auto fits = orvo::test::RunOnFullDisk(
        65536, [&] { return orvo::OvWriteFileAtomically(target.c_str(), "short") ? 1 : 0; });
    ASSERT_TRUE(fits.has_value());
    EXPECT_EQ(*fits, 1);
    EXPECT_EQ(ReadWholeFile(target), "short");
}

TEST(AtomicReplacement, SettingsWriterKilledMidwayLeavesFile) {
    TempDir dir;
    const std::string settings = dir.file("orvo.ini");
    const std::string previous = LargeSettings(30000);
    ASSERT_GT(previous.size(), 512U * 1024U);
    WriteWholeFile(settings, previous);

    // The key goes in front of the empty line that ends [General]; everything after it moves,
    // so the kill cuts the rewrite in the middle of copied lines.
    EXPECT_EQ(orvo::test::KillWriterMidway(
                  256 * 1024,
                  [&] { orvo::OvWritePrivateProfile("General", "Added", "x", settings.c_str()); }),
              KilledWrite::kKilledMidway);
    EXPECT_EQ(ReadWholeFile(settings), previous);

    char value[64] = "untouched";
    EXPECT_EQ(orvo::OvGetPrivateProfile("General", "Added", value, sizeof value, "none",
                                        settings.c_str()),
              4);
    EXPECT_STREQ(value, "none");
}

TEST(AtomicReplacement, SettingsWriterOnFullDiskReturnsZeroAndLeavesFile) {
    TempDir dir;
    const std::string settings = dir.file("orvo.ini");
    const std::string previous = LargeSettings(20000);
    WriteWholeFile(settings, previous);
    ASSERT_GT(previous.size(), 65536U);

    const auto returned = orvo::test::RunOnFullDisk(65536, [&] {
        return orvo::OvWritePrivateProfile("Paths", "Entry5", "changed", settings.c_str());
    });
    ASSERT_TRUE(returned.has_value());
    EXPECT_EQ(*returned, 0);
    EXPECT_EQ(ReadWholeFile(settings), previous);
    EXPECT_EQ(EntryNames(dir.path()), std::vector<std::string>{"orvo.ini"});

    // Creating a new settings file fails the same way and leaves nothing behind.
    const std::string fresh = dir.file("fresh.ini");
    const auto created = orvo::test::RunOnFullDisk(
        0, [&] { return orvo::OvWritePrivateProfile("Paths", "Home", "C:\\", fresh.c_str()); });
    ASSERT_TRUE(created.has_value());
    EXPECT_EQ(*created, 0);
    EXPECT_FALSE(fs::exists(fresh));
}

}  // namespace

#endif  // _WIN32
