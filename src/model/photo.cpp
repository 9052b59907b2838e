// The photo record: construction, copying, predicates, tilt transforms, attributes and the list
// walk.
#include "orvo/model/photo.h"

#include <cmath>
#include <memory>

#include "orvo/textfile/filename.h"

namespace orvo {

namespace {

const OvPhoto* AsPhoto(const OvObject* object) {
    return static_cast<const OvPhoto*>(object);
}

bool HasAnyFlag(const OvPhoto* photo, int mask) {
    return photo->GetFlag().IsFlagSet(static_cast<std::uint32_t>(mask)) != 0;
}

// The tilt transform conditions of GetTiltTrafo: usable at the point, and active if asked.
bool TiltApplies(const OvTiltTrafo* trafo, const OvPoint* point, bool activeOnly) {
    if (activeOnly && !trafo->IsActive()) return false;
    return !trafo->HasRegion() || trafo->Overlap(point);
}

}  // namespace

OvPhoto::OvPhoto() = default;

OvPhoto::OvPhoto(unsigned id) : OvListnode(id) {}

OvPhoto::OvPhoto(unsigned id, const String& fileName) : OvListnode(id, fileName) {}

OvPhoto::OvPhoto(const OvPhoto& other)
    : OvListnode(other),
      flag_(other.flag_),
      comment_(other.comment_),
      state_(other.state_),
      layer_(other.layer_),
      rotation_(other.rotation_),
      scale_(other.scale_),
      phototype_(other.phototype_),
      digitizerId_(other.digitizerId_),
      digiRegion_(other.digiRegion_),
      camera_(other.camera_),
      reseau_(other.reseau_),
      preTrafo_(other.preTrafo_),
      mainTrafo_(other.mainTrafo_),
      polyInvTrafo_(other.polyInvTrafo_),
      tilts_(other.tilts_),
      digitalPage_(other.digitalPage_),
      digitalRot_(other.digitalRot_),
      screenPos_(other.screenPos_),
      screenScale_(other.screenScale_),
      imo_(other.imo_),
      measure_(other.measure_),
      attributes_(other.attributes_),
      aktBikoId_(other.aktBikoId_),
      reserved_(other.reserved_) {
    AdoptAttributes();
}

OvPhoto::OvPhoto(OvReaderObject* reader) {
    Read(reader);
}

OvPhoto& OvPhoto::operator=(const OvPhoto& other) {
    if (this == &other) return *this;
    OvListnode::operator=(other);
    flag_ = other.flag_;
    comment_ = other.comment_;
    state_ = other.state_;
    layer_ = other.layer_;
    rotation_ = other.rotation_;
    scale_ = other.scale_;
    phototype_ = other.phototype_;
    digitizerId_ = other.digitizerId_;
    digiRegion_ = other.digiRegion_;
    camera_ = other.camera_;
    reseau_ = other.reseau_;
    preTrafo_ = other.preTrafo_;
    mainTrafo_ = other.mainTrafo_;
    polyInvTrafo_ = other.polyInvTrafo_;
    tilts_ = other.tilts_;
    digitalPage_ = other.digitalPage_;
    digitalRot_ = other.digitalRot_;
    screenPos_ = other.screenPos_;
    screenScale_ = other.screenScale_;
    imo_ = other.imo_;
    measure_ = other.measure_;
    attributes_ = other.attributes_;
    aktBikoId_ = other.aktBikoId_;
    reserved_ = other.reserved_;
    AdoptAttributes();
    return *this;
}

OvPhoto::~OvPhoto() = default;

void OvPhoto::AdoptAttributes() {
    for (OvAttribute* a = attributes_.First(); a != nullptr; a = a->Next())
        a->SetPhoto(this);
}

void OvPhoto::Init() {
    state_ = kOvPhotoStateInactive;
    layer_ = 0;
    rotation_ = 0;
    scale_ = 0.0;
    phototype_ = eOvPhotoAnalog;
    digitizerId_ = 1;
    digitalPage_ = 0;
    digitalRot_ = 0;
    screenScale_ = 0;
    aktBikoId_ = 0;
    reserved_ = 0;
}

bool OvPhoto::IsOrthoPhoto() const {
    return false;
}

double OvPhoto::GetPixelSize() const {
    return GetPixelSizeX() * GetPixelSizeY();
}

namespace {

// |step / d| for the distance d of the images of the origin and of (dx, dy) under the
// image-to-measured converter; `step` when d is 0 or not a number.
double MeasuringUnit(const OvPhoto& photo, double dx, double dy) {
    constexpr double kStep = 5.0;
    const OvBikoTransform toMeasured(&photo, eConvertBikoToMeasure);
    double x0 = 0.0, y0 = 0.0, z0 = 0.0;
    double x1 = dx, y1 = dy, z1 = 0.0;
    toMeasured.Transform(&x0, &y0, &z0);
    toMeasured.Transform(&x1, &y1, &z1);
    const double d = std::hypot(x1 - x0, y1 - y0);
    if (d == 0.0 || std::isnan(d)) return kStep;
    return std::fabs(kStep / d);
}

}  // namespace

double OvPhoto::GetPixelSizeX() const {
    return MeasuringUnit(*this, 5.0, 0.0);
}

double OvPhoto::GetPixelSizeY() const {
    return MeasuringUnit(*this, 0.0, 5.0);
}

int OvPhoto::Compare(const OvListnode* other) const {
    const std::uint32_t otherId = other != nullptr ? other->GetId() : 0;
    return static_cast<std::int32_t>(GetId() - otherId);
}

bool OvPhoto::ExistFile() const {
    return OvExistFile(GetName().chars());
}

bool OvPhoto::Overlap(const OvRegion* region) const {
    return digiRegion_.Overlap(region);
}

bool OvPhoto::Overlap(const OvPoint* point) const {
    return digiRegion_.Overlap(point);
}

OvRegion OvPhoto::GetBikoRegion() const {
    OvRegion region(digiRegion_);
    for (OvPoint* corner : {&region.GetFirst(), &region.GetSecond()}) {
        preTrafo_.Transform(corner);
        mainTrafo_.Transform(corner);
    }
    return region;
}

// -- tilt transforms ---------------------------------------------------------------------------

OvTiltTrafo* OvPhoto::GetTiltTrafo(const OvPoint* point, const OvTiltTrafo* after,
                                   bool activeOnly) const {
    OvTiltTrafo* trafo = tilts_.First();
    if (after != nullptr) {
        // Only a transform of this photo has a successor here: another list's links must not be
        // followed.
        if (!tilts_.Exist(after)) return nullptr;
        trafo = after->Next();
    }
    for (; trafo != nullptr; trafo = trafo->Next()) {
        if (TiltApplies(trafo, point, activeOnly)) return trafo;
    }
    return nullptr;
}

int OvPhoto::CountTiltTrafo(const OvPoint* point, bool activeOnly) const {
    int n = 0;
    for (const OvTiltTrafo* t = tilts_.First(); t != nullptr; t = t->Next()) {
        if (TiltApplies(t, point, activeOnly)) ++n;
    }
    return n;
}

// -- attributes --------------------------------------------------------------------------------

OvAttribute* OvPhoto::AddAttribute(OvAttribute* attribute) {
    if (attribute == nullptr || attribute->GetPrev() != nullptr ||
        attribute->GetNext() != nullptr || attributes_.First() == attribute) {
        return nullptr;
    }
    OvPhoto* const previousOwner = attribute->GetPhoto();
    attribute->SetPhoto(this);
    attribute->OnAdd();
    if (attributes_.Add(attribute) == nullptr) {
        attribute->SetPhoto(previousOwner);
        return nullptr;
    }
    return attribute;
}

OvAttribute* OvPhoto::AddAttribute(const OvAttribute& attribute) {
    auto copy = std::make_unique<OvAttribute>(attribute);
    OvAttribute* added = AddAttribute(copy.get());
    if (added != nullptr) copy.release();
    return added;
}

OvAttribute* OvPhoto::SubtractAttribute(OvAttribute* attribute) {
    if (attribute == nullptr || !attributes_.Exist(attribute)) return nullptr;
    return attributes_.Subtract(attribute);
}

OvAttribute* OvPhoto::SubtractAttribute(const String& name) {
    return SubtractAttribute(attributes_.Find(name));
}

bool OvPhoto::DelAttribute(OvAttribute* attribute) {
    std::unique_ptr<OvAttribute> taken(SubtractAttribute(attribute));
    return taken != nullptr;
}

bool OvPhoto::DelAttribute(const String& name) {
    return DelAttribute(attributes_.Find(name));
}

// -- list walk ---------------------------------------------------------------------------------

OvPhoto* OvPhoto::Next() {
    return static_cast<OvPhoto*>(GetNext());
}

OvPhoto* OvPhoto::Previous() {
    return static_cast<OvPhoto*>(GetPrev());
}

const OvPhoto* OvPhoto::Next() const {
    return static_cast<const OvPhoto*>(GetNext());
}

const OvPhoto* OvPhoto::Previous() const {
    return static_cast<const OvPhoto*>(GetPrev());
}

OvPhoto* OvPhoto::First(int mask) {
    for (OvPhoto* p = this; p != nullptr; p = p->Next()) {
        if (HasAnyFlag(p, mask)) return p;
    }
    return nullptr;
}

OvPhoto* OvPhoto::Next(int mask) {
    OvPhoto* next = Next();
    return next != nullptr ? next->First(mask) : nullptr;
}

OvPhoto* OvPhoto::Previous(int mask) {
    for (OvPhoto* p = Previous(); p != nullptr; p = p->Previous()) {
        if (HasAnyFlag(p, mask)) return p;
    }
    return nullptr;
}

// -- filter predicates -------------------------------------------------------------------------

unsigned IsPhotoDigital(const OvObject* photo) {
    return AsPhoto(photo)->IsDigital() ? 1U : 0U;
}

unsigned IsPhotoAnalog(const OvObject* photo) {
    return AsPhoto(photo)->IsAnalog() ? 1U : 0U;
}

unsigned IsPhotoActive(const OvObject* photo) {
    return AsPhoto(photo)->IsActive() ? 1U : 0U;
}

unsigned IsPhotoExtern(const OvObject* photo) {
    return AsPhoto(photo)->IsExtern() ? 1U : 0U;
}

unsigned HasPhotoReseau(const OvObject* photo) {
    return AsPhoto(photo)->GetReseauMainTrafo().GetType() != eOvTrafo2DNone ? 1U : 0U;
}

unsigned HasPhotoTilt(const OvObject* photo) {
    return AsPhoto(photo)->GetTiltList().IsEmpty() ? 0U : 1U;
}

}  // namespace orvo
