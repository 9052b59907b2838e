// Intersection of two closed intervals on one axis.
#pragma once

namespace orvo {

/// The intersection of [a1, a2] and [b1, b2] (each pair may be given in either order) in lo, hi.
/// Disjoint intervals give lo = hi = 0.
///
/// The four end points are sorted stably with the first interval's points first, and the
/// intervals count as disjoint when the second sorted point is an end and the third a start.
/// So intervals that only touch give an order-dependent answer: [0, 1] with [1, 2] is disjoint
/// (0, 0), while [1, 2] with [0, 1] gives (1, 1). Region intersection relies on exactly this.
void OvIntervall(double& lo, double& hi, double a1, double a2, double b1, double b2);

}  // namespace orvo
