// The orvo command-line tool: a dispatcher over subcommands.
//
// Exit status of every command: 0 success, 1 the work failed (bad input data, a file that
// cannot be read or written, read errors found by `check`), 2 a usage error (unknown command
// or option, missing argument). Errors go to the error stream, results to the output stream.
#pragma once

#include <istream>
#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace orvo::cli {

/// Arguments of one subcommand, without the program and subcommand names.
using Args = std::vector<std::string>;

/// The streams a command works with, and whether the error stream is a terminal on which a
/// progress bar may be drawn.
struct Io {
    std::ostream& out;
    std::ostream& err;
    std::istream& in;
    bool progress = false;
};

/// A subcommand: returns the process exit code (0 success, 1 failure, 2 usage error).
using CommandFn = int (*)(const Args& args, Io& io);

struct Command {
    const char* name;
    const char* usage;    // e.g. "tokens FILE"
    const char* summary;  // one line for the help text
    CommandFn run;
};

/// Every subcommand of the tool, in the order the help lists them.
std::span<const Command> Commands();

/// Runs the tool as `main` would: argv[1] names the subcommand ("--help", "--version" and
/// "help [COMMAND]" are understood as well).
int Run(int argc, char** argv, Io& io);
/// The same without standard input (an empty one) and without a progress bar.
int Run(int argc, char** argv, std::ostream& out, std::ostream& err);

// Subcommands (one file each in this folder).
int RunVersion(const Args& args, Io& io);
int RunDemo(const Args& args, Io& io);
int RunFit(const Args& args, Io& io);
int RunConvert(const Args& args, Io& io);
int RunRectify(const Args& args, Io& io);
int RunCheck(const Args& args, Io& io);
int RunTokens(const Args& args, Io& io);
int RunChecksum(const Args& args, Io& io);

}  // namespace orvo::cli
