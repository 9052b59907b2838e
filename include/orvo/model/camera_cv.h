// Converting cameras to and from the pinhole form that computer-vision software uses: focal
// length and principal point in pixels and two radial terms k1, k2 on normalised coordinates.
//
// Conventions
//   Image coordinates (the camera model's, in mm): origin at the centre of the sensor, x to the
//   right, y up.
//   Pixel coordinates: origin at the centre of the top-left pixel, u to the right, v down, so
//   the sensor centre lies at ((width − 1) / 2, (height − 1) / 2) and
//       x = (u − (width − 1) / 2) · pixelSize,   y = ((height − 1) / 2 − v) · pixelSize.
//   Normalised coordinates: the ray direction (X / Z, Y / Z) in the camera frame, with y
//   pointing down like v. A point (xc, yc) corrected by OvCamera::Adjust (relative to the
//   principal point, distortion removed) has the normalised coordinates (xc / C, −yc / C).
//   Computer-vision projection of an undistorted normalised point (xn, yn):
//       r² = xn² + yn²,  q = 1 + k1·r² + k2·r⁴,  u = fx·q·xn + cx,  v = fy·q·yn + cy.
//   Signs: C, fx and fy are positive. A1 > 0 means that measured points lie farther out than
//   the ideal ones (pincushion), as k1 > 0 does; barrel distortion has A1 < 0 and k1 < 0.
//   Near the centre k1 ≈ A1·C² and k2 ≈ A2·C⁴ + 3·(A1·C²)² when R0 is 0.
//
// The two distortion models run in opposite directions (the camera model corrects measured
// points with a polynomial in the measured radius, the computer-vision model distorts ideal
// points with a polynomial in the ideal radius), so neither converts exactly into the other.
// The converters fit the target model by least squares over the radii the sensor covers, and
// report how far the two models then differ on a grid of pixels over the whole sensor.
#pragma once

#include <cstdint>

#include "orvo/model/camera.h"

namespace orvo {

/// The sensor the pixel coordinates refer to; pixels are square.
struct OvSensorGeometry {
    double pixelSize = 0.0;  ///< mm per pixel
    std::int32_t width = 0;  ///< pixels
    std::int32_t height = 0;
};

/// Pinhole intrinsics with two radial terms, as computer-vision software stores them.
struct OvCvIntrinsics {
    double fx = 0.0;  ///< focal length in pixels, along u
    double fy = 0.0;  ///< focal length in pixels, along v
    double cx = 0.0;  ///< principal point in pixels
    double cy = 0.0;
    double k1 = 0.0;  ///< radial terms on normalised coordinates (dimensionless)
    double k2 = 0.0;
};

/// How closely the converted model reproduces the original one: the distance, in pixels,
/// between where the two models place the same ray, over a 17 × 17 grid of pixels spanning the
/// whole sensor.
struct OvCvFit {
    double rmsResidual = 0.0;  ///< pixels
    double maxResidual = 0.0;  ///< pixels
    double maxRadius = 0.0;    ///< mm: the image radius (from the principal point) fitted
};

/// Image coordinates (mm) of a pixel position, and back. False, with nothing written, for an
/// invalid sensor (pixel size not positive and finite, width or height not positive) or a
/// null output pointer.
bool OvPixelToImage(const OvSensorGeometry& sensor, double u, double v, double* x, double* y);
bool OvImageToPixel(const OvSensorGeometry& sensor, double x, double y, double* u, double* v);

/// Projects an undistorted normalised point to pixels with the computer-vision model. False
/// for a null output pointer.
bool OvCvProject(const OvCvIntrinsics& cv, double xn, double yn, double* u, double* v);

/// Converts a camera: fx = fy, cx, cy from the principal point, and f, k1, k2 fitted so that
/// the computer-vision model places every ray where the camera's Adjust says it was measured.
/// False (with `cv` and `fit` untouched) for a camera whose C is not positive and finite or
/// whose coefficients are not finite, for an invalid sensor, or when the camera's correction
/// curve is not monotonic out to the sensor's corners (a failed calibration has no
/// equivalent). The camera id is not looked at.
bool OvCameraToCv(const OvCamera& camera, const OvSensorGeometry& sensor, OvCvIntrinsics* cv,
                  OvCvFit* fit = nullptr);

/// Converts computer-vision intrinsics into `camera`: C, Xh, Yh, A1 and A2 are set, while the
/// camera's id, info text and R0 stay (set R0 first to fit with a radius of zero distortion;
/// 0 for none). The model has square pixels: C comes from the mean of fx and fy, and the
/// residual of the fit includes what the difference of fx and fy costs. False (with `camera`
/// and `fit` untouched) for fx or fy not positive and finite, non-finite values, an invalid
/// sensor, or a distortion curve that turns back before it reaches the sensor's corners.
bool OvCvToCamera(const OvCvIntrinsics& cv, const OvSensorGeometry& sensor, OvCamera* camera,
                  OvCvFit* fit = nullptr);

}  // namespace orvo
