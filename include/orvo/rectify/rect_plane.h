// One rectified image of one tilt transform on one photo: the range of the transform in the
// photo, its pixel rectangle, and the border that the range takes in the rectified plane.
#pragma once

#include <cstdint>

#include "orvo/foundation/object.h"
#include "orvo/geom2d/polygon.h"
#include "orvo/geom2d/region.h"
#include "orvo/numerics/biko_transform.h"
#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"

namespace orvo {

class OvPhoto;
class OvTiltTrafo;

class OvRectPlane : public OvListnode {
public:
    /// Keeps both pointers (not owned; they must outlive the plane), builds the photo's image
    /// transform of kind 6 (image to measured coordinates), sets the plane and border matrices
    /// to the identity and the image-to-pixel matrix to the inverse of the image transform's
    /// matrix (the identity when that matrix cannot be inverted), and computes the range and
    /// the pixel rectangle (`CalcTiltPolygonBiko`). Either pointer may be null: a null trafo
    /// has no valid region, a null photo no digitised region.
    OvRectPlane(OvPhoto* photo, OvTiltTrafo* trafo);
    /// Copy and assignment copy every member, the pointers included.
    OvRectPlane(const OvRectPlane& other);
    OvRectPlane& operator=(const OvRectPlane& other);
    ~OvRectPlane() override;

    OvPhoto* GetPhoto() const { return photo_; }
    OvTiltTrafo* GetTiltTrafo() const { return trafo_; }
    /// The id of the photo resp. trafo; 0 for a null pointer.
    std::uint32_t GetPhotoId() const;
    std::uint32_t GetTiltId() const;
    /// The trafo's own tilt matrix and valid region (not copies). Without a trafo: an identity
    /// matrix resp. an empty polygon that belong to no one.
    const OvMatrix& GetTiltMat() const;
    const OvPolygon& GetTiltRangeBiko() const;
    /// (0, 0) to the width and height of the range's bounding box in pixels.
    const OvRegion& PixelRect() const { return pixelRect_; }
    /// The range of the transform in image coordinates.
    const OvPolygon& GetRange() const { return range_; }
    /// The range mapped into the rectified plane by `CalcTiltBorder`.
    const OvPolygon& GetBorder() const { return border_; }

    std::int32_t SetGroup(std::int32_t group) { return group_ = group; }
    std::int32_t GetGroup() const { return group_; }

    /// The photo's image transform (kind 6) and the inverse of its matrix.
    const OvBikoTransform& GetImageTransform() const { return image_; }
    const OvMatrix& GetImageToPixelMat() const { return imageToPixel_; }
    /// The affine placement of the rectified image in the rectified plane (identity after
    /// construction); `OvTiltPlaneInfo` builds its transformation from it. Must be 3 x 3 (code
    /// 13 otherwise).
    const OvMatrix& GetPlaneMat() const { return planeMat_; }
    void SetPlaneMat(const OvMatrix& m) { planeMat_ = m; }
    /// The matrix `CalcTiltBorder` applies (identity after construction). Must be 3 x 3.
    const OvMatrix& GetBorderMat() const { return borderMat_; }
    void SetBorderMat(const OvMatrix& m) { borderMat_ = m; }

    /// Appends every point of the range, corrected for distortion when the trafo compensates
    /// it and mapped projectively with the border matrix, to the border. The border is not
    /// cleared first: a second call appends a second copy, as the rectifying application has
    /// always relied on.
    void CalcTiltBorder();

protected:
    /// Fills the range with `OvGetTiltBikoPoints`, then sets the pixel rectangle from the
    /// range's bounding box converted to pixels (`OvPhoto::ConvertBiko`, kind 6).
    void CalcTiltPolygonBiko();

private:
    OvPolygon border_;
    OvPolygon range_;
    OvPhoto* photo_;
    OvTiltTrafo* trafo_;
    std::int32_t group_ = 0;
    OvRegion pixelRect_;
    OvBikoTransform image_;
    OvMatrix imageToPixel_;
    OvMatrix planeMat_;
    OvMatrix borderMat_;
    OvVector work_;
};

}  // namespace orvo
