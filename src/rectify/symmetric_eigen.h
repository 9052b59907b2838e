// Eigenvalues and eigenvectors of a symmetric 3 x 3 matrix (private to the library): the
// null-space solver of the rectification estimates, which look for the unit vector that
// minimises a sum of squared linear conditions.
#pragma once

#include <array>

namespace orvo::detail {

using Sym3 = std::array<std::array<double, 3>, 3>;
using Vec3 = std::array<double, 3>;

struct Sym3Eigen {
    /// Ascending: values[0] is the smallest.
    Vec3 values{};
    /// vectors[k] is the unit eigenvector of values[k].
    std::array<Vec3, 3> vectors{};
};

/// Cyclic Jacobi rotations until the off-diagonal part vanishes (at most 50 sweeps; a 3 x 3
/// matrix needs a handful). Only the upper triangle of `m` is read.
Sym3Eigen EigenSymmetric3(const Sym3& m);

/// Adds the outer product r * r^T.
inline void AddOuter(Sym3& m, const Vec3& r) {
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            m[i][j] += r[i] * r[j];
}

}  // namespace orvo::detail
