#include "orvo/foundation/array.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace orvo {

template class TOvArray<int>;

namespace {

std::vector<int> Contents(const TOvArray<int>& a) {
    std::vector<int> v;
    for (int i = 0; i < a.Size(); ++i)
        v.push_back(a[i]);
    return v;
}

TOvArray<int> Of(std::initializer_list<int> values) {
    TOvArray<int> a;
    for (int v : values)
        a.Add(v);
    return a;
}

// An element ordered by `key` only; `tag` shows which of equal elements went where.
struct Keyed {
    int key;
    char tag;
    bool operator<(const Keyed& o) const { return key < o.key; }
    bool operator==(const Keyed& o) const { return key == o.key; }
};

TEST(ArrayGrowth, DoublesTheCountWhenFull) {
    TOvArray<int> a;
    EXPECT_EQ(a.Capacity(), 256);
    for (int i = 0; i < 256; ++i)
        a.Add(i);
    EXPECT_EQ(a.Capacity(), 256);
    a.Add(256);
    EXPECT_EQ(a.Capacity(), 512);
    EXPECT_EQ(a.Size(), 257);
    EXPECT_EQ(a[0], 0);
    EXPECT_EQ(a[256], 256);

    TOvArray<int> small(3);
    for (int i = 0; i < 3; ++i)
        small.Add(i);
    small.Insert(9, 1);
    EXPECT_EQ(small.Capacity(), 6);
    EXPECT_EQ(Contents(small), (std::vector<int>{0, 9, 1, 2}));

    TOvArray<int> none(0);  // twice nothing would stay nothing: it grows to one
    none.Add(5);
    EXPECT_EQ(none.Capacity(), 1);
    none.Add(6);
    EXPECT_EQ(none.Capacity(), 2);
    EXPECT_EQ(Contents(none), (std::vector<int>{5, 6}));
}

TEST(ArrayEdit, InsertRemoveClear) {
    TOvArray<int> a = Of({1, 2, 3});
    EXPECT_EQ(a.Insert(0, 0), 0);
    EXPECT_EQ(a.Insert(4, 4), 4);
    EXPECT_EQ(a.Insert(7, 6), -1);
    EXPECT_EQ(a.Insert(7, -1), -1);
    EXPECT_EQ(Contents(a), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_TRUE(a.Remove(0));
    EXPECT_TRUE(a.Remove(3));
    EXPECT_FALSE(a.Remove(3));
    EXPECT_FALSE(a.Remove(-1));
    EXPECT_EQ(Contents(a), (std::vector<int>{1, 2, 3}));
    EXPECT_THROW(a[3], std::out_of_range);
    EXPECT_THROW(a[-1], std::out_of_range);

    TOvArray<int> big(2);
    big.Add(1);
    big.Add(2);
    big.Add(3);
    big.Clear();
    EXPECT_EQ(big.Size(), 0);
    EXPECT_EQ(big.Capacity(), 256);
    big.Add(8);
    EXPECT_EQ(Contents(big), (std::vector<int>{8}));
}

TEST(ArrayEdit, CopiesAreIndependentAndCompareByContents) {
    TOvArray<int> a = Of({4, 5});
    TOvArray<int> b(a);
    EXPECT_TRUE(a == b);
    b[0] = 6;
    EXPECT_EQ(a[0], 4);
    EXPECT_TRUE(a != b);
    b = a;
    EXPECT_TRUE(a == b);
    b.Add(1);
    EXPECT_FALSE(a == b);
    EXPECT_TRUE(TOvArray<int>() == TOvArray<int>(3));
}

TEST(ArraySearch, LinearSearchInAHalfOpenRange) {
    TOvArray<int> a = Of({7, 3, 7, 1});
    EXPECT_EQ(a.Search(7), 0);
    EXPECT_EQ(a.Search(7, 1), 2);
    EXPECT_EQ(a.Search(7, 1, 2), -1);
    EXPECT_EQ(a.Search(1, 0, -1), 3);
    EXPECT_EQ(a.Search(1, 0, 99), 3);
    EXPECT_EQ(a.Search(9), -1);
    EXPECT_EQ(TOvArray<int>().Search(1), -1);
}

TEST(ArraySearch, BinarySearchUpAndDown) {
    TOvArray<int> up = Of({1, 3, 5, 7, 9, 11});
    for (int i = 0; i < up.Size(); ++i)
        EXPECT_EQ(up.BinSearchUp(up[i]), i);
    for (int absent : {0, 2, 6, 12})
        EXPECT_EQ(up.BinSearchUp(absent), -1);

    TOvArray<int> down = Of({20, 15, 10, 5, 0});
    for (int i = 0; i < down.Size(); ++i)
        EXPECT_EQ(down.BinSearchDown(down[i]), i);
    for (int absent : {-1, 7, 21})
        EXPECT_EQ(down.BinSearchDown(absent), -1);

    TOvArray<int> empty;
    EXPECT_EQ(empty.BinSearchUp(1), -1);
    EXPECT_EQ(empty.BinSearchDown(1), -1);
}

TEST(ArraySort, TwoElementsAreLeftAsTheyStand) {
    TOvArray<int> two = Of({2, 1});
    two.Sort();
    EXPECT_EQ(Contents(two), (std::vector<int>{2, 1}));

    TOvArray<int> three = Of({3, 1, 2});
    three.Sort();
    EXPECT_EQ(Contents(three), (std::vector<int>{1, 2, 3}));
}

TEST(ArraySort, PartitionAroundTheMiddleElement) {
    // Traced by hand: pivot 5 is swapped to the front; 1 and 2 move left of it as [1, 2], the
    // final swap turns them into [2, 1], and that two-element range is not sorted further.
    // The six elements right of the pivot go to the selection sort.
    TOvArray<int> a = Of({7, 6, 8, 9, 5, 1, 9, 2, 9});
    a.Sort();
    EXPECT_EQ(Contents(a), (std::vector<int>{2, 1, 5, 6, 7, 8, 9, 9, 9}));

    TOvArray<int> b = Of({9, 8, 7, 6, 5, 4, 3, 2, 1});
    b.Sort();
    EXPECT_EQ(Contents(b), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(ArraySort, InsertSortMovesTheLastOfEqualGreatestElements) {
    TOvArray<Keyed> a;
    a.Add({2, 'a'});
    a.Add({1, 'b'});
    a.Add({2, 'c'});
    a.InsertSort(0, 2);
    EXPECT_EQ(a[0].tag, 'b');
    EXPECT_EQ(a[1].tag, 'a');
    EXPECT_EQ(a[2].tag, 'c');
}

TEST(ArraySort, RangesOutsideTheArrayAreIgnored) {
    TOvArray<int> a = Of({3, 2, 1});
    a.InsertSort(0, 5);
    a.QuickSort(-3, 2);
    EXPECT_EQ(Contents(a), (std::vector<int>{3, 2, 1}));
    a.QuickSort(2, 0);
    EXPECT_EQ(Contents(a), (std::vector<int>{3, 2, 1}));
}

TEST(ArraySort, LargerArraysEndUpAsAPermutation) {
    TOvArray<int> a;
    std::vector<int> counts(50, 0);
    unsigned state = 12345;
    for (int i = 0; i < 1000; ++i) {
        state = state * 1103515245u + 12345u;
        const int v = static_cast<int>((state >> 16) % 50);
        ++counts[static_cast<std::size_t>(v)];
        a.Add(v);
    }
    a.Sort();
    std::vector<int> after(50, 0);
    int unordered = 0;
    for (int i = 0; i < a.Size(); ++i) {
        ++after[static_cast<std::size_t>(a[i])];
        if (i > 0 && a[i] < a[i - 1]) ++unordered;
    }
    EXPECT_EQ(after, counts);
    // Only two-element ranges can stay unordered, each leaving one descent behind.
    EXPECT_LT(unordered, a.Size() / 4);
}

}  // namespace
}  // namespace orvo
