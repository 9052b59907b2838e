#!/usr/bin/env bash
# Runs every unit-test program under valgrind's memcheck, one after the other, and prints a line
# per program: its exit status, time, the test counts and memcheck's error and leak summary.
# Fails when a program fails or memcheck reports an error or a leak.
#
# Usage: scripts/valgrind_tests.sh [BUILD_DIR]
#   BUILD_DIR  a build without sanitizers (memcheck and AddressSanitizer exclude each other);
#              configured and built here when it has no tests yet (default: build/valgrind,
#              Debug at -O1 so that memcheck's run stays in minutes)
# Logs (the program's output and memcheck's log) go to a new directory under ${TMPDIR:-/tmp},
# named in the last line. SUITES="tests/orvo_model_tests ..." picks programs.
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$here/build/valgrind}
command -v valgrind > /dev/null || { echo "valgrind is not installed" >&2; exit 2; }

if ! compgen -G "$build/tests/orvo_*_tests" > /dev/null; then
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-g -O1" \
        -DORVO_SANITIZE=OFF -DORVO_BUILD_TESTS=ON -DORVO_BUILD_TOOLS=ON > /dev/null
    cmake --build "$build" -j "$(nproc 2> /dev/null || echo 2)" > /dev/null
fi

logs=$(mktemp -d "${TMPDIR:-/tmp}/orvo-valgrind.XXXXXX")
failures=0
cd "$build"
for program in ${SUITES:-tests/orvo_*_tests}; do
    name=$(basename "$program")
    start=$(date +%s)
    status=0
    # The tests read the protocol file's place from the environment: keep it in the log folder.
    ORVO_PROTOCOL_FILE="$logs/$name.protocol" valgrind --error-exitcode=99 --leak-check=full \
        --show-leak-kinds=definite,indirect,possible \
        --errors-for-leak-kinds=definite,indirect,possible --child-silent-after-fork=yes \
        --num-callers=30 --log-file="$logs/$name.memcheck" \
        "$program" > "$logs/$name.out" 2>&1 || status=$?
    (( status == 0 )) || failures=$((failures + 1))
    # (grep finds nothing where there is nothing to report: not a failure of this script)
    counts=$(grep -E '^\[  (PASSED  |FAILED  |SKIPPED )\] [0-9]' "$logs/$name.out" |
        tr -s ' ' | tr '\n' ' ' || true)
    errors=$(grep -E 'ERROR SUMMARY' "$logs/$name.memcheck" | sed 's/==[0-9]*== //' | head -1 || true)
    leaks=$(grep -E 'definitely lost|indirectly lost|possibly lost' "$logs/$name.memcheck" |
        sed 's/==[0-9]*== *//' | tr -s ' ' | tr '\n' ';' || true)
    echo "$name: exit $status, $(($(date +%s) - start)) s | $counts| $errors ${leaks:-no leaks}"
done
echo "logs in $logs"
if (( failures > 0 )); then
    echo "valgrind: $failures program(s) failed" >&2
    exit 1
fi
