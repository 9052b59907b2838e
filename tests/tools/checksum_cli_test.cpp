#include <gtest/gtest.h>

#include <string>

#include "cli_run.h"
#include "temp_dir.h"

namespace {

using orvo::test::RunOrvo;

TEST(ChecksumCommand, PrintsMd5AndCrcPerFile) {
    orvo::test::TempDir dir;
    orvo::test::WriteWholeFile(dir.file("digits.txt"), "123456789");
    orvo::test::WriteWholeFile(dir.file("empty.txt"), "");

    const orvo::test::CliResult run =
        RunOrvo({"checksum", dir.file("digits.txt"), dir.file("empty.txt")});
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

    const orvo::test::CliResult run =
        RunOrvo({"checksum", dir.file("missing.txt"), dir.file("a.txt")});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "0cc175b9c0f1b6a831c399e269772661  e8b7be43  " + dir.file("a.txt") + "\n");
    EXPECT_EQ(run.err, "orvo checksum: " + dir.file("missing.txt") + ": cannot read file\n");
}

TEST(ChecksumCommand, NoArgumentsIsUsageError) {
    const orvo::test::CliResult run = RunOrvo({"checksum"});
    EXPECT_EQ(run.code, 2);
    EXPECT_EQ(run.err,
              "orvo checksum: missing argument FILE\n"
              "usage: orvo checksum [options] FILE...\n"
              "Try 'orvo checksum --help' for more information.\n");
    EXPECT_EQ(run.out, "");
}

}  // namespace
