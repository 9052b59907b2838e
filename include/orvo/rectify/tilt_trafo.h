// A plane rectification defined on a photo (a tilt transform) and the photo's list of them.
//
// A tilt transform maps image coordinates of a photo of a plane surface (a facade, a floor)
// into a rectified 2D plane with its 3 x 3 projective tilt matrix, and from there, with its
// 4 x 4 placement matrix, into object space. It keeps what it was set up from: the definition
// points (plane coordinates, "DEFPOINTS"), the same points as measured in the photo
// ("MEASPOINTS"), and the definition lines and constraints of a parallel definition
// ("PARALLELDEF"). The valid region ("VALIDREGION") is the part of the photo the transform
// applies to; a camera whose distortion is removed before the tilt matrix can be attached
// ("DISTORTION", switched on by "KAMERA").
//
// The record, as `Write` puts it (every line ends with `Ovendl`; "PARALLELDEF" only when the
// parallel definition has lines):
//
//     TILTID          {    1 "window plane"}
//     ACTIV           1
//     KAMERA          0
//     REGIONACTIV     0
//     PARALLELDEF
//     {
//         DEFLINE      {       1        1        2        0 0}
//         ...
//     }
//
//     TILTTRAFO
//     {
//            3    3
//         ... three lines of the tilt matrix ...
//     }
//
//     TRAFO3D
//     { ... the 4 x 4 matrix ... }
//     DEFPOINTS
//     { ... id x y z per line ... }
//     DISTORTION
//     { ... the camera record ... }
//     MEASPOINTS
//     { ... id x y per line ... }
//     VALIDREGION
//     { ... x y per line ... }
//
// The tilt matrix is always 3 x 3 and the placement always 4 x 4: a matrix block of another
// shape is refused when read (a read error is recorded and the matrix kept), so that no
// transform can fail later on a short matrix.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/object.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/model/camera.h"
#include "orvo/numerics/matrix.h"
#include "orvo/rectify/tilt_parallel_def.h"

namespace orvo {

class OvPhoto;
class OvPoint;
class OvPointList;
class OvReaderObject;

/// State bits of a tilt transform's flag word.
enum eOvTiltFlag : std::uint32_t {
    eOvTiltFlagActive = 0x002,
    eOvTiltFlagRegionActive = 0x400,
    eOvTiltFlagDistortCamera = 0x800,
};

class OvTiltTrafo : public OvListnode, public LinkHdl {
public:
    /// Id 0, empty name, no flag set, both matrices identity, empty polygons (definition points
    /// mode 3, measured points mode 1, valid region mode 0), an empty parallel definition over
    /// the measured points, a camera of id 0.
    OvTiltTrafo();
    OvTiltTrafo(std::uint32_t id, const String& name);
    /// Copies every member. A parallel definition over the other's own measured points is
    /// carried over to this transform's measured points; one over an outside point list keeps
    /// that list.
    OvTiltTrafo(const OvTiltTrafo& other);
    /// Reads the transform: with `legacy` the positional record of file version 5.0
    /// (`ReadV50`), else the keyword block (`Read`).
    OvTiltTrafo(OvReaderObject* reader, bool legacy);
    /// Copies every member, as the copy constructor; never the list links.
    OvTiltTrafo& operator=(const OvTiltTrafo& other);
    ~OvTiltTrafo() override;

    // -- state bits ------------------------------------------------------------------------
    OvFlag& GetFlag() { return flag_; }
    const OvFlag& GetFlag() const { return flag_; }
    bool IsActive() const { return flag_.IsFlagSet(eOvTiltFlagActive) != 0; }
    void SetActive(bool on);
    bool IsRegionActive() const { return flag_.IsFlagSet(eOvTiltFlagRegionActive) != 0; }
    void SetRegionActive(bool on);
    /// Whether the lens distortion is to be compensated before the transform ("KAMERA").
    bool GetDistortCameraFlag() const { return flag_.IsFlagSet(eOvTiltFlagDistortCamera) != 0; }
    void SetDistortCameraFlag(bool on);

    // -- matrices ----------------------------------------------------------------------------
    /// Copy the matrix in; it must be 3 x 3 resp. 4 x 4 (code 13 is thrown otherwise, before
    /// anything changes, as for any matrix assignment).
    void SetTiltMat(const OvMatrix& tilt);
    void SetTransMat(const OvMatrix& placement);
    /// Image to rectified plane, projective.
    const OvMatrix& GetTiltMat() const { return tiltMat_; }
    /// Rectified plane to object space.
    const OvMatrix& GetTransMat() const { return transMat_; }

    // -- what the transform was set up from --------------------------------------------------
    /// The definition points in rectified-plane coordinates (mode 3: id, x, y, z).
    OvPolygon& GetBikoList() { return defPoints_; }
    const OvPolygon& GetBikoList() const { return defPoints_; }
    /// The definition points as measured in the photo (mode 1: id, x, y).
    OvPolygon& GetMeasPoints() { return measPoints_; }
    const OvPolygon& GetMeasPoints() const { return measPoints_; }
    /// Definition lines and constraints. Its point list is this transform's measured points
    /// unless the caller points it elsewhere.
    OvTiltParallelDef& GetParallelDef() { return parallelDef_; }
    const OvTiltParallelDef& GetParallelDef() const { return parallelDef_; }
    /// Whether the parallel definition holds lines.
    bool IsByParallelDef() const { return parallelDef_.HasData(); }

    // -- valid region --------------------------------------------------------------------------
    /// The region of the photo (image coordinates) in which the transform is valid; a polygon
    /// of mode 0 (x, y columns).
    OvPolygon& GetRegion() { return region_; }
    const OvPolygon& GetRegion() const { return region_; }
    /// Whether the valid region holds at least one point.
    bool HasRegion() const { return region_.Count() > 0; }
    /// Whether the point lies in the valid region (the polygon test of the region); false for a
    /// null point.
    bool Overlap(const OvPoint* point) const;

    // -- distortion ----------------------------------------------------------------------------
    /// Copies the camera whose distortion model is removed before the tilt matrix; returns true.
    bool SetDistortCameraParam(const OvCamera& camera);
    const OvCamera& GetDistortCameraParam() const { return camera_; }
    /// The distortion flag is set and the camera's id is not 0.
    bool CompensateDistortion() const;

    // -- mapping -------------------------------------------------------------------------------
    /// Copies `in` to `out` whole, removes the distortion from x, y (`OvCamera::Adjust`) when
    /// `CompensateDistortion`, maps x, y with the tilt matrix (`PTrans2D`) and then x, y, z
    /// with the placement (`PTrans3D`), z being the point's own. A homogeneous weight below
    /// 1e-10 leaves that step's coordinates as they were, unreported. Returns true; false only
    /// for a null point (then nothing changes). `in` and `out` may be the same point.
    bool Transform(const OvPoint* in, OvPoint* out) const;
    /// The same in place on every point of the list, in list order; returns the number of
    /// points, 0 for a null or empty list.
    int Transform(OvPointList* list) const;

    /// Area and length of the valid region in the rectified plane: the region's points,
    /// corrected for distortion as in `Transform` and mapped with the tilt matrix only (not
    /// the placement), give a polygon whose `Area(true)` resp. `Length(true)` is returned
    /// (-1.0 for too few points, as the polygon says).
    double Area() const;
    double Length() const;
    /// The area of the valid region in the photo's pixels: 0.0 unless the photo is not null,
    /// digital and not inactive; otherwise the region's points converted from image to pixel
    /// coordinates (`OvPhoto::ConvertList`, mode 6) enclose the area returned.
    double GetOriginalPixelArea(const OvPhoto* photo) const;

    // -- records -------------------------------------------------------------------------------
    /// Reads the keyword block (see the top of this header), keywords in any order; a missing
    /// keyword leaves its member as it was, except the three state bits, which are set from
    /// "ACTIV", "KAMERA" and "REGIONACTIV" and cleared when those are absent. The measured
    /// points are read with mode 1 and the definition points with mode 3, point by point: two
    /// points stay two points there, while a valid region of two points becomes the rectangle
    /// through them as any region polygon does. The valid region's points are renumbered 1, 2,
    /// 3, ... afterwards. Called for a keyword that is followed by a value instead of a block,
    /// it reads nothing (as does `ReadV50`). Returns 1.
    int Read(OvReaderObject* reader);
    /// Reads the positional record of file version 5.0: id, name, the active flag (non-zero),
    /// eight numbers for the tilt matrix in the order m13, m23, m12, m22, m32, m11, m21, m31
    /// (m33 becomes 1), "{" the 4 x 4 matrix "}", "{" the valid region "}", and four measured
    /// points of x, y each. The valid region is renumbered; the definition points become the
    /// measured points mapped by `Transform`, renumbered 1, 2, 3, ... A "}" where a field
    /// belongs ends the record early with what was read, a token of the wrong kind raises the
    /// reader's error. Returns 1.
    int ReadV50(OvReaderObject* reader);
    /// Writes the record (see the top of this header); every line ends with `Ovendl`.
    std::ostream& Write(std::ostream& out) const;

    OvTiltTrafo* Next() const { return static_cast<OvTiltTrafo*>(GetNext()); }
    OvTiltTrafo* Previous() const { return static_cast<OvTiltTrafo*>(GetPrev()); }

private:
    // Block handlers of `Read`.
    std::int32_t ReadIdHdl(void* readerObject);
    std::int32_t ReadDistortionHdl(void* readerObject);
    std::int32_t ReadTiltMatHdl(void* readerObject);
    std::int32_t ReadTransMatHdl(void* readerObject);
    std::int32_t ReadDefPointsHdl(void* readerObject);
    std::int32_t ReadMeasPointsHdl(void* readerObject);
    std::int32_t ReadParallelDefHdl(void* readerObject);
    std::int32_t ReadRegionHdl(void* readerObject);
    /// Points the parallel definition at this transform's measured points when `other` had
    /// it on its own.
    void AdoptPointList(const OvTiltTrafo& other);
    /// Removes the distortion from x, y when `CompensateDistortion`.
    void Undistort(OvPoint& point) const;

    OvFlag flag_;
    OvMatrix tiltMat_;
    OvMatrix transMat_;
    OvPolygon defPoints_;
    OvPolygon measPoints_;
    OvTiltParallelDef parallelDef_;
    OvPolygon region_;
    OvCamera camera_;
};

/// The tilt transforms of one photo; owns them.
class OvTiltTrafoList : public TOvListHeader<OvTiltTrafo> {
public:
    OvTiltTrafoList() = default;
    OvTiltTrafoList(const OvTiltTrafoList& other) = default;
    OvTiltTrafoList& operator=(const OvTiltTrafoList& other) = default;
    ~OvTiltTrafoList() override;

    /// Reads a transform from the keyword block at the reader and appends it; returns it. A
    /// keyword followed by a value instead of a block gives no transform (null).
    OvTiltTrafo* AddTrafo(OvReaderObject* reader);
    /// The same with the record of file version 5.0.
    OvTiltTrafo* AddTrafoV50(OvReaderObject* reader);
};

/// Filter predicates on the object part of a tilt transform (the argument must be one): its
/// active bit, and whether its valid region holds points. Non-zero for a match; 0 for null.
unsigned IsTiltActive(const OvObject* trafo);
unsigned HasTiltRegion(const OvObject* trafo);

}  // namespace orvo
