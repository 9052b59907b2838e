// Line reading of the tokenizer compared with a plain model of its rules, on generated inputs
// with lines around the length limit, carriage returns in every position and NUL bytes, read
// through buffered and unbuffered streams.
//
// The rules: a line ends at a line feed; one carriage return directly before the line feed
// belongs to the line end; a last line without a line feed is still a line; a line whose text
// is longer than kMaxLineLength ends reading with a stream error after its first
// kMaxLineLength characters were tokenised; a NUL byte ends the line's text.
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "orvo/textfile/tokenizer.h"

namespace orvo {
namespace {

constexpr std::size_t kMax = OvParser::kMaxLineLength;

struct SeenLine {
    std::uint32_t line;
    std::string text;
    bool operator==(const SeenLine&) const = default;
};

struct Outcome {
    std::vector<SeenLine> lines;  // the token of every line that gave one
    eOvParserStatus final = ParserStatusOK;
    std::uint32_t finalLine = 0;
    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& o) {
    out << o.lines.size() << " lines, status " << o.final << " at line " << o.finalLine;
    for (const SeenLine& l : o.lines)
        out << "\n  " << l.line << ": length " << l.text.size();
    return out;
}

// The model: splits the input by the rules above.
Outcome Model(const std::string& input) {
    Outcome o;
    std::size_t start = 0;
    std::uint32_t line = 0;
    for (;;) {
        if (start >= input.size()) {
            // The read that finds nothing counts as a line.
            o.final = ParserStatusEOF;
            o.finalLine = line + 1;
            return o;
        }
        std::size_t end = input.find('\n', start);
        const bool hasLineFeed = end != std::string::npos;
        if (!hasLineFeed) end = input.size();
        std::string text = input.substr(start, end - start);
        if (hasLineFeed && !text.empty() && text.back() == '\r') text.pop_back();
        ++line;
        const bool tooLong = text.size() > kMax;
        if (tooLong) text.resize(kMax);
        text = text.substr(0, text.find('\0'));
        if (!text.empty()) o.lines.push_back({line, text});
        if (tooLong) {
            o.final = ParserErrorStream;
            o.finalLine = line;
            return o;
        }
        start = end + 1;
    }
}

// The parser with an empty character table, so every line is one token.
Outcome Parse(std::istream& in) {
    OvParser parser;
    parser.GetChLookup().Clear();
    Outcome o;
    for (int guard = 0; guard < 100000; ++guard) {
        try {
            parser.ParseForToken(in);
        } catch (const OvParserStatus& status) {
            if (status.GetStatus() == ParserErrorInvalidNumber) {
                // A line of letters that starts otherwise: the text is there all the same.
                o.lines.push_back({status.GetLine(), parser.GetToken().text});
                continue;
            }
            o.final = status.GetStatus();
            o.finalLine = status.GetLine();
            return o;
        }
        if (parser.GetToken().type == TokenEOF) break;
        o.lines.push_back({parser.GetStatus().GetLine(), parser.GetToken().text});
    }
    o.final = parser.GetStatus().GetStatus();
    o.finalLine = parser.GetStatus().GetLine();
    return o;
}

// A stream buffer that hands out one character at a time, so no line can be found in a
// buffered block.
class OneByOne : public std::streambuf {
public:
    explicit OneByOne(std::string data) : data_(std::move(data)) {}

protected:
    int_type underflow() override {
        if (pos_ >= data_.size()) return traits_type::eof();
        current_ = data_[pos_++];
        setg(&current_, &current_, &current_ + 1);
        return traits_type::to_int_type(current_);
    }

private:
    std::string data_;
    std::size_t pos_ = 0;
    char current_ = 0;
};

void ExpectLikeTheModel(const std::string& input, const std::string& what) {
    const Outcome expected = Model(input);
    std::istringstream buffered(input);
    EXPECT_EQ(Parse(buffered), expected) << what;
    OneByOne unbuffered(input);
    std::istream slow(&unbuffered);
    EXPECT_EQ(Parse(slow), expected) << what << " (unbuffered)";
    // A stream that throws on a broken buffer is read another way; it must read the same.
    std::istringstream throwing(input);
    throwing.exceptions(std::ios_base::badbit);
    EXPECT_EQ(Parse(throwing), expected) << what << " (throwing stream)";
}

TEST(TokenizerLineReading, LinesAroundTheLengthLimitWithEveryLineEnd) {
    const char* ends[] = {"\n", "\r\n", "\r\r\n", "\r", "\rX\n", ""};
    for (std::size_t length = kMax - 2; length <= kMax + 2; ++length) {
        for (const char* end : ends) {
            const std::string line = "K" + std::string(length - 1, 'a');
            ExpectLikeTheModel(line + end + "NEXT\n", std::to_string(length) + " + end " +
                                                          std::to_string(std::string(end).size()));
            ExpectLikeTheModel(line + end, std::to_string(length) + " at the end");
        }
    }
}

TEST(TokenizerLineReading, CarriageReturnsAtTheLimit) {
    // The limit counts the carriage return unless a line feed follows it.
    const std::string full(kMax, 'b');
    ExpectLikeTheModel(full + "\r\n", "full + CR LF");
    ExpectLikeTheModel(full + "\r", "full + CR at the end");
    ExpectLikeTheModel(full + "\r\r\n", "full + CR CR LF");
    ExpectLikeTheModel(full.substr(1) + "\r\r\n", "full - 1 + CR CR LF");
    ExpectLikeTheModel(full.substr(1) + "\r", "full - 1 + CR at the end");
    ExpectLikeTheModel(full.substr(2) + "\r\r", "full - 2 + CR CR at the end");
    ExpectLikeTheModel("\r\n\r\n\r", "only line ends");
    ExpectLikeTheModel("\r", "a lone carriage return");
}

TEST(TokenizerLineReading, RandomLinesOfMixedLengths) {
    std::uint32_t state = 2463534242U;
    const auto next = [&state](std::uint32_t n) {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state % n;
    };
    const char alphabet[] = {'a', 'Z', '1', ' ', '\r', '\0', '\t', '-'};
    const char* ends[] = {"\n", "\r\n", "\r\r\n", "\n\n", "\r"};
    for (int round = 0; round < 60; ++round) {
        std::string input;
        const std::uint32_t lines = 1 + next(12);
        for (std::uint32_t l = 0; l < lines; ++l) {
            std::size_t length = next(40);
            if (next(4) == 0) length = kMax - 3 + next(6);
            std::string line;
            if (next(3) != 0) line += 'K';
            for (std::size_t i = line.size(); i < length; ++i)
                line += alphabet[next(next(5) == 0 ? 8 : 3)];
            input += line;
            if (l + 1 < lines || next(2) == 0) input += ends[next(5)];
        }
        ExpectLikeTheModel(input, "round " + std::to_string(round));
    }
}

}  // namespace
}  // namespace orvo
