// Proposals of a transformation type from the number of points and from their spread.
#include "orvo/geom2d/region.h"
#include "orvo/numerics/calc_trafo2d.h"

namespace orvo {

namespace {

eOvTrafo2DType TypeForCount(int count) {
    if (count < 2) return eOvTrafo2DNone;
    if (count == 2) return eOvTrafo2DHelmert;
    if (count == 3) return eOvTrafo2DAffin;
    if (count <= 9) return eOvTrafo2DProjektiv;
    return eOvTrafo2DPolynomial;
}

// Fewer than this many points spread over all five test regions make a Projektiv, more a
// Polynomial.
constexpr int kPolynomialFromPoints = 13;

}  // namespace

eOvTrafo2DType OvCalcTrafo2D::SuggestTrafoByPointsNbr(OvPointList* list) const {
    list = ListOrAct(list);
    return TypeForCount(list != nullptr ? list->Count() : 0);
}

eOvTrafo2DType OvCalcTrafo2D::SuggestTrafoByDistrib(const OvRegion& region,
                                                    OvPointList* list) const {
    const eOvTrafo2DType byNumber = SuggestTrafoByPointsNbr(list);
    if (byNumber == eOvTrafo2DNone || byNumber == eOvTrafo2DHelmert ||
        byNumber == eOvTrafo2DAffin) {
        return byNumber;
    }
    list = ListOrAct(list);

    // The test regions, from the upper-left and the lower-right corner: the centre (the middle
    // third in both directions) first, then the four quadrants.
    const OvPoint ul = region.GetUL();
    const OvPoint lr = region.GetLR();
    const double x0 = ul.GetX();
    const double y0 = ul.GetY();
    const double dx = lr.GetX() - x0;
    const double dy = lr.GetY() - y0;
    const OvRegion tests[5] = {
        OvRegion(x0 + dx / 3.0, y0 + dy / 3.0, lr.GetX() - dx / 3.0, lr.GetY() - dy / 3.0),
        OvRegion(x0, y0, x0 + dx / 2.0, y0 + dy / 2.0),
        OvRegion(x0 + dx / 2.0, y0, lr.GetX(), y0 + dy / 2.0),
        OvRegion(x0, y0 + dy / 2.0, x0 + dx / 2.0, lr.GetY()),
        OvRegion(x0 + dx / 2.0, y0 + dy / 2.0, lr.GetX(), lr.GetY()),
    };
    bool covered[5] = {false, false, false, false, false};
    for (const OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        for (int k = 0; k < 5; ++k) {
            if (tests[k].Overlap(p)) {
                covered[k] = true;
                break;
            }
        }
    }
    for (bool c : covered)
        if (!c) return eOvTrafo2DAffin;
    return list->Count() < kPolynomialFromPoints ? eOvTrafo2DProjektiv : eOvTrafo2DPolynomial;
}

}  // namespace orvo
