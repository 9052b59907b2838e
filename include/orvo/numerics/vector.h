// OvVector: a dense vector of doubles of any size with 1-based, checked access.
//
// Every index or size violation throws a plain `int` code (see linalg_errors.h); the vector is
// never reshaped by an assignment, so `a = b` with sizes that differ throws 3 instead of
// resizing `a`. Binary operators build their result in a new vector of the right size.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "orvo/numerics/linalg_errors.h"

namespace orvo {

class OvPoint;
class OvReaderObject;

// How a point is turned into a vector (the point constructor) and how a vector is switched
// between the 3- and 4-element forms (ChangeType). Values outside the four named ones are valid:
// the point constructor then makes a 4-element vector (x, y, z, 0) and ChangeType shrinks a
// 4-element vector to 3 elements without touching the third.
enum eOvVectorType : std::int32_t {
    eOvVectorXY0 = 0,   // (x, y, 0): a plane point
    eOvVectorXY1 = 1,   // (x, y, 1): a plane point in homogeneous form
    eOvVectorXYZ = 2,   // (x, y, z): a space point
    eOvVectorXYZW = 3,  // (x, y, z, w): a space point in homogeneous form
};

class OvVector {
public:
    // A zero-filled vector of `size` elements; a negative size gives an empty vector.
    explicit OvVector(int size = 0);
    OvVector(const OvVector& other);
    // Leaves `other` empty (size 0).
    OvVector(OvVector&& other) noexcept;
    // From a point's x, y, z. Type 3 puts 0.0 in the fourth element (unlike ChangeType, which
    // puts 1.0 there); any value outside 0..3 gives (x, y, z, 0).
    OvVector(const OvPoint& point, eOvVectorType type);
    // Reads itself from the current position of a block-file reader (see Read).
    explicit OvVector(OvReaderObject* reader);
    virtual ~OvVector();

    // Copies the elements; the sizes must already agree (code 3). Never reallocates.
    OvVector& operator=(const OvVector& other);

    int GetSize() const { return size_; }

    void Clear();
    // 1-based checked access: SetElem throws 0, GetElem throws 1, operator[] throws 2.
    double SetElem(int i, double value);
    double GetElem(int i) const;
    double& operator[](int i);
    double operator[](int i) const;

    // Switches between the homogeneous 4-element form and the 3-element forms:
    //   size 3 and type 3: grows to size 4 with the fourth element 1.0;
    //   size 4 and type != 3: shrinks to size 3; then type 0 sets the third element to 0.0,
    //   type 1 sets it to 1.0, and any other type keeps it.
    // Every other combination leaves the vector as it is.
    void ChangeType(eOvVectorType type);

    // Equal sizes and every element exactly equal.
    bool operator==(const OvVector& other) const;
    bool operator!=(const OvVector& other) const { return !(*this == other); }

    OvVector operator*(double factor) const;
    OvVector& operator*=(double factor);
    // Division multiplies by 1.0 / divisor: one division, then products.
    OvVector operator/(double divisor) const;
    OvVector& operator/=(double divisor);

    double operator*(const OvVector& other) const;    // dot product, code 8
    OvVector operator%(const OvVector& other) const;  // cross product of two 3-vectors, code 4
    OvVector operator+(const OvVector& other) const;  // element-wise, code 5
    OvVector operator-(const OvVector& other) const;
    OvVector& operator+=(const OvVector& other);
    OvVector& operator-=(const OvVector& other);

    // Euclidean length.
    double Abs() const;
    // Scales to unit length. A zero vector is not guarded against: its elements become NaN.
    OvVector& Normalize();
    // With L the length: false when L < 1 - eps, otherwise L <= 1 + eps.
    bool IsNormalized(double eps) const;

    // Reads an integer count n from the current token, replaces the storage by n zeros and
    // reads n numbers (integer or real tokens; any other token stores 0.0), advancing past each.
    // A "}" or the end of the file ends the numbers early, is not consumed, and leaves the
    // remaining elements 0.0. A negative count, or one above kOvMaxReadElements, gives an empty
    // vector and no number is read. A count that is not an integer token raises the parser's
    // error for the reader to collect. Returns 1.
    int Read(OvReaderObject* reader);
    // Writes the size and the elements on one line without a line end: `w4` size, then each
    // element after `w19`, with 17 significant digits so that Read gives back the same values
    // (NaN and infinities are written as the stream spells them and do not read back). The
    // stream's number format is restored afterwards. Returns the stream.
    std::ostream& Write(std::ostream& out) const;
    // Sends the title (if not null) as a line of its own, then one line with every element
    // formatted "%.5f   ", to the debug output (dbgprintf). A line longer than dbgprintf's
    // buffer goes out in several pieces that together make up the line.
    void DbgPrintf(const char* title) const;

    // Contiguous storage of the GetSize() elements (index 0 is element 1).
    const double* Data() const { return elements_.get(); }

private:
    void init(int size);
    void CheckSameSize(const OvVector& other, int code) const;

    std::int32_t size_ = 0;
    std::unique_ptr<double[]> elements_;
};

// The largest number of elements that OvVector::Read and OvMatrix::Read accept from a file.
inline constexpr std::int64_t kOvMaxReadElements = std::int64_t{1} << 24;

// d * v is v * d. d / v is v * (1.0 / d): it divides the vector by d, it does not divide d by
// the elements; the asymmetry is intended.
OvVector operator*(double factor, const OvVector& v);
OvVector operator/(double divisor, const OvVector& v);

// Euclidean length. Note that this overload hides ::abs for unqualified calls inside namespace
// orvo; use std::abs for numbers there.
double abs(const OvVector& v);

}  // namespace orvo
