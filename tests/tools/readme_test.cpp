// The README's section on the command-line tool shows commands and their output; every one of
// them is run here, from the source directory as the README assumes, and the lines it shows
// ("..." stands for lines left out) must come out in that order. Files the commands write go to
// a scratch directory instead, and the demo gets an output directory there as well.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli_run.h"
#include "temp_dir.h"

namespace {

namespace fs = std::filesystem;

struct Example {
    std::vector<std::string> words;  // without "orvo"
    std::vector<std::string> shown;  // the output lines the README shows
};

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line))
        lines.push_back(line);
    return lines;
}

std::vector<Example> ExamplesOfTheSection(const std::string& readme) {
    const std::size_t start = readme.find("\n## Command-line tool\n");
    const std::size_t end = readme.find("\n## ", start + 1);
    std::vector<Example> examples;
    bool inBlock = false;
    for (const std::string& line : Lines(readme.substr(start, end - start))) {
        if (line.rfind("```", 0) == 0) {
            inBlock = !inBlock;
            continue;
        }
        if (!inBlock) continue;
        if (line.rfind("$ orvo", 0) == 0) {
            Example example;
            std::istringstream words(line.substr(7));
            std::string word;
            while (words >> word)
                example.words.push_back(word);
            examples.push_back(example);
        } else if (!examples.empty()) {
            examples.back().shown.push_back(line);
        }
    }
    return examples;
}

class WorkingDirectory {
public:
    explicit WorkingDirectory(const fs::path& path) : previous_(fs::current_path()) {
        fs::current_path(path);
    }
    ~WorkingDirectory() { fs::current_path(previous_); }

private:
    fs::path previous_;
};

TEST(Readme, EveryCommandOfTheToolSectionRunsAsShown) {
    const std::string readme =
        orvo::test::ReadWholeFile(std::string(ORVO_SOURCE_DIR) + "/README.md");
    const std::vector<Example> examples = ExamplesOfTheSection(readme);
    ASSERT_GE(examples.size(), 9u);

    orvo::test::TempDir scratch;
    WorkingDirectory inSource(ORVO_SOURCE_DIR);
    int written = 0;
    for (Example example : examples) {
        std::string shownCommand = "orvo";
        for (const std::string& word : example.words)
            shownCommand += " " + word;
        bool hasOut = false;
        for (std::size_t i = 0; i + 1 < example.words.size(); ++i) {
            const std::string& option = example.words[i];
            if (option == "--svg" || option == "--write" || option == "--out" || option == "-o") {
                example.words[i + 1] =
                    scratch.file(std::to_string(++written) + "-" + example.words[i + 1]);
                hasOut = hasOut || option == "--out" || option == "-o";
            }
        }
        if (example.words.front() == "demo" && !hasOut) {
            example.words.push_back("--out");
            example.words.push_back(scratch.file("demo-out"));
        }
        const orvo::test::CliResult run = orvo::test::RunOrvo(example.words);
        EXPECT_EQ(run.code, 0) << shownCommand << "\n" << run.err;

        // The shown lines, in order, each one a whole line of the output.
        const std::vector<std::string> actual = Lines(run.out);
        std::size_t next = 0;
        for (const std::string& line : example.shown) {
            if (line == "..." || line.empty()) continue;
            while (next < actual.size() && actual[next] != line)
                ++next;
            EXPECT_LT(next, actual.size()) << shownCommand << "\nshows a line that is not "
                                           << "(or not in this order) in the output:\n"
                                           << line << "\noutput:\n"
                                           << run.out;
            if (next >= actual.size()) break;
            ++next;
        }
    }
}

}  // namespace
