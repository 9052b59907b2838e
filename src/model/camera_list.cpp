// The camera list: copying, the camera block handler, writing the records and the best match.
#include "orvo/model/camera_list.h"

#include <cmath>
#include <locale>
#include <memory>
#include <ostream>

#include "camera_record.h"
#include "orvo/textfile/writer.h"

namespace orvo {

namespace {

// After a camera record the block's "}" should follow. Anything else is skipped up to that "}"
// (recorded as one read error when `report` is set), a "{" is taken as the start of the next
// block whose predecessor lacks its "}" and left for the reader, and the end of the input ends
// the block.
void FinishBlock(OvReader& reader, bool report) {
    OvParser& parser = reader.GetParser();
    for (;;) {
        switch (parser.GetToken().GetType()) {
            case TokenBlockEnd:
                return;
            case TokenBlockBegin: {
                if (report) {
                    OvParserStatus status = parser.GetStatus();
                    status.SetStatus(ParserErrorNotSpecifiedToken);
                    detail::RecordReadError(reader, status);
                }
                parser.SkipNextParse(true);  // the reader's next advance delivers it again
                return;
            }
            case TokenEOF:
                if (report) detail::RecordReadError(reader, parser.GetStatus());
                return;
            default:
                break;
        }
        if (report) {
            OvParserStatus status = parser.GetStatus();
            status.SetStatus(ParserErrorNotSpecifiedToken);
            detail::RecordReadError(reader, status);
            report = false;
        }
        try {
            reader.Advance();
        } catch (const OvParserStatus& status) {
            // Broken tokens inside a damaged block are stepped over with it; only a failed
            // stream, which fails again on every read, ends the reading.
            if (status.GetStatus() == ParserErrorStream) throw;
        }
    }
}

}  // namespace

OvCameraList::OvCameraList(OvReaderObject* reader) {
    Read(reader);
}

OvCameraList& OvCameraList::operator=(const OvCameraList& other) {
    if (this != &other) TOvListHeader<OvCamera>::operator=(other);
    return *this;
}

OvCameraList::~OvCameraList() = default;

int OvCameraList::Read(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 1;
    reader->GetParser().GetToken(TokenBlockBegin);
    reader->Advance();
    const int errorsBefore = reader->GetReadErrorCount();
    AddCamera(object);
    // One error is enough for one damaged block: stray tokens are reported only behind a
    // record that was read cleanly.
    FinishBlock(*reader, reader->GetReadErrorCount() == errorsBefore);
    return 1;
}

std::int32_t OvCameraList::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

OvCamera* OvCameraList::AddCamera(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return nullptr;
    auto camera = std::make_unique<OvCamera>();
    int fields = 0;
    try {
        detail::ReadCameraRecord(*camera, *reader, fields);
    } catch (const OvParserStatus& status) {
        if (status.GetStatus() == ParserErrorStream) throw;
        detail::RecordReadError(*reader, status);
        // A record whose fields are all there is kept even when the token behind it is broken.
        if (fields < detail::kCameraRecordFields) return nullptr;
    }
    return Add(camera.release());
}

std::ostream& OvCameraList::Write(std::ostream& out) const {
    out.imbue(std::locale::classic());
    for (const OvCamera* camera = First(); camera != nullptr; camera = camera->Next()) {
        out << OvBeginBlock;
        camera->Write(out);
        out << OvEndBlock << Ovendl;
    }
    return out;
}

std::ostream& OvCameraList::WriteHeaderComment(std::ostream& out) const {
    out << OvComment << '\n';
    out << OvComment << "ORVOMETRIC 10 Version "
        << "6.715"
        << " Camera File" << '\n';
    out << OvComment << '\n';
    out << OvComment << "File Format: { Id  C  Xh  Yh  A1  A2  R0 \"Infotext\"}" << '\n';
    out << OvComment << '\n';
    out << '\n';
    return out;
}

OvCamera* OvCameraList::FindBestMatch(const String& type, double C) const {
    OvCamera* best = nullptr;
    double bestDistance = 0.0;
    for (OvCamera* camera = First(); camera != nullptr; camera = camera->Next()) {
        if (type.length() != 0 && !camera->GetInfo().contains(type)) continue;
        const double distance = std::fabs(C - camera->GetC());
        const bool better = best == nullptr || distance < bestDistance ||
                            (std::isnan(bestDistance) && !std::isnan(distance));
        if (better) {
            best = camera;
            bestDistance = distance;
        }
    }
    return best;
}

}  // namespace orvo
