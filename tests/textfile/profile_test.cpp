#include "orvo/textfile/profile.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "temp_dir.h"

namespace {

using orvo::OvGetPrivateProfile;
using orvo::OvWritefPrivateProfile;
using orvo::OvWritePrivateProfile;
using orvo::test::ReadWholeFile;
using orvo::test::WriteWholeFile;

const char kSample[] =
    "[General]\n"
    "Name=first\n"
    "PathName=C:\\data\n"
    "\n"
    "[Camera]\n"
    "Focal=50.0\n"
    "Flag\n"
    "Expr=a=b\n";

struct GetResult {
    int length;
    std::string text;
};

GetResult Get(const std::string& file, const char* section, const char* key, int size = 256,
              const char* defaultValue = "dflt") {
    char buffer[600];
    std::memset(buffer, '#', sizeof buffer);
    buffer[sizeof buffer - 1] = '\0';
    int length = OvGetPrivateProfile(section, key, buffer, size, defaultValue, file.c_str());
    return {length, buffer};
}

// Names in the directory other than the ones a test created itself: a rewrite must never leave
// its temporary file behind.
int CountEntries(const std::filesystem::path& dir) {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir))
        ++count;
    return count;
}

class ProfileRead : public ::testing::Test {
protected:
    void SetUp() override { WriteWholeFile(file, kSample); }
    orvo::test::TempDir dir;
    std::string file = dir.file("settings.ini");
};

TEST_F(ProfileRead, FindsKeysIgnoringCase) {
    GetResult r = Get(file, "general", "NAME");
    EXPECT_EQ(r.length, 5);
    EXPECT_EQ(r.text, "first");
    EXPECT_EQ(Get(file, "Camera", "focal").text, "50.0");
    // Only the first "=" separates key and value.
    EXPECT_EQ(Get(file, "Camera", "Expr").text, "a=b");
}

TEST_F(ProfileRead, KeyMatchesByPrefixAndSearchRunsPastSection) {
    // "Path" is a prefix of "PathName": the line is found on purpose.
    EXPECT_EQ(Get(file, "General", "Path").text, "C:\\data");
    // The search for the key goes on beyond the end of the section.
    EXPECT_EQ(Get(file, "General", "Focal").text, "50.0");
    // But it starts at the section line: a key of an earlier section is not found.
    EXPECT_EQ(Get(file, "Camera", "Name").text, "dflt");
}

TEST_F(ProfileRead, DefaultsAndEmptyResults) {
    GetResult missingSection = Get(file, "Nothing", "Name");
    EXPECT_EQ(missingSection.length, 4);
    EXPECT_EQ(missingSection.text, "dflt");
    EXPECT_EQ(Get(file, "Camera", "Missing", 256, nullptr).text, "");
    // A line without "=" gives an empty result, not the default.
    GetResult flag = Get(file, "Camera", "Flag");
    EXPECT_EQ(flag.length, 0);
    EXPECT_EQ(flag.text, "");
}

TEST_F(ProfileRead, BufferLimits) {
    // The default takes at most size - 1 characters, a value at most size - 2.
    EXPECT_EQ(Get(file, "Nothing", "x", 3, "default").text, "de");
    GetResult value = Get(file, "General", "Name", 4);
    EXPECT_EQ(value.length, 2);
    EXPECT_EQ(value.text, "fi");
    EXPECT_EQ(Get(file, "General", "Name", 2).text, "");
    EXPECT_EQ(Get(file, "General", "Name", 1).text, "");
    // size below 1: nothing is touched.
    GetResult none = Get(file, "General", "Name", 0);
    EXPECT_EQ(none.length, 0);
    EXPECT_EQ(none.text, std::string(599, '#'));
}

TEST_F(ProfileRead, UnreadableFilesReturnZeroAndKeepResult) {
    GetResult missing = Get(dir.file("missing.ini"), "General", "Name");
    EXPECT_EQ(missing.length, 0);
    EXPECT_EQ(missing.text, std::string(599, '#'));
    EXPECT_EQ(Get(dir.path().string(), "General", "Name").text, std::string(599, '#'));
}

TEST(ProfileLines, CarriageReturnsAndLongLines) {
    orvo::test::TempDir dir;
    const std::string file = dir.file("crlf.ini");
    WriteWholeFile(file, "[S]\r\nKey=value\r\n");
    EXPECT_EQ(Get(file, "S", "Key").text, "value");

    // A line longer than 511 characters is read in pieces: the second piece starts at
    // character 511 and can match a key of its own.
    const std::string longLine = std::string(511, 'x') + "Hidden=found";
    WriteWholeFile(file, "[S]\n" + longLine + "\n");
    EXPECT_EQ(Get(file, "S", "Hidden").text, "found");
    // A line of exactly 511 characters is one line.
    WriteWholeFile(file, "[S]\n" + std::string(511, 'y') + "\nKey=1\n");
    EXPECT_EQ(Get(file, "S", "Key").text, "1");
}

class ProfileWrite : public ::testing::Test {
protected:
    orvo::test::TempDir dir;
    std::string file = dir.file("settings.ini");
};

TEST_F(ProfileWrite, CreatesMissingFile) {
    EXPECT_EQ(OvWritePrivateProfile("General", "Name", "x", file.c_str()), 1);
    EXPECT_EQ(ReadWholeFile(file), "[General]\nName=x\n");
    EXPECT_EQ(CountEntries(dir.path()), 1);
}

TEST_F(ProfileWrite, ReplacesOnlyTheKeyLine) {
    WriteWholeFile(file, kSample);
    EXPECT_EQ(OvWritePrivateProfile("camera", "FOCAL", "35", file.c_str()), 1);
    std::string expected = kSample;
    expected.replace(expected.find("Focal=50.0"), 10, "FOCAL=35");
    EXPECT_EQ(ReadWholeFile(file), expected);
    EXPECT_EQ(CountEntries(dir.path()), 1);
}

TEST_F(ProfileWrite, PrefixMatchReplacesLongerKey) {
    WriteWholeFile(file, kSample);
    EXPECT_EQ(OvWritePrivateProfile("General", "Path", "D:", file.c_str()), 1);
    std::string expected = kSample;
    expected.replace(expected.find("PathName=C:\\data"), 16, "Path=D:");
    EXPECT_EQ(ReadWholeFile(file), expected);
}

TEST_F(ProfileWrite, InsertsAtSectionEndOrFileEnd) {
    WriteWholeFile(file, kSample);
    ASSERT_EQ(OvWritePrivateProfile("General", "New", "1", file.c_str()), 1);
    ASSERT_EQ(OvWritePrivateProfile("Camera", "Other", "2", file.c_str()), 1);
    EXPECT_EQ(ReadWholeFile(file),
              "[General]\nName=first\nPathName=C:\\data\nNew=1\n\n"
              "[Camera]\nFocal=50.0\nFlag\nExpr=a=b\nOther=2\n");
}

TEST_F(ProfileWrite, AppendsMissingSectionAndTerminatesLastLine) {
    WriteWholeFile(file, "[A]\nk=1");
    ASSERT_EQ(OvWritePrivateProfile("B", "k", "2", file.c_str()), 1);
    EXPECT_EQ(ReadWholeFile(file), "[A]\nk=1\n\n[B]\nk=2\n");

    WriteWholeFile(file, "");
    ASSERT_EQ(OvWritePrivateProfile("B", "k", "2", file.c_str()), 1);
    EXPECT_EQ(ReadWholeFile(file), "\n[B]\nk=2\n");
}

TEST_F(ProfileWrite, KeepsLongLinesAndConvertsLineEnds) {
    const std::string longLine = "Long=" + std::string(1500, 'z');
    WriteWholeFile(file, "[A]\r\n" + longLine + "\r\nk=1\r\n");
    ASSERT_EQ(OvWritePrivateProfile("A", "k", "2", file.c_str()), 1);
    EXPECT_EQ(ReadWholeFile(file), "[A]\n" + longLine + "\nk=2\n");
}

TEST_F(ProfileWrite, RoundTripThroughRead) {
    ASSERT_EQ(OvWritePrivateProfile("S", "Alpha", "1", file.c_str()), 1);
    ASSERT_EQ(OvWritePrivateProfile("S", "Beta", "two", file.c_str()), 1);
    ASSERT_EQ(OvWritePrivateProfile("T", "Alpha", "3", file.c_str()), 1);
    ASSERT_EQ(OvWritePrivateProfile("S", "Alpha", "4", file.c_str()), 1);
    EXPECT_EQ(Get(file, "S", "Alpha").text, "4");
    EXPECT_EQ(Get(file, "S", "Beta").text, "two");
    EXPECT_EQ(Get(file, "T", "Alpha").text, "3");
    EXPECT_EQ(ReadWholeFile(file), "[S]\nAlpha=4\nBeta=two\n\n[T]\nAlpha=3\n");
}

TEST_F(ProfileWrite, FormattedValuesAreBoundedByTheBuffer) {
    ASSERT_EQ(OvWritefPrivateProfile("S", "Pos", file.c_str(), "%d/%.2f/%s", 7, 1.5, "x"), 1);
    EXPECT_EQ(Get(file, "S", "Pos").text, "7/1.50/x");

    const std::string huge(5000, 'v');
    ASSERT_EQ(OvWritefPrivateProfile("S", "Huge", file.c_str(), "%s", huge.c_str()), 1);
    EXPECT_EQ(ReadWholeFile(file), "[S]\nPos=7/1.50/x\nHuge=" + std::string(1023, 'v') + "\n");
    EXPECT_EQ(OvWritefPrivateProfile("S", "Pos", file.c_str(), nullptr), 0);
}

TEST_F(ProfileWrite, RejectsArgumentsThatWouldBreakTheFile) {
    WriteWholeFile(file, kSample);
    EXPECT_EQ(OvWritePrivateProfile("General", "Name", "a\n[Evil]", file.c_str()), 0);
    EXPECT_EQ(OvWritePrivateProfile("General", "Na\rme", "a", file.c_str()), 0);
    EXPECT_EQ(OvWritePrivateProfile("Gen\neral", "Name", "a", file.c_str()), 0);
    EXPECT_EQ(OvWritePrivateProfile("General", "", "a", file.c_str()), 0);
    EXPECT_EQ(OvWritePrivateProfile(nullptr, "Name", "a", file.c_str()), 0);
    EXPECT_EQ(OvWritePrivateProfile("General", "Name", "a", nullptr), 0);
    EXPECT_EQ(ReadWholeFile(file), kSample);
    // A null value is an empty one.
    EXPECT_EQ(OvWritePrivateProfile("General", "Name", nullptr, file.c_str()), 1);
    EXPECT_EQ(Get(file, "General", "Name").text, "");
}

TEST_F(ProfileWrite, MissingDirectoryFails) {
    const std::string inMissing = dir.file("no/such/dir/settings.ini");
    EXPECT_EQ(OvWritePrivateProfile("S", "k", "v", inMissing.c_str()), 0);
    EXPECT_FALSE(std::filesystem::exists(dir.path() / "no"));
}

TEST_F(ProfileWrite, SettingsFileThatIsADirectoryFails) {
    std::filesystem::create_directory(file);
    WriteWholeFile(file + "/inside", "keep");
    EXPECT_EQ(OvWritePrivateProfile("S", "k", "v", file.c_str()), 0);
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_EQ(ReadWholeFile(file + "/inside"), "keep");
    EXPECT_EQ(CountEntries(dir.path()), 1);
}

TEST_F(ProfileWrite, ReadOnlyDirectoryLeavesFileUntouched) {
    namespace fs = std::filesystem;
    WriteWholeFile(file, kSample);
    fs::permissions(dir.path(), fs::perms::owner_read | fs::perms::owner_exec);
    // A privileged user writes into a read-only directory all the same.
    const std::string probe = dir.file("probe");
    WriteWholeFile(probe, "x");
    if (fs::exists(probe)) {
        fs::remove(probe);
        fs::permissions(dir.path(), fs::perms::owner_all);
        GTEST_SKIP() << "running with privileges that ignore directory permissions";
    }
    EXPECT_EQ(OvWritePrivateProfile("General", "Name", "changed", file.c_str()), 0);
    EXPECT_EQ(OvWritePrivateProfile("New", "k", "v", dir.file("new.ini").c_str()), 0);
    fs::permissions(dir.path(), fs::perms::owner_all);
    EXPECT_EQ(ReadWholeFile(file), kSample);
    EXPECT_EQ(CountEntries(dir.path()), 1);
}

TEST_F(ProfileWrite, UnreadableExistingFileIsNotReplaced) {
    namespace fs = std::filesystem;
    WriteWholeFile(file, kSample);
    fs::permissions(file, fs::perms::none);
    if (FILE* probe = std::fopen(file.c_str(), "rb")) {
        std::fclose(probe);
        fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
        GTEST_SKIP() << "running with privileges that ignore file permissions";
    }
    EXPECT_EQ(OvWritePrivateProfile("General", "Name", "x", file.c_str()), 0);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ReadWholeFile(file), kSample);
}

}  // namespace
