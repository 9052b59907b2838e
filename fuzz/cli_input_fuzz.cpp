// What the command-line tool parses itself, beyond the library's readers: its argument lists
// and the text of point files (the line-shape check, the column names, reading and writing the
// points). The tool's sources are compiled in directly, as the fuzz build builds the library
// only.
//
// The first byte chooses: even, the rest is an argument list (words separated by NUL bytes)
// for a parser declared like the commands'; odd, the rest is a point file, read with the
// columns chosen by the second byte (from the shape of the lines, or one of a few lists).
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "../tools/cli/arg_parser.cpp"
#include "../tools/cli/point_files.cpp"

namespace {

void FuzzArguments(const std::string& text) {
    std::vector<std::string> words;
    std::string word;
    for (char c : text) {
        if (c == '\0') {
            words.push_back(word);
            word.clear();
        } else {
            word += c;
        }
    }
    words.push_back(word);

    orvo::cli::ArgParser parser("orvo fuzz", "Fuzzing.");
    parser.Positional("MEASURED", "m")
        .Positional("CONTROL", "c", false)
        .Positional("MORE", "x", false, true)
        .Choice("type", "TYPE", {"auto", "affin"}, "t", "auto")
        .Option("write", 'w', "FILE", "w")
        .Flag("json", 0, "j")
        .Flag("verbose", 'v', "v");
    std::ostringstream out;
    if (parser.Parse(words) && !parser.HelpRequested()) {
        out << parser.Value("type") << parser.Value("write") << parser.Count("verbose");
        for (const std::string& positional : parser.Positionals("MORE")) out << positional;
        out << parser.PositionalOr("CONTROL", "-");
    }
    out << parser.Error() << parser.Usage();
    parser.PrintHelp(out);
    orvo::cli::ParseUnsignedList(text);
    orvo::cli::ParseDouble(text);
    orvo::cli::ParseInt(text);
}

void FuzzPointFile(std::uint8_t selector, const std::string& text) {
    static const char* const kColumns[] = {"id,x,y,z", "id,code123,x,y,z,sx,sy,sz",
                                           "id,name,photo,camera,x,y,rx,skip,ds"};
    std::optional<orvo::OvPointFormat> columns;
    if (selector % 4 != 0) {
        columns = orvo::cli::ParseColumns(kColumns[selector % 4 - 1], nullptr);
    }
    std::istringstream in(text);
    const orvo::cli::PointFile read = orvo::cli::ReadPointFile("-", in, columns);
    std::ostringstream out;
    for (const orvo::cli::FileProblem& problem : read.problems)
        out << orvo::cli::FormatProblem(problem);
    orvo::cli::WritePointFile("-", read.points, read.columns, out);
    std::string error;
    orvo::cli::ParseColumns(text, &error);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2) return 0;
    const std::string rest(reinterpret_cast<const char*>(data) + 2, size - 2);
    if (data[0] % 2 == 0) {
        FuzzArguments(rest);
    } else {
        FuzzPointFile(data[1], rest);
    }
    return 0;
}
