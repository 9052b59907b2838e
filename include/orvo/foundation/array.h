// A growable array that keeps every element in a heap cell of its own, with linear and binary
// search and the library's own quicksort.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace orvo {

/// Elements need a copy constructor; searching needs `==`, sorting and binary search `<`.
///
/// Capacity: 256 by default or as given; when the array is full it grows to twice its count
/// (to 1 for an array made with capacity 0). The pointer array itself is allocated on the
/// first insertion, so an array that stays empty costs no heap memory.
///
/// Index errors never touch memory outside the array: `operator[]` throws
/// `std::out_of_range`, `Insert` and `Remove` report failure, and the sort and search ranges are
/// checked.
template <class T>
class TOvArray {
public:
    static constexpr std::int32_t kDefaultCapacity = 256;

    TOvArray() : TOvArray(kDefaultCapacity) {}
    /// An empty array with room for `initialCapacity` elements (negative counts as 0).
    explicit TOvArray(int initialCapacity) : capacity(initialCapacity < 0 ? 0 : initialCapacity) {}
    /// Copies every element into cells of its own; the capacity is the other's.
    TOvArray(const TOvArray& other);
    TOvArray& operator=(const TOvArray& other);
    virtual ~TOvArray() = default;

    /// Appends a copy of `value`; returns its index.
    int Add(const T& value);
    /// Inserts a copy of `value` at `index` (0..Size()), moving the later elements up by one.
    /// Returns `index`, or -1 (nothing inserted) for an index outside 0..Size().
    int Insert(const T& value, int index);
    /// Deletes the element at `index` and moves the later ones down; false for a bad index.
    bool Remove(int index);
    /// Deletes every element and the pointer array; the array starts again with capacity 256.
    void Clear();

    /// Index of the first element equal to `value` in [from, to) (`to` -1: up to Size()), or
    /// -1. The range is clipped to the array.
    int Search(const T& value, int from = 0, int to = -1) const;
    /// Binary search in an array sorted ascending; the index of an equal element or -1.
    int BinSearchUp(const T& value) const;
    /// Binary search in an array sorted descending; the index of an equal element or -1.
    int BinSearchDown(const T& value) const;

    /// `QuickSort(0, Size() - 1)`. As the library has always sorted: a range of two elements is
    /// left as it stands, so a two-element array is not ordered by `Sort`.
    void Sort();
    /// Sorts [lo, hi] ascending: returns at once when hi - lo < 2; a range of more than 8
    /// elements is partitioned around its middle element (swapped to the front first); smaller
    /// ranges go to `InsertSort`. A range outside the array is ignored.
    void QuickSort(int lo, int hi);
    /// Sorts [lo, hi] by moving, for i from hi down to lo + 1, the greatest element of [lo, i]
    /// (the last one among equals) to position i. A range outside the array is ignored.
    void InsertSort(int lo, int hi);

    /// Same count and pairwise equal elements.
    bool operator==(const TOvArray& other) const;
    bool operator!=(const TOvArray& other) const { return !(*this == other); }

    T& operator[](int index);
    const T& operator[](int index) const;
    int Size() const { return count; }
    int Capacity() const { return capacity; }

private:
    using Cell = std::unique_ptr<T>;

    void MakeRoom();
    void Reallocate(std::int32_t newCapacity);
    void SwapCells(int a, int b) { std::swap(data[a], data[b]); }
    bool ValidRange(int lo, int hi) const { return lo >= 0 && hi < count && lo <= hi; }
    void CheckIndex(int index) const {
        if (index < 0 || index >= count) throw std::out_of_range("TOvArray index out of range");
    }

    std::unique_ptr<Cell[]> data;  // null until the first insertion
    std::int32_t count = 0;
    std::int32_t capacity = 0;
};

template <class T>
TOvArray<T>::TOvArray(const TOvArray& other) : capacity(other.capacity) {
    if (other.data) {
        Reallocate(capacity);
        for (int i = 0; i < other.count; ++i) {
            data[i] = std::make_unique<T>(*other.data[i]);
            ++count;
        }
    }
}

template <class T>
TOvArray<T>& TOvArray<T>::operator=(const TOvArray& other) {
    if (this != &other) {
        TOvArray copy(other);
        data = std::move(copy.data);
        count = copy.count;
        capacity = copy.capacity;
    }
    return *this;
}

template <class T>
void TOvArray<T>::Reallocate(std::int32_t newCapacity) {
    auto grown = std::make_unique<Cell[]>(static_cast<std::size_t>(newCapacity));
    for (int i = 0; i < count; ++i)
        grown[i] = std::move(data[i]);
    data = std::move(grown);
    capacity = newCapacity;
}

template <class T>
void TOvArray<T>::MakeRoom() {
    if (count == capacity) {
        constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();
        if (count == kMax) throw std::length_error("TOvArray is full");
        const std::int32_t grown = count == 0 ? 1 : (count > kMax / 2 ? kMax : 2 * count);
        Reallocate(grown);
    } else if (!data) {
        Reallocate(capacity);
    }
}

template <class T>
int TOvArray<T>::Add(const T& value) {
    return Insert(value, count);
}

template <class T>
int TOvArray<T>::Insert(const T& value, int index) {
    if (index < 0 || index > count) return -1;
    auto cell = std::make_unique<T>(value);
    MakeRoom();
    for (int i = count; i > index; --i)
        data[i] = std::move(data[i - 1]);
    data[index] = std::move(cell);
    ++count;
    return index;
}

template <class T>
bool TOvArray<T>::Remove(int index) {
    if (index < 0 || index >= count) return false;
    data[index].reset();
    for (int i = index; i + 1 < count; ++i)
        data[i] = std::move(data[i + 1]);
    data[count - 1].reset();
    --count;
    return true;
}

template <class T>
void TOvArray<T>::Clear() {
    data.reset();
    count = 0;
    capacity = kDefaultCapacity;
}

template <class T>
int TOvArray<T>::Search(const T& value, int from, int to) const {
    if (to < 0 || to > count) to = count;
    if (from < 0) from = 0;
    for (int i = from; i < to; ++i) {
        if (*data[i] == value) return i;
    }
    return -1;
}

template <class T>
int TOvArray<T>::BinSearchUp(const T& value) const {
    int lo = 0;
    int hi = count - 1;
    while (lo <= hi) {
        const int mid = lo + (hi - lo) / 2;
        const T& probe = *data[mid];
        if (probe == value) return mid;
        if (probe < value) {
            lo = mid + 1;
        } else {
            hi = mid - 1;
        }
    }
    return -1;
}

template <class T>
int TOvArray<T>::BinSearchDown(const T& value) const {
    int lo = 0;
    int hi = count - 1;
    while (lo <= hi) {
        const int mid = lo + (hi - lo) / 2;
        const T& probe = *data[mid];
        if (probe == value) return mid;
        if (value < probe) {
            lo = mid + 1;
        } else {
            hi = mid - 1;
        }
    }
    return -1;
}

template <class T>
void TOvArray<T>::Sort() {
    QuickSort(0, count - 1);
}

template <class T>
void TOvArray<T>::QuickSort(int lo, int hi) {
    // The smaller part is sorted by recursion and the larger one by the loop, so the stack stays
    // logarithmic even for runs of equal elements; the resulting order is the same.
    while (hi - lo >= 2 && ValidRange(lo, hi)) {
        if (hi - lo + 1 <= 8) {
            InsertSort(lo, hi);
            return;
        }
        SwapCells(lo, lo + (hi - lo) / 2);
        int last = lo;
        for (int i = lo + 1; i <= hi; ++i) {
            if (*data[i] < *data[lo]) SwapCells(++last, i);
        }
        SwapCells(lo, last);
        if (last - lo < hi - last) {
            QuickSort(lo, last - 1);
            lo = last + 1;
        } else {
            QuickSort(last + 1, hi);
            hi = last - 1;
        }
    }
}

template <class T>
void TOvArray<T>::InsertSort(int lo, int hi) {
    if (!ValidRange(lo, hi)) return;
    for (int i = hi; i > lo; --i) {
        int greatest = lo;
        for (int j = lo + 1; j <= i; ++j) {
            if (!(*data[j] < *data[greatest])) greatest = j;
        }
        SwapCells(greatest, i);
    }
}

template <class T>
bool TOvArray<T>::operator==(const TOvArray& other) const {
    if (count != other.count) return false;
    for (int i = 0; i < count; ++i) {
        if (!(*data[i] == *other.data[i])) return false;
    }
    return true;
}

template <class T>
T& TOvArray<T>::operator[](int index) {
    CheckIndex(index);
    return *data[index];
}

template <class T>
const T& TOvArray<T>::operator[](int index) const {
    CheckIndex(index);
    return *data[index];
}

}  // namespace orvo
