// The tilt transform: state, matrices, mapping, areas, and the transform list.
#include "orvo/rectify/tilt_trafo.h"

#include <cmath>
#include <memory>

#include "orvo/model/photo.h"
#include "orvo/model/point.h"
#include "orvo/model/point_list.h"
#include "orvo/numerics/linalg_errors.h"
#include "record_tokens.h"

namespace orvo {

namespace {

void SetBit(OvFlag& flag, std::uint32_t bit, bool on) {
    if (on) {
        flag.SetFlag(bit);
    } else {
        flag.ClearFlag(bit);
    }
}

const OvTiltTrafo* AsTilt(const OvObject* object) {
    return static_cast<const OvTiltTrafo*>(object);
}

OvMatrix Identity(int size) {
    OvMatrix m(size, size);
    m.SetIdent();
    return m;
}

// The tilt matrix (3 x 3) and the placement (4 x 4) applied as `PTrans2D` and `PTrans3D` do,
// with the same sums in the same order, read once from the matrices' storage instead of element
// by element: a list of a million points is mapped several times faster. Both matrices always
// have their shapes (the transform refuses others), so their storage holds 9 and 16 elements.
class PlaneMapping {
public:
    PlaneMapping(const OvMatrix& tilt, const OvMatrix& placement)
        : t_(tilt.Data()), m_(placement.Data()) {}

    void Apply(OvPoint& p) const {
        double x = p.GetX();
        double y = p.GetY();
        double z = p.GetZ();
        const double w = t_[6] * x + t_[7] * y + t_[8];
        if (!(std::fabs(w) < kOvSingularThreshold)) {
            const double tx = (t_[0] * x + t_[1] * y + t_[2]) / w;
            const double ty = (t_[3] * x + t_[4] * y + t_[5]) / w;
            x = tx;
            y = ty;
        }
        const double w3 = Line(3, x, y, z);
        if (!(std::fabs(w3) < kOvSingularThreshold)) {
            const double nx = Line(0, x, y, z);
            const double ny = Line(1, x, y, z);
            const double nz = Line(2, x, y, z);
            x = nx / w3;
            y = ny / w3;
            z = nz / w3;
        }
        p.Set(x, y, z);
    }

private:
    double Line(int line, double x, double y, double z) const {
        const double* m = m_ + 4 * line;
        return m[0] * x + m[1] * y + m[2] * z + m[3];
    }

    const double* t_;
    const double* m_;
};

}  // namespace

// ---- construction --------------------------------------------------------------------------

OvTiltTrafo::OvTiltTrafo()
    : tiltMat_(Identity(3)),
      transMat_(Identity(4)),
      defPoints_(OvPolygonMode3DId),
      measPoints_(OvPolygonMode2DId),
      parallelDef_(&measPoints_.GetPointList()),
      region_(OvPolygonMode2D) {}

OvTiltTrafo::OvTiltTrafo(std::uint32_t id, const String& name) : OvTiltTrafo() {
    SetId(id);
    SetName(name);
}

OvTiltTrafo::OvTiltTrafo(const OvTiltTrafo& other)
    : OvListnode(other),
      LinkHdl(other),
      flag_(other.flag_),
      tiltMat_(other.tiltMat_),
      transMat_(other.transMat_),
      defPoints_(other.defPoints_),
      measPoints_(other.measPoints_),
      parallelDef_(other.parallelDef_),
      region_(other.region_),
      camera_(other.camera_) {
    AdoptPointList(other);
}

OvTiltTrafo::OvTiltTrafo(OvReaderObject* reader, bool legacy) : OvTiltTrafo() {
    if (legacy) {
        ReadV50(reader);
    } else {
        Read(reader);
    }
}

OvTiltTrafo& OvTiltTrafo::operator=(const OvTiltTrafo& other) {
    if (this == &other) return *this;
    OvListnode::operator=(other);
    flag_ = other.flag_;
    tiltMat_ = other.tiltMat_;
    transMat_ = other.transMat_;
    defPoints_ = other.defPoints_;
    measPoints_ = other.measPoints_;
    parallelDef_ = other.parallelDef_;
    region_ = other.region_;
    camera_ = other.camera_;
    AdoptPointList(other);
    return *this;
}

OvTiltTrafo::~OvTiltTrafo() = default;

void OvTiltTrafo::AdoptPointList(const OvTiltTrafo& other) {
    if (other.parallelDef_.GetPointList() == &other.measPoints_.GetPointList())
        parallelDef_.SetPointList(&measPoints_.GetPointList());
}

// ---- state ---------------------------------------------------------------------------------

void OvTiltTrafo::SetActive(bool on) {
    SetBit(flag_, eOvTiltFlagActive, on);
}

void OvTiltTrafo::SetRegionActive(bool on) {
    SetBit(flag_, eOvTiltFlagRegionActive, on);
}

void OvTiltTrafo::SetDistortCameraFlag(bool on) {
    SetBit(flag_, eOvTiltFlagDistortCamera, on);
}

void OvTiltTrafo::SetTiltMat(const OvMatrix& tilt) {
    tiltMat_ = tilt;
}

void OvTiltTrafo::SetTransMat(const OvMatrix& placement) {
    transMat_ = placement;
}

bool OvTiltTrafo::Overlap(const OvPoint* point) const {
    return region_.Overlap(point);
}

bool OvTiltTrafo::SetDistortCameraParam(const OvCamera& camera) {
    camera_ = camera;
    return true;
}

bool OvTiltTrafo::CompensateDistortion() const {
    return GetDistortCameraFlag() && camera_.GetId() != 0;
}

// ---- mapping -------------------------------------------------------------------------------

void OvTiltTrafo::Undistort(OvPoint& point) const {
    if (CompensateDistortion()) camera_.Adjust(&point);
}

bool OvTiltTrafo::Transform(const OvPoint* in, OvPoint* out) const {
    if (in == nullptr || out == nullptr) return false;
    if (in != out) *out = *in;
    Undistort(*out);
    PlaneMapping(tiltMat_, transMat_).Apply(*out);
    return true;
}

int OvTiltTrafo::Transform(OvPointList* list) const {
    if (list == nullptr) return 0;
    const PlaneMapping mapping(tiltMat_, transMat_);
    const bool undistort = CompensateDistortion();
    int count = 0;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        if (undistort) camera_.Adjust(p);
        mapping.Apply(*p);
        ++count;
    }
    return count;
}

double OvTiltTrafo::Area() const {
    OvPolygon plane(region_);
    for (OvPoint* p = plane.First(); p != nullptr; p = p->Next()) {
        Undistort(*p);
        tiltMat_.PTrans2D(p);
    }
    plane.UpdateMinMax();
    return plane.Area(true);
}

double OvTiltTrafo::Length() const {
    OvPolygon plane(region_);
    for (OvPoint* p = plane.First(); p != nullptr; p = p->Next()) {
        Undistort(*p);
        tiltMat_.PTrans2D(p);
    }
    plane.UpdateMinMax();
    return plane.Length(true);
}

double OvTiltTrafo::GetOriginalPixelArea(const OvPhoto* photo) const {
    if (photo == nullptr || !photo->IsDigital() || photo->IsInactive()) return 0.0;
    OvPolygon pixels(region_);
    photo->ConvertList(&pixels.GetPointList(), eConvertBikoToMeasure);
    pixels.UpdateMinMax();
    return pixels.Area(true);
}

// ---- list and predicates -------------------------------------------------------------------

OvTiltTrafoList::~OvTiltTrafoList() = default;

OvTiltTrafo* OvTiltTrafoList::AddTrafo(OvReaderObject* reader) {
    if (detail::BlockReaderOf(reader) == nullptr) return nullptr;
    return Add(new OvTiltTrafo(reader, false));
}

OvTiltTrafo* OvTiltTrafoList::AddTrafoV50(OvReaderObject* reader) {
    if (detail::BlockReaderOf(reader) == nullptr) return nullptr;
    return Add(new OvTiltTrafo(reader, true));
}

unsigned IsTiltActive(const OvObject* trafo) {
    return trafo != nullptr && AsTilt(trafo)->IsActive() ? 1U : 0U;
}

unsigned HasTiltRegion(const OvObject* trafo) {
    return trafo != nullptr && AsTilt(trafo)->HasRegion() ? 1U : 0U;
}

}  // namespace orvo
