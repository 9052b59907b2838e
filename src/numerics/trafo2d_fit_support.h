// Pieces shared by the classic and the extended 2D estimation: the shape of each fit, its
// observation rows, and the partner lookup by point number.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "orvo/model/point_list.h"
#include "orvo/numerics/trafo2d.h"

namespace orvo::trafo2d {

/// Unknowns and the least number of points of a fit.
struct FitShape {
    int unknowns = 0;
    int minPoints = 0;
};

/// False for a type that cannot be fitted.
inline bool ShapeOf(eOvTrafo2DType type, FitShape* shape) {
    switch (type) {
        case eOvTrafo2DHelmert:
            *shape = {4, 2};
            return true;
        case eOvTrafo2DAffin:
            *shape = {6, 3};
            return true;
        case eOvTrafo2DProjektiv:
            *shape = {8, 4};
            return true;
        case eOvTrafo2DPolynomial:
            *shape = {20, 10};
            return true;
        default:
            return false;
    }
}

/// The parameter that unknown k (0-based) of the fit becomes: the Helmert solves for
/// (p0, p2, p1, p3), so that its two translations come first; the others in parameter order.
inline int ParamOfUnknown(eOvTrafo2DType type, int k) {
    static constexpr int kHelmertOrder[4] = {0, 2, 1, 3};
    return type == eOvTrafo2DHelmert ? kHelmertOrder[k] : k;
}

/// The two observation rows of the pair (x, y) -> (X, Y): u coefficients, then the observation
/// at index u. Each row must hold u + 1 values.
inline void ObservationRows(eOvTrafo2DType type, double x, double y, double X, double Y,
                            double* rowX, double* rowY) {
    switch (type) {
        case eOvTrafo2DHelmert: {
            const double ax[5] = {1.0, 0.0, x, -y, X};
            const double ay[5] = {0.0, 1.0, y, x, Y};
            for (int k = 0; k < 5; ++k)
                rowX[k] = ax[k], rowY[k] = ay[k];
            return;
        }
        case eOvTrafo2DAffin: {
            const double ax[7] = {1.0, x, y, 0.0, 0.0, 0.0, X};
            const double ay[7] = {0.0, 0.0, 0.0, 1.0, x, y, Y};
            for (int k = 0; k < 7; ++k)
                rowX[k] = ax[k], rowY[k] = ay[k];
            return;
        }
        case eOvTrafo2DProjektiv: {
            const double ax[9] = {x, y, 1.0, 0.0, 0.0, 0.0, -x * X, -y * X, X};
            const double ay[9] = {0.0, 0.0, 0.0, x, y, 1.0, -x * Y, -y * Y, Y};
            for (int k = 0; k < 9; ++k)
                rowX[k] = ax[k], rowY[k] = ay[k];
            return;
        }
        case eOvTrafo2DPolynomial: {
            const double m[10] = {1.0,   x,         y,         x * x,     x * y,
                                  y * y, x * x * x, x * x * y, x * y * y, y * y * y};
            for (int k = 0; k < 10; ++k) {
                rowX[k] = m[k], rowX[10 + k] = 0.0;
                rowY[k] = 0.0, rowY[10 + k] = m[k];
            }
            rowX[20] = X;
            rowY[20] = Y;
            return;
        }
        default:
            return;
    }
}

/// Finds a point's partner by point number as a walk from the list's head would (the first
/// point with the number wins), with one pass over the list to build the index.
class PartnerIndex {
public:
    explicit PartnerIndex(const OvPointList* list) {
        if (list == nullptr) return;
        byId_.reserve(static_cast<std::size_t>(list->Count()));
        for (const OvPoint* p = list->First(); p != nullptr; p = p->Next())
            byId_.emplace(p->GetId(), p);  // keeps the first point of each number
    }

    const OvPoint* Find(std::uint32_t id) const {
        const auto it = byId_.find(id);
        return it != byId_.end() ? it->second : nullptr;
    }

private:
    std::unordered_map<std::uint32_t, const OvPoint*> byId_;
};

}  // namespace orvo::trafo2d
