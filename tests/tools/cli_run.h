// Runs the tool's entry point as a user would run the program, with captured streams.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"

namespace orvo::test {

struct CliResult {
    int code = 0;
    std::string out;
    std::string err;
};

/// `orvo <words...>` with `input` as standard input; `progress` as if the error stream were a
/// terminal.
inline CliResult RunOrvo(std::vector<std::string> words, const std::string& input = "",
                         bool progress = false) {
    words.insert(words.begin(), "orvo");
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    std::ostringstream out, err;
    std::istringstream in(input);
    orvo::cli::Io io{out, err, in, progress};
    const int code = orvo::cli::Run(static_cast<int>(argv.size()), argv.data(), io);
    return {code, out.str(), err.str()};
}

/// A file of the bundled example project.
inline std::string ExampleFile(const std::string& name) {
    return std::string(ORVO_SOURCE_DIR) + "/examples/" + name;
}

/// Whether `text` holds `part`.
inline bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace orvo::test
