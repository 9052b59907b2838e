// Estimating tilt matrices: the projective fit to control points, and the metric
// rectification from definition lines in two steps (affine from vanishing points, metric from
// perpendicular constraints and known lengths).
#include "orvo/rectify/tilt_estimation.h"

#include <cmath>
#include <vector>

#include "orvo/model/point_list.h"
#include "orvo/numerics/matrix.h"
#include "orvo/rectify/tilt_parallel_def.h"
#include "symmetric_eigen.h"

namespace orvo {

namespace {

using detail::AddOuter;
using detail::Sym3;
using detail::Vec3;

// Below this ratio of the second-smallest to the largest eigenvalue the conditions leave more
// than one direction free.
constexpr double kRankTolerance = 1e-10;

// A row-major 3 x 3 matrix for the computations; copied into an OvMatrix at the end.
using Mat3 = std::array<std::array<double, 3>, 3>;

Mat3 Multiply(const Mat3& a, const Mat3& b) {
    Mat3 c{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k)
                c[i][j] += a[i][k] * b[k][j];
    return c;
}

Vec3 Apply(const Mat3& m, const Vec3& p) {
    Vec3 q{};
    for (int i = 0; i < 3; ++i)
        q[i] = m[i][0] * p[0] + m[i][1] * p[1] + m[i][2] * p[2];
    return q;
}

Vec3 Cross(const Vec3& a, const Vec3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double Dot(const Vec3& a, const Vec3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double Norm(const Vec3& a) {
    return std::sqrt(Dot(a, a));
}

struct Point2 {
    double x = 0.0;
    double y = 0.0;
};

// The Euclidean point of a homogeneous one (w must not be 0).
Point2 Dehomogenise(const Vec3& p) {
    return {p[0] / p[2], p[1] / p[2]};
}

bool AllFinite(const Mat3& m) {
    for (const auto& line : m)
        for (double v : line)
            if (!std::isfinite(v)) return false;
    return true;
}

// Scales the matrix so that element (3, 3) is 1, or, where that is 0, to unit Frobenius norm;
// then copies it into `tilt`.
void Store(Mat3 m, OvMatrix& tilt) {
    double scale = m[2][2];
    if (scale == 0.0) {
        double sum = 0.0;
        for (const auto& line : m)
            for (double v : line)
                sum += v * v;
        scale = std::sqrt(sum);
    }
    OvMatrix result(3, 3);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            result[i + 1][j] = m[i][j] / scale;
    tilt = result;
}

// The determinant relative to the product of the line lengths (1 for orthogonal lines, 0 for
// a singular matrix), against a small bound.
bool IsNearlySingular(const Mat3& m) {
    const double det = m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
                       m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
                       m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    double scale = 1.0;
    for (const auto& line : m)
        scale *= std::sqrt(line[0] * line[0] + line[1] * line[1] + line[2] * line[2]);
    return !(std::fabs(det) > 1e-12 * scale);
}

void RequireThreeByThree(const OvMatrix& tilt) {
    if (tilt.GetLines() != 3 || tilt.GetColumns() != 3) throw kOvErrMatrixAssign;
}

// ---- the metric rectification --------------------------------------------------------------

// One definition line in the working frames.
struct LineData {
    std::uint32_t id = 0;
    Vec3 ia{};  // end points as measured, homogeneous
    Vec3 ib{};
    Vec3 a{};  // end points, normalised image coordinates, homogeneous
    Vec3 b{};
    Vec3 line{};  // a x b, unit length
    Point2 fa{};  // end points in the affine frame
    Point2 fb{};
    double length = 0.0;  // known length, 0 when none
};

class MetricEstimate {
public:
    MetricEstimate(const OvTiltParallelDef& def, const OvMetricTiltOptions& options,
                   OvMetricTiltReport& report)
        : def_(def), options_(options), report_(report) {}

    eOvTiltEstimateResult Run(Mat3& result);

private:
    eOvTiltEstimateResult CollectLines();
    eOvTiltEstimateResult Normalise();
    eOvTiltEstimateResult AffineStep();
    eOvTiltEstimateResult MetricStep();
    eOvTiltEstimateResult FixSimilarity(const Mat3& rectify, Mat3& result);
    void MeasureAngles(const Mat3& h);
    const LineData* Line(std::uint32_t id) const;
    bool Used(const OvTiltDefLineConstraint& c, ConstraintType type) const {
        return c.GetType() == type;
    }

    const OvTiltParallelDef& def_;
    const OvMetricTiltOptions& options_;
    OvMetricTiltReport& report_;
    std::vector<LineData> lines_;
    std::vector<Point2> image_;  // every end point as measured, for the normalisation
    Mat3 normalise_{};
    Mat3 affine_{};
    Mat3 metric_{};
};

const LineData* MetricEstimate::Line(std::uint32_t id) const {
    for (const LineData& line : lines_)
        if (line.id == id) return &line;
    return nullptr;
}

eOvTiltEstimateResult MetricEstimate::CollectLines() {
    for (const OvTiltDefLine* line = def_.GetDefLineList().First(); line != nullptr;
         line = line->Next()) {
        OvPoint a;
        OvPoint b;
        if (!def_.GetLine(a, b, line)) return TiltEstimateMissingLine;
        if (a.GetX() == b.GetX() && a.GetY() == b.GetY()) return TiltEstimateDegenerateLine;
        LineData data;
        data.id = line->GetId();
        data.ia = {a.GetX(), a.GetY(), 1.0};
        data.ib = {b.GetX(), b.GetY(), 1.0};
        if (options_.useLineValuesAsLengths && line->GetValue() > 0.0)
            data.length = line->GetValue();
        lines_.push_back(data);
        image_.push_back({a.GetX(), a.GetY()});
        image_.push_back({b.GetX(), b.GetY()});
    }
    for (const OvTiltDefLineConstraint* c = def_.GetConstraintList().First(); c != nullptr;
         c = c->Next()) {
        if (c->GetType() != ConstraintTypeParallel && c->GetType() != ConstraintTypePerpendicular)
            continue;
        if (Line(c->GetFirstLineId()) == nullptr || Line(c->GetSecondLineId()) == nullptr)
            return TiltEstimateMissingLine;
    }
    return TiltEstimateOk;
}

// Centre the image points and scale them to a mean distance of sqrt(2) from the centre, so
// that the conditions are well balanced whatever the image units.
eOvTiltEstimateResult MetricEstimate::Normalise() {
    double cx = 0.0;
    double cy = 0.0;
    for (const Point2& p : image_) {
        cx += p.x;
        cy += p.y;
    }
    const double n = static_cast<double>(image_.size());
    cx /= n;
    cy /= n;
    double spread = 0.0;
    for (const Point2& p : image_)
        spread += std::hypot(p.x - cx, p.y - cy);
    spread /= n;
    if (!(spread > 0.0) || !std::isfinite(spread)) return TiltEstimateDegenerateLine;
    const double s = std::sqrt(2.0) / spread;
    normalise_ = Mat3{{{s, 0.0, -s * cx}, {0.0, s, -s * cy}, {0.0, 0.0, 1.0}}};
    for (LineData& line : lines_) {
        line.a = Apply(normalise_, line.ia);
        line.b = Apply(normalise_, line.ib);
        line.line = Cross(line.a, line.b);
        line.line = {line.line[0] / Norm(line.line), line.line[1] / Norm(line.line),
                     line.line[2] / Norm(line.line)};
    }
    return TiltEstimateOk;
}

// The vanishing line: the unit vector l that is closest to passing through every vanishing
// point, i.e. the eigenvector of the smallest eigenvalue of the sum of v v^T. Sending it to
// infinity with the matrix (1 0 0 / 0 1 0 / l) makes parallel lines parallel.
eOvTiltEstimateResult MetricEstimate::AffineStep() {
    Sym3 sum{};
    int used = 0;
    for (const OvTiltDefLineConstraint* c = def_.GetConstraintList().First(); c != nullptr;
         c = c->Next()) {
        if (!Used(*c, ConstraintTypeParallel)) continue;
        const Vec3 v = Cross(Line(c->GetFirstLineId())->line, Line(c->GetSecondLineId())->line);
        const double length = Norm(v);
        // Two "parallel" lines on one straight line meet nowhere in particular.
        if (!(length > 1e-12)) continue;
        AddOuter(sum, {v[0] / length, v[1] / length, v[2] / length});
        ++used;
    }
    report_.parallelUsed = used;
    if (used < 2) return TiltEstimateTooFewParallel;
    const detail::Sym3Eigen eigen = detail::EigenSymmetric3(sum);
    if (!(eigen.values[1] > kRankTolerance * eigen.values[2])) return TiltEstimateTooFewParallel;
    Vec3 horizon = eigen.vectors[0];

    // Every measured point must lie strictly on one side of the horizon; choose the sign that
    // makes that side positive, so that the homogeneous weights stay positive.
    int positive = 0;
    int negative = 0;
    for (const LineData& line : lines_) {
        for (const Vec3* p : {&line.a, &line.b}) {
            const double w = Dot(horizon, *p);
            if (std::fabs(w) <= 1e-12 * Norm(*p)) return TiltEstimateHorizonCrossesPoints;
            (w > 0.0 ? positive : negative)++;
        }
    }
    if (positive > 0 && negative > 0) return TiltEstimateHorizonCrossesPoints;
    if (negative > 0) horizon = {-horizon[0], -horizon[1], -horizon[2]};

    affine_ = Mat3{{{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {horizon[0], horizon[1], horizon[2]}}};
    for (LineData& line : lines_) {
        line.fa = Dehomogenise(Apply(affine_, line.a));
        line.fb = Dehomogenise(Apply(affine_, line.b));
    }
    return TiltEstimateOk;
}

// In the affine frame, a 2 x 2 map A makes the lines metric. With M = A^T A (symmetric, up to
// scale), a perpendicular pair of directions a, b gives a^T M b = 0, and two lines of known
// lengths La, Lr give a^T M a Lr^2 = r^T M r La^2: both linear in (m11, m12, m22). M is the
// null vector of these conditions; A follows from M by Cholesky.
eOvTiltEstimateResult MetricEstimate::MetricStep() {
    Sym3 sum{};
    int perpendicular = 0;
    for (const OvTiltDefLineConstraint* c = def_.GetConstraintList().First(); c != nullptr;
         c = c->Next()) {
        if (!Used(*c, ConstraintTypePerpendicular)) continue;
        const LineData* l1 = Line(c->GetFirstLineId());
        const LineData* l2 = Line(c->GetSecondLineId());
        double ax = l1->fb.x - l1->fa.x;
        double ay = l1->fb.y - l1->fa.y;
        double bx = l2->fb.x - l2->fa.x;
        double by = l2->fb.y - l2->fa.y;
        const double la = std::hypot(ax, ay);
        const double lb = std::hypot(bx, by);
        ax /= la;
        ay /= la;
        bx /= lb;
        by /= lb;
        AddOuter(sum, {ax * bx, ax * by + ay * bx, ay * by});
        ++perpendicular;
    }
    report_.perpendicularUsed = perpendicular;

    const LineData* known = nullptr;
    int lengths = 0;
    for (const LineData& line : lines_) {
        if (line.length <= 0.0) continue;
        ++lengths;
        if (known == nullptr) {
            known = &line;
            continue;
        }
        // Unit directions with the squared factors carried to the lengths' side.
        const double ax = line.fb.x - line.fa.x;
        const double ay = line.fb.y - line.fa.y;
        const double rx = known->fb.x - known->fa.x;
        const double ry = known->fb.y - known->fa.y;
        const double fa = std::hypot(ax, ay) * known->length;
        const double fr = std::hypot(rx, ry) * line.length;
        const double ka = fa * fa;
        const double kr = fr * fr;
        const double norm = ka > kr ? ka : kr;
        const double ua = ka / norm / (ax * ax + ay * ay);
        const double ur = kr / norm / (rx * rx + ry * ry);
        AddOuter(sum, {ax * ax * ua - rx * rx * ur, 2.0 * (ax * ay * ua - rx * ry * ur),
                       ay * ay * ua - ry * ry * ur});
    }
    report_.lengthsUsed = lengths;

    const detail::Sym3Eigen eigen = detail::EigenSymmetric3(sum);
    if (!(eigen.values[2] > 0.0) || !(eigen.values[1] > kRankTolerance * eigen.values[2]))
        return TiltEstimateTooFewPerpendicular;
    Vec3 m = eigen.vectors[0];
    if (m[0] < 0.0) m = {-m[0], -m[1], -m[2]};
    const double det = m[0] * m[2] - m[1] * m[1];
    if (!(m[0] > 0.0) || !(det > 0.0)) return TiltEstimateInconsistent;
    const double a11 = std::sqrt(m[0]);
    metric_ = Mat3{{{a11, m[1] / a11, 0.0}, {0.0, std::sqrt(det / m[0]), 0.0}, {0.0, 0.0, 1.0}}};
    return TiltEstimateOk;
}

// Rotates, scales and shifts so that the reference line starts at the origin and points
// along +x, with its known length or, when a length is known only for another line, at the
// scale that line gives, else with its length in the image.
eOvTiltEstimateResult MetricEstimate::FixSimilarity(const Mat3& rectify, Mat3& result) {
    const OvTiltDefLine* reference = nullptr;
    if (options_.referenceLineId != 0) {
        reference = def_.GetDefLineList().Find(options_.referenceLineId);
        if (reference == nullptr) return TiltEstimateNoReferenceLine;
    } else {
        for (const OvTiltDefLine* line = def_.GetDefLineList().First(); line != nullptr;
             line = line->Next()) {
            if (line->IsXAxis()) {
                reference = line;
                break;
            }
        }
        if (reference == nullptr) reference = def_.GetDefLineList().First();
    }
    if (reference == nullptr) return TiltEstimateNoReferenceLine;
    report_.referenceLineId = reference->GetId();

    // Every line was found while collecting them.
    const LineData* line = Line(reference->GetId());
    const Point2 p1 = Dehomogenise(Apply(rectify, line->ia));
    const Point2 p2 = Dehomogenise(Apply(rectify, line->ib));
    const double length = std::hypot(p2.x - p1.x, p2.y - p1.y);
    const double c = (p2.x - p1.x) / length;
    const double s = (p2.y - p1.y) / length;

    double scale = std::hypot(line->ib[0] - line->ia[0], line->ib[1] - line->ia[1]) / length;
    const LineData* scaled = line;
    if (scaled->length <= 0.0) {
        scaled = nullptr;
        for (const LineData& line : lines_) {
            if (line.length > 0.0) {
                scaled = &line;
                break;
            }
        }
    }
    if (scaled != nullptr) {
        const Point2 q1 = Dehomogenise(Apply(rectify, scaled->ia));
        const Point2 q2 = Dehomogenise(Apply(rectify, scaled->ib));
        scale = scaled->length / std::hypot(q2.x - q1.x, q2.y - q1.y);
    }
    const Mat3 similarity{{{scale * c, scale * s, -scale * (c * p1.x + s * p1.y)},
                           {-scale * s, scale * c, -scale * (-s * p1.x + c * p1.y)},
                           {0.0, 0.0, 1.0}}};
    result = Multiply(similarity, rectify);
    return AllFinite(result) ? TiltEstimateOk : TiltEstimateInconsistent;
}

// The angle errors of the constraints in the rectified plane.
void MetricEstimate::MeasureAngles(const Mat3& h) {
    double sum = 0.0;
    int count = 0;
    for (const OvTiltDefLineConstraint* c = def_.GetConstraintList().First(); c != nullptr;
         c = c->Next()) {
        const bool parallel = Used(*c, ConstraintTypeParallel);
        if (!parallel && !Used(*c, ConstraintTypePerpendicular)) continue;
        const LineData* l1 = Line(c->GetFirstLineId());
        const LineData* l2 = Line(c->GetSecondLineId());
        const Point2 a1 = Dehomogenise(Apply(h, l1->ia));
        const Point2 a2 = Dehomogenise(Apply(h, l1->ib));
        const Point2 b1 = Dehomogenise(Apply(h, l2->ia));
        const Point2 b2 = Dehomogenise(Apply(h, l2->ib));
        const double ax = a2.x - a1.x;
        const double ay = a2.y - a1.y;
        const double bx = b2.x - b1.x;
        const double by = b2.y - b1.y;
        const double cross = std::fabs(ax * by - ay * bx);
        const double dot = std::fabs(ax * bx + ay * by);
        const double error = parallel ? std::atan2(cross, dot) : std::atan2(dot, cross);
        sum += error * error;
        ++count;
        if (error > report_.maxAngle) report_.maxAngle = error;
    }
    report_.rmsAngle = count > 0 ? std::sqrt(sum / count) : 0.0;
}

eOvTiltEstimateResult MetricEstimate::Run(Mat3& result) {
    eOvTiltEstimateResult status = CollectLines();
    if (status == TiltEstimateOk && lines_.empty()) status = TiltEstimateTooFewParallel;
    if (status == TiltEstimateOk) status = Normalise();
    if (status == TiltEstimateOk) status = AffineStep();
    if (status == TiltEstimateOk) status = MetricStep();
    if (status != TiltEstimateOk) return status;
    const Mat3 rectify = Multiply(metric_, Multiply(affine_, normalise_));
    status = FixSimilarity(rectify, result);
    if (status == TiltEstimateOk) MeasureAngles(result);
    return status;
}

// ---- the projective fit --------------------------------------------------------------------

int CountPartners(const OvPointList& image, const OvPointList& plane) {
    int pairs = 0;
    for (const OvPoint* p = image.First(); p != nullptr; p = p->Next()) {
        if (plane.TOvListHeader<OvPoint>::Find(p->GetId()) != nullptr) ++pairs;
    }
    return pairs;
}

}  // namespace

const char* GetTiltEstimateResultText(eOvTiltEstimateResult result) {
    switch (result) {
        case TiltEstimateOk:
            return "ok";
        case TiltEstimateTooFewPoints:
            return "fewer than four image points with plane coordinates";
        case TiltEstimateDegeneratePoints:
            return "the points do not determine a projective transform";
        case TiltEstimateMissingLine:
            return "a definition line or one of its points is missing";
        case TiltEstimateDegenerateLine:
            return "a definition line has no length";
        case TiltEstimateTooFewParallel:
            return "the parallel constraints give fewer than two vanishing directions";
        case TiltEstimateHorizonCrossesPoints:
            return "the vanishing line runs through the measured points";
        case TiltEstimateTooFewPerpendicular:
            return "too few independent perpendicular constraints or lengths";
        case TiltEstimateInconsistent:
            return "the constraints contradict each other";
        case TiltEstimateNoReferenceLine:
            return "the reference line does not exist";
    }
    return "unknown result";
}

eOvTiltEstimateResult OvEstimateTiltMatrix(const OvPointList& imagePoints,
                                           const OvPointList& planePoints, OvMatrix& tilt,
                                           OvTrafo2DFitReport* report) {
    RequireThreeByThree(tilt);
    if (CountPartners(imagePoints, planePoints) < 4) return TiltEstimateTooFewPoints;

    // The fit writes residuals and flags into the points of its lists: work on copies.
    OvPointList image(imagePoints);
    OvPointList plane(planePoints);
    OvCalcTrafo2D fit(&plane);
    if (!fit.CalcTrafo(eOvTrafo2DProjektiv, &image, OvTrafo2DFitOptions(), report))
        return TiltEstimateDegeneratePoints;

    OvMatrix m(3, 3);
    fit.BuildMatrix(&m);  // element (3, 3) is 1 for a Projektiv
    Mat3 h{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            h[i][j] = m.GetElem(i + 1, j + 1);
    // A singular matrix maps the plane onto a line, and points on both sides of the vanishing
    // line cannot be one plane seen in one photo.
    if (!AllFinite(h) || IsNearlySingular(h)) return TiltEstimateDegeneratePoints;
    int positive = 0;
    int negative = 0;
    for (const OvPoint* p = imagePoints.First(); p != nullptr; p = p->Next()) {
        if (planePoints.TOvListHeader<OvPoint>::Find(p->GetId()) == nullptr) continue;
        const double w = h[2][0] * p->GetX() + h[2][1] * p->GetY() + h[2][2];
        (w > 0.0 ? positive : negative)++;
    }
    if (positive > 0 && negative > 0) return TiltEstimateHorizonCrossesPoints;
    Store(h, tilt);
    return TiltEstimateOk;
}

eOvTiltEstimateResult OvEstimateMetricTilt(const OvTiltParallelDef& def, OvMatrix& tilt,
                                           const OvMetricTiltOptions& options,
                                           OvMetricTiltReport* report) {
    RequireThreeByThree(tilt);
    OvMetricTiltReport own;
    OvMetricTiltReport& out = report != nullptr ? *report : own;
    out = OvMetricTiltReport();
    Mat3 result{};
    out.result = MetricEstimate(def, options, out).Run(result);
    if (out.result == TiltEstimateOk) Store(result, tilt);
    return out.result;
}

}  // namespace orvo
