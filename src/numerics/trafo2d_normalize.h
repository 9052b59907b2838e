// Centring and scaling of point coordinates for a well-conditioned fit, and the way back from
// the parameters found in the reduced coordinates to the usual parameter form.
#pragma once

#include "orvo/numerics/trafo2d.h"

namespace orvo::trafo2d {

/// A reduction of one side's coordinates: x~ = (x - cx) k, y~ = (y - cy) k. One factor for both
/// axes, so that a Helmert stays a Helmert in the reduced coordinates.
struct Frame {
    double cx = 0.0;
    double cy = 0.0;
    double k = 1.0;

    double X(double x) const { return (x - cx) * k; }
    double Y(double y) const { return (y - cy) * k; }
};

/// Accumulates the points of one side and makes their frame: centre at the mean, factor the
/// reciprocal of the largest distance from it along an axis (reduced coordinates lie in
/// [-1, 1]).
class FrameBuilder {
public:
    void Add(double x, double y);
    /// False when there is no point or all points coincide (no scale can be formed).
    bool Make(Frame* frame) const;

private:
    int count_ = 0;
    double sumX_ = 0.0;
    double sumY_ = 0.0;
    double minX_ = 0.0, maxX_ = 0.0, minY_ = 0.0, maxY_ = 0.0;
};

/// The usual parameters p (type's count) of the transformation whose form in the reduced
/// coordinates of `in` (measured side) and `out` (reference side) has the parameters a:
/// X = out.cx + F~(in.X(x), in.Y(y)) / out.k and so on.
void Denormalize(eOvTrafo2DType type, const Frame& in, const Frame& out, const double* a,
                 double* p);

/// The Jacobian dp_i / da_j of Denormalize at a, row-major u x u (u the type's parameter
/// count), parameters in parameter order on both sides.
void DenormalizeJacobian(eOvTrafo2DType type, const Frame& in, const Frame& out, const double* a,
                         double* jacobian);

}  // namespace orvo::trafo2d
