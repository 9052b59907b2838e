// A point (or free vector) in space: three doubles and the little arithmetic that the 3D
// geometry built on it needs.
#pragma once

#include <cmath>

namespace orvo {

/// A plain value: no id, no name, no list links. Points of the data model (`OvPoint`) carry far
/// more; this type is for geometry that only needs the coordinates.
struct OvPoint3d {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr OvPoint3d() = default;
    constexpr OvPoint3d(double x, double y, double z) : x(x), y(y), z(z) {}

    constexpr OvPoint3d operator+(const OvPoint3d& o) const { return {x + o.x, y + o.y, z + o.z}; }
    constexpr OvPoint3d operator-(const OvPoint3d& o) const { return {x - o.x, y - o.y, z - o.z}; }
    constexpr OvPoint3d operator*(double f) const { return {x * f, y * f, z * f}; }
    /// Exact comparison of all three coordinates, as everywhere in the library's geometry.
    constexpr bool operator==(const OvPoint3d& o) const { return x == o.x && y == o.y && z == o.z; }

    /// Dot and cross product, taking the points as vectors from the origin.
    constexpr double Dot(const OvPoint3d& o) const { return x * o.x + y * o.y + z * o.z; }
    constexpr OvPoint3d Cross(const OvPoint3d& o) const {
        return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
    }
    /// Euclidean length of the vector from the origin.
    double Length() const { return std::sqrt(Dot(*this)); }
    /// Euclidean distance to another point.
    double Distance(const OvPoint3d& o) const { return (*this - o).Length(); }
};

}  // namespace orvo
