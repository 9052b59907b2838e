// The orvo command-line tool: a dispatcher over subcommands.
#pragma once

#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace orvo::cli {

/// Arguments of one subcommand, without the program and subcommand names.
using Args = std::vector<std::string>;

/// A subcommand: returns the process exit code (0 success, 1 failure, 2 usage error).
using CommandFn = int (*)(const Args& args, std::ostream& out, std::ostream& err);

struct Command {
    const char* name;
    const char* usage;    // e.g. "tokens FILE"
    const char* summary;  // one line for the help text
    CommandFn run;
};

/// Every subcommand of the tool, in the order the help lists them.
std::span<const Command> Commands();

/// Runs the tool as `main` would: argv[1] names the subcommand.
int Run(int argc, char** argv, std::ostream& out, std::ostream& err);

// Subcommands (one file each in this folder).
int RunVersion(const Args& args, std::ostream& out, std::ostream& err);
int RunChecksum(const Args& args, std::ostream& out, std::ostream& err);
int RunTokens(const Args& args, std::ostream& out, std::ostream& err);

}  // namespace orvo::cli
