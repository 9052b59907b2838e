// A straight segment in space, given by its start and end point. Definition lines of a plane
// rectification are handed out in this form (`OvTiltParallelDef::GetLine`).
#pragma once

#include "orvo/geom3d/point3d.h"

namespace orvo {

class OvLine3d {
public:
    /// Both ends at the origin.
    OvLine3d() = default;
    OvLine3d(const OvPoint3d& start, const OvPoint3d& end) : start_(start), end_(end) {}
    OvLine3d(double x1, double y1, double z1, double x2, double y2, double z2)
        : start_(x1, y1, z1), end_(x2, y2, z2) {}

    const OvPoint3d& GetStart() const { return start_; }
    const OvPoint3d& GetEnd() const { return end_; }
    void SetStart(const OvPoint3d& p) { start_ = p; }
    void SetEnd(const OvPoint3d& p) { end_ = p; }

    /// end - start (not normalised).
    OvPoint3d Direction() const { return end_ - start_; }
    /// Distance from start to end.
    double Length() const { return start_.Distance(end_); }
    /// start + t * (end - start): t = 0 gives the start, t = 1 the end, 0.5 the midpoint.
    OvPoint3d PointAt(double t) const { return start_ + (end_ - start_) * t; }
    OvPoint3d Midpoint() const { return PointAt(0.5); }

    /// Same start and same end, compared exactly.
    bool operator==(const OvLine3d& other) const {
        return start_ == other.start_ && end_ == other.end_;
    }

private:
    OvPoint3d start_;
    OvPoint3d end_;
};

}  // namespace orvo
