#include "cli/cli.h"

#include <array>
#include <cstring>

#include "orvo/orvo.h"

namespace orvo::cli {

namespace {

// Add new subcommands here; keep the list sorted by how often a user needs them.
const std::array kCommands{
    Command{"version", "version", "print the library version", &RunVersion},
    Command{"checksum", "checksum FILE...", "print the MD5 and CRC-32 of each file", &RunChecksum},
    Command{"tokens", "tokens FILE", "list the tokens of a block file (line, kind, text)",
            &RunTokens},
};

void PrintHelp(std::ostream& out) {
    out << "usage: orvo <command> [arguments]\n\ncommands:\n";
    for (const Command& command : kCommands) {
        out << "  " << command.usage << "\n      " << command.summary << "\n";
    }
}

}  // namespace

std::span<const Command> Commands() { return kCommands; }

int Run(int argc, char** argv, std::ostream& out, std::ostream& err) {
    if (argc < 2 || std::strcmp(argv[1], "help") == 0 || std::strcmp(argv[1], "--help") == 0 ||
        std::strcmp(argv[1], "-h") == 0) {
        PrintHelp(argc < 2 ? err : out);
        return argc < 2 ? 2 : 0;
    }
    for (const Command& command : kCommands) {
        if (std::strcmp(argv[1], command.name) == 0) {
            Args args(argv + 2, argv + argc);
            return command.run(args, out, err);
        }
    }
    err << "orvo: unknown command '" << argv[1] << "'\n";
    PrintHelp(err);
    return 2;
}

int RunVersion(const Args& args, std::ostream& out, std::ostream& err) {
    if (!args.empty()) {
        err << "usage: orvo version\n";
        return 2;
    }
    out << "orvo " << Version() << "\n";
    return 0;
}

}  // namespace orvo::cli
