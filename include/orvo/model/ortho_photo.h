// Ortho photos: rectified pictures computed from one or more rectification planes. An ortho
// photo is a digital photo whose pixel region (the photo's digitising region, "PIXELSIZE") is
// tied to a region of the object plane ("OBJECTSIZE") through its planes ("PLANEINFO").
//
// The record, as `Write` puts it (keywords left-aligned in 12, values after `w4`, numbers in
// the stream's current precision):
//
//     ID              {    4 "facade_ortho.tif"}
//     COMMENT            "ground floor"
//     RECTPIXEL       120000
//     TIME            1
//     SCALE           0
//     PLANEANGLE      9
//     PIXELSIZE       {                     0 ...}
//     OBJECTSIZE      {                     0 ...}
//     PLANEINFO
//     {
//         PHOTOID         {    3 "facade.tif"}
//         ...
//     }
//
// The other keywords of a plain photo are neither read nor written by an ortho photo.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "orvo/foundation/link.h"
#include "orvo/foundation/list.h"
#include "orvo/geom2d/region.h"
#include "orvo/model/photo.h"
#include "orvo/rectify/tilt_plane_info.h"

namespace orvo {

class OvPoint;
class OvReaderObject;

class OvOrthoPhoto : public OvPhoto, public LinkHdl {
public:
    /// The photo defaults, then: no planes, pixel count 0, time 1.0, object region zero,
    /// maximum plane angle 9.0, and the photo type digital.
    OvOrthoPhoto();
    explicit OvOrthoPhoto(unsigned id);
    /// The same with the picture file's name.
    OvOrthoPhoto(unsigned id, const String& fileName);
    OvOrthoPhoto(const OvOrthoPhoto& other);
    /// The defaults, then the record read from the reader's block (`Read`).
    explicit OvOrthoPhoto(OvReaderObject* reader);
    OvOrthoPhoto& operator=(const OvOrthoPhoto& other);
    ~OvOrthoPhoto() override;

    bool IsOrthoPhoto() const override { return true; }
    /// |object width / pixel width|: the widths (x2 - x1) of the object region and of the pixel
    /// region; a pixel width of 0 (or NaN) counts as 1.0.
    double GetPixelSize() const override;

    OvTiltPlaneInfoList& TiltPlaneList() { return planes_; }
    const OvTiltPlaneInfoList& TiltPlaneList() const { return planes_; }
    std::int32_t GetStatPixel() const { return rectPixel_; }
    void SetStatPixel(std::int32_t pixels) { rectPixel_ = pixels; }
    double GetStatTime() const { return time_; }
    void SetStatTime(double time) { time_ = time; }
    const OvRegion& GetObjectRegion() const { return objectRegion_; }
    void SetObjectRegion(const OvRegion& region) { objectRegion_ = region; }
    double GetMaxAngle() const { return maxAngle_; }
    void SetMaxAngle(double angle) { maxAngle_ = angle; }

    /// Maps a point of the ortho picture into object space: with exactly one plane by that
    /// plane's transformation (`PTrans3D`; true), otherwise by the plane that contains the point
    /// (`OvTiltPlaneInfoList::Transform`; false when none does). False for a null point.
    bool Transform(OvPoint* point) const;
    /// The corners of the ortho picture in object space. The pixel region's corners (Left,
    /// Bottom), (Right, Bottom), (Right, Top), (Left, Top), with z 0, go to the four points in
    /// that order, each mapped by the plane whose range contains it; a corner that no range
    /// contains is mapped by the plane whose range's bounding box is nearest to it (the first
    /// such plane on a tie), so that a picture whose planes leave its edges uncovered still has
    /// corners. With one plane that plane maps all four. False (points unchanged) without
    /// planes or for a null point; true otherwise.
    bool GetImageCorners(OvPoint* a, OvPoint* b, OvPoint* c, OvPoint* d) const;

    /// Reads "ID", "COMMENT", "RECTPIXEL", "TIME", "SCALE", "PLANEANGLE", "PIXELSIZE" (into
    /// the pixel region), "OBJECTSIZE" and "PLANEINFO" (one plane appended each) in any order;
    /// nothing for a keyword followed by a value instead of a block. Returns 1.
    int Read(OvReaderObject* reader) override;
    /// Writes the record (see the top of this header).
    std::ostream& Write(std::ostream& out) const override;

    /// The neighbours in the ortho photo list (null at the ends).
    using OvPhoto::Next;
    using OvPhoto::Previous;
    OvOrthoPhoto* Next() { return static_cast<OvOrthoPhoto*>(GetNext()); }
    OvOrthoPhoto* Previous() { return static_cast<OvOrthoPhoto*>(GetPrev()); }
    const OvOrthoPhoto* Next() const { return static_cast<const OvOrthoPhoto*>(GetNext()); }
    const OvOrthoPhoto* Previous() const { return static_cast<const OvOrthoPhoto*>(GetPrev()); }

private:
    std::int32_t ReadIdHdl(void* readerObject);
    /// The plane that maps `corner` for GetImageCorners.
    const OvTiltPlaneInfo* CornerPlane(const OvPoint& corner) const;

    OvTiltPlaneInfoList planes_;
    std::int32_t rectPixel_ = 0;
    double time_ = 1.0;
    OvRegion objectRegion_;
    double maxAngle_ = 9.0;
};

/// The ortho photos of a project; owns them.
class OvOrthoPhotoList : public TOvListHeader<OvOrthoPhoto>, public LinkHdl {
public:
    OvOrthoPhotoList() = default;
    OvOrthoPhotoList(const OvOrthoPhotoList& other) = default;
    OvOrthoPhotoList& operator=(const OvOrthoPhotoList& other) = default;
    ~OvOrthoPhotoList() override;

    /// Reads an ortho photo from the reader's block and appends it; returns it. A keyword
    /// followed by a value instead of a block gives no ortho photo (null).
    OvOrthoPhoto* AddPhoto(OvReaderObject* reader);
    /// `AddPhoto` in the shape of a reader callback. Returns 1.
    std::int32_t AddPhotoHdl(void* readerObject);
    /// Writes every ortho photo as an "ORTHOPHOTO" block, as the photo list writes its "PHOTO"
    /// blocks: the keyword, `Ovendl`, `OvBeginBlockNL`, the record, `OvEndBlockNL`, `Ovendl`,
    /// and an empty line after the block.
    std::ostream& Write(std::ostream& out) const;
};

}  // namespace orvo
