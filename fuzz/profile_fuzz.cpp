// Settings files of arbitrary content: every read must stay within its buffer and report the
// length it placed there, and every successful write must read back and leave no temporary file
// behind.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "orvo/textfile/profile.h"

namespace {

namespace fs = std::filesystem;

class ScratchDirectory {
public:
    ScratchDirectory() {
        // Every successful write flushes to the disk; in memory that costs nothing, so prefer it.
        std::error_code error;
        const fs::path base =
            fs::is_directory("/dev/shm", error) ? fs::path("/dev/shm") : fs::temp_directory_path();
        std::string pattern = (base / "orvo-profile-fuzz-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) std::abort();
        path_ = pattern;
    }
    ~ScratchDirectory() {
        std::error_code error;
        fs::remove_all(path_, error);
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

const ScratchDirectory& Scratch() {
    static const ScratchDirectory scratch;
    return scratch;
}

void Check(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "profile fuzz: %s\n", what);
        std::abort();
    }
}

// Reads through a buffer with guard bytes on both sides of the `size` usable ones.
std::string GetChecked(const char* section, const char* key, int size, const std::string& file) {
    constexpr int kGuard = 16;
    std::vector<char> buffer(static_cast<std::size_t>(size) + 2 * kGuard, '\x5a');
    char* result = buffer.data() + kGuard;
    const int length =
        orvo::OvGetPrivateProfile(section, key, result, size, "default", file.c_str());
    for (int i = 0; i < kGuard; ++i) {
        Check(buffer[static_cast<std::size_t>(i)] == '\x5a', "wrote before the buffer");
        Check(buffer[buffer.size() - 1 - static_cast<std::size_t>(i)] == '\x5a',
              "wrote after the buffer");
    }
    Check(length >= 0 && length < size, "length outside the buffer");
    Check(std::strlen(result) == static_cast<std::size_t>(length), "length is not the text's");
    return std::string(result, static_cast<std::size_t>(length));
}

// Section and key names: a few fixed ones and some taken from the input itself, so that the
// fuzzer can steer them towards the lines it generated.
std::vector<std::string> NamesFrom(std::string_view input) {
    std::vector<std::string> names = {"General", "S", "k", "Path", "["};
    for (std::size_t start = 0; start < input.size() && names.size() < 9;) {
        std::size_t end = input.find_first_of("\n=]", start);
        if (end == std::string_view::npos) end = input.size();
        std::string_view word = input.substr(start, end - start);
        if (!word.empty() && word.front() == '[') word.remove_prefix(1);
        if (!word.empty() && word.size() < 40) names.emplace_back(word);
        start = end + 1;
    }
    return names;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fs::path& dir = Scratch().path();
    const std::string file = (dir / "settings.ini").string();
    {
        std::FILE* out = std::fopen(file.c_str(), "wb");
        if (out == nullptr) std::abort();
        if (size > 0) std::fwrite(data, 1, size, out);
        std::fclose(out);
    }
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> names = NamesFrom(input);

    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        const char* section = names[i].c_str();
        const char* key = names[i + 1].c_str();
        for (int bufferSize : {1, 2, 7, 600})
            GetChecked(section, key, bufferSize, file);
    }

    // Rewrite a few keys; each written value must be what a read of that key finds.
    const std::string value = "v" + std::to_string(size);
    for (std::size_t i = 0; i + 1 < names.size() && i < 4; ++i) {
        const std::string& section = names[i];
        const std::string& key = names[i + 1];
        const int written =
            orvo::OvWritePrivateProfile(section.c_str(), key.c_str(), value.c_str(), file.c_str());
        const bool plainNames = !key.empty() && key.find_first_of("\r\n=") == std::string::npos &&
                                section.find_first_of("\r\n") == std::string::npos &&
                                key.find('\0') == std::string::npos &&
                                section.find('\0') == std::string::npos;
        if (plainNames) {
            Check(written == 1, "write of plain names failed");
            Check(GetChecked(section.c_str(), key.c_str(), 600, file) == value,
                  "written value does not read back");
        }
    }

    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(dir))
        ++entries;
    Check(entries == 1, "a temporary file was left behind");
    return 0;
}
