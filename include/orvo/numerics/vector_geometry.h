// Small geometric helpers on OvVector: angles, plane normals and the arbitrary-axis frame.
//
// The vectors are read and written through OvVector::operator[], so a vector with fewer than
// the three elements used throws 2.
#pragma once

#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"

namespace orvo {

// The angle between u and v in radians: c = (u / |u|) . (v / |v|); arccos(c) when c < 1.0,
// otherwise 0.0. c below -1 (rounding on antiparallel vectors) is not clamped and gives NaN.
// Different sizes throw 8.
double CalcAngle(const OvVector& u, const OvVector& v);

// The unit normal of the polygon whose vertices are the lines of `points` (x, y, z in columns
// 1..3), by Newell's method: for three points this is the normalised cross product
// (p2 - p1) x (p3 - p1), and for more points it is the area-weighted normal of the closed
// polygon, which stays stable on nearly collinear vertices. The normal points to the side from
// which the vertices run counter-clockwise. Returns false, leaving *normal unchanged, when
// normal is null, the matrix has fewer than 3 lines, or the area vector is shorter than 1e-10
// (all points collinear or coincident). Only elements 1..3 of *normal are written. A matrix
// with fewer than 3 columns throws 10.
bool CalcNormVect(OvVector* normal, const OvMatrix& points);

// The arbitrary-axis rule for a plane with normal n (which need not be of unit length): with
// N = n / |n|, if |N.x| < 1/64 and |N.y| < 1/64 then Ax = Wy x N, else Ax = Wz x N (Wy and Wz
// being the world y and z axes); Ax is normalised and Ay = N x Ax, normalised. So (Ax, Ay, N)
// is a right-handed orthonormal frame. Returns false, writing nothing, when either result
// pointer is null or |n| < 1e-10. Only elements 1..3 of the results are written.
bool CalcArbitaryAlg(OvVector* xAxis, OvVector* yAxis, const OvVector& n);

// The threshold of the arbitrary-axis rule: 1/64.
inline constexpr double kOvArbitraryAxisThreshold = 1.0 / 64.0;

}  // namespace orvo
