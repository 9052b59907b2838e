// Reading vectors and matrices from a block file: a count (or two) followed by the numbers.
#include <cstdint>

#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo {

namespace {

// The tokens of one record, read with the handlers' advance rule (the reader's Advance, which
// honours a pushed-back token).
class RecordTokens {
public:
    explicit RecordTokens(OvReader& reader) : reader_(reader), parser_(reader.GetParser()) {}

    // The exact value of an integer token; any other kind raises the parser's error of a
    // checked request, which the reader records.
    double Count() {
        const double value = parser_.GetToken(TokenInt).GetNumber();
        reader_.Advance();
        return value;
    }

    // False at the "}" that closes the block and at the end of the input: the data ends there
    // and the token stays current for the reader.
    bool HasNumber() const {
        const eOvTokentype type = parser_.GetToken().GetType();
        return type != TokenBlockEnd && type != TokenEOF;
    }

    // An integer or floating token's value, any other token 0.0; then advances.
    double Number() {
        const OvParserToken& token = parser_.GetToken();
        double value = 0.0;
        if (token.GetType() == TokenInt) {
            value = token.GetNumber();
            // A negative zero is written "-0", an integer token: keep its sign.
            if (value == 0.0 && token.text != nullptr && token.text[0] == '-') value = -0.0;
        } else if (token.GetType() == TokenFloat) {
            value = token.GetNumber();
        }
        reader_.Advance();
        return value;
    }

private:
    OvReader& reader_;
    OvParser& parser_;
};

bool AcceptableCount(double count) {
    return count >= 0.0 && count <= kOvMaxReadElements;
}

}  // namespace

OvVector::OvVector(OvReaderObject* reader) {
    Read(reader);
}

int OvVector::Read(OvReaderObject* object) {
    if (object == nullptr || object->GetReader() == nullptr) return 1;
    RecordTokens tokens(*object->GetReader());
    const double count = tokens.Count();
    if (!AcceptableCount(count)) {
        init(0);
        return 1;
    }
    init(static_cast<int>(count));
    for (int i = 0; i < size_ && tokens.HasNumber(); ++i)
        elements_[i] = tokens.Number();
    return 1;
}

int OvMatrix::Read(OvReaderObject* object) {
    if (object == nullptr || object->GetReader() == nullptr) return 1;
    RecordTokens tokens(*object->GetReader());
    const double lines = tokens.Count();
    const double columns = tokens.Count();
    if (!AcceptableCount(lines) || !AcceptableCount(columns) ||
        lines * columns > static_cast<double>(kOvMaxReadElements)) {
        init(0, 0);
        return 1;
    }
    if (static_cast<int>(lines) != lines_ || static_cast<int>(columns) != columns_) {
        init(static_cast<int>(lines), static_cast<int>(columns));
    }
    const std::size_t count = ElementCount();
    for (std::size_t k = 0; k < count && tokens.HasNumber(); ++k)
        elements_[k] = tokens.Number();
    return 1;
}

}  // namespace orvo
