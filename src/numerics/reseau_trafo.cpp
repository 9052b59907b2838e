// The reseau transformation: a 2D transformation with an id and a name, read with every problem
// of a damaged parameter block recorded.
#include "orvo/numerics/reseau_trafo.h"

#include <ostream>

#include "orvo/textfile/reader.h"
#include "orvo/textfile/tokenizer.h"
#include "read_problem.h"

namespace orvo {

namespace {

// The old file version 5.0 numbered the types the other way round.
bool TypeFromV50(std::int32_t code, eOvTrafo2DType* type) {
    static constexpr eOvTrafo2DType kOld[] = {eOvTrafo2DProjektiv, eOvTrafo2DAffin,
                                              eOvTrafo2DHelmert, eOvTrafo2DPolynomial};
    if (code < 0 || code > 3) return false;
    *type = kOld[code];
    return true;
}

// The type code: an integer token (any other kind raises the parser's error for the reader to
// record, exactly as the plain transformation reader does). The caller advances past it, after
// any problem with the code has been recorded at its line.
std::int32_t ReadCode(OvReader& reader) {
    return reader.GetParser().GetToken(TokenInt).ivalue;
}

// `count` parameters into the transformation, by the rules of OvTrafo2d::Read: an integer or
// real token gives its value ("-0" keeps its sign), any other token 0.0 and is stepped over; the
// "}" closing the block or the end of the input end the data, stay current, and the parameters
// not read become 0.0. Every deviation is recorded.
void ReadParams(OvReader& reader, OvTrafo2d& trafo, int count) {
    OvParser& parser = reader.GetParser();
    int i = 0;
    for (; i < count; ++i) {
        const OvParserToken& token = parser.GetToken();
        if (token.GetType() == TokenBlockEnd || token.GetType() == TokenEOF) {
            detail::ReportReadProblem(reader,
                                      "transformation: the block ends before all parameters");
            break;
        }
        double value = 0.0;
        if (token.GetType() == TokenInt) {
            value = token.GetNumber();
            if (value == 0.0 && token.text != nullptr && token.text[0] == '-') value = -0.0;
        } else if (token.GetType() == TokenFloat) {
            value = token.GetNumber();
        } else {
            detail::ReportReadProblem(reader, "transformation: a parameter is not a number");
        }
        trafo.SetParam(i, value);
        reader.Advance();
    }
    for (; i < count; ++i)
        trafo.SetParam(i, 0.0);
}

bool IsNamedType(std::int32_t code) {
    return code >= eOvTrafo2DNone && code <= eOvTrafo2DInvHelmert;
}

}  // namespace

OvReseauTrafo::OvReseauTrafo() = default;

OvReseauTrafo::OvReseauTrafo(const OvTrafo2d& trafo) : OvTrafo2d(trafo) {}

OvReseauTrafo::OvReseauTrafo(const OvReseauTrafo& other) = default;

OvReseauTrafo& OvReseauTrafo::operator=(const OvReseauTrafo& other) {
    if (this != &other) {
        OvTrafo2d::Set(other);
        OvObject::operator=(other);
    }
    return *this;
}

OvReseauTrafo& OvReseauTrafo::operator=(const OvTrafo2d& trafo) {
    OvTrafo2d::Set(trafo);
    return *this;
}

OvReseauTrafo::~OvReseauTrafo() = default;

int OvReseauTrafo::Read(OvReaderObject* object) {
    OvReader* reader = detail::ReaderOf(object);
    if (reader == nullptr) return 1;
    const std::int32_t code = ReadCode(*reader);
    SetType(static_cast<eOvTrafo2DType>(code));
    if (!IsNamedType(code)) {
        detail::ReportReadProblem(*reader, "transformation: unknown type code");
    }
    reader->Advance();
    ReadParams(*reader, *this, GetParamCount());
    return 1;
}

int OvReseauTrafo::ReadV50(OvReaderObject* object) {
    OvReader* reader = detail::ReaderOf(object);
    if (reader == nullptr) return 1;
    eOvTrafo2DType type = GetType();
    const bool known = TypeFromV50(ReadCode(*reader), &type);
    if (!known) {
        detail::ReportReadProblem(*reader, "transformation: unknown type code of the old form");
    }
    reader->Advance();
    if (known) {
        SetType(type);
        ReadParams(*reader, *this, GetParamCount());
    }
    SetName(reader->GetFilename());
    return 1;
}

std::ostream& OvReseauTrafo::Write(std::ostream& out) const {
    return OvTrafo2d::Write(out);
}

}  // namespace orvo
