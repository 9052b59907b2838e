// The record list of the library: TOvBaseListHeader plus the operations that use ids and names.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "orvo/foundation/base_list.h"
#include "orvo/foundation/string.h"

namespace orvo {

/// Lookups return the first match from the head, so duplicate ids and names are allowed and the
/// earlier record wins. The list never assigns ids: take one from `GetFreeId` before adding.
///
/// Overloads to mind: `Subtract(int)` removes by position, `Subtract(unsigned)` by id
/// (`Subtract(3)` is the fourth node, `Subtract(3u)` the node with id 3).
template <class T>
class TOvListHeader : public TOvBaseListHeader<T> {
    using Base = TOvBaseListHeader<T>;

public:
    TOvListHeader() = default;
    TOvListHeader(const TOvListHeader& other) = default;
    TOvListHeader& operator=(const TOvListHeader& other) {
        Base::operator=(other);
        return *this;
    }
    ~TOvListHeader() override = default;

    using Base::Find;
    using Base::Subtract;

    /// `Subtract` of the node that `Find(name)` (exact) returns; null when there is none.
    virtual T* Subtract(const String& name);
    /// `Subtract(Find(id))`; null when there is none.
    virtual T* Subtract(std::uint32_t id);
    /// The first node whose name equals `name`: case-sensitive (`compare`) when `exact`,
    /// case-insensitive (`fcompare`) otherwise. Null if none.
    virtual T* Find(const String& name, bool exact = true) const;
    /// The first node with that id, or null.
    virtual T* Find(std::uint32_t id) const;
    /// `wish` 0: the largest id in the list plus 1 (1 for an empty list). Otherwise `wish`
    /// itself if no node has it, else the next larger id that no node has. When the ids run up
    /// to the largest 32-bit value, `wish` 0 looks for the smallest free id from 1 on and a
    /// `wish` with no free id above it gives 0 ("none").
    virtual std::uint32_t GetFreeId(std::uint32_t wish = 0) const;
    /// Gives the nodes from `from` (the head when null) to the tail the ids `start`,
    /// `start + step`, `start + 2 * step`, ...; returns the number renumbered (0 for an empty list,
    /// and for a `from` that is not in this list).
    virtual int Renumber(std::uint32_t start = 1, T* from = nullptr, std::uint32_t step = 1);
};

template <class T>
T* TOvListHeader<T>::Subtract(const String& name) {
    T* node = Find(name, true);
    return node != nullptr ? Subtract(node) : nullptr;
}

template <class T>
T* TOvListHeader<T>::Subtract(std::uint32_t id) {
    T* node = Find(id);
    return node != nullptr ? Subtract(node) : nullptr;
}

template <class T>
T* TOvListHeader<T>::Find(const String& name, bool exact) const {
    for (T* p = this->head; p != nullptr; p = Base::Next(p)) {
        const String& own = p->GetName();
        if ((exact ? compare(own, name) : fcompare(own, name)) == 0) return p;
    }
    return nullptr;
}

template <class T>
T* TOvListHeader<T>::Find(std::uint32_t id) const {
    return this->FindFirstById(id);
}

template <class T>
std::uint32_t TOvListHeader<T>::GetFreeId(std::uint32_t wish) const {
    constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
    std::vector<std::uint32_t> ids;
    for (T* p = this->head; p != nullptr; p = Base::Next(p))
        ids.push_back(p->GetId());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());

    if (wish == 0) {
        if (ids.empty()) return 1;
        if (ids.back() != kLargest) return ids.back() + 1;
        wish = 1;
    }
    std::uint32_t candidate = wish;
    for (auto it = std::lower_bound(ids.begin(), ids.end(), wish);
         it != ids.end() && *it == candidate; ++it) {
        if (candidate == kLargest) return 0;
        ++candidate;
    }
    return candidate;
}

template <class T>
int TOvListHeader<T>::Renumber(std::uint32_t start, T* from, std::uint32_t step) {
    T* p = from != nullptr ? from : this->head;
    if (p == nullptr) return 0;
    if (from != nullptr && !Base::Exist(from)) return 0;
    int n = 0;
    std::uint32_t id = start;
    for (; p != nullptr; p = Base::Next(p), ++n, id += step)
        p->SetId(id);
    return n;
}

}  // namespace orvo
