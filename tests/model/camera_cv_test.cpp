// Converting cameras to and from the computer-vision pinhole form: pixel conventions, and
// points carried through both models with the formulas written out plainly here.
#include "orvo/model/camera_cv.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvo {
namespace {

const OvSensorGeometry kSensor{0.004, 6000, 4000};  // 24 x 16 mm, 4 µm pixels

// Where the camera model says a measured pixel's ray goes, and where the computer-vision model
// then projects that ray, all in plain arithmetic (no library call). Returns the distance in
// pixels between the two.
double PixelDiscrepancy(const OvCamera& camera, const OvCvIntrinsics& cv,
                        const OvSensorGeometry& sensor, double u, double v) {
    const double x = (u - (sensor.width - 1) / 2.0) * sensor.pixelSize;
    const double y = ((sensor.height - 1) / 2.0 - v) * sensor.pixelSize;
    const double dx = x - camera.GetXh(), dy = y - camera.GetYh();
    const double r2 = dx * dx + dy * dy;
    const double R02 = camera.GetR0() * camera.GetR0();
    const double k = camera.GetA1() * (r2 - R02) + camera.GetA2() * (r2 * r2 - R02 * R02);
    const double xn = dx * (1 - k) / camera.GetC();
    const double yn = -dy * (1 - k) / camera.GetC();
    const double p2 = xn * xn + yn * yn;
    const double q = 1 + cv.k1 * p2 + cv.k2 * p2 * p2;
    return std::hypot(cv.fx * q * xn + cv.cx - u, cv.fy * q * yn + cv.cy - v);
}

// The largest discrepancy over a grid of pixels that does not coincide with the converters'
// own comparison grid.
double WorstDiscrepancy(const OvCamera& camera, const OvCvIntrinsics& cv,
                        const OvSensorGeometry& sensor) {
    double worst = 0.0;
    for (int i = 0; i <= 12; ++i) {
        for (int j = 0; j <= 9; ++j) {
            const double u = 3.0 + (sensor.width - 7.0) * i / 12.0;
            const double v = 2.0 + (sensor.height - 5.0) * j / 9.0;
            worst = std::fmax(worst, PixelDiscrepancy(camera, cv, sensor, u, v));
        }
    }
    return worst;
}

TEST(CameraCvPixels, ImageCoordinatesAreCentredWithYUp) {
    double x = 0, y = 0, u = 0, v = 0;
    ASSERT_TRUE(OvPixelToImage(kSensor, 0.0, 0.0, &x, &y));
    EXPECT_DOUBLE_EQ(x, -2999.5 * 0.004);
    EXPECT_DOUBLE_EQ(y, 1999.5 * 0.004);
    ASSERT_TRUE(OvPixelToImage(kSensor, 2999.5, 1999.5, &x, &y));
    EXPECT_EQ(x, 0.0);
    EXPECT_EQ(y, 0.0);
    ASSERT_TRUE(OvImageToPixel(kSensor, 1.0, -2.0, &u, &v));
    EXPECT_DOUBLE_EQ(u, 2999.5 + 250.0);
    EXPECT_DOUBLE_EQ(v, 1999.5 + 500.0);
    ASSERT_TRUE(OvPixelToImage(kSensor, u, v, &x, &y));
    EXPECT_NEAR(x, 1.0, 1e-12);
    EXPECT_NEAR(y, -2.0, 1e-12);

    EXPECT_FALSE(OvPixelToImage(OvSensorGeometry{0.0, 10, 10}, 1, 1, &x, &y));
    EXPECT_FALSE(OvPixelToImage(OvSensorGeometry{0.01, 0, 10}, 1, 1, &x, &y));
    EXPECT_FALSE(OvImageToPixel(kSensor, 1, 1, &u, nullptr));
}

TEST(CameraCvPixels, ProjectionFollowsTheUsualFormula) {
    const OvCvIntrinsics cv{1000, 1010, 320, 240, -0.2, 0.05};
    double u = 0, v = 0;
    ASSERT_TRUE(OvCvProject(cv, 0.3, -0.4, &u, &v));
    const double q = 1 - 0.2 * 0.25 + 0.05 * 0.0625;
    EXPECT_DOUBLE_EQ(u, 1000 * q * 0.3 + 320);
    EXPECT_DOUBLE_EQ(v, 1010 * q * -0.4 + 240);
    EXPECT_FALSE(OvCvProject(cv, 0, 0, nullptr, &v));
}

TEST(CameraCvConvert, UndistortedCameraIsAPlainPinhole) {
    const OvCamera camera(1, 24, 0.2, -0.1, 0, 0, 0, "");
    OvCvIntrinsics cv;
    OvCvFit fit;
    ASSERT_TRUE(OvCameraToCv(camera, kSensor, &cv, &fit));
    EXPECT_NEAR(cv.fx, 24 / 0.004, 1e-6);
    EXPECT_EQ(cv.fx, cv.fy);
    EXPECT_DOUBLE_EQ(cv.cx, 2999.5 + 50);  // Xh = 0.2 mm to the right
    EXPECT_DOUBLE_EQ(cv.cy, 1999.5 + 25);  // Yh = −0.1 mm is down in the picture
    EXPECT_NEAR(cv.k1, 0.0, 1e-9);
    EXPECT_NEAR(cv.k2, 0.0, 1e-9);
    EXPECT_LT(fit.maxResidual, 1e-6);
    // The farthest corner seen from the principal point.
    EXPECT_NEAR(fit.maxRadius, std::hypot(2999.5 * 0.004 + 0.2, 1999.5 * 0.004 + 0.1), 1e-12);
}

TEST(CameraCvConvert, CameraToCvCarriesPointsOverTheWholeSensor) {
    // A moderate wide angle: 24 mm, pincushion A1 = 1e-5 per mm².
    const OvCamera mild(3, 24, 0.05, -0.03, 1e-5, 0, 0, "mild");
    OvCvIntrinsics cv;
    OvCvFit fit;
    ASSERT_TRUE(OvCameraToCv(mild, kSensor, &cv, &fit));
    EXPECT_NEAR(cv.k1, 1e-5 * 24 * 24, 1e-5);               // k1 ≈ A1·C²
    EXPECT_NEAR(cv.k2, 3 * std::pow(1e-5 * 576, 2), 5e-5);  // k2 ≈ 3·(A1·C²)²
    EXPECT_LT(fit.maxResidual, 1e-3);
    EXPECT_LT(WorstDiscrepancy(mild, cv, kSensor), 1e-3);

    // A strong barrel lens with R0: the models differ, and the fit says by how much.
    const OvCamera strong(4, 35, 0.1, 0.02, -8e-5, 1e-7, 12, "strong");
    ASSERT_TRUE(OvCameraToCv(strong, kSensor, &cv, &fit));
    EXPECT_LT(cv.k1, 0.0);
    EXPECT_GT(fit.maxResidual, 1e-3);
    EXPECT_LT(fit.maxResidual, 0.1);
    EXPECT_LE(fit.rmsResidual, fit.maxResidual);
    EXPECT_LT(WorstDiscrepancy(strong, cv, kSensor), fit.maxResidual * 1.5);
}

TEST(CameraCvConvert, CvToCameraCarriesPointsBack) {
    const OvSensorGeometry sensor{0.005, 4000, 3000};
    const OvCvIntrinsics cv{3000, 3000, 2010, 1490, -0.1, 0.05};
    OvCamera camera(12, 0, 0, 0, 0, 0, 0, "from cv");
    OvCvFit fit;
    ASSERT_TRUE(OvCvToCamera(cv, sensor, &camera, &fit));
    EXPECT_EQ(camera.GetId(), 12u);
    EXPECT_STREQ(camera.GetInfo().chars(), "from cv");
    EXPECT_EQ(camera.GetR0(), 0.0);
    EXPECT_NEAR(camera.GetC(), 15.0, 0.05);  // 3000 px of 5 µm
    EXPECT_DOUBLE_EQ(camera.GetXh(), (2010 - 1999.5) * 0.005);
    EXPECT_DOUBLE_EQ(camera.GetYh(), (1499.5 - 1490) * 0.005);
    EXPECT_LT(camera.GetA1(), 0.0);  // barrel in both conventions
    EXPECT_LT(fit.maxResidual, 1.0);
    EXPECT_LT(WorstDiscrepancy(camera, cv, sensor), fit.maxResidual * 1.5);

    // And round again: the intrinsics come back close to where they started.
    OvCvIntrinsics again;
    ASSERT_TRUE(OvCameraToCv(camera, sensor, &again));
    EXPECT_NEAR(again.fx, 3000, 0.5);
    EXPECT_DOUBLE_EQ(again.cx, 2010);
    EXPECT_DOUBLE_EQ(again.cy, 1490);
    EXPECT_NEAR(again.k1, -0.1, 0.005);
    EXPECT_NEAR(again.k2, 0.05, 0.005);
}

TEST(CameraCvConvert, CameraRoundTripKeepsTheCalibrationAndR0) {
    const OvCamera original(5, 35, 0.1, 0.02, -8e-5, 1e-7, 12, "");
    OvCvIntrinsics cv;
    ASSERT_TRUE(OvCameraToCv(original, kSensor, &cv));
    OvCamera back(6, 0, 0, 0, 0, 0, 12, "");
    ASSERT_TRUE(OvCvToCamera(cv, kSensor, &back));
    EXPECT_EQ(back.GetR0(), 12.0);
    EXPECT_NEAR(back.GetC(), 35, 1e-4);
    EXPECT_NEAR(back.GetXh(), 0.1, 1e-12);
    EXPECT_NEAR(back.GetYh(), 0.02, 1e-12);
    EXPECT_NEAR(back.GetA1(), -8e-5, 1e-8);
    EXPECT_NEAR(back.GetA2(), 1e-7, 1e-10);
}

TEST(CameraCvConvert, DifferentFocalLengthsShowInTheResidual) {
    const OvSensorGeometry sensor{0.005, 4000, 3000};
    OvCamera square, skewed;
    OvCvFit squareFit, skewedFit;
    ASSERT_TRUE(OvCvToCamera({3000, 3000, 2000, 1500, 0, 0}, sensor, &square, &squareFit));
    ASSERT_TRUE(OvCvToCamera({3000, 3006, 2000, 1500, 0, 0}, sensor, &skewed, &skewedFit));
    EXPECT_LT(squareFit.maxResidual, 1e-6);
    EXPECT_NEAR(skewed.GetC(), 3003 * 0.005, 1e-6);
    // C takes the mean 3003 px, so both directions miss by 3 / 3003 of the distance from the
    // principal point; most at the corner pixel (0, 0), 2000 and 1500 px away from it.
    EXPECT_NEAR(skewedFit.maxResidual, std::hypot(2000.0, 1500.0) * 3.0 / 3003, 1e-3);
}

TEST(CameraCvConvert, RefusesWhatHasNoEquivalent) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    OvCvIntrinsics cv{1, 2, 3, 4, 5, 6};
    OvCvFit fit;
    fit.maxRadius = 77;
    // A curve that turns back inside the sensor is a failed calibration.
    EXPECT_FALSE(OvCameraToCv(OvCamera(1, 24, 0, 0, 5e-3, 0, 0, ""), kSensor, &cv, &fit));
    EXPECT_FALSE(OvCameraToCv(OvCamera(1, 0, 0, 0, 0, 0, 0, ""), kSensor, &cv));
    EXPECT_FALSE(OvCameraToCv(OvCamera(1, -24, 0, 0, 0, 0, 0, ""), kSensor, &cv));
    EXPECT_FALSE(OvCameraToCv(OvCamera(1, 24, nan, 0, 0, 0, 0, ""), kSensor, &cv));
    EXPECT_FALSE(OvCameraToCv(OvCamera(1, 24, 0, 0, 0, 0, 0, ""), OvSensorGeometry{}, &cv));
    EXPECT_FALSE(OvCameraToCv(OvCamera(1, 24, 0, 0, 0, 0, 0, ""), kSensor, nullptr));
    EXPECT_EQ(cv.fx, 1.0);  // untouched
    EXPECT_EQ(fit.maxRadius, 77.0);

    OvCamera camera(1, 50, 0, 0, 0, 0, 0, "");
    EXPECT_FALSE(OvCvToCamera({0, 3000, 2000, 1500, 0, 0}, kSensor, &camera));
    EXPECT_FALSE(OvCvToCamera({3000, 3000, nan, 1500, 0, 0}, kSensor, &camera));
    // Strong barrel that folds back before the corners: 1 + 3·k1·p² reaches 0 at p = 0.577,
    // where the radius is 2309 px at most, short of the 3605 px to the corners.
    EXPECT_FALSE(OvCvToCamera({6000, 6000, 2999.5, 1999.5, -1.0, 0}, kSensor, &camera));
    EXPECT_FALSE(OvCvToCamera({3000, 3000, 2000, 1500, 0, 0}, kSensor, nullptr));
    EXPECT_EQ(camera.GetC(), 50.0);  // untouched
}

}  // namespace
}  // namespace orvo
