// The extended 2D estimation: reduced coordinates, weights, check points and the accuracy
// figures of the fit.
#include <cmath>
#include <vector>

#include "orvo/numerics/calc_trafo2d.h"
#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"
#include "trafo2d_fit_support.h"
#include "trafo2d_normalize.h"

namespace orvo {

namespace {

using trafo2d::FitShape;
using trafo2d::Frame;

// A Cholesky pivot that keeps less than this share of its diagonal marks a singular system.
constexpr double kPivotShare = 1e-12;

struct Pair {
    OvPoint* measured;
    const OvPoint* reference;
    double weight;
    bool fit;
    double rx = 0.0;  // residual under the fitted transformation
    double ry = 0.0;
};

// Sums of one group of residuals.
class ResidualSums {
public:
    void Add(std::uint32_t id, double rx, double ry) {
        sumX_ += rx * rx;
        sumY_ += ry * ry;
        const double error = rx * rx + ry * ry;
        if (error > largest_) {
            largest_ = error;
            largestId_ = id;
        }
        ++count_;
    }

    OvTrafo2DResidualSummary Summary() const {
        OvTrafo2DResidualSummary s;
        s.count = count_;
        if (count_ > 0) {
            const double reciprocal = 1.0 / count_;
            s.rmsX = std::sqrt(sumX_ * reciprocal);
            s.rmsY = std::sqrt(sumY_ * reciprocal);
        }
        s.maxId = largestId_;
        s.maxError = std::sqrt(largest_);
        return s;
    }

private:
    int count_ = 0;
    double sumX_ = 0.0;
    double sumY_ = 0.0;
    double largest_ = 0.0;
    std::uint32_t largestId_ = 0;
};

bool AllFinite(const double* values, int count) {
    for (int i = 0; i < count; ++i)
        if (!std::isfinite(values[i])) return false;
    return true;
}

// Solution and cofactor matrix of one least-squares fit, parameters in parameter order.
struct Solution {
    double params[OvTrafo2d::kMaxParams] = {};
    std::vector<double> cofactor;  // u x u, row-major: the inverse of the normal matrix
};

// Accumulates the weighted rows of the fit pairs in the reduced coordinates, solves with
// Cholesky and reads the cofactor matrix off the factorised layout. False for a singular
// system or a solution that is not finite.
bool SolveReduced(eOvTrafo2DType type, int u, const std::vector<Pair>& pairs, const Frame& in,
                  const Frame& out, Solution* solution) {
    OvMatrix system(u + 1, 2 * u + 1);
    for (int i = 1; i <= u; ++i)
        system.SetElem(i, u + 1 + i, 1.0);
    OvVector row(u + 1);
    double rowX[21];
    double rowY[21];
    for (const Pair& pair : pairs) {
        if (!pair.fit) continue;
        trafo2d::ObservationRows(type, in.X(pair.measured->GetX()), in.Y(pair.measured->GetY()),
                                 out.X(pair.reference->GetX()), out.Y(pair.reference->GetY()), rowX,
                                 rowY);
        // Scaling a row by the root of its weight adds the weighted outer product.
        const double root = pair.weight == 1.0 ? 1.0 : std::sqrt(pair.weight);
        for (int k = 0; k <= u; ++k)
            row[k + 1] = rowX[k] * root;
        system.CalcNGLAN(row);
        for (int k = 0; k <= u; ++k)
            row[k + 1] = rowY[k] * root;
        system.CalcNGLAN(row);
    }

    std::vector<double> diagonal(static_cast<std::size_t>(u));
    for (int k = 1; k <= u; ++k)
        diagonal[k - 1] = system[k][k - 1];
    OvVector x(u + 1);
    system.Cholesky(x);
    for (int k = 1; k <= u; ++k) {
        const double pivot = system[k][k - 1];
        if (!std::isfinite(pivot) || !(diagonal[k - 1] > 0.0) ||
            !(pivot * pivot >= kPivotShare * diagonal[k - 1])) {
            return false;
        }
    }
    for (int k = 0; k < u; ++k)
        solution->params[trafo2d::ParamOfUnknown(type, k)] = x[k + 1];
    if (!AllFinite(solution->params, u)) return false;

    // N^-1 = R^-1 R^-T, with R^-T (lower triangular) in columns u + 2..2u + 1 of lines 1..u.
    std::vector<double> inverseFactor(static_cast<std::size_t>(u) * u);
    for (int i = 1; i <= u; ++i) {
        const double* line = system[i];
        for (int j = 0; j < u; ++j)
            inverseFactor[static_cast<std::size_t>(i - 1) * u + j] = line[u + 1 + j];
    }
    solution->cofactor.assign(static_cast<std::size_t>(u) * u, 0.0);
    for (int j = 0; j < u; ++j) {
        for (int l = j; l < u; ++l) {
            double sum = 0.0;
            for (int i = l; i < u; ++i) {
                sum += inverseFactor[static_cast<std::size_t>(i) * u + j] *
                       inverseFactor[static_cast<std::size_t>(i) * u + l];
            }
            const std::size_t pj = static_cast<std::size_t>(trafo2d::ParamOfUnknown(type, j));
            const std::size_t pl = static_cast<std::size_t>(trafo2d::ParamOfUnknown(type, l));
            solution->cofactor[pj * u + pl] = sum;
            solution->cofactor[pl * u + pj] = sum;
        }
    }
    return true;
}

// Standard deviations sigma0 * sqrt(diag(J Q J^T)) / K of the usual parameters, Q being the
// cofactor matrix of the reduced ones (residuals in reduced units are K times larger).
void StandardDeviations(eOvTrafo2DType type, int u, const Solution& reduced, const Frame& in,
                        const Frame& out, bool normalized, double sigma0, double* stdDev) {
    std::vector<double> jacobian(static_cast<std::size_t>(u) * u, 0.0);
    if (normalized) {
        trafo2d::DenormalizeJacobian(type, in, out, reduced.params, jacobian.data());
    } else {
        for (int i = 0; i < u; ++i)
            jacobian[static_cast<std::size_t>(i) * u + i] = 1.0;
    }
    const double unitScale = sigma0 * out.k;
    for (int i = 0; i < u; ++i) {
        const double* ji = &jacobian[static_cast<std::size_t>(i) * u];
        double variance = 0.0;
        for (int j = 0; j < u; ++j) {
            if (ji[j] == 0.0) continue;
            double qRow = 0.0;
            for (int l = 0; l < u; ++l)
                qRow += reduced.cofactor[static_cast<std::size_t>(j) * u + l] * ji[l];
            variance += ji[j] * qRow;
        }
        stdDev[i] = unitScale * std::sqrt(std::fmax(variance, 0.0));
    }
}

}  // namespace

bool OvCalcTrafo2D::CalcTrafo(eOvTrafo2DType type, OvPointList* list,
                              const OvTrafo2DFitOptions& options, OvTrafo2DFitReport* report) {
    OvTrafo2DFitReport result;
    result.type = type;
    result.normalized = options.normalize;
    struct ReportOnExit {
        OvTrafo2DFitReport& result;
        OvTrafo2DFitReport* target;
        ~ReportOnExit() {
            if (target != nullptr) *target = result;
        }
    } reportOnExit{result, report};

    list = ListOrAct(list);
    FitShape shape;
    if (list == nullptr || !trafo2d::ShapeOf(type, &shape)) return false;
    const int u = shape.unknowns;
    result.unknowns = u;

    // Pairs, in list order; the frames are made from the fit pairs only.
    const trafo2d::PartnerIndex partners(ppList_);
    std::vector<Pair> pairs;
    trafo2d::FrameBuilder measuredSide;
    trafo2d::FrameBuilder referenceSide;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        const OvPoint* q = partners.Find(p->GetId());
        if (q == nullptr) continue;
        const double weight = options.weight ? options.weight(*p, *q) : 1.0;
        const bool check = options.isCheckPoint && options.isCheckPoint(*p);
        const bool fit = !check && weight > 0.0 && std::isfinite(weight);
        pairs.push_back(Pair{p, q, weight, fit, 0.0, 0.0});
        if (!fit) continue;
        ++result.pairs;
        measuredSide.Add(p->GetX(), p->GetY());
        referenceSide.Add(q->GetX(), q->GetY());
    }
    result.redundancy = 2 * result.pairs - u;
    if (result.pairs < shape.minPoints) return false;

    Frame in;
    Frame out;
    if (options.normalize && (!measuredSide.Make(&in) || !referenceSide.Make(&out))) return false;

    Solution reduced;
    if (!SolveReduced(type, u, pairs, in, out, &reduced)) return false;

    OvTrafo2d fitted(*this);
    fitted.SetType(type);
    double params[OvTrafo2d::kMaxParams] = {};
    if (options.normalize) {
        trafo2d::Denormalize(type, in, out, reduced.params, params);
    } else {
        for (int i = 0; i < u; ++i)
            params[i] = reduced.params[i];
    }
    if (!AllFinite(params, u)) return false;
    for (int i = 0; i < u; ++i)
        fitted.SetParam(i, params[i]);
    double scale = scale_;
    if (type == eOvTrafo2DHelmert) {
        const double length = std::sqrt(params[1] * params[1] + params[3] * params[3]);
        if (!(length > 0.0)) return false;
        scale = 1.0 / length;
    }

    // Residuals of the fitted transformation.
    ResidualSums fitSums;
    ResidualSums checkSums;
    double vtpv = 0.0;
    for (Pair& pair : pairs) {
        double x = pair.measured->GetX();
        double y = pair.measured->GetY();
        fitted.Transform(&x, &y);
        pair.rx = x - pair.reference->GetX();
        pair.ry = y - pair.reference->GetY();
        if (pair.fit) {
            fitSums.Add(pair.measured->GetId(), pair.rx, pair.ry);
            vtpv += pair.weight * (pair.rx * pair.rx + pair.ry * pair.ry);
        } else {
            checkSums.Add(pair.measured->GetId(), pair.rx, pair.ry);
        }
    }
    result.fit = fitSums.Summary();
    result.check = checkSums.Summary();
    result.vtpv = vtpv;
    if (result.redundancy > 0) {
        result.sigma0 = std::sqrt(vtpv / result.redundancy);
        StandardDeviations(type, u, reduced, in, out, options.normalize, result.sigma0,
                           result.stdDev);
    }

    // Success: take the transformation over and mark the points.
    Set(fitted);
    scale_ = scale;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        p->SetR(0, 0.0);
        p->SetR(1, 0.0);
    }
    for (const Pair& pair : pairs) {
        pair.measured->SetR(0, pair.rx);
        pair.measured->SetR(1, pair.ry);
        if (pair.fit) {
            pair.measured->GetFlag().SetFlag(eOvPointFlagTrafo2DUsed);
        } else {
            pair.measured->GetFlag().ClearFlag(eOvPointFlagTrafo2DUsed);
        }
    }
    residualX_ = result.fit.rmsX;
    residualY_ = result.fit.rmsY;
    maxError_ = result.fit.maxId;
    return true;
}

}  // namespace orvo
