// The dispatcher and the conventions every command keeps: --help, --version, usage errors on
// the error stream with exit status 2.
#include <gtest/gtest.h>

#include <string>

#include "cli/cli.h"
#include "cli_run.h"

namespace {

using orvo::test::Contains;
using orvo::test::RunOrvo;

TEST(Cli, DispatchesAndReportsUsageErrors) {
    const orvo::test::CliResult none = RunOrvo({});
    EXPECT_EQ(none.code, 2);
    EXPECT_TRUE(Contains(none.err, "usage: orvo <command>"));
    EXPECT_EQ(none.out, "");

    const orvo::test::CliResult unknown = RunOrvo({"frobnicate"});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_TRUE(Contains(unknown.err, "orvo: unknown command 'frobnicate'\n"));
    EXPECT_EQ(unknown.out, "");
}

TEST(Cli, VersionAsCommandAndAsOption) {
    EXPECT_EQ(RunOrvo({"version"}).out, "orvo 0.1.0\n");
    EXPECT_EQ(RunOrvo({"--version"}).out, "orvo 0.1.0\n");
    EXPECT_EQ(RunOrvo({"--version"}).code, 0);
    const orvo::test::CliResult extra = RunOrvo({"version", "extra"});
    EXPECT_EQ(extra.code, 2);
    EXPECT_TRUE(Contains(extra.err, "orvo version: unexpected argument 'extra'\n"));
}

TEST(Cli, HelpListsEveryCommand) {
    for (const char* word : {"help", "--help", "-h"}) {
        const orvo::test::CliResult help = RunOrvo({word});
        EXPECT_EQ(help.code, 0) << word;
        EXPECT_EQ(help.err, "");
        for (const orvo::cli::Command& command : orvo::cli::Commands()) {
            EXPECT_TRUE(Contains(help.out, command.usage)) << command.name;
        }
    }
}

// Every command answers --help (and "orvo help COMMAND") on the output stream with its usage
// line, and an unknown option with exit status 2, the usage and a hint on the error stream.
TEST(Cli, EveryCommandHasHelpAndRefusesUnknownOptions) {
    for (const orvo::cli::Command& command : orvo::cli::Commands()) {
        const std::string name = command.name;
        const orvo::test::CliResult help = RunOrvo({name, "--help"});
        EXPECT_EQ(help.code, 0) << name;
        EXPECT_EQ(help.out.rfind("usage: orvo " + name + " [options]", 0), 0u) << help.out;
        EXPECT_TRUE(Contains(help.out, "-h, --help")) << name;
        EXPECT_EQ(help.err, "") << name;
        EXPECT_EQ(RunOrvo({"help", name}).out, help.out) << name;

        const orvo::test::CliResult wrong = RunOrvo({name, "--no-such-option"});
        EXPECT_EQ(wrong.code, 2) << name;
        EXPECT_EQ(wrong.out, "") << name;
        EXPECT_TRUE(Contains(wrong.err, "orvo " + name + ": unknown option '--no-such-option'\n"))
            << wrong.err;
        EXPECT_TRUE(Contains(wrong.err, "Try 'orvo " + name + " --help' for more information."))
            << name;
    }
    EXPECT_EQ(RunOrvo({"help", "nothing"}).code, 2);
}

}  // namespace
