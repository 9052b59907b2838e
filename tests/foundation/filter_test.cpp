#include "orvo/foundation/filter.h"

#include <gtest/gtest.h>

#include "orvo/foundation/object.h"

namespace orvo {
namespace {

// A filter that answers as told, counts how often it was asked and reports its destruction.
class Probe : public OvFilter {
public:
    Probe(unsigned answer, int* asked, int* destroyed)
        : answer(answer), asked(asked), destroyed(destroyed) {}
    ~Probe() override { ++*destroyed; }
    unsigned Test(const OvObject*) const override {
        ++*asked;
        return answer;
    }

private:
    unsigned answer;
    int* asked;
    int* destroyed;
};

struct Tally {
    int askedA = 0, askedB = 0, goneA = 0, goneB = 0;
};

TEST(Filter, AndStopsAtTheFirstRejection) {
    Tally t;
    const OvObject o(1);
    {
        OvAndFilter f(new Probe(0, &t.askedA, &t.goneA), new Probe(1, &t.askedB, &t.goneB));
        EXPECT_EQ(f.Test(&o), 0u);
        EXPECT_EQ(t.askedA, 1);
        EXPECT_EQ(t.askedB, 0);
    }
    EXPECT_EQ(t.goneA, 1);
    EXPECT_EQ(t.goneB, 1);

    Tally u;
    OvAndFilter both(new Probe(5, &u.askedA, &u.goneA), new Probe(9, &u.askedB, &u.goneB));
    EXPECT_EQ(both.Test(&o), 1u);  // non-zero answers become 1
    OvAndFilter second(new Probe(5, &u.askedA, &u.goneA), new Probe(0, &u.askedB, &u.goneB));
    EXPECT_EQ(second.Test(&o), 0u);
    EXPECT_EQ(u.askedB, 2);
}

TEST(Filter, OrStopsAtTheFirstAcceptance) {
    Tally t;
    const OvObject o(1);
    {
        OvOrFilter f(new Probe(3, &t.askedA, &t.goneA), new Probe(0, &t.askedB, &t.goneB));
        EXPECT_EQ(f.Test(&o), 1u);
        EXPECT_EQ(t.askedB, 0);
        OvOrFilter g(new Probe(0, &t.askedA, &t.goneA), new Probe(2, &t.askedB, &t.goneB));
        EXPECT_EQ(g.Test(&o), 1u);
        OvOrFilter h(new Probe(0, &t.askedA, &t.goneA), new Probe(0, &t.askedB, &t.goneB));
        EXPECT_EQ(h.Test(&o), 0u);
        EXPECT_EQ(t.askedA, 3);
        EXPECT_EQ(t.askedB, 2);
    }
    EXPECT_EQ(t.goneA, 3);
    EXPECT_EQ(t.goneB, 3);
}

TEST(Filter, NotOwnsAndInverts) {
    int asked = 0, gone = 0;
    {
        OvNotFilter yes(new Probe(0, &asked, &gone));
        OvNotFilter no(new Probe(4, &asked, &gone));
        EXPECT_EQ(yes.Test(nullptr), 1u);
        EXPECT_EQ(no.Test(nullptr), 0u);
        OvNotFilter empty(nullptr);
        EXPECT_EQ(empty.Test(nullptr), 1u);
    }
    EXPECT_EQ(gone, 2);
}

unsigned IdIsEven(const OvObject* o) {
    return o->GetId() % 2 == 0 ? 2u : 0u;
}

TEST(Filter, TestTrueFalseAndNesting) {
    const OvObject even(4);
    const OvObject odd(3);
    OvTestFilter f(&IdIsEven);
    EXPECT_EQ(f.Test(&even), 2u);  // the function's own value
    EXPECT_EQ(f.Test(&odd), 0u);
    EXPECT_EQ(OvTestFilter(nullptr).Test(&even), 0u);
    EXPECT_EQ(OvTrueFilter().Test(nullptr), 1u);
    EXPECT_EQ(OvFalseFilter().Test(nullptr), 0u);

    // not(even) or false  ->  odd
    OvOrFilter odd_only(new OvNotFilter(new OvTestFilter(&IdIsEven)), new OvFalseFilter);
    EXPECT_EQ(odd_only.Test(&odd), 1u);
    EXPECT_EQ(odd_only.Test(&even), 0u);
    OvAndFilter with_null(new OvTrueFilter, nullptr);
    EXPECT_EQ(with_null.Test(&odd), 0u);
}

}  // namespace
}  // namespace orvo
