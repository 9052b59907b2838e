// OvCalcTrafo2D: the object, the classic least-squares estimations and the residuals.
#include "orvo/numerics/calc_trafo2d.h"

#include <cmath>

#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"
#include "trafo2d_fit_support.h"

namespace orvo {

using trafo2d::FitShape;
using trafo2d::PartnerIndex;

OvCalcTrafo2D::OvCalcTrafo2D() : ppList_(&ownList_) {}

OvCalcTrafo2D::OvCalcTrafo2D(OvPointList* ppList)
    : ppList_(ppList != nullptr ? ppList : &ownList_) {}

OvCalcTrafo2D::OvCalcTrafo2D(const OvCalcTrafo2D& other)
    : OvTrafo2d(other),
      ppList_(other.ppList_ == &other.ownList_ ? &ownList_ : other.ppList_),
      actList_(other.actList_),
      ownList_(other.ownList_),
      maxError_(other.maxError_),
      residualX_(other.residualX_),
      residualY_(other.residualY_),
      scale_(other.scale_) {}

OvCalcTrafo2D& OvCalcTrafo2D::operator=(const OvCalcTrafo2D& other) {
    if (this == &other) return *this;
    Set(other);
    ppList_ = other.ppList_ == &other.ownList_ ? &ownList_ : other.ppList_;
    actList_ = other.actList_;
    ownList_ = other.ownList_;
    maxError_ = other.maxError_;
    residualX_ = other.residualX_;
    residualY_ = other.residualY_;
    scale_ = other.scale_;
    return *this;
}

OvCalcTrafo2D::~OvCalcTrafo2D() = default;

void OvCalcTrafo2D::Init() {
    residualX_ = 0.0;
    residualY_ = 0.0;
    scale_ = 1.0;
}

void OvCalcTrafo2D::SetPPList(OvPointList* ppList) {
    ppList_ = ppList != nullptr ? ppList : &ownList_;
}

bool OvCalcTrafo2D::CalcTrafoHelmert(OvPointList* list) {
    return FitClassic(eOvTrafo2DHelmert, list);
}
bool OvCalcTrafo2D::CalcTrafoAffin(OvPointList* list) {
    return FitClassic(eOvTrafo2DAffin, list);
}
bool OvCalcTrafo2D::CalcTrafoProjectiv(OvPointList* list) {
    return FitClassic(eOvTrafo2DProjektiv, list);
}
bool OvCalcTrafo2D::CalcTrafoPolynom(OvPointList* list) {
    return FitClassic(eOvTrafo2DPolynomial, list);
}

bool OvCalcTrafo2D::FitClassic(eOvTrafo2DType type, OvPointList* list) {
    list = ListOrAct(list);
    FitShape shape;
    if (list == nullptr || !trafo2d::ShapeOf(type, &shape)) return false;
    if (list->Count() < shape.minPoints) return false;
    const int u = shape.unknowns;

    // Normal equations N | A^T l | identity, with l^T l below, as Cholesky reads them.
    OvMatrix system(u + 1, 2 * u + 1);
    for (int i = 1; i <= u; ++i)
        system.SetElem(i, u + 1 + i, 1.0);
    OvVector row(u + 1);
    OvVector solution(u + 1);
    double rowX[21];
    double rowY[21];

    const PartnerIndex partners(ppList_);
    for (const OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        const OvPoint* q = partners.Find(p->GetId());
        if (q == nullptr) continue;
        trafo2d::ObservationRows(type, p->GetX(), p->GetY(), q->GetX(), q->GetY(), rowX, rowY);
        for (int k = 0; k <= u; ++k)
            row[k + 1] = rowX[k];
        system.CalcNGLAN(row);
        for (int k = 0; k <= u; ++k)
            row[k + 1] = rowY[k];
        system.CalcNGLAN(row);
    }

    system.Cholesky(solution);
    for (int k = 0; k < u; ++k)
        SetParam(trafo2d::ParamOfUnknown(type, k), solution[k + 1]);
    SetType(type);

    if (type == eOvTrafo2DHelmert) {
        const double p1 = GetParam(1);
        const double p3 = GetParam(3);
        const double scale = std::sqrt(p1 * p1 + p3 * p3);
        if (scale == 0.0) return false;
        // The reciprocal: the scale from reference to measured units.
        scale_ = 1.0 / std::sqrt(p1 * p1 + p3 * p3);
    }
    return true;
}

bool OvCalcTrafo2D::CalcResiduals(OvPointList* list) {
    list = ListOrAct(list);
    if (list == nullptr) return false;
    const PartnerIndex partners(ppList_);

    double sumX = 0.0;
    double sumY = 0.0;
    double largest = 0.0;
    std::uint32_t largestId = 0;
    int matched = 0;
    for (OvPoint* p = list->First(); p != nullptr; p = p->Next()) {
        p->SetR(0, 0.0);
        p->SetR(1, 0.0);
        double x = p->GetX();
        double y = p->GetY();
        Transform(&x, &y);
        const OvPoint* q = partners.Find(p->GetId());
        if (q == nullptr) continue;
        const double rx = x - q->GetX();
        const double ry = y - q->GetY();
        p->SetR(0, rx);
        p->SetR(1, ry);
        const double error = rx * rx + ry * ry;
        if (error > largest) {
            largest = error;
            largestId = p->GetId();
        }
        sumX += rx * rx;
        sumY += ry * ry;
        p->GetFlag().SetFlag(eOvPointFlagTrafo2DUsed);
        ++matched;
    }

    maxError_ = largestId;
    residualX_ = 0.0;
    residualY_ = 0.0;
    if (matched > 0) {
        const double reciprocal = 1.0 / matched;
        residualX_ = std::sqrt(sumX * reciprocal);
        residualY_ = std::sqrt(sumY * reciprocal);
    }
    return true;
}

}  // namespace orvo
