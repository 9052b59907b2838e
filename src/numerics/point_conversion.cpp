// The bridges between points and the linear-algebra types: a vector made from a point, and the
// homogeneous mappings applied to a point's coordinates.
#include "orvo/model/point.h"
#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"

namespace orvo {

OvVector::OvVector(const OvPoint& point, eOvVectorType type) {
    const bool planar = type == eOvVectorXY0 || type == eOvVectorXY1 || type == eOvVectorXYZ;
    init(planar ? 3 : 4);
    elements_[0] = point.GetX();
    elements_[1] = point.GetY();
    switch (type) {
        case eOvVectorXY0:
            elements_[2] = 0.0;
            break;
        case eOvVectorXY1:
            elements_[2] = 1.0;
            break;
        default:
            // Types 2, 3 and every other value carry z; the fourth element of the 4-element
            // forms stays at the 0.0 of a new vector.
            elements_[2] = point.GetZ();
            break;
    }
}

bool OvMatrix::PTrans2D(OvPoint* point) const {
    if (point == nullptr) return false;
    double x = point->GetX();
    double y = point->GetY();
    if (!PTrans2D(&x, &y)) return false;
    point->SetX(x);
    point->SetY(y);
    return true;
}

bool OvMatrix::PTrans3D(OvPoint* point) const {
    if (point == nullptr) return false;
    double x = point->GetX();
    double y = point->GetY();
    double z = point->GetZ();
    if (!PTrans3D(&x, &y, &z)) return false;
    point->Set(x, y, z);
    return true;
}

}  // namespace orvo
