#include "orvo/services/registry.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using orvo::Link;
using orvo::OvRuntimeLinker;
using orvo::OvRuntimeParameter;

// A module offering functions by name: doubles an int parameter into a result it owns.
class Doubler : public orvo::LinkHdl {
public:
    std::int32_t Double(void* arg) {
        ++calls;
        auto* param = static_cast<OvRuntimeParameter*>(arg);
        result = 2 * *static_cast<int*>(param->GetParameter());
        param->SetReturnvalue(&result);
        return 0;
    }
    std::int32_t RemoveSelf(void*) {
        ++calls;
        OvRuntimeLinker::Instance()->Remove("self");
        return 1;
    }
    int calls = 0;
    int result = 0;
};

// A parameter record that owns what it points to and frees it through the hooks.
class OwningParameter : public OvRuntimeParameter {
public:
    explicit OwningParameter(int value) { SetParameter(new int(value)); }
    void DestroyParameter() override {
        delete static_cast<int*>(parameter);
        parameter = nullptr;
    }
};

TEST(RuntimeLinker, SingleInstance) {
    OvRuntimeLinker* linker = OvRuntimeLinker::Instance();
    ASSERT_NE(linker, nullptr);
    EXPECT_EQ(OvRuntimeLinker::Instance(), linker);
}

TEST(RuntimeLinker, RegisterCallRemove) {
    OvRuntimeLinker& linker = *OvRuntimeLinker::Instance();
    Doubler module;
    ASSERT_TRUE(linker.Register("test.double", Link(&module, &Doubler::Double)));

    int input = 21;
    OvRuntimeParameter param;
    param.SetParameter(&input);
    EXPECT_TRUE(linker.Call("test.double", param));
    ASSERT_EQ(param.GetReturnvalue(), &module.result);
    EXPECT_EQ(*static_cast<int*>(param.GetReturnvalue()), 42);

    // Names are case-sensitive.
    EXPECT_FALSE(linker.Call("Test.Double", param));
    EXPECT_EQ(module.calls, 1);

    // A taken name keeps its first link.
    Doubler other;
    EXPECT_FALSE(linker.Register("test.double", Link(&other, &Doubler::Double)));
    linker.Call("test.double", param);
    EXPECT_EQ(module.calls, 2);
    EXPECT_EQ(other.calls, 0);

    EXPECT_TRUE(linker.Remove("test.double"));
    EXPECT_FALSE(linker.Remove("test.double"));
    EXPECT_FALSE(linker.Call("test.double", param));
    EXPECT_TRUE(linker.Register("test.double", Link(&other, &Doubler::Double)));
    linker.Call("test.double", param);
    EXPECT_EQ(other.calls, 1);
    EXPECT_TRUE(linker.Remove("test.double"));
}

TEST(RuntimeLinker, UnsetLinkStillCountsAsRegistered) {
    OvRuntimeLinker& linker = *OvRuntimeLinker::Instance();
    ASSERT_TRUE(linker.Register("test.unset", Link()));
    OvRuntimeParameter param;
    EXPECT_TRUE(linker.Call("test.unset", param));
    EXPECT_EQ(param.GetReturnvalue(), nullptr);
    EXPECT_FALSE(linker.Call("test.unknown", param));
    EXPECT_TRUE(linker.Remove("test.unset"));
}

TEST(RuntimeLinker, CalleeMayRemoveItself) {
    OvRuntimeLinker& linker = *OvRuntimeLinker::Instance();
    Doubler module;
    ASSERT_TRUE(linker.Register("self", Link(&module, &Doubler::RemoveSelf)));
    OvRuntimeParameter param;
    EXPECT_TRUE(linker.Call("self", param));
    EXPECT_EQ(module.calls, 1);
    EXPECT_FALSE(linker.Call("self", param));
}

TEST(RuntimeParameter, CopiesPointersAndHooksAreOptional) {
    int a = 1, b = 2;
    OvRuntimeParameter param;
    EXPECT_EQ(param.GetParameter(), nullptr);
    EXPECT_EQ(param.GetReturnvalue(), nullptr);
    param.SetParameter(&a);
    param.SetReturnvalue(&b);
    OvRuntimeParameter copy(param);
    EXPECT_EQ(copy.GetParameter(), &a);
    EXPECT_EQ(copy.GetReturnvalue(), &b);
    // The base hooks free nothing and change nothing.
    copy.DestroyParameter();
    copy.DestroyReturnvalue();
    EXPECT_EQ(copy.GetParameter(), &a);

    OwningParameter owning(5);
    OvRuntimeParameter& asBase = owning;
    EXPECT_EQ(*static_cast<int*>(asBase.GetParameter()), 5);
    asBase.DestroyParameter();  // the override frees the int (ASan would report a leak)
    EXPECT_EQ(asBase.GetParameter(), nullptr);
}

}  // namespace
