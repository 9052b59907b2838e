// Proposals of a transformation type, at the boundaries of both rules.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "orvo/geom2d/region.h"
#include "orvo/numerics/calc_trafo2d.h"

namespace orvo {
namespace {

OvPointList ListOf(const std::vector<std::pair<double, double>>& points) {
    OvPointList list;
    unsigned id = 1;
    for (const auto& [x, y] : points)
        list.Add(new OvPoint(id++, x, y, 0.0, 0));
    return list;
}

OvPointList ListOfCount(int count) {
    std::vector<std::pair<double, double>> points(static_cast<std::size_t>(count), {1.0, 1.0});
    return ListOf(points);
}

TEST(SuggestTrafo2d, ByNumberAtEveryBoundary) {
    const OvCalcTrafo2D calc;
    const std::pair<int, eOvTrafo2DType> cases[] = {
        {0, eOvTrafo2DNone},        {1, eOvTrafo2DNone},       {2, eOvTrafo2DHelmert},
        {3, eOvTrafo2DAffin},       {4, eOvTrafo2DProjektiv},  {9, eOvTrafo2DProjektiv},
        {10, eOvTrafo2DPolynomial}, {50, eOvTrafo2DPolynomial}};
    for (const auto& [count, expected] : cases) {
        OvPointList list = ListOfCount(count);
        EXPECT_EQ(calc.SuggestTrafoByPointsNbr(&list), expected) << count;
    }
    EXPECT_EQ(calc.SuggestTrafoByPointsNbr(nullptr), eOvTrafo2DNone);  // no act list
}

// A region from (0, 0) to (90, 90): quadrants meet at 45, the centre runs from 30 to 60.
const OvRegion kRegion(0.0, 0.0, 90.0, 90.0);

// One point in the centre and one in each quadrant's outer part, then `extra` more in a corner.
std::vector<std::pair<double, double>> AllFive(int extra) {
    std::vector<std::pair<double, double>> points = {
        {45.0, 45.0}, {10.0, 10.0}, {80.0, 10.0}, {10.0, 80.0}, {80.0, 80.0}};
    for (int k = 0; k < extra; ++k)
        points.emplace_back(5.0 + k, 5.0);
    return points;
}

TEST(SuggestTrafo2d, BySpreadTwelveAndThirteenPoints) {
    const OvCalcTrafo2D calc;
    OvPointList twelve = ListOf(AllFive(7));
    OvPointList thirteen = ListOf(AllFive(8));
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &twelve), eOvTrafo2DProjektiv);
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &thirteen), eOvTrafo2DPolynomial);
    OvPointList four = ListOf({{45, 45}, {10, 10}, {80, 10}, {10, 80}});
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &four), eOvTrafo2DAffin);
}

TEST(SuggestTrafo2d, BySpreadMissingRegionsGiveAffin) {
    const OvCalcTrafo2D calc;
    // Three quadrants and the centre, many points.
    OvPointList three = ListOf({{45, 45},
                                {10, 10},
                                {80, 10},
                                {10, 80},
                                {12, 12},
                                {14, 14},
                                {16, 16},
                                {18, 18},
                                {20, 20},
                                {22, 22},
                                {24, 24},
                                {26, 26}});
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &three), eOvTrafo2DAffin);
    // All four quadrants but nothing in the centre: points inside the centre's square go to
    // the centre first, so corners alone do not cover it.
    OvPointList corners = ListOf({{10, 10}, {80, 10}, {10, 80}, {80, 80}, {11, 11}, {12, 12}});
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &corners), eOvTrafo2DAffin);
    // A point in the centre marks only the centre, not the quadrant it also lies in.
    OvPointList centreOnly = ListOf({{40, 40}, {50, 40}, {40, 50}, {50, 50}, {45, 45}});
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &centreOnly), eOvTrafo2DAffin);
    // Points outside the region mark nothing.
    OvPointList outside = ListOf({{45, 45}, {10, 10}, {80, 10}, {10, 80}, {95, 95}});
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &outside), eOvTrafo2DAffin);
}

TEST(SuggestTrafo2d, BySpreadBoundsAreInclusive) {
    const OvCalcTrafo2D calc;
    // The centre's corner at (30, 30) and the region's far corners count.
    OvPointList onEdges = ListOf({{30, 30}, {0, 0}, {90, 0}, {0, 90}, {90, 90}});
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &onEdges), eOvTrafo2DProjektiv);
    // A region given with its corners the other way round covers the same ground.
    const OvRegion reversed(OvPoint(0, 90.0, 90.0, 0.0, 0), OvPoint(0, 0.0, 0.0, 0.0, 0));
    EXPECT_EQ(calc.SuggestTrafoByDistrib(reversed, &onEdges), eOvTrafo2DProjektiv);
}

TEST(SuggestTrafo2d, BySpreadKeepsTheSmallProposals) {
    const OvCalcTrafo2D calc;
    for (int count : {0, 1, 2, 3}) {
        OvPointList list = ListOfCount(count);
        EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &list), calc.SuggestTrafoByPointsNbr(&list));
    }
    OvPointList empty;
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, &empty), eOvTrafo2DNone);
    EXPECT_EQ(calc.SuggestTrafoByDistrib(kRegion, nullptr), eOvTrafo2DNone);
}

}  // namespace
}  // namespace orvo
