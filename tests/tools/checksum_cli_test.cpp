#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "temp_dir.h"

namespace {

struct ChecksumRun {
    int code;
    std::string out;
    std::string err;
};

ChecksumRun RunChecksum(const std::vector<std::string>& files) {
    std::ostringstream out, err;
    int code = orvo::cli::RunChecksum(files, out, err);
    return {code, out.str(), err.str()};
}

TEST(ChecksumCommand, PrintsMd5AndCrcPerFile) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("digits.txt"), "123456789");
    orvo::test::WriteWholeFile(dir.file("empty.txt"), "");

    ChecksumRun run = RunChecksum({dir.file("digits.txt"), dir.file("empty.txt")});
    EXPECT_EQ(run.code, 0);
    EXPECT_EQ(run.err, "");
    // MD5 of "123456789" computed with an independent tool; its CRC-32 is the standard check
    // value.
    EXPECT_EQ(run.out, "25f9e794323b453885f5181f1b624d0b  cbf43926  " + dir.file("digits.txt") +
                           "\n" + "d41d8cd98f00b204e9800998ecf8427e  00000000  " +
                           dir.file("empty.txt") + "\n");
}

TEST(ChecksumCommand, MissingFileIsReportedAfterTheOthers) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("a.txt"), "a");

    ChecksumRun run = RunChecksum({dir.file("missing.txt"), dir.file("a.txt")});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "0cc175b9c0f1b6a831c399e269772661  e8b7be43  " + dir.file("a.txt") + "\n");
    EXPECT_EQ(run.err, "orvo checksum: " + dir.file("missing.txt") + ": cannot read file\n");
}

TEST(ChecksumCommand, NoArgumentsIsUsageError) {
    ChecksumRun run = RunChecksum({});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err, "usage: orvo checksum FILE...\n");
    EXPECT_EQ(run.out, "");
}

}  // namespace
