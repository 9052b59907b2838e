// The point list's lookups and the free list functions.
#include "orvo/model/point_list.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace orvo {
namespace {

OvPoint* NewPoint(unsigned id, unsigned photoId, double x = 0.0, double y = 0.0, double z = 0.0) {
    auto* p = new OvPoint(id, x, y, z, 0);
    p->SetPhotoId(photoId);
    return p;
}

std::vector<unsigned> Ids(const OvPointList& list) {
    std::vector<unsigned> ids;
    for (const OvPoint* p = list.First(); p != nullptr; p = p->Next())
        ids.push_back(p->GetId());
    return ids;
}

class OvPointListFind : public ::testing::Test {
protected:
    void SetUp() override {
        // position: 0      1      2      3      4      5
        // id/photo: 5/1    3/1    5/2    7/2    3/2    9/3
        const unsigned ids[] = {5, 3, 5, 7, 3, 9};
        const unsigned photos[] = {1, 1, 2, 2, 2, 3};
        for (int i = 0; i < 6; ++i) {
            points[i] = NewPoint(ids[i], photos[i]);
            list.Add(points[i]);
        }
    }

    OvPointList list;
    OvPoint* points[6] = {};
};

TEST_F(OvPointListFind, WithoutStartWalksFromTheHead) {
    EXPECT_EQ(list.Find(5, 0), points[0]);
    EXPECT_EQ(list.Find(3, 0), points[1]);
    EXPECT_EQ(list.Find(5, 2), points[2]);  // id and photo id must both match
    EXPECT_EQ(list.Find(3, 2), points[4]);
    EXPECT_EQ(list.Find(7, 1), nullptr);
    EXPECT_EQ(list.Find(4, 0), nullptr);
}

TEST_F(OvPointListFind, WithStartForwardFirstThenBackward) {
    // Forward from the start, the start itself included.
    EXPECT_EQ(list.Find(5, 0, points[2]), points[2]);
    EXPECT_EQ(list.Find(3, 0, points[2]), points[4]);  // the 3 behind wins over the 3 before
    EXPECT_EQ(list.Find(3, 0, points[4]), points[4]);
    // Nothing behind the start: the walk turns back from the start.
    EXPECT_EQ(list.Find(5, 0, points[3]), points[2]);  // the nearer one before the start
    EXPECT_EQ(list.Find(5, 1, points[3]), points[0]);
    EXPECT_EQ(list.Find(5, 0, points[5]), points[2]);
    EXPECT_EQ(list.Find(9, 0, points[0]), points[5]);
    EXPECT_EQ(list.Find(8, 0, points[3]), nullptr);
}

TEST(OvPointListFindEmpty, NothingToFind) {
    OvPointList list;
    EXPECT_EQ(list.Find(1, 0), nullptr);
    double distance = 42.0;
    EXPECT_EQ(list.FindNearest(OvPoint(), &distance), nullptr);
    EXPECT_EQ(distance, 42.0);  // untouched
}

TEST(OvPointListFindNearest, SmallestDistanceEarlierWinsOnTie) {
    OvPointList list;
    list.Add(NewPoint(1, 0, 10.0, 0.0, 0.0));
    list.Add(NewPoint(2, 0, 3.0, 4.0, 0.0));   // distance 5 from the origin
    list.Add(NewPoint(3, 0, 0.0, 0.0, -5.0));  // also 5: the earlier point stays
    list.Add(NewPoint(4, 0, 6.0, 8.0, 0.0));

    double distance = -1.0;
    const OvPoint* nearest = list.FindNearest(OvPoint(0, 0.0, 0.0, 0.0, 0), &distance);
    ASSERT_NE(nearest, nullptr);
    EXPECT_EQ(nearest->GetId(), 2u);
    EXPECT_EQ(distance, 5.0);

    nearest = list.FindNearest(OvPoint(0, 9.0, 0.0, 1.0, 0), nullptr);
    ASSERT_NE(nearest, nullptr);
    EXPECT_EQ(nearest->GetId(), 1u);

    // A point of the list is its own nearest, at distance 0.
    nearest = list.FindNearest(OvPoint(0, 6.0, 8.0, 0.0, 0), &distance);
    EXPECT_EQ(nearest->GetId(), 4u);
    EXPECT_EQ(distance, 0.0);
}

// FindNearest takes the square root only of squares below the best one; the answer must be the
// plain loop's, which compares the distances themselves: also where different squares have the
// same root (the earlier point stays) and where coordinates are not numbers.
TEST(OvPointListFindNearest, SameAnswerAsComparingEveryDistance) {
    std::mt19937_64 random(31);
    std::uniform_int_distribution<int> grid(-3, 3);
    std::uniform_int_distribution<int> nudge(-2, 2);
    const auto coordinate = [&] {
        double v = grid(random);
        for (int n = nudge(random); n != 0; n += n > 0 ? -1 : 1)
            v = std::nextafter(v, n > 0 ? 10.0 : -10.0);
        return v;
    };
    int ties = 0;
    for (int round = 0; round < 1000; ++round) {
        OvPointList list;
        const int count = 1 + round % 40;
        for (int i = 0; i < count; ++i)
            list.Add(NewPoint(static_cast<unsigned>(i + 1), 0, coordinate(), coordinate(),
                              coordinate()));
        if (round % 50 == 7) list.Get(round % count)->SetX(std::nan(""));
        const OvPoint query(0, coordinate(), coordinate(), coordinate(), 0);

        const OvPoint* expected = nullptr;
        double expectedDistance = 0.0;
        for (const OvPoint* p = list.First(); p != nullptr; p = p->Next()) {
            const double d = p->Distance(query);
            if (expected != nullptr && d == expectedDistance) ++ties;
            if (expected == nullptr || d < expectedDistance) {
                expected = p;
                expectedDistance = d;
            }
        }
        double distance = -1.0;
        ASSERT_EQ(list.FindNearest(query, &distance), expected) << "round " << round;
        if (std::isnan(expectedDistance)) {
            EXPECT_TRUE(std::isnan(distance));
        } else {
            EXPECT_EQ(distance, expectedDistance);
        }
    }
    EXPECT_GT(ties, 50);
}

TEST(FindOvPointById, EachPartnerServesOnce) {
    OvPointList a, b, result;
    a.Add(NewPoint(1, 10, 1.0));
    a.Add(NewPoint(1, 11, 2.0));
    a.Add(NewPoint(2, 12, 3.0));
    b.Add(NewPoint(1, 0));
    b.Add(NewPoint(2, 0));
    EXPECT_EQ(FindOvPointById(a, b, &result), 2);
    ASSERT_EQ(result.Count(), 2);
    // Copies of a's points, in a's order: the first 1 and the 2.
    EXPECT_EQ(result.First()->GetPhotoId(), 10u);
    EXPECT_EQ(result.Last()->GetPhotoId(), 12u);
    EXPECT_NE(result.First(), a.First());
    // b is left as it was.
    EXPECT_EQ(Ids(b), (std::vector<unsigned>{1, 2}));
}

TEST(FindOvPointById, DuplicatesInBothAndAppendingToResult) {
    OvPointList a, b, result;
    for (unsigned id : {4u, 4u, 4u, 6u, 7u})
        a.Add(NewPoint(id, 0));
    for (unsigned id : {7u, 4u, 8u, 4u})
        b.Add(NewPoint(id, 0));
    result.Add(NewPoint(99, 0));
    EXPECT_EQ(FindOvPointById(a, b, &result), 3);
    EXPECT_EQ(Ids(result), (std::vector<unsigned>{99, 4, 4, 7}));
    EXPECT_EQ(FindOvPointById(a, b, nullptr), 3);
    OvPointList empty;
    EXPECT_EQ(FindOvPointById(empty, b, &result), 0);
    EXPECT_EQ(FindOvPointById(a, empty, &result), 0);
}

TEST(OvCalcGravitycenter, LastCoordinatesAndSummedDeviations) {
    OvPointList list;
    OvPoint* first = NewPoint(3, 1);
    first->SetD(0, 1.0);
    first->SetR(0, 7.0);
    first->SetName("a");
    first->GetFlag().SetFlag(0x3);
    OvPoint* second = NewPoint(4, 2, 2.0, 2.0, 2.0);
    second->SetD(0, 1.0);
    list.Add(first);
    list.Add(second);

    const OvPoint g = OvCalcGravitycenter(list);
    EXPECT_EQ(g.GetX(), 2.0);
    EXPECT_EQ(g.GetY(), 2.0);
    EXPECT_EQ(g.GetZ(), 2.0);
    EXPECT_EQ(g.GetD(0), 2.0);
    EXPECT_EQ(g.GetD(1), 0.0);
    EXPECT_EQ(g.GetR(0), 0.0);
    EXPECT_EQ(g.GetId(), 0u);
    EXPECT_EQ(g.GetPhotoId(), 0u);
    EXPECT_TRUE(g.GetName().empty());
    EXPECT_EQ(g.GetFlag().IsFlagSet(0xFFFFFFFFu), 0u);
}

TEST(OvCalcGravitycenter, FollowsTheFoldStepByStep) {
    // The rule computed by hand: g starts at zero; for each p, g.xyz = g.xyz * 0 + p.xyz and
    // g.d = g.d + p.d.
    const double xyz[4][3] = {{1, 2, 3}, {-4, 5.5, 6}, {7, -8, 9.25}, {0.5, 0.25, -0.125}};
    const double d[4][3] = {{0.1, 0.2, 0.3}, {1, 1, 1}, {-0.5, 0, 2}, {3, 3, 3}};
    OvPointList list;
    double expectedD[3] = {0, 0, 0};
    for (int i = 0; i < 4; ++i) {
        OvPoint* p = NewPoint(static_cast<unsigned>(i + 1), 0, xyz[i][0], xyz[i][1], xyz[i][2]);
        for (int k = 0; k < 3; ++k) {
            p->SetD(k, d[i][k]);
            expectedD[k] += d[i][k];
        }
        list.Add(p);
    }
    const OvPoint g = OvCalcGravitycenter(list);
    EXPECT_EQ(g.GetX(), 0.5);
    EXPECT_EQ(g.GetY(), 0.25);
    EXPECT_EQ(g.GetZ(), -0.125);
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(g.GetD(k), expectedD[k]) << k;

    const OvPoint zero = OvCalcGravitycenter(OvPointList());
    EXPECT_EQ(zero.GetX(), 0.0);
    EXPECT_EQ(zero.GetD(0), 0.0);
    EXPECT_EQ(zero.GetId(), 0u);
}

TEST(OvPointListCopy, CopiesPointsAndMask) {
    const eOvPointRWMask codes[] = {eOvPointRWId, eOvPointRWX, eOvPointRWEnd};
    OvPointList list{TOvFormatTable<eOvPointRWMask>(codes)};
    list.Add(NewPoint(1, 0, 1.0));
    list.Add(NewPoint(2, 0, 2.0));

    OvPointList copy(list);
    EXPECT_EQ(Ids(copy), (std::vector<unsigned>{1, 2}));
    EXPECT_NE(copy.First(), list.First());
    EXPECT_EQ(copy.GetMask().Size(), 2);
    EXPECT_EQ(copy.GetMask()[1], eOvPointRWX);

    OvPointList assigned;
    assigned.Add(NewPoint(9, 0));
    assigned = list;
    EXPECT_EQ(Ids(assigned), (std::vector<unsigned>{1, 2}));
    EXPECT_EQ(assigned.GetMask().HasEntry(eOvPointRWX), 1);

    const eOvPointRWMask other[] = {eOvPointRWZ, eOvPointRWEnd};
    EXPECT_EQ(assigned.SetMask(TOvFormatTable<eOvPointRWMask>(other)).Size(), 1);
    EXPECT_EQ(assigned.GetMask()[0], eOvPointRWZ);
    EXPECT_EQ(list.GetMask().Size(), 2);
}

}  // namespace
}  // namespace orvo
