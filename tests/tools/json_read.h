// A strict little JSON reader for checking the tool's "--json" output: it accepts exactly the
// JSON grammar (objects, arrays, strings with escapes, numbers, true, false, null) and fails on
// anything else, including trailing text.
#pragma once

#include <cctype>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace orvo::test {

struct Json {
    enum Kind { kNull, kBool, kNumber, kString, kArray, kObject } kind = kNull;
    bool boolean = false;
    double number = 0.0;
    std::string text;
    std::vector<Json> items;
    std::map<std::string, Json> members;

    const Json& operator[](const std::string& key) const {
        static const Json missing;
        const auto found = members.find(key);
        return found != members.end() ? found->second : missing;
    }
    const Json& operator[](std::size_t i) const { return items.at(i); }
    bool Has(const std::string& key) const { return members.count(key) != 0; }
};

class JsonReader {
public:
    /// Parses the whole text; false when it is not one valid JSON value.
    bool Parse(const std::string& text, Json* value) {
        text_ = text;
        pos_ = 0;
        if (!Value(value)) return false;
        Space();
        return pos_ == text_.size();
    }

private:
    void Space() {
        while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_])))
            ++pos_;
    }
    bool Literal(const char* word) {
        const std::string w(word);
        if (text_.compare(pos_, w.size(), w) != 0) return false;
        pos_ += w.size();
        return true;
    }
    bool String(std::string* out) {
        if (pos_ >= text_.size() || text_[pos_] != '"') return false;
        ++pos_;
        while (pos_ < text_.size() && text_[pos_] != '"') {
            const char c = text_[pos_++];
            if (static_cast<unsigned char>(c) < 0x20) return false;
            if (c != '\\') {
                *out += c;
                continue;
            }
            if (pos_ >= text_.size()) return false;
            const char e = text_[pos_++];
            switch (e) {
                case '"':
                    *out += '"';
                    break;
                case '\\':
                    *out += '\\';
                    break;
                case '/':
                    *out += '/';
                    break;
                case 'b':
                    *out += '\b';
                    break;
                case 'f':
                    *out += '\f';
                    break;
                case 'n':
                    *out += '\n';
                    break;
                case 'r':
                    *out += '\r';
                    break;
                case 't':
                    *out += '\t';
                    break;
                case 'u': {
                    if (pos_ + 4 > text_.size()) return false;
                    const std::string hex = text_.substr(pos_, 4);
                    for (char h : hex)
                        if (!std::isxdigit(static_cast<unsigned char>(h))) return false;
                    const long code = std::strtol(hex.c_str(), nullptr, 16);
                    if (code >= 0x80) return false;  // the tool escapes only control characters
                    *out += static_cast<char>(code);
                    pos_ += 4;
                    break;
                }
                default:
                    return false;
            }
        }
        if (pos_ >= text_.size()) return false;
        ++pos_;
        return true;
    }
    bool Number(double* out) {
        const std::size_t start = pos_;
        if (pos_ < text_.size() && text_[pos_] == '-') ++pos_;
        if (pos_ >= text_.size() || !std::isdigit(static_cast<unsigned char>(text_[pos_])))
            return false;
        if (text_[pos_] == '0') {
            ++pos_;
        } else {
            while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
                ++pos_;
        }
        if (pos_ < text_.size() && text_[pos_] == '.') {
            ++pos_;
            if (pos_ >= text_.size() || !std::isdigit(static_cast<unsigned char>(text_[pos_])))
                return false;
            while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
                ++pos_;
        }
        if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
            ++pos_;
            if (pos_ < text_.size() && (text_[pos_] == '+' || text_[pos_] == '-')) ++pos_;
            if (pos_ >= text_.size() || !std::isdigit(static_cast<unsigned char>(text_[pos_])))
                return false;
            while (pos_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[pos_])))
                ++pos_;
        }
        *out = std::strtod(text_.substr(start, pos_ - start).c_str(), nullptr);
        return true;
    }
    bool Value(Json* value) {
        Space();
        if (pos_ >= text_.size()) return false;
        const char c = text_[pos_];
        if (c == '{') {
            value->kind = Json::kObject;
            ++pos_;
            Space();
            if (pos_ < text_.size() && text_[pos_] == '}') return ++pos_, true;
            for (;;) {
                Space();
                std::string key;
                if (!String(&key)) return false;
                Space();
                if (pos_ >= text_.size() || text_[pos_] != ':') return false;
                ++pos_;
                Json member;
                if (!Value(&member)) return false;
                if (!value->members.emplace(key, member).second) return false;  // no duplicates
                Space();
                if (pos_ < text_.size() && text_[pos_] == ',') {
                    ++pos_;
                    continue;
                }
                if (pos_ < text_.size() && text_[pos_] == '}') return ++pos_, true;
                return false;
            }
        }
        if (c == '[') {
            value->kind = Json::kArray;
            ++pos_;
            Space();
            if (pos_ < text_.size() && text_[pos_] == ']') return ++pos_, true;
            for (;;) {
                Json item;
                if (!Value(&item)) return false;
                value->items.push_back(item);
                Space();
                if (pos_ < text_.size() && text_[pos_] == ',') {
                    ++pos_;
                    continue;
                }
                if (pos_ < text_.size() && text_[pos_] == ']') return ++pos_, true;
                return false;
            }
        }
        if (c == '"') {
            value->kind = Json::kString;
            return String(&value->text);
        }
        if (Literal("true")) {
            value->kind = Json::kBool;
            value->boolean = true;
            return true;
        }
        if (Literal("false")) {
            value->kind = Json::kBool;
            return true;
        }
        if (Literal("null")) {
            value->kind = Json::kNull;
            return true;
        }
        value->kind = Json::kNumber;
        return Number(&value->number);
    }

    std::string text_;
    std::size_t pos_ = 0;
};

/// Parses `text` as JSON into a value; a parse failure gives a null value and sets *ok false.
inline Json ParseJson(const std::string& text, bool* ok) {
    Json value;
    JsonReader reader;
    *ok = reader.Parse(text, &value);
    return *ok ? value : Json();
}

}  // namespace orvo::test
