// Helpers for the vector and matrix tests: catching the thrown integer codes and building small
// matrices from literals.
#pragma once

#include <functional>
#include <initializer_list>
#include <random>

#include "orvo/numerics/matrix.h"
#include "orvo/numerics/vector.h"

namespace orvo::test {

// The integer code thrown by `action`, or -1 when it returned normally. Any other exception
// type escapes and fails the test.
inline int ThrownCode(const std::function<void()>& action) {
    try {
        action();
    } catch (int code) {
        return code;
    }
    return -1;
}

inline OvVector MakeVector(std::initializer_list<double> values) {
    OvVector v(static_cast<int>(values.size()));
    int k = 1;
    for (double value : values)
        v[k++] = value;
    return v;
}

// Lines given as nested lists; all lines must have the same length.
inline OvMatrix MakeMatrix(std::initializer_list<std::initializer_list<double>> lines) {
    const int columns = lines.size() == 0 ? 0 : static_cast<int>(lines.begin()->size());
    OvMatrix m(static_cast<int>(lines.size()), columns);
    int i = 1;
    for (const auto& line : lines) {
        int j = 1;
        for (double value : line)
            m.SetElem(i, j++, value);
        ++i;
    }
    return m;
}

// A reproducible, well-conditioned-enough random matrix with entries in [-1, 1], plus `boost`
// on the diagonal.
inline OvMatrix RandomMatrix(int lines, int columns, unsigned streamSeed, double boost = 0.0) {
    std::mt19937 engine(streamSeed);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    OvMatrix m(lines, columns);
    for (int i = 1; i <= lines; ++i) {
        for (int j = 1; j <= columns; ++j)
            m.SetElem(i, j, entry(engine) + (i == j ? boost : 0.0));
    }
    return m;
}

}  // namespace orvo::test
