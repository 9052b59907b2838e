#!/usr/bin/env bash
# Feeds inputs of hostile size through the library and the command-line tool and measures the
# wall time and peak memory of every run with /usr/bin/time -v:
#   - a 2 GB file without a single line end (tokenizer, block reader, point reader, checksum),
#   - a million nested blocks, known (bound to a handler at every depth) and unknown,
#   - a point file of ten million points, written and read back,
#   - a 70,000-character string (String operations, a quoted token, a settings value).
# Nothing here may crash or grow without bound; where a limit applies the run ends with a clear
# error. The script fails when a run crashes or a result is not the one expected.
#
# Usage: scripts/hostile_inputs.sh [BUILD_DIR [WORK_DIR]]
#   BUILD_DIR  optimised build with the tools; configured and built here when it has no tools
#              yet (default: build/hostile)
#   WORK_DIR   scratch space for the generated files, about 3 GB (default: a new directory
#              under ${TMPDIR:-/tmp}); removed at the end unless KEEP=1
# The sizes can be changed for a quick run:
#   LINE_FREE_BYTES (2147483648)  NESTED_BLOCKS (1000000)  POINTS (10000000)  LONG_STRING (70000)
# (LINE_FREE_BYTES and LONG_STRING above 8511, the longest line the tokenizer takes.)
set -euo pipefail

here=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$here/build/hostile}
line_free_bytes=${LINE_FREE_BYTES:-2147483648}
nested_blocks=${NESTED_BLOCKS:-1000000}
points=${POINTS:-10000000}
long_string=${LONG_STRING:-70000}

# The expectations below hold for inputs longer than one line buffer of the tokenizer.
if (( line_free_bytes <= 8511 || long_string <= 8511 )); then
    echo "LINE_FREE_BYTES and LONG_STRING must exceed a line (8511 characters)" >&2
    exit 2
fi

if [[ ! -x $build/tools/orvo || ! -x $build/tools/orvo_stress ]]; then
    cmake -S "$here" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DORVO_BUILD_TESTS=OFF -DORVO_BUILD_TOOLS=ON > /dev/null
    cmake --build "$build" --target orvo_tool orvo_stress -j 2 > /dev/null
fi
orvo=$build/tools/orvo
stress=$build/tools/orvo_stress

if [[ -n ${2:-} ]]; then
    work=$2
    mkdir -p "$work"
else
    work=$(mktemp -d "${TMPDIR:-/tmp}/orvo-hostile.XXXXXX")
fi
if [[ ${KEEP:-0} != 1 ]]; then trap 'rm -rf "$work"' EXIT; fi

failures=0

# measure NAME EXPECTED_EXIT COMMAND...: runs the command under /usr/bin/time -v, prints its
# exit status, wall time and peak memory and then the command's own "key: value" lines.
measure() {
    local name=$1 expected=$2
    shift 2
    local status=0
    /usr/bin/time -v -o "$work/$name.time" "$@" > "$work/$name.out" 2> "$work/$name.err" \
        || status=$?
    local elapsed peak user system
    elapsed=$(sed -n 's/.*Elapsed (wall clock) time (h:mm:ss or m:ss): //p' "$work/$name.time")
    peak=$(sed -n 's/.*Maximum resident set size (kbytes): //p' "$work/$name.time")
    user=$(sed -n 's/.*User time (seconds): //p' "$work/$name.time")
    system=$(sed -n 's/.*System time (seconds): //p' "$work/$name.time")
    # CPU time next to the wall time: on a busy machine the wall time says little.
    printf '%-20s exit %-3s wall %-9s cpu %8.2f s  peak %8.1f MB\n' "$name" "$status" \
        "$elapsed" "$(awk -v u="$user" -v s="$system" 'BEGIN { print u + s }')" \
        "$(ratio "$peak" 1024)"
    grep -E '^[a-z_]+: ' "$work/$name.out" | grep -v '^FAILED' | sed 's/^/    /' | head -n 12 || true
    if (( status != expected )); then
        echo "    UNEXPECTED: exit status $status, expected $expected"
        sed 's/^/    stderr: /' "$work/$name.err" | head -n 5
        failures=$((failures + 1))
    fi
}

# expect NAME KEY VALUE: the run's output must hold the line "KEY: VALUE".
expect() {
    if ! grep -qx "$2: $3" "$work/$1.out"; then
        echo "    UNEXPECTED: $1 should report '$2: $3'"
        failures=$((failures + 1))
    fi
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }

peak_kb() { sed -n 's/.*Maximum resident set size (kbytes): //p' "$work/$1.time"; }

echo "== a file of $line_free_bytes bytes without a line end"
# (A process substitution, so the producers ending on a closed pipe do not fail the script.)
head -c "$line_free_bytes" < <(yes abcdefghij | tr -d '\n') > "$work/line_free.txt"
# The tokenizer takes one line buffer and reports a stream error: exit 1, after 2 lines of output.
measure line_free_tokens 1 "$orvo" tokens "$work/line_free.txt"
tail -n 2 "$work/line_free_tokens.out" | cut -c1-100 | sed 's/^/    /'
measure line_free_reader 0 "$stress" read-blocks "$work/line_free.txt"
expect line_free_reader first_error "line 1 ParserErrorStream"
measure line_free_points 0 "$stress" read-points "$work/line_free.txt"
expect line_free_points points 0
# The checksum reads the whole file in blocks, so its memory stays small too.
measure line_free_checksum 0 "$orvo" checksum "$work/line_free.txt"
head -n 2 "$work/line_free_checksum.out" | sed 's/^/    /'
rm -f "$work/line_free.txt"

echo "== $nested_blocks nested blocks"
awk -v n="$nested_blocks" 'BEGIN { for (i = 0; i < n; i++) print "B {"; for (i = 0; i < n; i++) print "}"; print "X 1" }' \
    > "$work/nested_known.txt"
sed 's/^B {$/U {/' "$work/nested_known.txt" > "$work/nested_unknown.txt"
# Known blocks: a handler per level up to the reader's depth limit, the rest skipped.
measure nested_known 0 "$stress" read-blocks "$work/nested_known.txt"
expect nested_known x 1
expect nested_known read_errors 1
measure nested_unknown 0 "$stress" read-blocks "$work/nested_unknown.txt"
expect nested_unknown x 1
expect nested_unknown read_errors 1
# Never closed: the end of the file ends the read.
head -n "$nested_blocks" "$work/nested_known.txt" > "$work/nested_open.txt"
measure nested_unclosed 0 "$stress" read-blocks "$work/nested_open.txt"
measure nested_tokens 0 "$orvo" tokens "$work/nested_known.txt"
tail -n 1 "$work/nested_tokens.out" | sed 's/^/    /'
rm -f "$work"/nested_*.txt
: > "$work/nested_tokens.out"

echo "== a point file of $points points"
measure points_write 0 "$stress" gen-points "$points" "$work/points.coo"
expect points_write points "$points"
echo "    file size: $(ratio "$(stat -c %s "$work/points.coo")" 1048576) MB"
measure points_read 0 "$stress" read-points "$work/points.coo"
expect points_read points "$points"
record_bytes=$(sed -n 's/^record_bytes: //p' "$work/points_read.out")
if [[ -n $record_bytes && $record_bytes -gt 0 ]]; then
    echo "    peak memory / point records in memory: $(ratio "$(($(peak_kb points_read) * 1024))" "$record_bytes")"
    echo "    peak memory / file size: $(ratio "$(($(peak_kb points_read) * 1024))" "$(stat -c %s "$work/points.coo")")"
fi
rm -f "$work/points.coo"

echo "== a string of $long_string characters"
measure long_string_ops 0 "$stress" string "$long_string"
{ printf 'NAME "'; head -c "$long_string" < <(yes s | tr -d '\n'); printf '"\nX 1\n'; } \
    > "$work/long_string.txt"
measure long_string_tokens 1 "$orvo" tokens "$work/long_string.txt"
measure long_string_reader 0 "$stress" read-blocks "$work/long_string.txt"
# The line is cut at the line buffer, inside the string: an unterminated string, then the
# stream error.
expect long_string_reader first_error "line 1 ParserErrorUnterminatedString"
expect long_string_reader last_error "line 1 ParserErrorStream"
measure long_string_profile 0 "$stress" profile "$work/long.ini" "$long_string"
expect long_string_profile written 1

if (( failures > 0 )); then
    echo "hostile inputs: $failures unexpected result(s)"
    exit 1
fi
echo "hostile inputs: every run ended as expected"
