#!/usr/bin/env bash
# Runs every fuzz target for SECONDS seconds each, starting from its seed corpus.
# Usage: fuzz/run.sh BUILD_DIR SECONDS
# New inputs go to a scratch corpus so the seeds in the repository stay as they are.
set -euo pipefail
build_dir=${1:?build directory}
seconds=${2:-10}
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
status=0
shopt -s nullglob
for binary in "$build_dir"/fuzz/*_fuzz; do
    name=$(basename "$binary" _fuzz)
    seeds="$here/corpus/$name"
    mkdir -p "$scratch/$name" "$scratch/artifacts-$name"
    echo "fuzz: $name for ${seconds}s"
    if ! "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
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
