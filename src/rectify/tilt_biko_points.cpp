// The range of a tilt transform in image coordinates.
#include "orvo/rectify/tilt_biko_points.h"

#include "orvo/geom2d/polygon.h"
#include "orvo/model/photo.h"
#include "orvo/model/point_list.h"
#include "orvo/rectify/tilt_trafo.h"

namespace orvo {

namespace {

// 1/9 as the range has always been cut with it.
constexpr double kNinth = 0.1111111111111111;
constexpr int kPiecesPerEdge = 9;

}  // namespace

int OvGetTiltBikoPoints(OvPointList& out, const OvPhoto* photo, const OvTiltTrafo* trafo) {
    if (trafo != nullptr && trafo->HasRegion()) {
        for (const OvPoint* p = trafo->GetRegion().First(); p != nullptr; p = p->Next())
            out.Add(*p);
        return out.Count();
    }
    if (photo == nullptr) return out.Count();

    // The digitised region as the rectangle polygon of its corners, numbered 1 to 4.
    const OvPolygon rectangle(photo->GetDigiRegion());
    OvPoint corners[4];
    int n = 0;
    for (const OvPoint* p = rectangle.First(); p != nullptr && n < 4; p = p->Next())
        corners[n++] = *p;

    if (trafo != nullptr && trafo->CompensateDistortion()) {
        for (OvPoint& corner : corners)
            photo->ConvertBiko(&corner, eConvertMeasureToBiko);
        for (int i = 0; i < 4; ++i) {
            const OvPoint& p = corners[i];
            const OvPoint& q = corners[(i + 1) % 4];
            const double stepX = (q.GetX() - p.GetX()) * kNinth;
            const double stepY = (q.GetY() - p.GetY()) * kNinth;
            out.Add(p);
            for (int k = 1; k < kPiecesPerEdge; ++k) {
                OvPoint between(p);
                between.SetX(p.GetX() + k * stepX);
                between.SetY(p.GetY() + k * stepY);
                out.Add(between);
            }
        }
        out.Renumber(1);
        return out.Count();
    }

    for (const OvPoint& corner : corners)
        out.Add(corner);
    photo->ConvertList(&out, eConvertMeasureToBiko);
    return out.Count();
}

}  // namespace orvo
