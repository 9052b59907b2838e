#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"

namespace {

struct CliResult {
    int code;
    std::string out;
    std::string err;
};

CliResult RunTool(std::vector<std::string> words) {
    words.insert(words.begin(), "orvo");
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    std::ostringstream out, err;
    int code = orvo::cli::Run(static_cast<int>(argv.size()), argv.data(), out, err);
    return {code, out.str(), err.str()};
}

TEST(Cli, DispatchesAndReportsUsageErrors) {
    CliResult none = RunTool({});
    EXPECT_EQ(none.code, 2);
    EXPECT_NE(none.err.find("usage: orvo"), std::string::npos);

    CliResult unknown = RunTool({"frobnicate"});
    EXPECT_EQ(unknown.code, 2);
    EXPECT_NE(unknown.err.find("unknown command 'frobnicate'"), std::string::npos);

    CliResult version = RunTool({"version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.out, "orvo 0.1.0\n");

    EXPECT_EQ(RunTool({"version", "extra"}).code, 2);
}

TEST(Cli, HelpListsEveryCommand) {
    CliResult help = RunTool({"help"});
    EXPECT_EQ(help.code, 0);
    for (const orvo::cli::Command& command : orvo::cli::Commands()) {
        EXPECT_NE(help.out.find(command.usage), std::string::npos) << command.name;
    }
}

}  // namespace
