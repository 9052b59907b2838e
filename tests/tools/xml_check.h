// A small well-formedness check for XML documents (the SVG plots of the tool): one root
// element, tags that nest and close, well-formed names and attributes (quoted, unique per
// element, no "<" inside), character and entity references that exist, and no text outside the
// root. It does not validate against a schema, resolve a DTD or check encodings.
#pragma once

#include <cctype>
#include <map>
#include <string>
#include <vector>

namespace orvo::test {

struct XmlElement {
    std::string name;
    std::map<std::string, std::string> attributes;
    int depth = 0;
};

class XmlCheck {
public:
    /// Parses the document; false with `Error()` set when it is not well-formed.
    bool Parse(const std::string& text) {
        text_ = text;
        pos_ = 0;
        elements_.clear();
        std::vector<std::string> open;
        bool rootSeen = false;
        if (text_.compare(0, 5, "<?xml") == 0) {
            const std::size_t end = text_.find("?>");
            if (end == std::string::npos) return Fail("unterminated XML declaration");
            pos_ = end + 2;
        }
        while (pos_ < text_.size()) {
            if (text_.compare(pos_, 4, "<!--") == 0) {
                const std::size_t end = text_.find("-->", pos_ + 4);
                if (end == std::string::npos) return Fail("unterminated comment");
                pos_ = end + 3;
            } else if (text_.compare(pos_, 2, "</") == 0) {
                pos_ += 2;
                std::string name;
                if (!Name(&name)) return Fail("bad end tag name");
                SkipSpace();
                if (!Expect('>')) return Fail("end tag not closed");
                if (open.empty() || open.back() != name)
                    return Fail("end tag </" + name + "> does not match");
                open.pop_back();
            } else if (text_[pos_] == '<') {
                if (open.empty() && rootSeen) return Fail("a second root element");
                ++pos_;
                XmlElement element;
                element.depth = static_cast<int>(open.size());
                if (!Name(&element.name)) return Fail("bad element name");
                bool selfClosing = false;
                for (;;) {
                    const bool spaced = SkipSpace();
                    if (Expect('>')) break;
                    if (text_.compare(pos_, 2, "/>") == 0) {
                        pos_ += 2;
                        selfClosing = true;
                        break;
                    }
                    if (!spaced) return Fail("attributes must be separated by blanks");
                    std::string key, value;
                    if (!Name(&key)) return Fail("bad attribute name in <" + element.name + ">");
                    SkipSpace();
                    if (!Expect('=')) return Fail("attribute " + key + " without '='");
                    SkipSpace();
                    if (!Quoted(&value)) return Fail("attribute " + key + " not quoted well");
                    if (!element.attributes.emplace(key, value).second)
                        return Fail("attribute " + key + " twice");
                }
                rootSeen = true;
                elements_.push_back(element);
                if (!selfClosing) open.push_back(element.name);
            } else {
                const char c = text_[pos_];
                if (open.empty() && !std::isspace(static_cast<unsigned char>(c)))
                    return Fail("text outside the root element");
                if (c == '&' && !Reference()) return Fail("bad reference in text");
                if (c != '&') ++pos_;
            }
        }
        if (!open.empty()) return Fail("element <" + open.back() + "> is not closed");
        if (!rootSeen) return Fail("no root element");
        return true;
    }

    const std::string& Error() const { return error_; }
    const std::vector<XmlElement>& Elements() const { return elements_; }

    /// Elements with this name whose class attribute's words include `cssClass` (any class
    /// when empty).
    int Count(const std::string& name, const std::string& cssClass = "") const {
        int count = 0;
        for (const XmlElement& element : elements_) {
            if (element.name != name) continue;
            if (cssClass.empty()) {
                ++count;
                continue;
            }
            const auto found = element.attributes.find("class");
            if (found == element.attributes.end()) continue;
            const std::string padded = " " + found->second + " ";
            if (padded.find(" " + cssClass + " ") != std::string::npos) ++count;
        }
        return count;
    }

private:
    bool Fail(const std::string& what) {
        error_ = what + " at byte " + std::to_string(pos_);
        return false;
    }
    bool Expect(char c) {
        if (pos_ < text_.size() && text_[pos_] == c) {
            ++pos_;
            return true;
        }
        return false;
    }
    bool SkipSpace() {
        const std::size_t start = pos_;
        while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_])))
            ++pos_;
        return pos_ > start;
    }
    static bool NameStart(char c) {
        return std::isalpha(static_cast<unsigned char>(c)) || c == '_' || c == ':';
    }
    static bool NameChar(char c) {
        return NameStart(c) || std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '.';
    }
    bool Name(std::string* name) {
        if (pos_ >= text_.size() || !NameStart(text_[pos_])) return false;
        const std::size_t start = pos_;
        while (pos_ < text_.size() && NameChar(text_[pos_]))
            ++pos_;
        *name = text_.substr(start, pos_ - start);
        return true;
    }
    bool Reference() {  // at '&'
        const std::size_t end = text_.find(';', pos_);
        if (end == std::string::npos) return false;
        const std::string body = text_.substr(pos_ + 1, end - pos_ - 1);
        bool ok = body == "amp" || body == "lt" || body == "gt" || body == "quot" || body == "apos";
        if (!ok && body.size() > 1 && body[0] == '#') {
            ok = true;
            const bool hex = body[1] == 'x';
            for (std::size_t i = hex ? 2 : 1; i < body.size(); ++i) {
                ok = ok && (hex ? std::isxdigit(static_cast<unsigned char>(body[i]))
                                : std::isdigit(static_cast<unsigned char>(body[i])));
            }
            ok = ok && body.size() > (hex ? 2u : 1u);
        }
        if (ok) pos_ = end + 1;
        return ok;
    }
    bool Quoted(std::string* value) {
        if (pos_ >= text_.size() || (text_[pos_] != '"' && text_[pos_] != '\'')) return false;
        const char quote = text_[pos_++];
        const std::size_t start = pos_;
        while (pos_ < text_.size() && text_[pos_] != quote) {
            if (text_[pos_] == '<') return false;
            if (text_[pos_] == '&') {
                if (!Reference()) return false;
            } else {
                ++pos_;
            }
        }
        if (pos_ >= text_.size()) return false;
        *value = text_.substr(start, pos_ - start);
        ++pos_;
        return true;
    }

    std::string text_;
    std::size_t pos_ = 0;
    std::string error_;
    std::vector<XmlElement> elements_;
};

}  // namespace orvo::test
