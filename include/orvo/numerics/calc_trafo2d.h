// OvCalcTrafo2D: a 2D transformation that estimates its own parameters by least squares from
// point pairs, computes the residuals and proposes a transformation type.
//
// The points of a measured list (the act list, or the list handed to a call) are matched by
// point number with the points of a reference list (the PP list, the pass points); the fit maps
// measured coordinates onto reference coordinates. A point's partner is the first point with its
// number in the PP list, counted from the list's head.
//
// Two ways to fit:
//
//  - CalcTrafoHelmert / Affin / Projektiv / Polynomial, the classic estimation: unit weights,
//    normal equations accumulated row by row (CalcNGLAN) on the coordinates as they are, solved
//    in one step with OvMatrix::Cholesky, no iteration. Results are those of that computation
//    exactly, including its limits: on coordinates whose offset dwarfs their spread (a 100 m
//    site in national-grid metres) the uncentred normal equations lose their accuracy, and
//    those of a Polynomial break down altogether (NaN parameters) while the call still returns
//    true. Test OvTrafo2d::HasFiniteParameters after such a fit.
//
//  - CalcTrafo with OvTrafo2DFitOptions: the same transformations and parameter form, but it
//    centres and scales the coordinates before the fit (unless told not to), takes per-point
//    weights, keeps check points out of the fit, refuses singular or non-finite solutions
//    (leaving the transformation as it was), and reports sigma0 and the parameters' standard
//    deviations. See there.
//
//    For Helmert, Affin and Polynomial the reduction changes only the accuracy, not the
//    solution: the least-squares problem is linear and the same in any frame. The Projektiv is
//    linearised by multiplying with its denominator, whose scale depends on the frame, so the
//    reduced fit (the algebraic fit of the normalised direct linear transformation) weights
//    the points slightly differently from the classic one; on the near-affine maps of close
//    range work the two differ by a small fraction of the noise.
//
//    One limit stays, and it lies in the parameter form, not in the fit: a polynomial in raw
//    coordinates near 4.5e6 holds cubic terms whose parts reach 1e12 and cancel, and storing
//    them in doubles alone costs some tenths of a millimetre. The reduced fit delivers the
//    parameters rounded from an extended-precision computation, and Transform evaluates such
//    polynomials in extended precision, so nothing is lost beyond that.
//
// The matching walks the PP list once per call and indexes it by point number, so a fit or a
// residual computation takes time linear in the number of points.
#pragma once

#include <cstdint>
#include <functional>

#include "orvo/model/point_list.h"
#include "orvo/numerics/trafo2d.h"

namespace orvo {

class OvRegion;

/// Options of OvCalcTrafo2D::CalcTrafo. The defaults give the robust fit with unit weights and
/// no check points.
struct OvTrafo2DFitOptions {
    /// Centre and scale both point sets before the fit: the coordinates of each side are
    /// reduced to the mean of the fit points and divided by their largest distance from it
    /// (per axis, the same factor for x and y, which keeps a Helmert a Helmert). The solution is
    /// turned back into the usual parameter form before it is stored. false fits the
    /// coordinates as they are, exactly like the classic estimation.
    bool normalize = true;
    /// Weight of a pair (the measured point and its partner), applied to both its x and y
    /// observations. Empty: 1 for every pair. A pair whose weight is not a positive finite
    /// number takes no part in the fit and is reported with the check points.
    /// Example, from the reference points' accuracies: `[](const OvPoint&, const OvPoint& ref)
    /// { return 1.0 / (ref.GetD(0) * ref.GetD(0)); }`.
    std::function<double(const OvPoint& measured, const OvPoint& reference)> weight;
    /// Whether a measured point is a check point: matched like any other, but kept out of the
    /// fit, its residuals reported separately. Empty: no check points.
    /// Example: `[&ids](const OvPoint& p) { return ids.count(p.GetId()) != 0; }`.
    std::function<bool(const OvPoint& measured)> isCheckPoint;
};

/// Residual figures of a group of points (fit points or check points); residual = transformed
/// measured point minus reference point.
struct OvTrafo2DResidualSummary {
    int count = 0;            ///< matched points in the group
    double rmsX = 0.0;        ///< sqrt(sum rx^2 / count), unweighted
    double rmsY = 0.0;        ///< sqrt(sum ry^2 / count), unweighted
    std::uint32_t maxId = 0;  ///< point number of the largest sqrt(rx^2 + ry^2), 0 if none
    double maxError = 0.0;    ///< that largest sqrt(rx^2 + ry^2)
};

/// What CalcTrafo found. With n fit pairs, u unknowns, weights w and residuals v = (rx, ry) of
/// the fitted transformation in reference units:
///
///     sigma0 = sqrt(vTPv / (2n - u)),   vTPv = sum over the fit pairs of w (rx^2 + ry^2)
///
/// the a-posteriori standard deviation of unit weight, and the standard deviation of parameter
/// j is sigma0 * sqrt(Q(j, j)), Q being the inverse of the (weighted) normal matrix of the
/// parameters, which the Cholesky layout holds as R^-1 R^-T. For a normalised fit Q is carried
/// over from the normalised parameters with the Jacobian of the back-transformation. For the
/// Projektiv the normal matrix is that of the linearised equations, so its figures are first
/// order approximations. With no redundancy (2n = u) sigma0 and the deviations are 0.
struct OvTrafo2DFitReport {
    eOvTrafo2DType type = eOvTrafo2DNone;
    bool normalized = false;
    int pairs = 0;       ///< matched pairs in the fit
    int unknowns = 0;    ///< u
    int redundancy = 0;  ///< 2 * pairs - unknowns
    double vtpv = 0.0;
    double sigma0 = 0.0;
    /// Standard deviation of p0..p19 in parameter order (0 beyond the type's parameters).
    double stdDev[OvTrafo2d::kMaxParams] = {};
    OvTrafo2DResidualSummary fit;
    OvTrafo2DResidualSummary check;
};

class OvCalcTrafo2D : public OvTrafo2d {
public:
    /// The PP list is the object's own (empty) list.
    OvCalcTrafo2D();
    /// `ppList` becomes the PP list (not owned); null selects the own list.
    explicit OvCalcTrafo2D(OvPointList* ppList);
    /// Copies everything; a copy of an object that used its own list uses its own copy of it,
    /// while an outside PP list is shared.
    OvCalcTrafo2D(const OvCalcTrafo2D& other);
    OvCalcTrafo2D& operator=(const OvCalcTrafo2D& other);
    ~OvCalcTrafo2D() override;

    /// Residuals 0, scale 1.0; type and parameters stay (OvTrafo2d::Init clears those).
    void Init();

    /// Null selects the own list.
    void SetPPList(OvPointList* ppList);
    OvPointList* GetPPList() const { return ppList_; }
    void SetActList(OvPointList* actList) { actList_ = actList; }
    OvPointList* GetActList() const { return actList_; }
    /// The own list, the PP list by default.
    OvPointList& GetOwnList() { return ownList_; }
    const OvPointList& GetOwnList() const { return ownList_; }

    /// Root mean square residuals of the last residual computation.
    double GetResidualX() const { return residualX_; }
    double GetResidualY() const { return residualY_; }
    /// Set by a Helmert fit: 1 / sqrt(p1^2 + p3^2), the scale from reference to measured units.
    double GetScale() const { return scale_; }
    /// Point number of the point with the largest residual of the last residual computation.
    std::uint32_t GetMaxError() const { return maxError_; }

    /// The classic estimations (see the notes at the top). Each needs at least 2, 3, 4, 10
    /// points in the list (counted whether or not they have partners; with fewer it returns
    /// false and changes nothing); a null list means the act list (false when that is null
    /// too). Every point with a partner adds its two observation rows, unit weight:
    ///   Helmert    (1, 0, x, -y | X)  (0, 1, y, x | Y)     unknowns p0, p2, p1, p3
    ///   Affin      (1, x, y, 0, 0, 0 | X)  (0, 0, 0, 1, x, y | Y)
    ///   Projektiv  (x, y, 1, 0, 0, 0, -x X, -y X | X)  (0, 0, 0, x, y, 1, -x Y, -y Y | Y)
    ///   Polynomial (1, x, y, x^2, x y, y^2, x^3, x^2 y, x y^2, y^3, ten zeros | X) and
    ///              (ten zeros, the ten monomials | Y)
    /// The solution sets the parameters and the type; true follows. The Helmert then stores
    /// scale = 1 / sqrt(p1^2 + p3^2), or returns false (type and parameters set all the same)
    /// when p1 and p3 are both 0. Too few pairs leave the system singular, and the result is
    /// what the solver makes of it (no test).
    bool CalcTrafoHelmert(OvPointList* list);
    bool CalcTrafoAffin(OvPointList* list);
    bool CalcTrafoProjectiv(OvPointList* list);
    bool CalcTrafoPolynom(OvPointList* list);

    /// Residuals of the list (null: the act list) under the current transformation. For every
    /// point: its residual x and y (the first two of its residual triple) are set to 0; if it
    /// has a partner they become x' - X and y' - Y (x', y' the point transformed with
    /// Transform, which leaves it as it is for a type without mapping), its flag 0x020 (used by
    /// the 2D transformation) is set, and it counts. Afterwards GetResidualX/Y give the root
    /// mean square over the counted points (0 when none) and GetMaxError the point number of
    /// the point with the strictly largest rx^2 + ry^2 (0 when none is above 0). Returns true;
    /// false only when there is no list at all.
    bool CalcResiduals(OvPointList* list = nullptr);

    /// A type for the number n of points in the list (null: the act list): n < 2 None,
    /// 2 Helmert, 3 Affin, 4..9 Projektiv, 10 and more Polynomial.
    eOvTrafo2DType SuggestTrafoByPointsNbr(OvPointList* list = nullptr) const;
    /// A type for the number and the spread of the points over `region`: the proposal by
    /// number when that is None, Helmert or Affin; otherwise the region is cut into its four
    /// quadrants and its centre (the middle third in both directions), each point marks the
    /// first of them that holds it (bounds included; the centre first), and when all five are
    /// marked the answer is Projektiv for fewer than 13 points and Polynomial for more, else
    /// Affin.
    eOvTrafo2DType SuggestTrafoByDistrib(const OvRegion& region, OvPointList* list = nullptr) const;

    /// The extended fit of `type` (Helmert, Affin, Projektiv or Polynomial) to the list (null:
    /// the act list) and the PP list; see OvTrafo2DFitOptions and OvTrafo2DFitReport.
    /// It needs at least 2, 3, 4, 10 fit pairs (matched pairs that are not check points and
    /// have a positive weight). On success it stores the type and the parameters (and the
    /// Helmert's scale), writes every point's residual x and y as CalcResiduals does (0 for a
    /// point without partner), sets flag 0x020 on the fit points and clears it on the check
    /// points, sets GetResidualX/Y and GetMaxError from the fit points, and returns true.
    /// It returns false, and changes nothing but the report, for another type, too few fit
    /// pairs, a singular normal matrix (a Cholesky pivot that keeps less than 1e-12 of its
    /// diagonal), or a solution that is not finite. `report` may be null.
    bool CalcTrafo(eOvTrafo2DType type, OvPointList* list,
                   const OvTrafo2DFitOptions& options = OvTrafo2DFitOptions(),
                   OvTrafo2DFitReport* report = nullptr);

private:
    bool FitClassic(eOvTrafo2DType type, OvPointList* list);
    OvPointList* ListOrAct(OvPointList* list) const { return list != nullptr ? list : actList_; }

    OvPointList* ppList_;
    OvPointList* actList_ = nullptr;
    OvPointList ownList_;
    std::uint32_t maxError_ = 0;
    double residualX_ = 0.0;
    double residualY_ = 0.0;
    double scale_ = 1.0;
};

}  // namespace orvo
