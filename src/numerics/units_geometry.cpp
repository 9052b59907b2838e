// Unit conversion of points and regions; kept apart from the plain value conversion so that the
// unit table does not depend on the geometry types.
#include "orvo/geom2d/region.h"
#include "orvo/model/point.h"
#include "orvo/numerics/units.h"

namespace orvo {

namespace {

void Scale(OvPoint& point, double k) {
    point.SetX(point.GetX() * k);
    point.SetY(point.GetY() * k);
    point.SetZ(point.GetZ() * k);
}

}  // namespace

void ConvertUnit(OvPoint* point, eOvUnit from, eOvUnit to) {
    if (point == nullptr) return;
    Scale(*point, GetUnitFactor(from) / GetUnitFactor(to));
}

void ConvertUnit(OvRegion* region, eOvUnit from, eOvUnit to) {
    if (region == nullptr) return;
    const double k = GetUnitFactor(from) / GetUnitFactor(to);
    Scale(region->GetFirst(), k);
    Scale(region->GetSecond(), k);
}

}  // namespace orvo
