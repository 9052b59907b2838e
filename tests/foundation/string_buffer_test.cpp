// String buffers: the capacity rule, the shared empty buffer, copying and aliasing.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "orvo/foundation/string.h"

namespace orvo {
namespace {

// Capacity computed plainly from the rule: P is the smallest power of two >= 16 and >= n + 10,
// capacity P - 10, capped to 16 bits.
int ExpectedCapacity(int n) {
    long p = 16;
    while (p < n + 10L)
        p *= 2;
    return static_cast<int>(p - 10 > 65535 ? 65535 : p - 10);
}

String OfLength(int n) {
    const std::string text(static_cast<std::size_t>(n), 'x');
    return String(text.c_str(), n);
}

TEST(StringCapacity, BoundariesFollowThePowerOfTwoRule) {
    const struct {
        int n;
        int capacity;
    } cases[] = {{0, 6},         {1, 6},        {6, 6},       {7, 22},      {22, 22},
                 {23, 54},       {54, 54},      {55, 118},    {118, 118},   {119, 246},
                 {246, 246},     {247, 502},    {1014, 1014}, {1015, 2038}, {32758, 32758},
                 {32759, 65526}, {65526, 65526}};
    for (const auto& c : cases) {
        const String s = OfLength(c.n);
        EXPECT_EQ(s.length(), c.n);
        EXPECT_EQ(s.allocation(), c.capacity) << "n = " << c.n;
        EXPECT_EQ(s.allocation(), ExpectedCapacity(c.n)) << "n = " << c.n;
        EXPECT_TRUE(s.OK());
    }
}

TEST(StringCapacity, LengthsBeyondSixteenBitsAreTruncatedNotWrapped) {
    const String near = OfLength(65527);
    EXPECT_EQ(near.length(), 65527);
    EXPECT_EQ(near.allocation(), 65535);

    String full = OfLength(65535);
    EXPECT_EQ(full.length(), 65535);
    full += "more";
    EXPECT_EQ(full.length(), 65535);
    EXPECT_TRUE(full.OK());
    full.prepend("ab");
    EXPECT_EQ(full.length(), 65535);
    EXPECT_EQ(full.firstchar(), 'a');
    EXPECT_EQ(full.chars()[2], 'x');
    const String doubled = full + full;
    EXPECT_EQ(doubled.length(), 65535);
    EXPECT_TRUE(doubled.OK());

    const std::string huge(70000, 'y');
    const String fromHuge(huge.c_str());
    EXPECT_EQ(fromHuge.length(), 65535);
    EXPECT_EQ(replicate('z', 70000).length(), 65535);
    EXPECT_EQ(replicate(String("abc"), 30000).length(), 65535);
}

TEST(StringCapacity, SubStringAssignmentTruncatesTheResultAtTheEnd) {
    // Inserting a string into itself near the limit keeps the front of the result: the whole
    // inserted copy, then as much of the old text as fits.
    String s = OfLength(65531);
    s.prepend("ab");
    s.at(0, 0) = s;
    EXPECT_EQ(s.length(), 65535);
    EXPECT_EQ(String(s.at(0, 4)), "abxx");
    EXPECT_EQ(String(s.at(65533, 2)), "ab");
    EXPECT_TRUE(s.OK());

    String t = OfLength(65535);
    t.at(10, 0) = "inserted";
    EXPECT_EQ(t.length(), 65535);
    EXPECT_EQ(String(t.at(10, 8)), "inserted");
    EXPECT_EQ(t.chars()[65535], '\0');
}

TEST(StringCapacity, EmptyStringsShareTheNilBufferUntilGivenOne) {
    const String none;
    EXPECT_EQ(none.allocation(), 0);
    EXPECT_EQ(none.chars(), _nilStrRep.s);
    EXPECT_TRUE(none.empty());
    EXPECT_TRUE(none.OK());

    const String fromEmptyText("");
    EXPECT_EQ(fromEmptyText.allocation(), 6);
    EXPECT_NE(fromEmptyText.chars(), _nilStrRep.s);

    const String fromNull(static_cast<const char*>(nullptr));
    EXPECT_EQ(fromNull.allocation(), 6);
    EXPECT_EQ(fromNull.length(), 0);

    // Copying the nil string keeps the nil buffer; copying a real empty buffer makes one.
    const String copyOfNone(none);
    EXPECT_EQ(copyOfNone.allocation(), 0);
    const String copyOfEmpty(fromEmptyText);
    EXPECT_EQ(copyOfEmpty.allocation(), 6);
}

TEST(StringCapacity, AppendingBeyondCapacityAllocatesTheNextBlock) {
    String s("abcdef");
    EXPECT_EQ(s.allocation(), 6);
    s += 'g';
    EXPECT_EQ(s, "abcdefg");
    EXPECT_EQ(s.allocation(), 22);

    // A fitting append reuses the buffer in place.
    const char* before = s.chars();
    s += "hijkl";
    EXPECT_EQ(s.chars(), before);
    EXPECT_EQ(s, "abcdefghijkl");
}

TEST(StringCapacity, AllocGrowsKeepingTextAndNeverShrinks) {
    String s("abc");
    s.alloc(100);
    EXPECT_EQ(s.allocation(), 118);
    EXPECT_EQ(s, "abc");
    EXPECT_EQ(s.length(), 3);
    s.alloc(2);
    EXPECT_EQ(s.allocation(), 118);
    EXPECT_EQ(s, "abc");

    String none;
    none.alloc(0);
    EXPECT_EQ(none.allocation(), 6);
    EXPECT_EQ(none.length(), 0);
    EXPECT_TRUE(none.OK());
}

TEST(StringCopy, CopiesNeverShareABuffer) {
    String a("shared?");
    String b(a);
    EXPECT_NE(a.chars(), b.chars());
    b[0] = 'S';
    EXPECT_EQ(a, "shared?");
    EXPECT_EQ(b, "Shared?");

    String c;
    c = a;
    EXPECT_NE(c.chars(), a.chars());
    EXPECT_EQ(c, a);
}

TEST(StringCopy, AssignmentFollowsScopyRules) {
    String target("abcdefgh");  // capacity 22
    const char* buffer = target.chars();
    const String xy("xy");
    target = xy;  // fits: reused
    EXPECT_EQ(target.chars(), buffer);
    EXPECT_EQ(target, "xy");

    const String none0;
    target = none0;  // only the source is empty: the buffer is kept with length 0
    EXPECT_EQ(target.chars(), buffer);
    EXPECT_EQ(target.length(), 0);
    EXPECT_EQ(target.allocation(), 22);

    String none;
    none = none0;  // both empty: stays on the nil buffer
    EXPECT_EQ(none.allocation(), 0);

    const std::string longText(30, 'q');
    const String longer(longText.c_str());
    target = longer;  // does not fit: new buffer of the right size
    EXPECT_EQ(target.allocation(), 54);
    EXPECT_EQ(target.length(), 30);

    String self("self");
    const char* selfBuffer = self.chars();
    const String& alias = self;
    self = alias;
    EXPECT_EQ(self.chars(), selfBuffer);
    EXPECT_EQ(self, "self");
}

TEST(StringCopy, MoveLeavesTheSourceOnTheNilBuffer) {
    String a("moved text");
    const char* buffer = a.chars();
    String b(std::move(a));
    EXPECT_EQ(b.chars(), buffer);
    EXPECT_EQ(a.allocation(), 0);  // NOLINT(bugprone-use-after-move): defined state
    EXPECT_TRUE(a.empty());

    String c("other");
    c = std::move(b);
    EXPECT_EQ(c.chars(), buffer);
    EXPECT_EQ(c, "moved text");
}

TEST(StringConstruct, FromNumbersCharsAndCountedText) {
    EXPECT_EQ(String(42), "42");
    EXPECT_EQ(String(-7), "-7");
    EXPECT_EQ(String(3.14159), " 3.142");
    EXPECT_EQ(String(-1234.5), "-1234.500");
    EXPECT_EQ(String::DoubleFormat(), "%6.3f");
    EXPECT_EQ(String('q'), "q");
    EXPECT_EQ(String("abcdef", 3), "abc");
    EXPECT_EQ(String("abc", -1), "abc");

    const String withNul("a\0b", 3);
    EXPECT_EQ(withNul.length(), 3);
    EXPECT_EQ(withNul.chars()[2], 'b');
}

TEST(StringAliasing, AppendAndPrependItself) {
    String s("abcdefgh");  // capacity 22: doubling fits, but the source lies in the buffer
    const char* old = s.chars();
    s += s;
    EXPECT_EQ(s, "abcdefghabcdefgh");
    EXPECT_NE(s.chars(), old);
    EXPECT_EQ(s.allocation(), 22);

    String p("abc");
    p.prepend(p);
    EXPECT_EQ(p, "abcabc");
    p.prepend(p.at(1, 2));
    EXPECT_EQ(p, "bcabcabc");
    p += p.after(5);
    EXPECT_EQ(p, "bcabcabcbc");
}

TEST(StringAliasing, AssignASliceOfItself) {
    String s("abcdefgh");
    const char* buffer = s.chars();
    s = s.after(2);
    EXPECT_EQ(s, "defgh");
    EXPECT_EQ(s.chars(), buffer);  // shrinking into the same buffer
    s = s.at(1, 3);
    EXPECT_EQ(s, "efg");
    s = s.chars() + 1;
    EXPECT_EQ(s, "fg");
    EXPECT_TRUE(s.OK());
}

TEST(StringAliasing, PrependReusesWhenItFits) {
    String s("abc");  // capacity 6
    const char* buffer = s.chars();
    s.prepend("xy");
    EXPECT_EQ(s, "xyabc");
    EXPECT_EQ(s.chars(), buffer);
    s.prepend('_');
    EXPECT_EQ(s, "_xyabc");
    s.prepend("!");
    EXPECT_EQ(s, "!_xyabc");
    EXPECT_EQ(s.allocation(), 22);
}

TEST(StringBufferFunctions, SallocTerminatesAtSourceLength) {
    StrRep* rep = Salloc(nullptr, "abc", -1, 10);
    EXPECT_EQ(rep->len, 10);
    EXPECT_EQ(rep->sz, 22);
    EXPECT_STREQ(rep->s, "abc");
    // Reused in place when it fits; the source may be the buffer's own text.
    StrRep* again = Salloc(rep, rep->s + 1, 2, 2);
    EXPECT_EQ(again, rep);
    EXPECT_STREQ(again->s, "bc");
    EXPECT_EQ(again->len, 2);
    Sfree(again);

    StrRep* nil = &_nilStrRep;
    StrRep* fresh = Salloc(nil, nullptr, -1, -1);
    EXPECT_NE(fresh, nil);
    EXPECT_EQ(fresh->sz, 6);
    Sfree(fresh);
    Sfree(nil);  // ignored
    EXPECT_EQ(_nilStrRep.len, 0);
}

TEST(StringBufferFunctions, ScopyAndScat) {
    EXPECT_EQ(Scopy(nullptr, nullptr), &_nilStrRep);
    EXPECT_EQ(Scopy(&_nilStrRep, &_nilStrRep), &_nilStrRep);

    StrRep* a = Salloc(nullptr, "hello", -1, -1);
    StrRep* b = Scopy(nullptr, a);
    EXPECT_NE(a, b);
    EXPECT_STREQ(b->s, "hello");

    StrRep* c = Scat(b, "one", -1, "two", -1, "three", -1);
    EXPECT_STREQ(c->s, "onetwothree");
    EXPECT_EQ(c->len, 11);
    EXPECT_EQ(c->sz, 22);

    // The first piece is not copied when it already starts the target.
    StrRep* d = Scat(c, c->s, 3, "!", 1);
    EXPECT_EQ(d, c);
    EXPECT_STREQ(d->s, "one!");

    StrRep* e = Sprepend(d, ">>", -1);
    EXPECT_STREQ(e->s, ">>one!");
    Sfree(a);
    Sfree(e);
}

TEST(StringBufferFunctions, CaseFunctionsCopyIntoADifferentDestination) {
    StrRep* src = Salloc(nullptr, "Hello World", -1, -1);
    StrRep* up = Supcase(src, nullptr);
    EXPECT_STREQ(up->s, "HELLO WORLD");
    up = Sdowncase(src, up);
    EXPECT_STREQ(up->s, "hello world");
    up = Sreverse(src, up);
    EXPECT_STREQ(up->s, "dlroW olleH");
    up = Scapitalize(src, up);
    EXPECT_STREQ(up->s, "Hello WOrld");  // the "W" after the blank is skipped, not lowered
    EXPECT_STREQ(src->s, "Hello World");
    Sfree(src);
    Sfree(up);

    // Transforming the nil buffer in place writes nothing.
    EXPECT_EQ(Supcase(&_nilStrRep, &_nilStrRep), &_nilStrRep);
}

}  // namespace
}  // namespace orvo
