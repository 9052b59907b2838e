// A photo's coordinate conversion and its two point lists: measured points and image points,
// and the transfers between them.
#include <cstdint>
#include <memory>

#include "orvo/model/photo.h"
#include "orvo/services/progress.h"

namespace orvo {

namespace {

// Puts a converted point into `list` with Replace. The photo id is stamped first when asked
// (measured points always belong to the photo that measured them). A point that is still in a
// list is refused before anything is changed, and the caller keeps it.
OvPoint* PutConverted(const OvPhoto& photo, OvPointList& list, OvPoint* point,
                      eConvertBikoMode mode, bool stampPhotoId) {
    if (point == nullptr || point->GetPrev() != nullptr || point->GetNext() != nullptr ||
        list.First() == point) {
        return nullptr;
    }
    photo.ConvertBiko(point, mode);
    if (stampPhotoId) point->SetPhotoId(photo.GetId());
    return list.Replace(point);
}

OvPoint* PutConvertedCopy(const OvPhoto& photo, OvPointList& list, const OvPoint& point,
                          eConvertBikoMode mode, bool stampPhotoId) {
    auto copy = std::make_unique<OvPoint>(point);
    OvPoint* placed = PutConverted(photo, list, copy.get(), mode, stampPhotoId);
    if (placed != nullptr) copy.release();
    return placed;
}

}  // namespace

// -- conversion --------------------------------------------------------------------------------

int OvPhoto::ConvertBiko(OvPoint* point, eConvertBikoMode mode) const {
    if (point == nullptr) return 1;
    switch (mode) {
        case eConvertMeasureToPre:
            preTrafo_.Transform(point);
            break;
        case eConvertMeasureToBiko:
            preTrafo_.Transform(point);
            mainTrafo_.Transform(point);
            break;
        case eConvertPreToBiko:
            mainTrafo_.Transform(point);
            break;
        case eConvertMeasureToCorrectedBiko:
            preTrafo_.Transform(point);
            mainTrafo_.Transform(point);
            camera_.Adjust(point);
            break;
        case eConvertBikoToCorrectedBiko:
            camera_.Adjust(point);
            break;
        case eConvertCorrectedBikoToBiko:
            camera_.InvAdjust(point);
            break;
        case eConvertBikoToMeasure:
        case eConvertPreToMeasure:
        case eConvertBikoToPre:
        case eConvertCorrectedBikoToMeasure:
        case eConvertBikoIdentity11:
        case eConvertBikoIdentity12:
        case eConvertBikoToMeasureMatrixOnly:
            OvBikoTransform(this, mode).Transform(point);
            break;
        default:
            break;
    }
    return 1;
}

void OvPhoto::ConvertList(OvPointList* list, eConvertBikoMode mode) const {
    if (list == nullptr) return;
    const OvBikoTransform converter(this, mode);
    // Shorter lists are converted before a progress display would be worth showing.
    constexpr std::uint64_t kProgressMinimumPoints = 65536;
    OvProgressTask progress("Converting points", static_cast<std::uint64_t>(list->Count()),
                            kProgressMinimumPoints);
    std::uint64_t done = 0;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        converter.Transform(p);
        progress.Update(++done);
    }
    progress.Finish();
}

void OvPhoto::ConvertMeasure(eConvertBikoMode mode) {
    ConvertList(&measure_, mode);
}

// -- the two lists -----------------------------------------------------------------------------

OvPoint* OvPhoto::AddMeasure(OvPoint* point, eConvertBikoMode mode) {
    return PutConverted(*this, measure_, point, mode, true);
}

OvPoint* OvPhoto::AddMeasure(const OvPoint& point, eConvertBikoMode mode) {
    return PutConvertedCopy(*this, measure_, point, mode, true);
}

OvPoint* OvPhoto::AddImo(OvPoint* point, eConvertBikoMode mode) {
    return PutConverted(*this, imo_, point, mode, false);
}

OvPoint* OvPhoto::AddImo(const OvPoint& point, eConvertBikoMode mode) {
    return PutConvertedCopy(*this, imo_, point, mode, false);
}

// -- transfers ---------------------------------------------------------------------------------

OvPoint* OvPhoto::CopyImoToMeasure(std::uint32_t id, eConvertBikoMode mode) {
    const OvPoint* source = imo_.Find(id);
    return source != nullptr ? AddMeasure(*source, mode) : nullptr;
}

OvPoint* OvPhoto::CopyMeasureToImo(std::uint32_t id, eConvertBikoMode mode) {
    const OvPoint* source = measure_.Find(id);
    return source != nullptr ? AddImo(*source, mode) : nullptr;
}

OvPoint* OvPhoto::MoveMeasureToImo(std::uint32_t id, eConvertBikoMode mode) {
    std::unique_ptr<OvPoint> point(measure_.Subtract(id));
    OvPoint* placed = AddImo(point.get(), mode);
    if (placed != nullptr) point.release();
    return placed;
}

OvPoint* OvPhoto::MoveImoToMeasure(std::uint32_t id, eConvertBikoMode mode) {
    std::unique_ptr<OvPoint> point(imo_.Subtract(id));
    OvPoint* placed = AddMeasure(point.get(), mode);
    if (placed != nullptr) point.release();
    return placed;
}

int OvPhoto::CopyImoToMeasure(eConvertBikoMode mode) {
    int n = 0;
    for (const OvPoint* p = imo_.First(); p != nullptr; p = p->Next()) {
        if (AddMeasure(*p, mode) != nullptr) ++n;
    }
    return n;
}

int OvPhoto::CopyMeasureToImo(eConvertBikoMode mode) {
    int n = 0;
    for (const OvPoint* p = measure_.First(); p != nullptr; p = p->Next()) {
        if (AddImo(*p, mode) != nullptr) ++n;
    }
    return n;
}

int OvPhoto::MoveMeasureToImo(eConvertBikoMode mode) {
    int n = 0;
    while (!measure_.IsEmpty()) {
        if (MoveMeasureToImo(measure_.First()->GetId(), mode) == nullptr) break;
        ++n;
    }
    return n;
}

int OvPhoto::MoveImoToMeasure(eConvertBikoMode mode) {
    int n = 0;
    while (!imo_.IsEmpty()) {
        if (MoveImoToMeasure(imo_.First()->GetId(), mode) == nullptr) break;
        ++n;
    }
    return n;
}

int OvPhoto::CopyImoTo(OvPointList* list) const {
    if (list == nullptr || list == &imo_) return 0;
    return imo_.CopyTo(list);
}

int OvPhoto::CopyMeasureTo(OvPointList* list) const {
    if (list == nullptr || list == &measure_) return 0;
    return measure_.CopyTo(list);
}

int OvPhoto::MoveImoTo(OvPointList* list) {
    return imo_.MoveTo(list);
}

int OvPhoto::MoveMeasureTo(OvPointList* list) {
    return measure_.MoveTo(list);
}

}  // namespace orvo
