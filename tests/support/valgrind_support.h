// Whether the test runs under valgrind. Its CPU emulation has two known gaps that some tests
// depend on: floating-point operations always round to nearest (the rounding mode set with
// fesetround is ignored), and long double arithmetic is carried out in double precision. Tests
// of those two things skip themselves there rather than report the emulator's limits as faults.
#pragma once

#if __has_include(<valgrind/valgrind.h>)
#include <valgrind/valgrind.h>
#endif

namespace orvo::test {

inline bool RunningUnderValgrind() {
#ifdef RUNNING_ON_VALGRIND
    return RUNNING_ON_VALGRIND != 0;
#else
    return false;
#endif
}

}  // namespace orvo::test
