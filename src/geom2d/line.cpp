#include "orvo/geom2d/line.h"

#include <utility>

#include "planar.h"

namespace orvo {

OvLine::OvLine(double x1, double y1, double z1, double x2, double y2, double z2)
    : first(0, x1, y1, z1, 0), second(0, x2, y2, z2, 0) {}

OvLine::OvLine(const OvPoint& first, const OvPoint& second) : first(first), second(second) {}

OvLine::~OvLine() = default;

void OvLine::Adjust() {
    if (first.GetX() <= second.GetX() && first.GetY() <= second.GetY()) return;
    std::swap(first, second);
}

int CounterClockwise(const OvPoint& p0, const OvPoint& p1, const OvPoint& p2) {
    return planar::CounterClockwise(planar::Of(p0), planar::Of(p1), planar::Of(p2));
}

bool Intersect(const OvLine& a, const OvLine& b) {
    return planar::Intersect(planar::Of(a.GetFirst()), planar::Of(a.GetSecond()),
                             planar::Of(b.GetFirst()), planar::Of(b.GetSecond()));
}

}  // namespace orvo
