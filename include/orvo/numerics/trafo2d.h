// OvTrafo2d: a plane-to-plane coordinate transformation held as a type code and up to twenty
// parameters, as photos carry them to turn measured coordinates into image coordinates.
//
// For a point (x, y) mapped to (x', y'):
//
//   Helmert     x' = p0 + p1 x - p3 y                 y' = p2 + p3 x + p1 y
//   Affin       x' = p0 + p1 x + p2 y                 y' = p3 + p4 x + p5 y
//   Projektiv   x' = (p0 x + p1 y + p2) / d           y' = (p3 x + p4 y + p5) / d
//               with d = p6 x + p7 y + 1
//   Polynomial  x' = p0 + p1 x + p2 y + p3 x^2 + p4 x y + p5 y^2
//                    + p6 x^3 + p7 x^2 y + p8 x y^2 + p9 y^3
//               y' = the same ten monomials in the same order with p10..p19
//
// Mind the parameter order, which is also the order in the project files: the Helmert keeps its
// translations in p0 (x) and p2 (y) and its rotation-scale pair in p1, p3; the Projektiv keeps
// its constant terms in p2 and p5.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace orvo {

class OvMatrix;
class OvPoint;
class OvReaderObject;

/// The transformation kinds. Any other 32-bit value is a valid (unknown) type: it transforms
/// nothing, has no parameters and is named like None (see OvTrafo2DName).
enum eOvTrafo2DType : std::int32_t {
    eOvTrafo2DNone = 0,
    eOvTrafo2DHelmert = 1,
    eOvTrafo2DAffin = 2,
    eOvTrafo2DProjektiv = 3,
    eOvTrafo2DPolynomial = 4,
    /// The inverse of the Helmert held in p0..p3, applied by TransInvHelmert only; it has no
    /// parameters of its own and Transform leaves points unchanged.
    eOvTrafo2DInvHelmert = 5,
};

/// Number of parameters a type uses (and reads and writes): 4, 6, 8, 20 for Helmert, Affin,
/// Projektiv and Polynomial, 0 for every other value.
int OvTrafo2DParamCount(eOvTrafo2DType type);
/// Display name: "None", "Helmert", "Affin", "Projektiv", "Polynomial", "Inv. Helmert"; an
/// unknown code gives "None" (it transforms like None). The text has static storage.
const char* OvTrafo2DName(eOvTrafo2DType type);

class OvTrafo2d {
public:
    static constexpr int kMaxParams = 20;

    /// Type None, all parameters 0.
    OvTrafo2d();
    OvTrafo2d(const OvTrafo2d& other) = default;
    OvTrafo2d& operator=(OvTrafo2d other);
    virtual ~OvTrafo2d();

    /// Copies type and parameters.
    void Set(const OvTrafo2d& other);
    /// Type None, all twenty parameters 0.
    void Init();
    /// Makes this the identity Helmert: p0 = 0, p1 = 1, p2 = 0, p3 = 0. The other parameters
    /// are left as they are.
    void SetIdent();

    eOvTrafo2DType GetType() const { return type_; }
    void SetType(eOvTrafo2DType type) { type_ = type; }
    /// Parameter i (0-based, as in the equations above); outside 0..19 it reads 0.0 and a write
    /// is ignored.
    double GetParam(int i) const { return InRange(i) ? p_[i] : 0.0; }
    void SetParam(int i, double value) {
        if (InRange(i)) p_[i] = value;
    }
    /// All twenty parameters (p0 first).
    const double* GetParams() const { return p_; }
    /// The number of parameters the current type uses (OvTrafo2DParamCount).
    int GetParamCount() const { return OvTrafo2DParamCount(type_); }
    /// The name of the current type (OvTrafo2DName).
    const char* GetTrafoName() const { return OvTrafo2DName(type_); }

    /// True when every parameter the type uses is a finite number. A fit on badly conditioned
    /// data can end with NaN or infinite parameters while it still reports success; this is
    /// the cheap test for that (a type without parameters is always finite).
    bool HasFiniteParameters() const;

    /// Maps (x, y) in place by the equations above and returns true for the types 1 to 4. For
    /// None, "Inv. Helmert" and any other code it returns false and leaves the point. The
    /// Projektiv divides by d without testing it. Null pointers give false.
    /// The polynomial is summed in double as written; only where its terms exceed its value
    /// by more than 2^16 (coordinates whose offset dwarfs their spread, where the cubic terms
    /// cancel by the million) is the sum formed again in long double, so that the result
    /// keeps what the parameters can hold instead of losing millimetres to rounding.
    bool Transform(double* x, double* y) const;
    /// The same on the point's x and y (z is untouched).
    bool Transform(OvPoint* point) const;

    /// Inverts the Helmert held in p0..p3, whatever the current type: with D = p1^2 + p3^2,
    /// false (point untouched) when D is 0; otherwise
    ///   x' = ((x p1 + y p3) - (p2 p3 + p0 p1)) / D
    ///   y' = (y p1 + (p0 p3 - p2 p1) - x p3) / D
    /// from the old x, y, with 1 / D formed once and multiplied; returns true.
    bool TransInvHelmert(double* x, double* y) const;
    bool TransInvHelmert(OvPoint* point) const;

    /// Writes the 3 x 3 homogeneous matrix of the transformation into *matrix, so that
    /// matrix->PTrans2D(x, y) maps a point as Transform does (up to rounding: the sums are
    /// formed in another order):
    ///   Helmert    | p1  -p3  p0 |   Affin  | p1  p2  p0 |   Projektiv  | p0  p1  p2 |
    ///              | p3   p1  p2 |          | p4  p5  p3 |                | p3  p4  p5 |
    ///              |  0    0   1 |          |  0   0   1 |                | p6  p7   1 |
    /// A polynomial cannot be written as such a matrix; it, None, "Inv. Helmert" and unknown
    /// codes give the identity, which maps points unchanged as their Transform does (a caller
    /// that needs the polynomial applies it as a separate step). The one difference: PTrans2D
    /// refuses a point whose Projektiv denominator is below 1e-10, where Transform divides.
    /// The matrix must be 3 x 3: another shape throws 13 (as assigning a 3 x 3 matrix would)
    /// before anything changes. A null pointer does nothing.
    void BuildMatrix(OvMatrix* matrix) const;

    /// Reads the current file form from the reader's tokenizer, starting at the current token:
    /// an integer type code, then the type's parameters (OvTrafo2DParamCount numbers) into p0,
    /// p1, ... in order. The type becomes the code read, whatever it is; an unknown code reads
    /// no numbers. Each number is an integer or a real token; any other token gives 0.0 and is
    /// stepped over, except the "}" closing the block and the end of the input: they end the
    /// data early, stay current, and every parameter not read becomes 0.0. Parameters beyond
    /// the type's count are left as they are. A code that is not an integer token raises the
    /// parser's error for the reader to collect (nothing changes then). Returns 1; an object
    /// registered with no reader reads nothing.
    int Read(OvReaderObject* reader);
    /// Reads the form of the old file version 5.0, whose codes run the other way round:
    /// 0 Projektiv (8 numbers), 1 Affin (6), 2 Helmert (4), 3 Polynomial (20). Any other code
    /// keeps the type and reads no numbers. Numbers as in Read. Returns 1.
    int ReadV50(OvReaderObject* reader);
    /// Writes the type code and a line end (Ovendl), then the type's parameters with 16
    /// significant digits in general notation, each after `w19` (a blank and a right-aligned
    /// field of 24), with a line end (Ovendl) after every fourth value. A type without
    /// parameters writes the code and the line end only. The stream's number format is
    /// restored afterwards. 16 digits keep every value that was read from a file or typed in;
    /// a computed double may lose its last bit on the way through the file. A parameter that
    /// is NaN or infinite (a failed fit) is written as the word "nan", which Read takes as 0.0
    /// and steps over, so the file stays readable to the end of the block.
    std::ostream& Write(std::ostream& out) const;

private:
    static bool InRange(int i) { return i >= 0 && i < kMaxParams; }

    eOvTrafo2DType type_ = eOvTrafo2DNone;
    double p_[kMaxParams] = {};
};

}  // namespace orvo
