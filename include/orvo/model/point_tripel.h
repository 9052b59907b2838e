// Three points taken together (a triangle of a mesh, a triple of a construction), each with a
// visibility flag. The holder does not own the points.
#pragma once

#include <cstdint>

namespace orvo {

class OvPoint;

class OvPointTripel {
public:
    /// All three pointers null, all three flags clear.
    OvPointTripel() = default;
    OvPointTripel(const OvPointTripel&) = default;
    OvPointTripel& operator=(const OvPointTripel&) = default;

    // The index is 0, 1 or 2. The holder keeps to its three slots: an index outside them reads
    // as null / not visible and a write to it is dropped.

    /// Pointer i.
    OvPoint* operator[](int i) const { return InRange(i) ? points_[i] : nullptr; }
    /// Stores pointer i.
    void Set(OvPoint* point, int i) {
        if (InRange(i)) points_[i] = point;
    }
    bool IsVisible(int i) const { return InRange(i) && visible_[i] != 0; }
    void SetVisible(int i, bool visible) {
        if (InRange(i)) visible_[i] = visible ? 1 : 0;
    }
    /// True when point equals any of the three pointers.
    bool IsInTripel(const OvPoint* point) const {
        return point == points_[0] || point == points_[1] || point == points_[2];
    }
    /// True when all three pointers are set.
    bool IsValid() const {
        return points_[0] != nullptr && points_[1] != nullptr && points_[2] != nullptr;
    }

private:
    static bool InRange(int i) { return i >= 0 && i < 3; }

    OvPoint* points_[3] = {nullptr, nullptr, nullptr};
    std::uint8_t visible_[3] = {0, 0, 0};
};

}  // namespace orvo
