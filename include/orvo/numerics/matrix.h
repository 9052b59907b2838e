// OvMatrix: a dense matrix of doubles with 1-based, checked access, and the linear solvers that
// every estimation of the library uses.
//
// Naming inside the class: a "line" is a matrix row (SetLine, GetLine, SwapLines, MultLine,
// AddLines), while a "row" is a column (SetRow, GetRow). The elements are stored line by line in
// one contiguous block: element (i, j) lies at (i - 1) * columns + (j - 1), and operator[](i)
// returns a pointer to the first element of line i, so m[i][j - 1] is element (i, j).
//
// Contract violations throw a plain `int` code (linalg_errors.h). An assignment never reshapes:
// `a = b` with another shape throws 13. Singular systems are not errors: the solvers return 1,
// Det returns 0.0.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "orvo/numerics/linalg_errors.h"
#include "orvo/numerics/vector.h"

namespace orvo {

class OvPoint;
class OvReaderObject;

class OvMatrix {
public:
    OvMatrix();  // 0 x 0
    // A zero-filled matrix; negative dimensions count as 0.
    OvMatrix(int lines, int columns);
    OvMatrix(const OvMatrix& other);
    // Leaves `other` as a 0 x 0 matrix.
    OvMatrix(OvMatrix&& other) noexcept;
    virtual ~OvMatrix();

    // Copies the elements; the shapes must already agree (code 13). Never reallocates.
    OvMatrix& operator=(const OvMatrix& other);

    int GetLines() const { return lines_; }
    int GetZeilen() const { return lines_; }
    int GetColumns() const { return columns_; }
    int GetSpalten() const { return columns_; }

    void Clear();
    // Square matrices only (code 12): 1.0 on the diagonal, 0.0 elsewhere.
    void SetIdent();

    // 1-based checked access: SetElem throws 9 (and returns the value), GetElem throws 10,
    // operator[] throws 11 for a line outside 1..lines.
    double SetElem(int i, int j, double value);
    double GetElem(int i, int j) const;
    double* operator[](int i);
    const double* operator[](int i) const;

    OvMatrix operator*(const OvMatrix& b) const;  // lines x b.columns, code 15
    // this = this * b; the product must keep this shape (b square), else code 13.
    OvMatrix& operator*=(const OvMatrix& b);
    OvMatrix operator*(double factor) const;
    OvMatrix& operator*=(double factor);
    OvMatrix operator/(double divisor) const;  // multiplies by 1.0 / divisor
    OvMatrix& operator/=(double divisor);
    OvMatrix operator+(const OvMatrix& b) const;  // code 16
    OvMatrix& operator+=(const OvMatrix& b);
    OvMatrix operator-(const OvMatrix& b) const;  // code 17
    OvMatrix& operator-=(const OvMatrix& b);
    OvVector operator*(const OvVector& v) const;  // matrix times column vector, code 14

    // A new columns x lines matrix.
    OvMatrix Transpose() const;

    // SetLine: (i, k) = v(k) for k = 1..size of v; SetRow: (k, j) = v(k). GetLine and GetRow
    // fill v, whose size decides how many elements are taken. Checked element by element
    // (codes 9 for a write, 10 for a read outside the matrix), so a vector longer than the line
    // leaves the first elements written before the throw.
    void SetLine(int i, const OvVector& v);
    void SetRow(int j, const OvVector& v);
    void GetLine(int i, OvVector& v) const;
    void GetRow(int j, OvVector& v) const;

    // Line operations; a line number outside 1..lines throws 19 before anything changes. A
    // column range reaching outside the matrix throws 10 when it gets there. toColumn -1 means
    // the last column; an empty range (fromColumn > toColumn) does nothing.
    void SwapLines(int a, int b);
    // (i, j) *= f for j = fromColumn..toColumn.
    void MultLine(int i, int fromColumn, double f, int toColumn = -1);
    // (target, j) += f * (source, j) for j = fromColumn..toColumn.
    void AddLines(int target, int source, int fromColumn, double f, int toColumn = -1);

    // True when every element that is not exactly 0.0 lies on the diagonal and is exactly 1.0.
    // A 0.0 on the diagonal is accepted, so the zero matrix counts as an identity; the shape is
    // not tested.
    bool IsIdent() const;
    // The 3 x 3 determinant by the rule of Sarrus over the first nine stored elements taken in
    // storage order (so on a wider matrix they are not the top-left block). Needs at least 3
    // lines and 3 columns (code 20).
    double Sarrus() const;

    // Forwarders to the free functions below, with this matrix as the first argument.
    void CalcNGLAN(const OvVector& a);
    int DreieckLoeserOben(OvMatrix& b);
    int GaussLoeserRelMax(OvMatrix& b);
    double Det() const;

    // Inverts in place by GaussLoeserRelMax(copy, identity). Square only (code 18, thrown before
    // anything changes). Writes 0 (success) or 1 (singular) to *result when result is not null;
    // on a singular matrix this matrix is left holding a half-reduced identity, so callers must
    // test the code.
    OvMatrix& Invert(int* result = nullptr);

    // Homogeneous mapping with a 3 x 3 matrix: w = m31 x + m32 y + m33; if |w| < 1e-10 the point
    // is left unchanged and false is returned, else x' = (m11 x + m12 y + m13) / w,
    // y' = (m21 x + m22 y + m23) / w. PTrans3D is the same rule with a 4 x 4 matrix on (x, y, z).
    // The elements are read with GetElem, so a smaller matrix throws 10. Null coordinate or
    // point pointers give false.
    bool PTrans2D(double* x, double* y) const;
    bool PTrans2D(OvPoint* point) const;
    bool PTrans3D(double* x, double* y, double* z) const;
    bool PTrans3D(OvPoint* point) const;

    // Least-squares solution from an augmented normal-equation system, factorised in place.
    // With u = (columns - 1) / 2 the layout is (u + 1) x (2u + 1):
    //   lines 1..u, columns 1..u:       N = A^T A
    //   column u + 1, lines 1..u:       A^T l
    //   element (u + 1, u + 1):         l^T l
    //   columns u + 2..2u + 1, 1..u:    the identity
    // Afterwards lines 1..u hold R (N = R^T R), R^-T A^T l and R^-T; x(1..u) = N^-1 A^T l. With
    // v = l^T l - l^T A N^-1 A^T l: if v > 0 the element (u + 1, u + 1) becomes s / v (s being
    // the squared length of R^-T A^T l) and v is returned, else 0.0 is returned and the element
    // is kept. There is no test for a non-positive radicand or a zero pivot. x needs at least u
    // elements (code 2); a matrix with fewer than u + 1 lines throws 11, one with no column 10.
    double Cholesky(OvVector& x);

    // Solves this * x = b by Cramer's rule and returns x. The matrix must be square (code 18)
    // and b must have one element per line (code 14). The determinants are taken by Gaussian
    // elimination with scaled pivoting over all lines; when the system's determinant is 0.0
    // (a pivot below 1e-10) the result is a zero vector. Meant for small systems: the cost grows
    // with the fourth power of the size.
    OvVector Cramer(const OvVector& b) const;

    // Rotation matrices in the photogrammetric convention, angles in radians:
    //   R = R_omega * R_phi * R_kappa
    // the product of the right-handed rotations about the x, y and z axes (c = cos, s = sin):
    //   R_omega = | 1  0   0  |   R_phi = |  c  0  s |   R_kappa = | c  -s  0 |
    //             | 0  c  -s  |           |  0  1  0 |             | s   c  0 |
    //             | 0  s   c  |           | -s  0  c |             | 0   0  1 |
    // which gives
    //   r11 = cos(phi) cos(kappa)    r12 = -cos(phi) sin(kappa)    r13 = sin(phi)
    //   r21 = cos(omega) sin(kappa) + sin(omega) sin(phi) cos(kappa)
    //   r22 = cos(omega) cos(kappa) - sin(omega) sin(phi) sin(kappa)
    //   r23 = -sin(omega) cos(phi)
    //   r31 = sin(omega) sin(kappa) - cos(omega) sin(phi) cos(kappa)
    //   r32 = sin(omega) cos(kappa) + cos(omega) sin(phi) sin(kappa)
    //   r33 = cos(omega) cos(phi)
    // Only the top-left 3 x 3 block is written; a matrix smaller than 3 x 3 throws 11 before
    // anything changes (a 4 x 4 homogeneous matrix keeps its fourth line and column).
    OvMatrix& MakeRotMatrix(double omega, double phi, double kappa);
    // The rotation whose LINES are the given axis vectors after normalisation: line 1 = x axis,
    // line 2 = y axis, line 3 = z axis. It maps coordinates of the outer frame into the frame the
    // axes span (R * v gives v's components along the axes); its transpose maps back. *usable
    // (when not null) tells whether the axes form a right-handed orthonormal frame: each of
    // length at least 1e-10, pairwise cosines within 1e-6 of 0, and a positive determinant.
    // Only then is the matrix written; otherwise it is left unchanged. The arguments are not
    // modified. Each vector needs at least 3 elements (code 2); only the first three are used.
    OvMatrix& MakeRotMatrix(OvVector& xAxis, OvVector& yAxis, OvVector& zAxis, bool* usable);
    // The exact inverse of MakeRotMatrix(omega, phi, kappa) for phi in (-pi/2, pi/2) and omega,
    // kappa in (-pi, pi]: phi = asin(r13) in [-pi/2, pi/2], omega = atan2(-r23, r33),
    // kappa = atan2(-r12, r11). At gimbal lock (cos(phi) below 1e-10) omega and kappa are no
    // longer separable; kappa is then set to 0 and omega = atan2(r32, r22) carries the whole
    // rotation about the common axis. Null pointers are skipped. Reads the top-left 3 x 3
    // block; a smaller matrix throws 11.
    void GetRotAngles(double* omega, double* phi, double* kappa) const;

    // Reads an integer line count and column count from the current token on; if they differ
    // from the current shape the storage becomes a zero matrix of the new shape; then reads
    // lines x columns numbers line by line (integer or real tokens; any other token stores
    // 0.0). A "}" or the end of the file ends the numbers early, is not consumed, and leaves
    // the remaining elements as they were. Negative counts, or a product above
    // kOvMaxReadElements, give a 0 x 0 matrix and no number is read. Returns 1.
    int Read(OvReaderObject* reader);
    // Writes `w4` lines and `w4` columns, then each matrix line on a line of its own (Ovendl
    // before it, so it takes the current block indentation) as `w19` fields with 17 significant
    // digits. No line end follows the last line, so the caller ends the entry as it ends any
    // other. The stream's number format is restored afterwards. Returns the stream.
    std::ostream& Write(std::ostream& out) const;
    // Sends the title (if not null) as a line of its own, then one debug line per matrix line,
    // made of the line's elements each formatted with "%.5f   ". A line longer than
    // dbgprintf's buffer goes out in several pieces that together make up the line.
    void DbgPrintf(const char* title) const;

    // Contiguous storage, line by line (lines x columns elements).
    const double* Data() const { return elements_.get(); }

private:
    void init(int lines, int columns);
    std::size_t Offset(int i, int j) const {
        return static_cast<std::size_t>(i - 1) * static_cast<std::size_t>(columns_) +
               static_cast<std::size_t>(j - 1);
    }
    std::size_t ElementCount() const {
        return static_cast<std::size_t>(lines_) * static_cast<std::size_t>(columns_);
    }
    void CheckLine(int i, int code) const;

    std::int32_t lines_ = 0;
    std::int32_t columns_ = 0;
    std::unique_ptr<double[]> elements_;
};

// m * d and d * m scale every element; d / m is m * (1.0 / d), as for vectors.
OvMatrix operator*(double factor, const OvMatrix& m);
OvMatrix operator/(double divisor, const OvMatrix& m);

// Solves a * x = b by Gaussian elimination with scaled maximum pivoting (the pivot is the
// candidate line with the largest ratio of its column-k entry to the absolute sum of its
// remaining line; the first of equal candidates wins). n = lines of a; b holds one right-hand
// side per column and receives the solution. Returns 0 on success, 1 on a singular system
// (a line sum, the best ratio or the last pivot below 1e-10); then a and b are left half-reduced.
// a is always destroyed: its upper triangle holds the reduced system and the lower triangle the
// elimination multipliers. a needs at least n columns (code 10) and b at least n lines (code 11),
// both checked before anything changes; n = 0 throws 11.
int GaussLoeserRelMax(OvMatrix& a, OvMatrix& b);
// Back substitution with the upper triangle of a (lines 1..n, n = lines of a) for every column
// of b. No test for a zero diagonal; always returns 0. Same shape checks as GaussLoeserRelMax.
int DreieckLoeserOben(OvMatrix& a, OvMatrix& b);
// The determinant by the same elimination as GaussLoeserRelMax, on a copy, except that the last
// line is never a pivot candidate: a matrix whose only usable pivot in column k lies in line n
// gives 0.0, as does a line sum or best ratio below 1e-10, or a last pivot below 1e-10.
// Needs at least n columns (code 10); a 0 x 0 matrix throws 11.
double Det(const OvMatrix& m);
// Adds the outer product a * a^T (one unweighted observation row) to the top-left block of n.
// n needs at least size-of-a lines (code 11) and columns (code 10), checked before any change.
void CalcNGLAN(OvMatrix& n, const OvVector& a);

}  // namespace orvo
