// Reading reseau descriptions: the info text, the two regions and the crosses.
#include "orvo/model/point.h"
#include "orvo/model/reseau_file.h"
#include "orvo/textfile/reader.h"
#include "reseau_tokens.h"

namespace orvo {

namespace {

using detail::ReseauTokens;

// "{", four numbers x1, y1, x2, y2, "}". The region is set only when all of it was read
// without a problem; otherwise the problem is recorded (once) and the rest of the block is
// skipped.
bool ReadRegionBlock(ReseauTokens& tokens, OvRegion& region) {
    const int before = tokens.Problems();
    if (!tokens.Open()) {
        if (tokens.Problems() == before) tokens.Report();
        return false;
    }
    double v[4] = {0.0, 0.0, 0.0, 0.0};
    bool complete = true;
    for (double& value : v) {
        if (!tokens.Number(value)) {
            complete = false;
            break;
        }
    }
    if (!complete) {
        if (tokens.Problems() == before) tokens.Report();  // the block ended early
        tokens.FinishRecord(false, true);
        return false;
    }
    if (!tokens.FinishRecord(true, true) || tokens.Problems() != before) return false;
    region.Set(v[0], v[1], v[2], v[3]);
    return true;
}

// One cross record, the current token being its "{". A cross is taken only when its four
// fields were read without a problem; a damaged one costs one recorded error.
void ReadCross(ReseauTokens& tokens, OvPointList& crosses) {
    tokens.Open();
    const int before = tokens.Problems();
    double id = 0.0;
    double x = 0.0;
    double y = 0.0;
    double code = 0.0;
    const bool complete =
        tokens.Integer(id) && tokens.Number(x) && tokens.Number(y) && tokens.Integer(code);
    const bool clean = complete && tokens.Problems() == before;
    if (!complete && tokens.Problems() == before) tokens.Report();  // the record ended early
    tokens.FinishRecord(clean, true);
    if (!clean) return;
    // The code is stored in the point's 16-bit control flags as the point columns store it.
    crosses.Add(
        OvPoint(detail::ToUnsigned32(id), x, y, 0.0, static_cast<short>(detail::ToSigned32(code))));
}

}  // namespace

int OvReseauFile::Read(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 1;  // an unregistered object has no tokens to read
    // In the reader's first scope the description stands at the top level of a file, with no
    // block around it to end its data.
    const bool topLevel = reader->GetScopeDepth() <= 1;
    ReseauTokens tokens(*reader);
    valid_ = 0;
    crosses_.Destroy();

    const int before = tokens.Problems();
    String info;
    OvRegion photo(photoRegion_);
    OvRegion box(boxRegion_);
    const bool header =
        tokens.Text(info) && ReadRegionBlock(tokens, photo) && ReadRegionBlock(tokens, box);
    if (!header || tokens.Problems() != before) {
        if (tokens.Problems() == before) tokens.Report();  // the info text is missing
        tokens.SkipToDataEnd(topLevel);
        return 1;
    }
    infoText_ = info;
    photoRegion_ = photo;
    boxRegion_ = box;
    valid_ = 1;

    bool strayReported = false;  // one error for a run of stray tokens
    for (;;) {
        switch (tokens.Type()) {
            case TokenEOF:
                return 1;
            case TokenBlockBegin:
                ReadCross(tokens, crosses_);
                strayReported = false;
                continue;
            case TokenBlockEnd:
                if (!topLevel) return 1;  // the end of the enclosing block's data
                break;
            default:
                break;
        }
        if (!strayReported) {
            tokens.Report();
            strayReported = true;
        }
        tokens.Advance();
    }
}

std::int32_t OvReseauFile::ReadHdl(void* readerObject) {
    return Read(static_cast<OvReaderObject*>(readerObject));
}

int OvReseauFile::ReadFile(const String& fileName) {
    return ReadFile(fileName, nullptr);
}

int OvReseauFile::ReadFile(const String& fileName, OvReaderErrorList* errors) {
    Reset();
    SetName(fileName);
    detail::ReseauReadSession session(fileName, Link(this, &OvReseauFile::ReadHdl));
    session.Run(errors);
    return valid_;
}

}  // namespace orvo
