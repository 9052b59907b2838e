// The reseau description: construction, copying, the cross lookups and the display name; the
// key by which photos name a description.
#include "orvo/model/reseau_file.h"

#include <cmath>
#include <cstdio>

#include "orvo/model/point.h"

namespace orvo {

namespace {

// The cross record: id, x, y and the code as a plain number.
const eOvPointRWMask kCrossColumns[] = {eOvPointRWId, eOvPointRWX, eOvPointRWY, eOvPointRWCode,
                                        eOvPointRWEnd};

}  // namespace

OvReseauFile::OvReseauFile() : crosses_(OvPointFormat(kCrossColumns)) {}

OvReseauFile::OvReseauFile(const String& fileName) : OvReseauFile() {
    ReadFile(fileName);
}

OvReseauFile::OvReseauFile(const OvReseauFile& other)
    : OvListnode(other),
      LinkHdl(other),
      subId_(other.subId_),
      infoText_(other.infoText_),
      photoRegion_(other.photoRegion_),
      boxRegion_(other.boxRegion_),
      crosses_(other.crosses_),
      valid_(other.valid_),
      exifPixelWidth_(other.exifPixelWidth_),
      exifPixelHeight_(other.exifPixelHeight_),
      digital_(other.digital_) {}

OvReseauFile& OvReseauFile::operator=(const OvReseauFile& other) {
    if (this == &other) return *this;
    OvListnode::operator=(other);
    subId_ = other.subId_;
    infoText_ = other.infoText_;
    photoRegion_ = other.photoRegion_;
    boxRegion_ = other.boxRegion_;
    crosses_ = other.crosses_;
    valid_ = other.valid_;
    exifPixelWidth_ = other.exifPixelWidth_;
    exifPixelHeight_ = other.exifPixelHeight_;
    digital_ = other.digital_;
    return *this;
}

OvReseauFile::~OvReseauFile() = default;

void OvReseauFile::Reset() {
    subId_ = 0;
    infoText_ = String();
    photoRegion_ = OvRegion();
    boxRegion_ = OvRegion();
    crosses_.Destroy();
    crosses_.SetMask(OvPointFormat(kCrossColumns));
    valid_ = 0;
    exifPixelWidth_ = 0;
    exifPixelHeight_ = 0;
    digital_ = false;
}

OvReseauFile* OvReseauFile::Next() const {
    return static_cast<OvReseauFile*>(GetNext());
}

OvReseauFile* OvReseauFile::Previous() const {
    return static_cast<OvReseauFile*>(GetPrev());
}

OvPoint* OvReseauFile::FindNearest(const OvPoint& p, double* distance) const {
    OvPoint* best = nullptr;
    double bestDistance = 0.0;
    for (OvPoint* cross = crosses_.First(); cross != nullptr; cross = cross->Next()) {
        const double d = std::hypot(cross->GetX() - p.GetX(), cross->GetY() - p.GetY());
        // Only a strictly smaller distance replaces the best, so the earlier cross wins a tie;
        // a cross at a NaN distance loses to any other.
        if (best == nullptr || d < bestDistance || (std::isnan(bestDistance) && !std::isnan(d))) {
            best = cross;
            bestDistance = d;
        }
    }
    if (best != nullptr && distance != nullptr) *distance = bestDistance;
    return best;
}

OvPoint* OvReseauFile::FindCrossId(std::uint32_t id) const {
    return crosses_.Find(id);
}

int OvReseauFile::FindUserSelectedCrosses(OvPointList* result) const {
    int count = 0;
    for (const OvPoint* cross = crosses_.First(); cross != nullptr; cross = cross->Next()) {
        if (IsPointFlagGuiSelect(cross) == 0) continue;
        ++count;
        if (result != nullptr) result->Add(*cross);
    }
    return count;
}

OvPoint* OvReseauFile::SelectCross(std::uint32_t id, bool select) {
    OvPoint* cross = crosses_.Find(id);
    if (cross == nullptr) return nullptr;
    if (select) {
        cross->GetFlag().SetFlag(eOvPointFlagGuiSelect);
    } else {
        cross->GetFlag().ClearFlag(eOvPointFlagGuiSelect);
    }
    return cross;
}

int OvReseauFile::DeselectAllCrosses() {
    int count = 0;
    for (OvPoint* cross = crosses_.First(); cross != nullptr; cross = cross->Next()) {
        if (cross->GetFlag().IsFlagSet(eOvPointFlagGuiSelect) == 0) continue;
        cross->GetFlag().ClearFlag(eOvPointFlagGuiSelect);
        ++count;
    }
    return count;
}

String OvReseauFile::GetDescName() const {
    String text(GetName());
    char buffer[64];
    if (subId_ != 0) {
        // The sub id is unsigned; "%d" of the original format would show ids above 2^31 as
        // negative numbers.
        std::snprintf(buffer, sizeof buffer, " (%u)", static_cast<unsigned>(subId_));
        text += buffer;
    }
    if (exifPixelWidth_ != 0 && exifPixelHeight_ != 0) {
        std::snprintf(buffer, sizeof buffer, " %d * %d Pixel", exifPixelWidth_, exifPixelHeight_);
        text += buffer;
    }
    return text;
}

OvReseauDataDesc::OvReseauDataDesc(const char* name, std::uint32_t subId)
    : name_(name != nullptr ? name : ""), subId_(subId) {}

OvReseauDataDesc::~OvReseauDataDesc() = default;

void OvReseauDataDesc::Set(const String& name, std::uint32_t subId) {
    name_ = name;
    subId_ = subId;
}

void OvReseauDataDesc::Set(const OvReseauFile* file) {
    if (file == nullptr) {
        Set(String(), 0);
        return;
    }
    Set(file->GetName(), file->GetSubId());
}

bool OvReseauDataDesc::Match(const OvReseauDataDesc& other) const {
    return fcompare(name_, other.name_) == 0;
}

bool OvReseauDataDesc::ExactMatch(const OvReseauDataDesc& other) const {
    return Match(other) && subId_ == other.subId_;
}

}  // namespace orvo
