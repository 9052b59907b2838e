#include "orvo/numerics/interval.h"

#include <utility>

namespace orvo {

namespace {

struct EndPoint {
    double value;
    bool isStart;
};

}  // namespace

void OvIntervall(double& lo, double& hi, double a1, double a2, double b1, double b2) {
    if (a1 > a2) std::swap(a1, a2);
    if (b1 > b2) std::swap(b1, b2);

    EndPoint points[4] = {{a1, true}, {a2, false}, {b1, true}, {b2, false}};

    // Stable bubble sort: equal values keep their order, so the first interval's end points stay
    // ahead of the second's. The touching case depends on that.
    for (int pass = 0; pass < 3; ++pass) {
        for (int i = 0; i < 3 - pass; ++i) {
            if (points[i].value > points[i + 1].value) std::swap(points[i], points[i + 1]);
        }
    }

    if (!points[1].isStart && points[2].isStart) {
        lo = 0.0;
        hi = 0.0;
        return;
    }
    lo = points[1].value;
    hi = points[2].value;
}

}  // namespace orvo
