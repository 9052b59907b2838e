#include "cli.h"

#include <array>
#include <cstring>
#include <sstream>

#include "command_support.h"
#include "orvo/foundation/version.h"

namespace orvo::cli {

namespace {

// Add new subcommands here; keep the list sorted by how often a user needs them.
const std::array kCommands{
    Command{"demo", "demo [DIR]", "run the typical job on the bundled example project (or DIR)",
            &RunDemo},
    Command{"fit", "fit MEASURED CONTROL",
            "estimate a 2D transformation from two point files, with residuals and a plot",
            &RunFit},
    Command{"convert", "convert PROJECT --photo ID --mode N [POINTS]",
            "convert points between the coordinate stages of a photo", &RunConvert},
    Command{"rectify", "rectify PROJECT --photo ID [--tilt ID] POINTS",
            "map image points through a photo's plane rectification", &RunRectify},
    Command{"check", "check FILE...", "read project files of any kind and report every error",
            &RunCheck},
    Command{"tokens", "tokens FILE", "list the tokens of a block file (line, kind, text)",
            &RunTokens},
    Command{"checksum", "checksum FILE...", "print the MD5 and CRC-32 of each file", &RunChecksum},
    Command{"version", "version", "print the library version", &RunVersion},
};

void PrintHelp(std::ostream& out) {
    out << "usage: orvo <command> [arguments]\n"
        << "       orvo <command> --help\n"
        << "       orvo --version\n\ncommands:\n";
    for (const Command& command : kCommands) {
        out << "  " << command.usage << "\n      " << command.summary << "\n";
    }
    out << "\nExit status: 0 success, 1 failure (bad data, files that cannot be read or\n"
           "written), 2 usage error.\n";
}

const Command* FindCommand(const char* name) {
    for (const Command& command : kCommands) {
        if (std::strcmp(name, command.name) == 0) return &command;
    }
    return nullptr;
}

}  // namespace

std::span<const Command> Commands() {
    return kCommands;
}

int Run(int argc, char** argv, Io& io) {
    if (argc < 2) {
        PrintHelp(io.err);
        return 2;
    }
    const char* first = argv[1];
    if (std::strcmp(first, "--help") == 0 || std::strcmp(first, "-h") == 0) {
        PrintHelp(io.out);
        return 0;
    }
    if (std::strcmp(first, "help") == 0) {
        if (argc < 3) {
            PrintHelp(io.out);
            return 0;
        }
        // "orvo help fit" is "orvo fit --help".
        const Command* command = FindCommand(argv[2]);
        if (command == nullptr) {
            io.err << "orvo: unknown command '" << argv[2] << "'\n";
            return 2;
        }
        return command->run(Args{"--help"}, io);
    }
    if (std::strcmp(first, "--version") == 0 || std::strcmp(first, "-V") == 0) {
        return RunVersion(Args(argv + 2, argv + argc), io);
    }
    if (const Command* command = FindCommand(first)) {
        return command->run(Args(argv + 2, argv + argc), io);
    }
    io.err << "orvo: unknown command '" << first << "'\n";
    PrintHelp(io.err);
    return 2;
}

int Run(int argc, char** argv, std::ostream& out, std::ostream& err) {
    std::istringstream noInput;
    Io io{out, err, noInput, false};
    return Run(argc, argv, io);
}

int RunVersion(const Args& args, Io& io) {
    ArgParser parser("orvo version", "Print the version of the orvo library and tool.");
    if (std::optional<int> exit = ParseOrExit(parser, args, io, "orvo version")) return *exit;
    io.out << "orvo " << Version() << "\n";
    return 0;
}

}  // namespace orvo::cli
