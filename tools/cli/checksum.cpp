// `orvo checksum FILE...`: MD5 and CRC-32 of each file, one line per file.
#include <cstdio>

#include "cli.h"
#include "command_support.h"
#include "orvo/services/checksum.h"

namespace orvo::cli {

int RunChecksum(const Args& args, Io& io) {
    ArgParser parser("orvo checksum",
                     "Print the MD5 digest and the CRC-32 of each file, one line per file:\n"
                     "\"<md5>  <crc32>  <file>\".");
    parser.Positional("FILE", "the files to digest", true, true);
    if (std::optional<int> exit = ParseOrExit(parser, args, io, "orvo checksum")) return *exit;

    // A file that cannot be read is reported and the others are still digested, as the usual
    // checksum tools do; the exit code then tells that something was missing.
    int exitCode = 0;
    for (const std::string& name : parser.Positionals("FILE")) {
        OvFileChecksums sums;
        if (!OvChecksumFile(name.c_str(), &sums)) {
            PrintError(io, "orvo checksum", name + ": cannot read file");
            exitCode = 1;
            continue;
        }
        char crcText[9];
        std::snprintf(crcText, sizeof crcText, "%08x", static_cast<unsigned>(sums.crc32));
        io.out << sums.md5.GetText() << "  " << crcText << "  " << name << "\n";
    }
    return exitCode;
}

}  // namespace orvo::cli
