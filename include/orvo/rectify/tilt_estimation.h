// Estimating the tilt matrix of a plane rectification, the 3 x 3 projective transform from
// image coordinates to rectified-plane coordinates:
//
//  - from control points: four or more image points with known plane coordinates (matched by
//    point number), fitted as a "Projektiv" transformation (`OvCalcTrafo2D::CalcTrafo`, on
//    centred and scaled coordinates);
//
//  - from definition lines alone (a metric rectification): parallel constraints give vanishing
//    points, and the line through them, the vanishing line, is sent back to infinity, which
//    makes parallel lines parallel (the affine step); perpendicular constraints, and known
//    lengths when asked for, then fix the remaining shear and aspect (the metric step, a linear
//    solve for the image of the circular points in the affine frame). The result is a
//    similarity of the true plane; it is fixed by a reference line that starts at the origin
//    and points along +x, with its length in the image or its known length.
//
// Both report failures as a result code, never by throwing (except for a tilt matrix that is
// not 3 x 3, which throws code 13 as assigning one would); the matrix is changed only on
// success.
#pragma once

#include <cstdint>

#include "orvo/numerics/calc_trafo2d.h"

namespace orvo {

class OvMatrix;
class OvPointList;
class OvTiltParallelDef;
class OvTiltTrafo;

enum eOvTiltEstimateResult : std::int32_t {
    TiltEstimateOk = 0,
    /// Fewer than four image points with a partner in the plane points.
    TiltEstimateTooFewPoints = 1,
    /// The points do not fix a projective transform (three or more of four on a line, all on a
    /// line), or the solution is not finite.
    TiltEstimateDegeneratePoints = 2,
    /// A constraint names a definition line that does not exist, or a line names an image
    /// point that is not in the point list (or there is no point list).
    TiltEstimateMissingLine = 3,
    /// A line's two points coincide, so it has no direction.
    TiltEstimateDegenerateLine = 4,
    /// The parallel constraints do not give two different vanishing directions: the vanishing
    /// line is not determined.
    TiltEstimateTooFewParallel = 5,
    /// The vanishing line runs through the measured points (they lie on both sides of the
    /// horizon of the plane, or on it), which no rectification of one plane can show.
    TiltEstimateHorizonCrossesPoints = 6,
    /// The perpendicular constraints (and lengths) give fewer than two independent conditions
    /// on the shear and aspect. A rectangle alone, for example, leaves its aspect open: add a
    /// perpendicular pair of other directions (the diagonals of a square) or known lengths.
    TiltEstimateTooFewPerpendicular = 7,
    /// The conditions contradict each other: no real metric frame satisfies them.
    TiltEstimateInconsistent = 8,
    /// The reference line asked for does not exist.
    TiltEstimateNoReferenceLine = 9,
};

/// "ok", "too few points", ...: a short English text for each result; "unknown result" for
/// any other value.
const char* GetTiltEstimateResultText(eOvTiltEstimateResult result);

/// Fits the tilt matrix mapping `imagePoints` onto `planePoints` (partners by point number,
/// the first partner from the head) as a projective transform, by least squares with at least
/// four pairs. `tilt` must be 3 x 3; on success it holds the transform with element (3, 3) = 1,
/// so that `tilt.PTrans2D` maps an image point into the plane. `report` (when not null)
/// receives the fit's report, residuals in plane units included. The lists are not changed.
eOvTiltEstimateResult OvEstimateTiltMatrix(const OvPointList& imagePoints,
                                           const OvPointList& planePoints, OvMatrix& tilt,
                                           OvTrafo2DFitReport* report = nullptr);

/// Options of the metric rectification.
struct OvMetricTiltOptions {
    /// The line that gives the rectified x axis and the origin (its first point). 0: the first
    /// line whose x-axis flag is set, else the first definition line.
    std::uint32_t referenceLineId = 0;
    /// Take each definition line's value, where it is above 0, as the line's true length in
    /// plane units: the ratios of the lengths become further conditions of the metric step,
    /// and the plane's scale follows from the reference line's length when it has one. By
    /// default the values are not looked at, and the reference line keeps its length in the
    /// image.
    bool useLineValuesAsLengths = false;
};

/// What the metric rectification used and how well the result meets the constraints.
struct OvMetricTiltReport {
    eOvTiltEstimateResult result = TiltEstimateOk;
    int parallelUsed = 0;       ///< parallel constraints taken into the affine step
    int perpendicularUsed = 0;  ///< perpendicular constraints taken into the metric step
    int lengthsUsed = 0;        ///< lines with a known length (when asked for)
    /// Angle errors in the rectified plane, in radians: for a parallel constraint the angle
    /// between the two lines, for a perpendicular one its difference from a right angle.
    double rmsAngle = 0.0;
    double maxAngle = 0.0;
    /// The line that fixes the axis, origin and scale.
    std::uint32_t referenceLineId = 0;
};

/// Estimates a metric rectification from the definition lines and constraints of `def` (whose
/// point list holds the image points the lines join). Needs at least two parallel constraints
/// with different vanishing directions, and at least two independent conditions from
/// perpendicular constraints (between lines of new directions) and, if asked for, known
/// lengths. Constraints of other types are not used. `tilt` must be 3 x 3; it is set only on
/// success, with element (3, 3) = 1.
eOvTiltEstimateResult OvEstimateMetricTilt(const OvTiltParallelDef& def, OvMatrix& tilt,
                                           const OvMetricTiltOptions& options = {},
                                           OvMetricTiltReport* report = nullptr);

// On a tilt transform: the image points are corrected for lens distortion first when the
// transform compensates it (as its `Transform` does before the tilt matrix), and the estimated
// matrix becomes the transform's tilt matrix on success; on failure nothing changes.

/// The projective fit of the transform's measured points ("MEASPOINTS") to its definition
/// points ("DEFPOINTS", plane coordinates x, y), partners by point number.
eOvTiltEstimateResult OvEstimateTiltTrafo(OvTiltTrafo& trafo, OvTrafo2DFitReport* report = nullptr);
/// The metric rectification from the transform's parallel definition.
eOvTiltEstimateResult OvEstimateMetricTiltTrafo(OvTiltTrafo& trafo,
                                                const OvMetricTiltOptions& options = {},
                                                OvMetricTiltReport* report = nullptr);

}  // namespace orvo
