// Internal pieces of the Gaussian elimination shared by the solver, the determinant and
// Cramer's rule.
#pragma once

#include "orvo/numerics/matrix.h"

namespace orvo::elimination {

// The scaled pivot search over candidate lines k..lastCandidate: the candidate with the largest
// |a(i, k)| / sum |a(i, k..n)| wins, the first of equal candidates keeping its place. Returns 0
// when a candidate's line sum or the best ratio is below 1e-10 (a singular system), else the
// pivot line.
int FindScaledPivot(OvMatrix& a, int k, int n, int lastCandidate);

// The determinant by elimination on a copy of m. With lastLineIsCandidate false the last line is
// never taken as a pivot line (the behaviour of Det); with true every line below k is a
// candidate, which gives the true determinant of every matrix whose pivots stay above 1e-10.
double Determinant(const OvMatrix& m, bool lastLineIsCandidate);

}  // namespace orvo::elimination
