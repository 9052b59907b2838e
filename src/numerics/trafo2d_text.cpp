// Reading and writing a 2D transformation in the project files: a type code, then its
// parameters.
#include <cmath>
#include <ios>
#include <ostream>

#include "orvo/numerics/trafo2d.h"
#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// The type codes of the old file version 5.0 ran the other way round.
bool TypeFromV50(std::int32_t code, eOvTrafo2DType* type) {
    switch (code) {
        case 0:
            *type = eOvTrafo2DProjektiv;
            return true;
        case 1:
            *type = eOvTrafo2DAffin;
            return true;
        case 2:
            *type = eOvTrafo2DHelmert;
            return true;
        case 3:
            *type = eOvTrafo2DPolynomial;
            return true;
        default:
            return false;
    }
}

// The type code: an integer token (anything else raises the parser's error, which the reader
// records); then advances.
std::int32_t ReadCode(OvReader& reader) {
    const std::int32_t code = reader.GetParser().GetToken(TokenInt).ivalue;
    reader.Advance();
    return code;
}

// One parameter: an integer or real token's value, any other token 0.0, then advances. The "}"
// closing the block and the end of the input end the data: false, and the token stays current.
bool ReadNumber(OvReader& reader, double* value) {
    const OvParserToken& token = reader.GetParser().GetToken();
    switch (token.GetType()) {
        case TokenBlockEnd:
        case TokenEOF:
            return false;
        case TokenInt:
            *value = token.GetNumber();
            // A negative zero comes back from the file as "-0", an integer token: keep its sign.
            if (*value == 0.0 && token.text != nullptr && token.text[0] == '-') *value = -0.0;
            break;
        case TokenFloat:
            *value = token.GetNumber();
            break;
        default:
            *value = 0.0;
            break;
    }
    reader.Advance();
    return true;
}

// Restores a stream's number format when the writer is done with it.
class FormatGuard {
public:
    explicit FormatGuard(std::ostream& out)
        : out_(out), flags_(out.flags()), precision_(out.precision()) {}
    ~FormatGuard() {
        out_.flags(flags_);
        out_.precision(precision_);
    }
    FormatGuard(const FormatGuard&) = delete;
    FormatGuard& operator=(const FormatGuard&) = delete;

private:
    std::ostream& out_;
    std::ios_base::fmtflags flags_;
    std::streamsize precision_;
};

// Reads `count` parameters into p0.. of the transformation (see OvTrafo2d::Read).
void ReadParameters(OvReader& reader, OvTrafo2d& trafo, int count) {
    int i = 0;
    for (; i < count; ++i) {
        double value = 0.0;
        if (!ReadNumber(reader, &value)) break;
        trafo.SetParam(i, value);
    }
    for (; i < count; ++i)
        trafo.SetParam(i, 0.0);
}

constexpr std::streamsize kParamDigits = 16;
// Written for a parameter that is NaN or infinite: a word, which reads back as 0.0.
constexpr const char* kNotANumber = "nan";
constexpr int kValuesPerLine = 4;

}  // namespace

int OvTrafo2d::Read(OvReaderObject* object) {
    if (object == nullptr || object->GetReader() == nullptr) return 1;
    OvReader& reader = *object->GetReader();
    type_ = static_cast<eOvTrafo2DType>(ReadCode(reader));
    ReadParameters(reader, *this, GetParamCount());
    return 1;
}

int OvTrafo2d::ReadV50(OvReaderObject* object) {
    if (object == nullptr || object->GetReader() == nullptr) return 1;
    OvReader& reader = *object->GetReader();
    eOvTrafo2DType type = type_;
    if (!TypeFromV50(ReadCode(reader), &type)) return 1;
    type_ = type;
    ReadParameters(reader, *this, GetParamCount());
    return 1;
}

std::ostream& OvTrafo2d::Write(std::ostream& out) const {
    FormatGuard guard(out);
    out.unsetf(std::ios_base::floatfield);
    out.precision(kParamDigits);
    out << static_cast<std::int32_t>(type_) << Ovendl;
    const int count = GetParamCount();
    for (int i = 0; i < count; ++i) {
        // The stream would spell a non-finite value "-nan" or "-inf", which the tokenizer
        // rejects as a malformed number and which would end the reading of the block there.
        if (std::isfinite(p_[i])) {
            out << w19 << p_[i];
        } else {
            out << w19 << kNotANumber;
        }
        if ((i + 1) % kValuesPerLine == 0) out << Ovendl;
    }
    return out;
}

}  // namespace orvo
