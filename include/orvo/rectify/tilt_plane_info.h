// How the pixels of a finished rectified image map into object space: one plane of an ortho
// photo, with the photo and the transform it came from, its 4 x 4 transformation and its range.
//
// The record, as `Write` puts it (every line ends with `Ovendl`):
//
//     PHOTOID         {    3 "facade.tif"}
//     TILTID          {    1 "ground floor"}
//     TRANSFORMATION
//     {
//            4    4
//         ... four lines of the matrix ...
//     }
//
//     TILTRANGE
//     {
//         ... x y per line ...
//     }
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/foundation/object.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/numerics/matrix.h"

namespace orvo {

class OvPoint;
class OvReaderObject;
class OvRectPlane;

class OvTiltPlaneInfo : public OvListnode, public LinkHdl {
public:
    /// Empty references, the identity transformation, an empty range (mode 0).
    OvTiltPlaneInfo();
    OvTiltPlaneInfo(const OvTiltPlaneInfo& other);
    /// Reads the record from the reader's block (see `Read`).
    explicit OvTiltPlaneInfo(OvReaderObject* reader);
    /// The plane of a rectified image whose pixels are mapped into the rectified plane by the
    /// 3 x 3 matrix `m`:
    ///  - the photo and tilt references are the identities (id and name) of the plane's photo
    ///    and trafo (empty for a null pointer);
    ///  - the range is a copy of the plane's border;
    ///  - with P the plane's plane matrix and M = m, each embedded into a 4 x 4 identity (for
    ///    lines r = 1, 2: the 3 x 3 elements (r, 1), (r, 2), (r, 3) go to (r, 1), (r, 2),
    ///    (r, 4)), the transformation is (trafo's placement x P^-1) x M (the placement being
    ///    the identity without a trafo).
    /// `m` must be at least 2 x 3: a smaller matrix throws the matrix's range error (code 10).
    /// A null plane gives the default plane info.
    OvTiltPlaneInfo(const OvMatrix& m, const OvRectPlane* plane);
    OvTiltPlaneInfo& operator=(const OvTiltPlaneInfo& other);
    ~OvTiltPlaneInfo() override;

    const OvObject& GetPhotoRef() const { return photo_; }
    const OvObject& GetTiltRef() const { return tilt_; }
    std::uint32_t GetPhotoId() const { return photo_.GetId(); }
    std::uint32_t GetTiltId() const { return tilt_.GetId(); }
    /// Pixel coordinates of the rectified image to object space; always 4 x 4.
    const OvMatrix& GetTransformation() const { return transformation_; }
    /// Must be 4 x 4 (code 13 otherwise).
    void SetTransformation(const OvMatrix& m) { transformation_ = m; }
    /// The part of the rectified image this plane covers (mode 0).
    const OvPolygon& GetRange() const { return range_; }
    OvPolygon& GetRange() { return range_; }

    /// Maps the point's x, y, z with the transformation (`PTrans3D`); true, false only for a
    /// null point.
    bool Transform(OvPoint* point) const;
    /// Whether the point lies in the range.
    bool Overlap(const OvPoint& point) const { return range_.Overlap(point); }

    /// Reads "PHOTOID", "TILTID" (inline blocks with id and name), "TRANSFORMATION" (a 4 x 4
    /// matrix; another shape is reported and not taken) and "TILTRANGE" (a polygon), in any
    /// order; nothing for a keyword followed by a value instead of a block. Returns 1.
    int Read(OvReaderObject* reader);
    /// Writes the record (see the top of this header).
    std::ostream& Write(std::ostream& out) const;

    OvTiltPlaneInfo* Next() const { return static_cast<OvTiltPlaneInfo*>(GetNext()); }
    OvTiltPlaneInfo* Previous() const { return static_cast<OvTiltPlaneInfo*>(GetPrev()); }

private:
    std::int32_t ReadPhotoHdl(void* readerObject);
    std::int32_t ReadTiltHdl(void* readerObject);
    std::int32_t ReadTransformationHdl(void* readerObject);
    std::int32_t ReadRangeHdl(void* readerObject);

    OvObject photo_;
    OvObject tilt_;
    OvMatrix transformation_;
    OvPolygon range_;
};

/// The planes of an ortho photo; owns them.
class OvTiltPlaneInfoList : public TOvListHeader<OvTiltPlaneInfo>, public LinkHdl {
public:
    OvTiltPlaneInfoList() = default;
    OvTiltPlaneInfoList(const OvTiltPlaneInfoList& other) = default;
    OvTiltPlaneInfoList& operator=(const OvTiltPlaneInfoList& other) = default;
    ~OvTiltPlaneInfoList() override;

    /// The first plane, in list order, whose range contains the point; null when none does.
    OvTiltPlaneInfo* FindPlane(const OvPoint& point) const;
    /// The first plane with both ids equal.
    OvTiltPlaneInfo* FindPlane(std::uint32_t photoId, std::uint32_t tiltId) const;
    /// Transforms the point with the plane that contains it; false (the point unchanged) when
    /// no plane does, or for a null point.
    bool Transform(OvPoint* point) const;
    /// Reads a plane from the reader's block and appends it; returns it. A keyword followed by a
    /// value instead of a block gives no plane (null).
    OvTiltPlaneInfo* AddPlane(OvReaderObject* reader);
    /// `AddPlane` in the shape of a reader callback. Returns 1.
    std::int32_t AddPlaneHdl(void* readerObject);
};

}  // namespace orvo
