#!/usr/bin/env bash
# Builds the library, the tool and every unit-test program for 64-bit Windows with MinGW-w64
# and runs the test programs under wine: the Windows side of the platform layer, compiled and
# exercised on a Linux machine. Needs Debian's g++-mingw-w64-x86-64-posix, wine64 and
# googletest (its sources in /usr/src/googletest are built for Windows here).
#
# Usage: scripts/windows_tests.sh [WORK_DIR]   (default: build/windows)
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
work=${1:-$here/build/windows}
wine=$(command -v wine64 || command -v wine || echo /usr/lib/wine/wine64)
for tool in x86_64-w64-mingw32-g++-posix "$wine"; do
    command -v "$tool" > /dev/null || { echo "$tool is not installed" >&2; exit 2; }
done
jobs=$(nproc 2> /dev/null || echo 2)
toolchain=$here/cmake/mingw-w64.cmake
mkdir -p "$work"

if [[ ! -f $work/gtest/lib/libgtest.a ]]; then
    cmake -S /usr/src/googletest -B "$work/gtest-build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_INSTALL_PREFIX="$work/gtest" > /dev/null
    cmake --build "$work/gtest-build" -j "$jobs" > /dev/null
    cmake --install "$work/gtest-build" > /dev/null
fi
cmake -S "$here" -B "$work/orvo" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O1 \
    -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DORVO_MINGW_PREFIXES="$work/gtest" \
    -DGTest_DIR="$work/gtest/lib/cmake/GTest" -DORVO_BUILD_TESTS=ON -DORVO_BUILD_TOOLS=ON \
    -DORVO_WERROR=ON > /dev/null
cmake --build "$work/orvo" -j "$jobs" > /dev/null

export WINEPREFIX=${WINEPREFIX:-$work/wineprefix} WINEDEBUG=-all
failures=0
cd "$work/orvo"
for program in tests/orvo_*_tests.exe; do
    name=$(basename "$program" .exe)
    status=0
    # The protocol file goes to wine's temporary folder, inside the wine prefix.
    ORVO_PROTOCOL_FILE='C:\windows\temp\orvo-test-protocol.log' "$wine" "$program" \
        > "$work/$name.out" 2>&1 || status=$?
    (( status == 0 )) || failures=$((failures + 1))
    echo "$name: exit $status | $(grep -E '^\[  (PASSED  |FAILED  |SKIPPED )\] [0-9]' \
        "$work/$name.out" | tr -s ' ' | tr '\n' ' ' || true)"
done
echo "output in $work"
if (( failures > 0 )); then
    echo "windows: $failures program(s) failed" >&2
    exit 1
fi
