// Helpers for the estimation tests: point lists from plain data, and an independent
// least-squares solver (Householder QR on the design matrix, no normal equations) to check the
// library's fits against.
#pragma once

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "orvo/model/point_list.h"
#include "orvo/numerics/trafo2d.h"

namespace orvo::test {

struct PlainPair {
    std::uint32_t id;
    double x, y;  // measured
    double X, Y;  // reference
};

inline OvPointList MeasuredList(const std::vector<PlainPair>& pairs) {
    OvPointList list;
    for (const PlainPair& p : pairs)
        list.Add(new OvPoint(p.id, p.x, p.y, 0.0, 0));
    return list;
}

inline OvPointList ReferenceList(const std::vector<PlainPair>& pairs) {
    OvPointList list;
    for (const PlainPair& p : pairs)
        list.Add(new OvPoint(p.id, p.X, p.Y, 0.0, 0));
    return list;
}

// Pairs on a grid-like random spread over [x0, x0 + extent] x [y0, y0 + extent], mapped with
// `truth` and disturbed by Gaussian noise of `sigma` on the reference side.
inline std::vector<PlainPair> MakePairs(const OvTrafo2d& truth, int count, double x0, double y0,
                                        double extent, double sigma, unsigned streamSeed) {
    std::mt19937 engine(streamSeed);
    std::uniform_real_distribution<double> spread(0.0, extent);
    std::normal_distribution<double> noise(0.0, sigma > 0.0 ? sigma : 1.0);
    std::vector<PlainPair> pairs;
    for (int k = 0; k < count; ++k) {
        PlainPair p{static_cast<std::uint32_t>(k + 1), x0 + spread(engine), y0 + spread(engine),
                    0.0, 0.0};
        double X = p.x, Y = p.y;
        truth.Transform(&X, &Y);
        p.X = X + (sigma > 0.0 ? noise(engine) : 0.0);
        p.Y = Y + (sigma > 0.0 ? noise(engine) : 0.0);
        pairs.push_back(p);
    }
    return pairs;
}

// The design rows of one pair, in parameter order p0, p1, ... (not the solver's unknown
// order), written out from the transformation equations.
inline int DesignRows(eOvTrafo2DType type, double x, double y, double X, double Y,
                      std::vector<double>& rx, std::vector<double>& ry, double& lx, double& ly) {
    lx = X;
    ly = Y;
    switch (type) {
        case eOvTrafo2DHelmert:  // x' = p0 + p1 x - p3 y, y' = p2 + p3 x + p1 y
            rx = {1, x, 0, -y};
            ry = {0, y, 1, x};
            return 4;
        case eOvTrafo2DAffin:
            rx = {1, x, y, 0, 0, 0};
            ry = {0, 0, 0, 1, x, y};
            return 6;
        case eOvTrafo2DProjektiv:  // multiplied by the denominator
            rx = {x, y, 1, 0, 0, 0, -x * X, -y * X};
            ry = {0, 0, 0, x, y, 1, -x * Y, -y * Y};
            return 8;
        case eOvTrafo2DPolynomial: {
            const std::vector<double> m = {1,     x,         y,         x * x,     x * y,
                                           y * y, x * x * x, x * x * y, x * y * y, y * y * y};
            rx.assign(20, 0.0);
            ry.assign(20, 0.0);
            for (int k = 0; k < 10; ++k) {
                rx[k] = m[k];
                ry[10 + k] = m[k];
            }
            return 20;
        }
        default:
            return 0;
    }
}

struct PlainSolution {
    std::vector<double> params;    // parameter order
    std::vector<double> cofactor;  // (A^T W A)^-1, row-major
    bool ok = false;
};

// Weighted least squares min |W^1/2 (A p - l)| by Householder QR of W^1/2 A.
inline PlainSolution SolveQR(eOvTrafo2DType type, const std::vector<PlainPair>& pairs,
                             const std::vector<double>& weights = {}) {
    std::vector<std::vector<double>> a;
    std::vector<double> l;
    int u = 0;
    for (std::size_t k = 0; k < pairs.size(); ++k) {
        const PlainPair& p = pairs[k];
        const double root = weights.empty() ? 1.0 : std::sqrt(weights[k]);
        std::vector<double> rx, ry;
        double lx, ly;
        u = DesignRows(type, p.x, p.y, p.X, p.Y, rx, ry, lx, ly);
        for (double& v : rx)
            v *= root;
        for (double& v : ry)
            v *= root;
        a.push_back(rx);
        l.push_back(lx * root);
        a.push_back(ry);
        l.push_back(ly * root);
    }
    const int m = static_cast<int>(a.size());
    PlainSolution s;
    if (m < u || u == 0) return s;
    for (int j = 0; j < u; ++j) {
        double norm = 0.0;
        for (int i = j; i < m; ++i)
            norm += a[i][j] * a[i][j];
        norm = std::sqrt(norm);
        if (norm == 0.0) return s;
        const double alpha = a[j][j] > 0 ? -norm : norm;
        std::vector<double> v(m, 0.0);
        for (int i = j; i < m; ++i)
            v[i] = a[i][j];
        v[j] -= alpha;
        double vv = 0.0;
        for (int i = j; i < m; ++i)
            vv += v[i] * v[i];
        if (vv == 0.0) continue;
        for (int c = j; c < u; ++c) {
            double dot = 0.0;
            for (int i = j; i < m; ++i)
                dot += v[i] * a[i][c];
            const double f = 2.0 * dot / vv;
            for (int i = j; i < m; ++i)
                a[i][c] -= f * v[i];
        }
        double dot = 0.0;
        for (int i = j; i < m; ++i)
            dot += v[i] * l[i];
        const double f = 2.0 * dot / vv;
        for (int i = j; i < m; ++i)
            l[i] -= f * v[i];
    }
    // R p = Q^T l, then (A^T A)^-1 = R^-1 R^-T.
    s.params.assign(u, 0.0);
    for (int i = u - 1; i >= 0; --i) {
        double sum = l[i];
        for (int j = i + 1; j < u; ++j)
            sum -= a[i][j] * s.params[j];
        s.params[i] = sum / a[i][i];
    }
    std::vector<double> rInv(static_cast<std::size_t>(u) * u, 0.0);
    for (int c = 0; c < u; ++c) {
        for (int i = u - 1; i >= 0; --i) {
            double sum = i == c ? 1.0 : 0.0;
            for (int j = i + 1; j < u; ++j)
                sum -= a[i][j] * rInv[j * u + c];
            rInv[i * u + c] = sum / a[i][i];
        }
    }
    s.cofactor.assign(static_cast<std::size_t>(u) * u, 0.0);
    for (int i = 0; i < u; ++i)
        for (int j = 0; j < u; ++j)
            for (int k = 0; k < u; ++k)
                s.cofactor[i * u + j] += rInv[i * u + k] * rInv[j * u + k];
    s.ok = true;
    return s;
}

// The reduction the extended fit documents: each side centred on its mean and divided by its
// largest distance from it along an axis. Keeps what is needed to map reduced results back.
struct ReducedPairs {
    std::vector<PlainPair> pairs;
    double cx = 0, cy = 0, k = 1;  // measured side
    double CX = 0, CY = 0, K = 1;  // reference side

    explicit ReducedPairs(const std::vector<PlainPair>& original) {
        double sx = 0, sy = 0, sX = 0, sY = 0;
        for (const PlainPair& p : original)
            sx += p.x, sy += p.y, sX += p.X, sY += p.Y;
        const double n = static_cast<double>(original.size());
        cx = sx / n, cy = sy / n, CX = sX / n, CY = sY / n;
        double reach = 0, Reach = 0;
        for (const PlainPair& p : original) {
            reach = std::fmax(reach, std::fmax(std::fabs(p.x - cx), std::fabs(p.y - cy)));
            Reach = std::fmax(Reach, std::fmax(std::fabs(p.X - CX), std::fabs(p.Y - CY)));
        }
        k = 1.0 / reach, K = 1.0 / Reach;
        for (const PlainPair& p : original)
            pairs.push_back(
                PlainPair{p.id, (p.x - cx) * k, (p.y - cy) * k, (p.X - CX) * K, (p.Y - CY) * K});
    }

    // Maps a measured point with a transformation fitted to the reduced pairs.
    void Map(const OvTrafo2d& reduced, double* x, double* y) const {
        double rx = (*x - cx) * k, ry = (*y - cy) * k;
        reduced.Transform(&rx, &ry);
        *x = CX + rx / K;
        *y = CY + ry / K;
    }
};

inline OvTrafo2d MakeTrafo(eOvTrafo2DType type, const std::vector<double>& params) {
    OvTrafo2d t;
    t.SetType(type);
    for (std::size_t i = 0; i < params.size(); ++i)
        t.SetParam(static_cast<int>(i), params[i]);
    return t;
}

}  // namespace orvo::test
