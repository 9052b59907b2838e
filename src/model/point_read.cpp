// Reading point records and blocks of them from the tokenizer, column by column as the
// format says.
#include <cstdint>
#include <istream>

#include "orvo/model/point.h"
#include "orvo/model/point_list.h"
#include "orvo/textfile/tokenizer.h"

namespace orvo {

namespace {

// Fetches the tokens of one record, keeping the consumer's advance rule: after each fetch the
// tokenizer advances unless a token was pushed back, which is then delivered again instead.
class RecordTokens {
public:
    RecordTokens(OvParser& parser, std::istream& in) : parser_(parser), in_(in) {}

    int Consumed() const { return consumed_; }

    // The exact value of an integer token. Any other kind raises the tokenizer's error of a
    // checked request.
    double Integer() {
        StopAtEndOfData();
        const double value = parser_.GetToken(TokenInt).GetNumber();
        Advance();
        return value;
    }

    // The value of an integer token clamped to 32 bits.
    std::int32_t Int32() {
        StopAtEndOfData();
        const std::int32_t value = parser_.GetToken(TokenInt).ivalue;
        Advance();
        return value;
    }

    // An integer or floating token's value; any other kind of token reads 0.0.
    double Number() {
        StopAtEndOfData();
        const OvParserToken& token = parser_.GetToken();
        double value = 0.0;
        if (token.GetType() == TokenInt) {
            value = token.GetNumber();
            // A negative zero is written "-0", which is an integer token: keep its sign.
            if (value == 0.0 && token.text[0] == '-') value = -0.0;
        } else if (token.GetType() == TokenFloat) {
            value = token.GetNumber();
        }
        Advance();
        return value;
    }

    // One token of any kind.
    void Skip() {
        StopAtEndOfData();
        Advance();
    }

private:
    // The "}" that closes the block ends the data, inside a record as well as before one; it
    // stays the current token for the reader. The end of the input ends it as well, with the
    // tokenizer's own end-of-file status, as a checked request raises it; without that, a
    // format of numeric columns would read zeros from the end-of-file token for ever.
    void StopAtEndOfData() {
        const eOvTokentype type = parser_.GetToken().GetType();
        if (type == TokenBlockEnd) {
            OvParserStatus status = parser_.GetStatus();
            status.SetStatus(static_cast<eOvParserStatus>(kOvParserStatusEndOfData));
            throw status;
        }
        if (type == TokenEOF) throw OvParserStatus(parser_.GetStatus());
    }

    void Advance() {
        parser_.Advance(in_);
        ++consumed_;
    }

    OvParser& parser_;
    std::istream& in_;
    int consumed_ = 0;
};

// Ids are unsigned 32-bit: the whole unsigned range is taken exactly, a negative value becomes
// its 32-bit two's complement word, and values beyond both ranges are clamped first.
std::uint32_t ToId(double value) {
    if (value >= 4294967295.0) return 0xFFFFFFFFu;
    if (value >= 0.0) return static_cast<std::uint32_t>(value);
    if (value <= -2147483648.0) return 0x80000000u;
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(value));
}

}  // namespace

int OvPoint::Read(OvParser& parser, std::istream& in, const OvPointFormat& format) {
    RecordTokens tokens(parser, in);
    for (int i = 0; format[i] != eOvPointRWEnd; ++i) {
        switch (static_cast<std::uint32_t>(format[i])) {
            case eOvPointRWId:
                SetId(ToId(tokens.Integer()));
                break;
            case eOvPointRWCode123:
                SetAsControlFlag(tokens.Int32());
                break;
            case eOvPointRWCode:
                controlFlags_ = static_cast<std::int16_t>(tokens.Int32());
                break;
            case eOvPointRWPhoto:
                photoId_ = ToId(tokens.Integer());
                break;
            case eOvPointRWCamera:
                cameraId_ = ToId(tokens.Integer());
                break;
            case eOvPointRWName:
            case eOvPointRWDs:
                tokens.Number();
                break;  // read and dropped
            case eOvPointRWX:
                x_ = tokens.Number();
                break;
            case eOvPointRWY:
                y_ = tokens.Number();
                break;
            case eOvPointRWZ:
                z_ = tokens.Number();
                break;
            case eOvPointRWDx:
            case eOvPointRWSx:
                d_[0] = tokens.Number();
                break;
            case eOvPointRWDy:
            case eOvPointRWSy:
                d_[1] = tokens.Number();
                break;
            case eOvPointRWDz:
            case eOvPointRWSz:
                d_[2] = tokens.Number();
                break;
            case eOvPointRWRedu:
                r_[0] = tokens.Number();
                break;
            case eOvPointRWRedu2:
                r_[1] = tokens.Number();
                break;
            case eOvPointRWRedu3:
                r_[2] = tokens.Number();
                break;
            case eOvPointRWSkip:
                tokens.Skip();
                break;
            // The residual columns are written but reading them consumes no token, so the
            // columns behind them shift; the asymmetry is intended. Unknown codes read nothing.
            default:
                break;
        }
    }
    return tokens.Consumed();
}

int OvPointList::Read(OvParser& parser, std::istream& in) {
    OvPoint working;
    const TOvFormatTable<eOvPointRWMask> mask(GetMask());
    try {
        while (working.Read(parser, in, mask) > 0)
            Add(working);
    } catch (const OvParserStatus& status) {
        if (status.GetStatus() == kOvParserStatusEndOfData) return 1;
        if (status.GetStatus() == ParserStatusEOF) return 1;
        throw;
    }
    return 1;
}

}  // namespace orvo
