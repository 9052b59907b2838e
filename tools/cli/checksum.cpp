// `orvo checksum FILE...`: MD5 and CRC-32 of each file, one line per file.
#include <cstdio>

#include "cli/cli.h"
#include "orvo/services/checksum.h"

namespace orvo::cli {

int RunChecksum(const Args& args, std::ostream& out, std::ostream& err) {
    if (args.empty()) {
        err << "usage: orvo checksum FILE...\n";
        return 2;
    }
    // A file that cannot be read is reported and the others are still digested, as the usual
    // checksum tools do; the exit code then tells that something was missing.
    int exitCode = 0;
    for (const std::string& name : args) {
        OvFileChecksums sums;
        if (!OvChecksumFile(name.c_str(), &sums)) {
            err << "orvo checksum: " << name << ": cannot read file\n";
            exitCode = 1;
            continue;
        }
        char crcText[9];
        std::snprintf(crcText, sizeof crcText, "%08x", static_cast<unsigned>(sums.crc32));
        out << sums.md5.GetText() << "  " << crcText << "  " << name << "\n";
    }
    return exitCode;
}

}  // namespace orvo::cli
