// Column formats of point files: the column codes and the ordered table of codes that decides
// which columns a point file holds and in which order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

namespace orvo {

/// The column codes of a point file. Only the numeric values are fixed: they are what callers
/// store in their own format arrays. A value outside the named ones is a valid code that every
/// operation ignores; 0 ends a table wherever it stands.
enum eOvPointRWMask : std::uint32_t {
    eOvPointRWEnd = 0,          ///< ends the table
    eOvPointRWId = 1,           ///< "#": the id
    eOvPointRWCode123 = 2,      ///< "Code": control flags as "123" text, read as digits
    eOvPointRWCode = 3,         ///< "Code": control flags as a plain number
    eOvPointRWName = 4,         ///< "PP": the name (read: one number, discarded)
    eOvPointRWPhoto = 5,        ///< "Photo": the photo id
    eOvPointRWCamera = 6,       ///< "Camera": the camera id
    eOvPointRWX = 7,            ///< "   X"
    eOvPointRWY = 8,            ///< "   Y"
    eOvPointRWZ = 9,            ///< "   Z"
    eOvPointRWDx = 10,          ///< "  dx": d[0]
    eOvPointRWDy = 11,          ///< "  dy": d[1]
    eOvPointRWDz = 12,          ///< "  dz": d[2]
    eOvPointRWDs = 13,          ///< "  dS": length of d[] (read: one number, discarded)
    eOvPointRWRedu = 14,        ///< "Redu": r[0]
    eOvPointRWRedu2 = 15,       ///< "Redu2": r[1]
    eOvPointRWRedu3 = 16,       ///< "Redu3": r[2]
    eOvPointRWSkip = 17,        ///< writes nothing; reading skips one token of any kind
    eOvPointRWSx = 105,         ///< "  Sx": d[0] under its accuracy name
    eOvPointRWSy = 106,         ///< "  Sy": d[1]
    eOvPointRWSz = 107,         ///< "  Sz": d[2]
    eOvPointRWResidualX = 115,  ///< "Residual x": r[0]; reading consumes nothing
    eOvPointRWResidualY = 116,  ///< "Residual y": r[1]; reading consumes nothing
    eOvPointRWResidualZ = 117,  ///< "Residual z": r[2]; reading consumes nothing
};

/// An ordered, growable table of codes. Entries are kept in insertion order; a 0 entry (which
/// only `AddEntry` can store) ends the table for every user of it, the entries behind it stay
/// stored but unused.
template <class T>
class TOvFormatTable {
public:
    TOvFormatTable() = default;
    TOvFormatTable(const TOvFormatTable&) = default;
    /// From a zero-terminated array of codes; a null pointer gives an empty table.
    TOvFormatTable(const T* codes) { SetTable(codes); }  // NOLINT: implicit on purpose
    virtual ~TOvFormatTable() = default;

    TOvFormatTable& operator=(const TOvFormatTable& other) {
        SetTable(other);
        return *this;
    }
    TOvFormatTable& operator=(const T* codes) {
        SetTable(codes);
        return *this;
    }

    /// Clears the table, then appends the codes of the array up to, not including, the first 0.
    /// A null pointer or an array that begins with 0 leaves the table empty.
    TOvFormatTable& SetTable(const T* codes) {
        DelTable();
        if (codes != nullptr) {
            for (const T* code = codes; static_cast<std::uint32_t>(*code) != 0; ++code) {
                codes_.push_back(*code);
            }
        }
        return *this;
    }
    TOvFormatTable& SetTable(const TOvFormatTable& other) {
        if (this != &other) codes_ = other.codes_;
        return *this;
    }
    void DelTable() { codes_.clear(); }

    // AddEntry and Size keep their own names: a point list is both a table and a list, and
    // the list's Add and Count must stay unambiguous.

    /// Appends one code as it stands (a 0 is stored too and ends the table there).
    void AddEntry(T code) { codes_.push_back(code); }

    /// The number of stored entries.
    int Size() const { return static_cast<int>(codes_.size()); }

    /// The code at position i, or 0 when i is outside the table (negative or not below Count).
    T operator[](int i) const {
        if (i < 0 || static_cast<std::size_t>(i) >= codes_.size()) return static_cast<T>(0);
        return codes_[static_cast<std::size_t>(i)];
    }

    /// The position of the first entry equal to code, or -1 (also for an empty table).
    int HasEntry(T code) const {
        for (std::size_t i = 0; i < codes_.size(); ++i) {
            if (codes_[i] == code) return static_cast<int>(i);
        }
        return -1;
    }

    bool operator==(const TOvFormatTable& other) const { return codes_ == other.codes_; }

private:
    std::vector<T> codes_;
};

/// The column format of a point file.
using OvPointFormat = TOvFormatTable<eOvPointRWMask>;

/// Writes the header labels of the table's columns, each after its width manipulator, in table
/// order and without a line end. Code 17 and unknown codes write nothing; a 0 ends the header.
std::ostream& operator<<(std::ostream& out, const TOvFormatTable<eOvPointRWMask>& table);

}  // namespace orvo
