// Angles between vectors, polygon normals and the arbitrary-axis frame.
#include "orvo/numerics/vector_geometry.h"

#include <cmath>

namespace orvo {

namespace {

OvVector FirstThree(const OvVector& v) {
    OvVector result(3);
    for (int k = 1; k <= 3; ++k)
        result[k] = v[k];
    return result;
}

void StoreFirstThree(OvVector& target, const OvVector& value) {
    for (int k = 1; k <= 3; ++k)
        target[k] = value[k];
}

}  // namespace

double CalcAngle(const OvVector& u, const OvVector& v) {
    OvVector a(u);
    OvVector b(v);
    const double c = a.Normalize() * b.Normalize();
    return c < 1.0 ? std::acos(c) : 0.0;
}

bool CalcNormVect(OvVector* normal, const OvMatrix& points) {
    if (normal == nullptr || points.GetZeilen() < 3) return false;
    // Newell's method: each edge (p, q) of the closed polygon adds
    // ((py - qy)(pz + qz), (pz - qz)(px + qx), (px - qx)(py + qy)); the sum is twice the
    // polygon's area vector.
    const int count = points.GetZeilen();
    OvVector area(3);
    for (int i = 1; i <= count; ++i) {
        const int next = i == count ? 1 : i + 1;
        const double px = points.GetElem(i, 1), py = points.GetElem(i, 2),
                     pz = points.GetElem(i, 3);
        const double qx = points.GetElem(next, 1), qy = points.GetElem(next, 2),
                     qz = points.GetElem(next, 3);
        area[1] += (py - qy) * (pz + qz);
        area[2] += (pz - qz) * (px + qx);
        area[3] += (px - qx) * (py + qy);
    }
    const double length = area.Abs();
    if (length < kOvSingularThreshold) return false;
    StoreFirstThree(*normal, area / length);
    return true;
}

bool CalcArbitaryAlg(OvVector* xAxis, OvVector* yAxis, const OvVector& n) {
    if (xAxis == nullptr || yAxis == nullptr) return false;
    OvVector normal = FirstThree(n);
    const double length = normal.Abs();
    if (length < kOvSingularThreshold) return false;
    normal /= length;

    OvVector world(3);
    const bool nearWorldZ = std::fabs(normal[1]) < kOvArbitraryAxisThreshold &&
                            std::fabs(normal[2]) < kOvArbitraryAxisThreshold;
    world[nearWorldZ ? 2 : 3] = 1.0;
    OvVector ax = world % normal;
    ax.Normalize();
    OvVector ay = normal % ax;
    ay.Normalize();
    StoreFirstThree(*xAxis, ax);
    StoreFirstThree(*yAxis, ay);
    return true;
}

}  // namespace orvo
