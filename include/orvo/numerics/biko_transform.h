// The image-coordinate chain of a photo. Measured coordinates (as digitised on the scanner or
// comparator) become image coordinates ("Biko") through the photo's pre-reseau and main reseau
// transformations; the camera's correction for principal point and distortion then gives
// corrected image coordinates. `OvBikoTransform` combines these steps for one direction into a
// single converter, so any number of points can be converted with one object.
//
// With P the matrix of the pre-reseau transformation and M that of the main one (3 x 3
// homogeneous matrices, `OvTrafo2d::BuildMatrix`), the converter holds one combined matrix T and
// applies these steps (columns "plain": the main transformation is not a polynomial; "poly": it
// is; Adj = camera Adjust, Inv = camera InvAdjust, MP = main polynomial, IP = inverse
// polynomial):
//
//   mode  direction                      T plain    T poly   steps plain   steps poly
//    1    measured -> pre-corrected      P          P        T             T
//    2    measured -> image              M P        P        T             T, MP
//    3    pre-corrected -> image         M          I        T             MP
//    4    measured -> corrected image    M P        P        T, Adj        T, Adj
//    5    image -> corrected image       I          I        Adj           Adj
//    6    image -> measured              (M P)^-1   P^-1     T             IP, T
//    7    pre-corrected -> measured      P^-1       P^-1     T             T
//    8    image -> pre-corrected         M^-1       I        T             IP
//    9    corrected image -> image       I          I        Inv           Inv
//   10    corrected image -> measured    (M P)^-1   P^-1     Inv, T        Inv, IP, T
//   11    (none)                         I          I        -             -
//   12    (none)                         I          I        -             -
//   13    (matrix of mode 6 only)        (M P)^-1   P^-1     -             -
//
// A polynomial main transformation has no matrix form, so in that case the matrix covers only
// the pre-reseau part and the polynomial (forward: the main transformation; backward: the
// photo's inverse polynomial transformation) runs as a separate step, after the matrix going
// forward and before it going back. Adjust and InvAdjust are the photo camera's correction and
// its inverse; a camera with id 0 skips them. T is applied with `OvMatrix::PTrans2D`, which
// leaves a point unchanged where the homogeneous weight is below 1e-10. Inverses are taken with
// `OvMatrix::Invert` without looking at its result: a singular stage gives a matrix that is not
// an inverse, as the chain always did.
#pragma once

#include <cstdint>

#include "orvo/numerics/matrix.h"
#include "orvo/numerics/reseau_trafo.h"

namespace orvo {

class OvPhoto;
class OvPoint;
class OvPointList;

/// The conversion directions of the table above. The type is 32 bits wide and every value is
/// valid: a value outside 1 to 13 converts nothing.
enum eConvertBikoMode : std::int32_t {
    eConvertBikoNone = 0,                  ///< converts nothing
    eConvertMeasureToPre = 1,              ///< measured -> pre-corrected
    eConvertMeasureToBiko = 2,             ///< measured -> image
    eConvertPreToBiko = 3,                 ///< pre-corrected -> image
    eConvertMeasureToCorrectedBiko = 4,    ///< measured -> corrected image
    eConvertBikoToCorrectedBiko = 5,       ///< image -> corrected image
    eConvertBikoToMeasure = 6,             ///< image -> measured
    eConvertPreToMeasure = 7,              ///< pre-corrected -> measured
    eConvertBikoToPre = 8,                 ///< image -> pre-corrected
    eConvertCorrectedBikoToBiko = 9,       ///< corrected image -> image
    eConvertCorrectedBikoToMeasure = 10,   ///< corrected image -> measured
    eConvertBikoIdentity11 = 11,           ///< converts nothing
    eConvertBikoIdentity12 = 12,           ///< converts nothing
    eConvertBikoToMeasureMatrixOnly = 13,  ///< builds the matrix of mode 6, converts nothing
};

class OvBikoTransform {
public:
    /// Builds the converter for `photo` and `mode` as the table above says. The photo is not
    /// copied: it must outlive the converter (its camera is used by `Transform`). A null photo
    /// counts as one without transformations and without a camera.
    OvBikoTransform(const OvPhoto* photo, eConvertBikoMode mode);
    OvBikoTransform(const OvBikoTransform& other);
    OvBikoTransform& operator=(const OvBikoTransform& other);
    virtual ~OvBikoTransform();

    /// The combined 3 x 3 matrix T.
    OvMatrix& GetTransformation() { return transformation_; }
    const OvMatrix& GetTransformation() const { return transformation_; }
    /// Whether the photo's main reseau transformation is a polynomial.
    bool IsPolyTrafo() const { return poly_; }
    eConvertBikoMode GetMode() const { return mode_; }
    const OvPhoto* GetPhoto() const { return photo_; }

    /// Converts (x, y) in place by the steps of the mode; z is accepted and never changed.
    /// Returns false when a step refused to convert (a homogeneous weight below 1e-10, a
    /// camera correction without camera or without convergence); the steps before it have
    /// been applied then, the refusing step left the point as it was, and the steps after it
    /// still run. Null pointers give false and change nothing.
    bool Transform(double* x, double* y, double* z) const;
    /// The same on the point's coordinates.
    bool Transform(OvPoint* point) const;

private:
    bool ApplyMatrix(double* x, double* y) const;
    bool ApplyAdjust(double* x, double* y) const;
    bool ApplyInvAdjust(double* x, double* y) const;

    const OvPhoto* photo_;
    OvMatrix transformation_;
    bool poly_ = false;
    OvReseauTrafo mainPoly_;
    OvReseauTrafo inversePoly_;
    eConvertBikoMode mode_;
};

/// Applies `matrix->PTrans2D` (3 x 3) to x and y of every point of the list, in list order, and
/// returns the number of points visited, 0 for a null list. A point whose homogeneous weight is
/// below 1e-10 stays as it was but is counted.
int Transform2D(OvPointList* list, const OvMatrix& matrix);
/// The same with `PTrans3D` (4 x 4) on x, y and z.
int Transform3D(OvPointList* list, const OvMatrix& matrix);

}  // namespace orvo
