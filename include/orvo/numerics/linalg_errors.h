// Integer codes thrown by OvVector and OvMatrix on a contract violation.
//
// The linear-algebra types report a bad index or a dimension mismatch by throwing a plain `int`
// (catch it as `catch (int code)`); nothing is returned or logged. Numerical singularity is not a
// contract violation and is reported through return values instead (solvers return 1,
// determinants 0.0). The names below exist so that code and tests can say which rule was broken;
// the thrown value is always the bare number.
#pragma once

namespace orvo {

inline constexpr int kOvErrVectorSetElem = 0;       // OvVector::SetElem: index outside 1..size
inline constexpr int kOvErrVectorGetElem = 1;       // OvVector::GetElem, OvVector::DbgPrintf
inline constexpr int kOvErrVectorIndex = 2;         // OvVector::operator[], vector use in matrices
inline constexpr int kOvErrVectorAssign = 3;        // OvVector::operator=: sizes differ
inline constexpr int kOvErrVectorCross = 4;         // OvVector::operator%: not two 3-vectors
inline constexpr int kOvErrVectorAddSub = 5;        // OvVector +, -, +=, -=: sizes differ
inline constexpr int kOvErrVectorDot = 8;           // OvVector dot product: sizes differ
inline constexpr int kOvErrMatrixSetElem = 9;       // OvMatrix::SetElem and the write side
inline constexpr int kOvErrMatrixGetElem = 10;      // OvMatrix::GetElem and the read side
inline constexpr int kOvErrMatrixLine = 11;         // OvMatrix::operator[] and the solvers
inline constexpr int kOvErrMatrixNotSquareId = 12;  // OvMatrix::SetIdent: not square
inline constexpr int kOvErrMatrixAssign = 13;       // OvMatrix::operator=: shapes differ
inline constexpr int kOvErrMatrixTimesVector = 14;  // matrix * vector: columns != size
inline constexpr int kOvErrMatrixProduct = 15;      // matrix * matrix: inner sizes differ
inline constexpr int kOvErrMatrixAdd = 16;          // OvMatrix +, +=: shapes differ
inline constexpr int kOvErrMatrixSub = 17;          // OvMatrix -, -=: shapes differ
inline constexpr int kOvErrMatrixInvert = 18;       // OvMatrix::Invert (and Cramer): not square
inline constexpr int kOvErrMatrixLineOp = 19;       // SwapLines, MultLine, AddLines: bad line
inline constexpr int kOvErrMatrixSarrus = 20;       // OvMatrix::Sarrus: smaller than 3 x 3

// The one threshold below which a pivot, a line sum, a determinant's last pivot or a
// homogeneous weight counts as zero.
inline constexpr double kOvSingularThreshold = 1e-10;

}  // namespace orvo
