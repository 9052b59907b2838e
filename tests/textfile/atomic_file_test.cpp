#include "orvo/textfile/atomic_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "temp_dir.h"

namespace {

namespace fs = std::filesystem;
using orvo::OvAtomicFileWriter;
using orvo::test::ReadWholeFile;
using orvo::test::WriteWholeFile;

std::vector<std::string> EntryNames(const fs::path& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

TEST(AtomicFile, TargetChangesOnlyAtCommit) {
    orvo::test::TempDir dir;
    const std::string target = dir.file("data.txt");
    WriteWholeFile(target, "old");

    OvAtomicFileWriter writer(target.c_str());
    ASSERT_TRUE(writer.IsOpen());
    // The temporary file lives next to the target, under a name of its own.
    std::vector<std::string> names = EntryNames(dir.path());
    ASSERT_EQ(names.size(), 2U);
    const std::string tempName = names[0] == "data.txt" ? names[1] : names[0];
    EXPECT_NE(tempName.find("data.txt"), std::string::npos);
    EXPECT_NE(tempName, "data.txt");

    const std::string big(200000, 'n');  // more than one internal buffer's worth
    EXPECT_TRUE(writer.Write("new:"));
    EXPECT_TRUE(writer.Write(big));
    EXPECT_EQ(ReadWholeFile(target), "old");
    EXPECT_TRUE(writer.Commit());
    EXPECT_EQ(ReadWholeFile(target), "new:" + big);
    EXPECT_EQ(EntryNames(dir.path()), std::vector<std::string>{"data.txt"});
    EXPECT_FALSE(writer.Write("late"));
}

TEST(AtomicFile, TemporaryNamesDiffer) {
    orvo::test::TempDir dir;
    const std::string target = dir.file("data.txt");
    OvAtomicFileWriter first(target.c_str());
    OvAtomicFileWriter second(target.c_str());
    ASSERT_TRUE(first.IsOpen());
    ASSERT_TRUE(second.IsOpen());
    EXPECT_EQ(EntryNames(dir.path()).size(), 2U);
}

TEST(AtomicFile, DiscardKeepsTargetAndRemovesTemporary) {
    orvo::test::TempDir dir;
    const std::string target = dir.file("data.txt");
    WriteWholeFile(target, "old");
    {
        OvAtomicFileWriter writer(target.c_str());
        ASSERT_TRUE(writer.Write("never"));
    }  // destroyed without Commit
    EXPECT_EQ(ReadWholeFile(target), "old");
    EXPECT_EQ(EntryNames(dir.path()), std::vector<std::string>{"data.txt"});
}

TEST(AtomicFile, FailuresLeaveNothingBehind) {
    orvo::test::TempDir dir;
    EXPECT_FALSE(orvo::OvWriteFileAtomically(dir.file("missing/data.txt").c_str(), "x"));
    EXPECT_FALSE(orvo::OvWriteFileAtomically("", "x"));
    EXPECT_FALSE(orvo::OvWriteFileAtomically(nullptr, "x"));

    // The rename over a non-empty directory fails after the temporary file was written.
    fs::create_directory(dir.path() / "target");
    WriteWholeFile(dir.file("target/inside"), "keep");
    EXPECT_FALSE(orvo::OvWriteFileAtomically(dir.file("target").c_str(), "x"));
    EXPECT_EQ(ReadWholeFile(dir.file("target/inside")), "keep");
    EXPECT_EQ(EntryNames(dir.path()), std::vector<std::string>{"target"});
}

TEST(AtomicFile, KeepsPermissionsAndSymbolicLinks) {
#ifdef _WIN32
    GTEST_SKIP() << "POSIX permission bits and symbolic links";
#endif
    orvo::test::TempDir dir;
    const std::string target = dir.file("data.txt");
    WriteWholeFile(target, "old");
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    ASSERT_TRUE(orvo::OvWriteFileAtomically(target.c_str(), "new"));
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::mask,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

    const std::string link = dir.file("link.txt");
    fs::create_symlink(target, link);
    ASSERT_TRUE(orvo::OvWriteFileAtomically(link.c_str(), "through link"));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ReadWholeFile(target), "through link");
}

}  // namespace
