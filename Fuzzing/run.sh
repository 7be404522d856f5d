#!/usr/bin/env bash
# run.sh [SECONDS] [TARGET...]: builds the fuzz targets and runs those named, by default all, for so many seconds each
# (by default 30), as many at once as there are processors. Says for each how often it ran and how much of the code it
# reached. Fails on any finding; its bytes are kept under build/fuzz/findings, and the target run with that file shows
# it again. What a target has learnt is kept under build/fuzz/corpus.
set -euo pipefail
cd -- "$(dirname -- "${BASH_SOURCE[0]}")/.."
. cmake/phases.sh

# run_target SECONDS TARGET
run_target() {
    local place=$PWD/build/fuzz code=0 log
    log=$place/findings/$2.log
    mkdir -p "$place/corpus/$2" "$place/findings"
    "$place/bin/$2" -max_total_time="$1" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
        -dict="Fuzzing/$2.dict" -artifact_prefix="$place/findings/$2-" "$place/corpus/$2" "$PWD/Fuzzing/Seeds/$2" \
        >"$log" 2>&1 || code=$?
    printf '%-18s %9s runs, coverage %s\n' "$2" \
        "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" "$(grep -o 'cov: [0-9]*' "$log" | tail -n 1)"
    ((code == 0)) || { grep -E 'Broken|ERROR|SUMMARY|runtime error|Test unit' "$log" >&2 || tail "$log" >&2; exit 1; }
}

seconds=${1-30}
if [[ ! $seconds =~ ^[1-9][0-9]*$ ]]; then
    echo "usage: $0 [SECONDS] [TARGET...]" >&2
    exit 2
fi
targets=("${@:2}")
if ((${#targets[@]} == 0)); then
    for seeds in Fuzzing/Seeds/*; do targets+=("${seeds##*/}"); done
fi
phase "Building the fuzz targets" eval 'cmake --preset fuzz && cmake --build --preset fuzz -- --quiet'
export -f run_target
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -euo pipefail -c 'run_target "$@"' - "$seconds" {}
