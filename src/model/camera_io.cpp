// Camera records: reading one from the tokenizer, writing the camera-file form and the plain
// column form.
#include <cmath>
#include <ostream>

#include "../foundation/token_id.h"
#include "camera_record.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// A "{", a "}" or the end of the input where a field belongs ends the record early. The
// block's own tokens are never taken as fields: they belong to the reader.
void StopAtRecordEnd(OvParser& parser) {
    switch (parser.GetToken().GetType()) {
        case TokenBlockBegin:
        case TokenBlockEnd: {
            OvParserStatus status = parser.GetStatus();
            status.SetStatus(ParserErrorNotSpecifiedToken);
            throw status;
        }
        case TokenEOF:
            throw OvParserStatus(parser.GetStatus());
        default:
            break;
    }
}

// An integer or floating token's value; any other kind reads 0.0 and is reported.
double ReadNumber(OvReader& reader) {
    OvParser& parser = reader.GetParser();
    StopAtRecordEnd(parser);
    const OvParserToken& token = parser.GetToken();
    double value = 0.0;
    if (token.GetType() == TokenInt) {
        value = token.GetNumber();
        if (value == 0.0 && token.text[0] == '-') value = -0.0;  // "-0" keeps its sign
    } else if (token.GetType() == TokenFloat) {
        value = token.GetNumber();
    } else {
        OvParserStatus status = parser.GetStatus();
        status.SetStatus(ParserErrorNotSpecifiedToken);
        detail::RecordReadError(reader, status);
    }
    reader.Advance();
    return value;
}

}  // namespace

namespace detail {

void RecordReadError(OvReader& reader, const OvParserStatus& status) {
    reader.GetReaderErrorList().Add(new OvReaderError(status));
}

void ReadCameraRecord(OvCamera& camera, OvReader& reader, int& fields) {
    OvParser& parser = reader.GetParser();
    fields = 0;
    StopAtRecordEnd(parser);
    camera.SetId(IdFromToken(parser.GetToken(TokenInt)));
    ++fields;
    reader.Advance();

    // C is stored non-negative: a negative principal distance is only a sign convention.
    camera.SetC(std::fabs(ReadNumber(reader)));
    ++fields;
    double (OvCamera::*const setters[])(double) = {
        &OvCamera::SetXh, &OvCamera::SetYh, &OvCamera::SetA1, &OvCamera::SetA2, &OvCamera::SetR0};
    for (auto setter : setters) {
        (camera.*setter)(ReadNumber(reader));
        ++fields;
    }

    StopAtRecordEnd(parser);
    camera.SetInfo(String(parser.GetTokenString()));
    ++fields;
    reader.Advance();
}

}  // namespace detail

int OvCamera::Read(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 1;  // an unregistered object has no tokenizer to read from
    int fields = 0;
    detail::ReadCameraRecord(*this, *reader, fields);
    return 1;
}

std::int32_t OvCamera::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

std::ostream& OvCamera::Write(std::ostream& out) const {
    out.precision(8);
    out << w4 << GetId();
    for (double value : {C_, Xh_, Yh_, A1_, A2_, R0_})
        out << w14 << value;
    // The numbers take at most 130 characters, so the cut text fits one line.
    out << ' ' << '"' << OvQuotableText(GetInfo()) << '"';
    return out;
}

std::ostream& OvCamera::WriteGentriFormat(std::ostream& out) const {
    out.precision(8);
    out << w4 << GetId();
    for (double value : {std::fabs(C_), Xh_, Yh_, A1_, A2_, R0_})
        out << w12 << value;
    return out;
}

}  // namespace orvo
