// A small streaming JSON writer for the machine-readable output of the commands ("--json").
//
// Objects and arrays are opened and closed explicitly; inside an object every value follows a
// `Key`. The output is indented by two blanks per level. Numbers are written in their shortest
// form that reads back to the same double; a number that is not finite becomes null, since
// JSON has no spelling for it. Strings are escaped as JSON requires (quotes, backslashes and
// control characters); other bytes pass through unchanged, so UTF-8 text stays UTF-8.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace orvo::cli {

class JsonWriter {
public:
    explicit JsonWriter(std::ostream& out) : out_(out) {}
    /// Ends the last line of the document.
    ~JsonWriter();
    JsonWriter(const JsonWriter&) = delete;
    JsonWriter& operator=(const JsonWriter&) = delete;

    JsonWriter& BeginObject();
    JsonWriter& EndObject();
    JsonWriter& BeginArray();
    JsonWriter& EndArray();
    JsonWriter& Key(const std::string& key);

    JsonWriter& String(const std::string& value);
    JsonWriter& Number(double value);
    JsonWriter& Integer(std::int64_t value);
    JsonWriter& Bool(bool value);
    JsonWriter& Null();

private:
    void BeforeValue();
    JsonWriter& Close(char bracket);
    void NewLine();

    std::ostream& out_;
    // One entry per open container: whether something was written into it yet.
    std::vector<bool> hasItems_;
    bool afterKey_ = false;
    bool started_ = false;
};

/// The text as a JSON string literal, quotes included.
std::string JsonQuote(const std::string& text);

}  // namespace orvo::cli
