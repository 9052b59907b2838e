// Estimating the tilt matrix of a tilt transform from what the transform holds.
#include "orvo/model/point_list.h"
#include "orvo/numerics/matrix.h"
#include "orvo/rectify/tilt_estimation.h"
#include "orvo/rectify/tilt_trafo.h"

namespace orvo {

namespace {

// The image points as the tilt matrix sees them: corrected for distortion when the transform
// compensates it.
OvPointList ImagePoints(const OvTiltTrafo& trafo, const OvPointList& measured) {
    OvPointList points(measured);
    if (trafo.CompensateDistortion()) trafo.GetDistortCameraParam().Adjust(&points);
    return points;
}

}  // namespace

eOvTiltEstimateResult OvEstimateTiltTrafo(OvTiltTrafo& trafo, OvTrafo2DFitReport* report) {
    const OvPointList image = ImagePoints(trafo, trafo.GetMeasPoints().GetPointList());
    OvMatrix tilt(3, 3);
    const eOvTiltEstimateResult result =
        OvEstimateTiltMatrix(image, trafo.GetBikoList().GetPointList(), tilt, report);
    if (result == TiltEstimateOk) trafo.SetTiltMat(tilt);
    return result;
}

eOvTiltEstimateResult OvEstimateMetricTiltTrafo(OvTiltTrafo& trafo,
                                                const OvMetricTiltOptions& options,
                                                OvMetricTiltReport* report) {
    OvTiltParallelDef def(trafo.GetParallelDef());
    OvPointList image;
    if (def.GetPointList() != nullptr) {
        image = ImagePoints(trafo, *def.GetPointList());
        def.SetPointList(&image);
    }
    OvMatrix tilt(3, 3);
    const eOvTiltEstimateResult result = OvEstimateMetricTilt(def, tilt, options, report);
    if (result == TiltEstimateOk) trafo.SetTiltMat(tilt);
    return result;
}

}  // namespace orvo
