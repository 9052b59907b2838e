// Digital camera entries: the entry made from a line of the digital camera file and its
// generated grid of crosses.
#include <cmath>
#include <cstdint>

#include "orvo/model/reseau_file.h"
#include "orvo/textfile/reader.h"
#include "reseau_tokens.h"

namespace orvo {

namespace {

// The position of grid line `i` of `lines` between `from` (line 0) and `to` (the last line).
// With a pixel count the line falls on the whole pixel i * pixels / (lines - 1), rounded down,
// so that the cross has an exact pixel position in the picture. The ends are taken as they
// are, not recomputed, so the corner crosses are the region's corners exactly.
double GridLine(int i, int lines, double from, double to, int pixels) {
    const int last = lines - 1;
    if (i <= 0) return from;
    if (i >= last) return to;
    const double span = to - from;
    if (pixels > 0) {
        const std::int64_t pixel = static_cast<std::int64_t>(i) * pixels / last;
        return from + span * static_cast<double>(pixel) / pixels;
    }
    return from + span * i / last;
}

bool PositiveFinite(double value) {
    return std::isfinite(value) && value > 0.0;
}

// A sensor size the entry can hold and write back. Below the minimum, halving is no longer
// exact near the subnormal range; the minimum is itself a number of six significant digits,
// so a size at or above it, written with six digits, reads back at or above it.
bool IsSensorSize(double value) {
    return std::isfinite(value) && value >= kOvReseauMinSensorSize;
}

}  // namespace

void OvReseauFile::Set(const String& exifType, const String& comment, int pixelX, int pixelY,
                       double ccdX, double ccdY) {
    SetName(exifType);
    infoText_ = comment;
    exifPixelWidth_ = pixelX;
    exifPixelHeight_ = pixelY;
    // Halving and doubling are exact for every valid size, so the region's width and height
    // are ccdX and ccdY again: the entry writes back the sensor size it was made from.
    const double halfX = ccdX * 0.5;
    const double halfY = ccdY * 0.5;
    photoRegion_ = OvRegion();
    photoRegion_.Set(-halfX, -halfY, halfX, halfY);
    boxRegion_ = OvRegion();
    boxRegion_.Set(-halfX, halfY - ccdY * 0.1, halfX, halfY);
    crosses_.Destroy();
    valid_ = IsSensorSize(ccdX) && IsSensorSize(ccdY) && pixelX >= 0 && pixelY >= 0 ? 1 : 0;
    digital_ = true;
}

int OvReseauFile::GenerateDummyData() {
    crosses_.Destroy();
    const double left = photoRegion_.Left();
    const double right = photoRegion_.Right();
    const double bottom = photoRegion_.Bottom();
    const double top = photoRegion_.Top();
    if (!PositiveFinite(right - left) || !PositiveFinite(top - bottom)) return 0;

    constexpr int kLines = kOvReseauDummyGridLines;
    const bool pixels = exifPixelWidth_ > 0 && exifPixelHeight_ > 0;
    std::uint32_t id = 1;
    for (int row = 0; row < kLines; ++row) {
        // Rows run from the top edge down, as the picture's pixel rows do.
        const double y = GridLine(row, kLines, top, bottom, pixels ? exifPixelHeight_ : 0);
        for (int column = 0; column < kLines; ++column) {
            const double x = GridLine(column, kLines, left, right, pixels ? exifPixelWidth_ : 0);
            const bool corner =
                (row == 0 || row == kLines - 1) && (column == 0 || column == kLines - 1);
            OvPoint cross(id++, x, y, 0.0, corner ? eOvReseauCrossCorner : eOvReseauCrossSmall);
            cross.SetName(kOvReseauDummyMarker);
            crosses_.Add(cross);
        }
    }
    return crosses_.Count();
}

bool OvReseauFile::HasDummyData() const {
    if (crosses_.IsEmpty()) return false;
    for (const OvPoint* cross = crosses_.First(); cross != nullptr; cross = cross->Next()) {
        if (cross->GetName() != kOvReseauDummyMarker) return false;
    }
    return true;
}

int OvReseauFile::ReadDigitalCameraFormat(OvReaderObject* object) {
    OvReader* reader = object != nullptr ? object->GetReader() : nullptr;
    if (reader == nullptr) return 0;
    detail::ReseauTokens tokens(*reader);
    const int before = tokens.Problems();
    String exifType;
    String comment;
    double subId = 0.0;
    double pixelX = 0.0;
    double pixelY = 0.0;
    double ccdX = 0.0;
    double ccdY = 0.0;
    const bool complete = tokens.Text(exifType) && tokens.Integer(subId) && tokens.Text(comment) &&
                          tokens.Integer(pixelX) && tokens.Integer(pixelY) && tokens.Number(ccdX) &&
                          tokens.Number(ccdY);
    if (!complete) {
        if (tokens.Problems() == before) tokens.Report();  // the line ended early
        return 0;
    }
    if (tokens.Problems() != before) return 0;  // a broken token among the fields
    SetSubId(detail::ToUnsigned32(subId));
    Set(exifType, comment, detail::ToSigned32(pixelX), detail::ToSigned32(pixelY), ccdX, ccdY);
    GenerateDummyData();
    return 1;
}

}  // namespace orvo
