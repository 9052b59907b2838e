#!/usr/bin/env bash
# Runs every fuzz target for SECONDS seconds each, starting from its corpus in the repository.
# Usage: fuzz/run.sh BUILD_DIR SECONDS [RUNS]
# With RUNS, each target stops after that many executions with a fixed random start, so a short
# run (the one `make test` does) explores the same inputs on every machine and a result here is
# the result anywhere; SECONDS is then only a safety cap. Without it, the start is random and
# SECONDS is the budget.
# New inputs go to a scratch corpus so the seeds in the repository stay as they are.
set -euo pipefail
build_dir=${1:?build directory}
seconds=${2:-10}
runs=${3:-}
limits=()
if [ -n "$runs" ]; then limits=(-seed=1 -runs="$runs"); fi
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0
shopt -s nullglob
for binary in "$build_dir"/fuzz/*_fuzz; do
    name=$(basename "$binary" _fuzz)
    seeds="$here/corpus/$name"
    mkdir -p "$scratch/$name" "$scratch/artifacts-$name"
    echo "fuzz: $name for ${runs:+$runs runs or }${seconds}s"
    if ! "$binary" "${limits[@]}" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
            -artifact_prefix="$scratch/artifacts-$name/" -print_final_stats=1 \
            "$scratch/$name" "$seeds" > "$scratch/$name.log" 2>&1; then
        echo "fuzz: $name FAILED"; tail -n 40 "$scratch/$name.log"
        for artifact in "$scratch/artifacts-$name"/*; do
            echo "fuzz: crash input saved as $build_dir/$(basename "$artifact")"
            cp "$artifact" "$build_dir/"
        done
        status=1
    else
        grep -E 'stat::number_of_executed_units' "$scratch/$name.log" | sed "s/^/fuzz: $name /" || true
    fi
done
exit $status
