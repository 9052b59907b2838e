#include "json_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace orvo::cli {

std::string JsonQuote(const std::string& text) {
    std::string quoted = "\"";
    for (char c : text) {
        switch (c) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            case '\n':
                quoted += "\\n";
                break;
            case '\r':
                quoted += "\\r";
                break;
            case '\t':
                quoted += "\\t";
                break;
            default:
                if (static_cast<unsigned char>(c) < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04x",
                                  static_cast<unsigned>(static_cast<unsigned char>(c)));
                    quoted += escaped;
                } else {
                    quoted += c;
                }
        }
    }
    return quoted + "\"";
}

JsonWriter::~JsonWriter() {
    if (started_) out_ << "\n";
}

void JsonWriter::NewLine() {
    out_ << "\n" << std::string(hasItems_.size() * 2, ' ');
}

void JsonWriter::BeforeValue() {
    started_ = true;
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (hasItems_.empty()) return;
    if (hasItems_.back()) out_ << ",";
    hasItems_.back() = true;
    NewLine();
}

JsonWriter& JsonWriter::BeginObject() {
    BeforeValue();
    out_ << "{";
    hasItems_.push_back(false);
    return *this;
}

JsonWriter& JsonWriter::Close(char bracket) {
    const bool items = hasItems_.back();
    hasItems_.pop_back();
    if (items) NewLine();
    out_ << bracket;
    return *this;
}

JsonWriter& JsonWriter::EndObject() {
    return Close('}');
}

JsonWriter& JsonWriter::BeginArray() {
    BeforeValue();
    out_ << "[";
    hasItems_.push_back(false);
    return *this;
}

JsonWriter& JsonWriter::EndArray() {
    return Close(']');
}

JsonWriter& JsonWriter::Key(const std::string& key) {
    BeforeValue();
    out_ << JsonQuote(key) << ": ";
    afterKey_ = true;
    return *this;
}

JsonWriter& JsonWriter::String(const std::string& value) {
    BeforeValue();
    out_ << JsonQuote(value);
    return *this;
}

JsonWriter& JsonWriter::Number(double value) {
    BeforeValue();
    if (!std::isfinite(value)) {
        out_ << "null";
        return *this;
    }
    char text[64];
    const std::to_chars_result result = std::to_chars(text, text + sizeof text, value);
    out_.write(text, result.ptr - text);
    return *this;
}

JsonWriter& JsonWriter::Integer(std::int64_t value) {
    BeforeValue();
    out_ << value;
    return *this;
}

JsonWriter& JsonWriter::Bool(bool value) {
    BeforeValue();
    out_ << (value ? "true" : "false");
    return *this;
}

JsonWriter& JsonWriter::Null() {
    BeforeValue();
    out_ << "null";
    return *this;
}

}  // namespace orvo::cli
