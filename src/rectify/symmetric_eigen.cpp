// Jacobi eigen decomposition of symmetric 3 x 3 matrices.
#include "symmetric_eigen.h"

#include <algorithm>
#include <cmath>

namespace orvo::detail {

Sym3Eigen EigenSymmetric3(const Sym3& input) {
    Sym3 a{};
    for (int i = 0; i < 3; ++i)
        for (int j = i; j < 3; ++j)
            a[i][j] = a[j][i] = input[i][j];
    Sym3 v{};
    for (int i = 0; i < 3; ++i)
        v[i][i] = 1.0;

    for (int sweep = 0; sweep < 50; ++sweep) {
        const double off = a[0][1] * a[0][1] + a[0][2] * a[0][2] + a[1][2] * a[1][2];
        const double diagonal = a[0][0] * a[0][0] + a[1][1] * a[1][1] + a[2][2] * a[2][2];
        if (off == 0.0 || off <= 1e-36 * diagonal) break;
        for (int p = 0; p < 2; ++p) {
            for (int q = p + 1; q < 3; ++q) {
                if (a[p][q] == 0.0) continue;
                // The rotation that zeroes a[p][q] (the numerically stable form of the angle).
                const double theta = (a[q][q] - a[p][p]) / (2.0 * a[p][q]);
                const double t = (theta >= 0.0 ? 1.0 : -1.0) /
                                 (std::fabs(theta) + std::sqrt(theta * theta + 1.0));
                const double c = 1.0 / std::sqrt(t * t + 1.0);
                const double s = t * c;
                for (int k = 0; k < 3; ++k) {
                    const double akp = a[k][p];
                    const double akq = a[k][q];
                    a[k][p] = c * akp - s * akq;
                    a[k][q] = s * akp + c * akq;
                }
                for (int k = 0; k < 3; ++k) {
                    const double apk = a[p][k];
                    const double aqk = a[q][k];
                    a[p][k] = c * apk - s * aqk;
                    a[q][k] = s * apk + c * aqk;
                }
                for (int k = 0; k < 3; ++k) {
                    const double vkp = v[k][p];
                    const double vkq = v[k][q];
                    v[k][p] = c * vkp - s * vkq;
                    v[k][q] = s * vkp + c * vkq;
                }
            }
        }
    }

    std::array<int, 3> order{0, 1, 2};
    std::sort(order.begin(), order.end(), [&](int i, int j) { return a[i][i] < a[j][j]; });
    Sym3Eigen result;
    for (int k = 0; k < 3; ++k) {
        result.values[k] = a[order[k]][order[k]];
        for (int i = 0; i < 3; ++i)
            result.vectors[k][i] = v[i][order[k]];
    }
    return result;
}

}  // namespace orvo::detail
