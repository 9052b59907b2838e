#include "orvo/foundation/attribute.h"

#include <gtest/gtest.h>

#include <memory>

namespace orvo {
namespace {

// The attributes only keep the photo's address; a stand-in address will do.
int photoStandIn = 0;
OvPhoto* const kPhoto = reinterpret_cast<OvPhoto*>(&photoStandIn);

class HookedAttribute : public OvAttribute {
public:
    HookedAttribute(const char* text, int* subtracted) : OvAttribute(String(text)), n(subtracted) {}
    void AttachTo(OvPhoto* photo) { SetPhoto(photo); }
    int OnSubtract() override {
        ++*n;
        return OvAttribute::OnSubtract();
    }
    int* n;
};

TEST(Attribute, HooksReturnOneAndTheTextIsTheName) {
    OvAttribute a(String("Belichtung=1/125"));
    EXPECT_STREQ(a.GetName().chars(), "Belichtung=1/125");
    EXPECT_EQ(a.GetId(), 0u);
    EXPECT_EQ(a.OnAdd(), 1);
    EXPECT_EQ(a.OnSubtract(), 1);
    EXPECT_EQ(a.GetPhoto(), nullptr);
}

TEST(Attribute, SubtractCallsTheHookAndForgetsThePhoto) {
    int subtracted = 0;
    OvAttributeList list;
    auto* a = new HookedAttribute("a", &subtracted);
    a->AttachTo(kPhoto);
    list.Add(a);
    list.Add(new OvAttribute(String("b")));
    EXPECT_EQ(list.First()->GetPhoto(), kPhoto);

    std::unique_ptr<OvAttribute> back(list.Subtract(static_cast<OvAttribute*>(a)));
    EXPECT_EQ(back.get(), a);
    EXPECT_EQ(subtracted, 1);
    EXPECT_EQ(back->GetPhoto(), nullptr);
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.Subtract(static_cast<OvAttribute*>(nullptr)), nullptr);

    // The other removals go through the same override.
    list.Add(back.release());
    std::unique_ptr<OvAttribute> byName(list.Subtract(String("a")));
    EXPECT_EQ(subtracted, 2);
}

TEST(Attribute, NextAndPreviousWalkTheList) {
    OvAttributeList list;
    OvAttribute* a = list.Add(new OvAttribute(String("a")));
    OvAttribute* b = list.Add(new OvAttribute(String("b")));
    EXPECT_EQ(a->Next(), b);
    EXPECT_EQ(b->Previous(), a);
    EXPECT_EQ(a->Previous(), nullptr);
    EXPECT_EQ(b->Next(), nullptr);

    OvAttributeList copy(list);
    EXPECT_EQ(copy.Count(), 2);
    EXPECT_STREQ(copy.Last()->GetName().chars(), "b");
    EXPECT_NE(copy.Last(), b);
}

TEST(Attribute, AssignmentCopiesTextIdAndPhoto) {
    int subtracted = 0;
    HookedAttribute a("x", &subtracted);
    a.SetId(3);
    a.AttachTo(kPhoto);
    OvAttribute b;
    OvAttribute& self = (b = a);
    EXPECT_EQ(&self, &b);
    EXPECT_EQ(b.GetId(), 3u);
    EXPECT_STREQ(b.GetName().chars(), "x");
    EXPECT_EQ(b.GetPhoto(), kPhoto);
}

}  // namespace
}  // namespace orvo
