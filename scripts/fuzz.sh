#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, in build-fuzz) and runs each for a while over a
# scratch copy of its corpus plus the committed seeds in fuzz/corpus/<target>.
#   scripts/fuzz.sh [seconds-per-target] [target...]     (default 60 s, every target)
# Targets are named as their sources (BinaryData for fuzz/BinaryDataFuzz.cpp). Anything
# a target finds is kept under build-fuzz/findings/<target>/ and fails the run.
# BUILD_DIR selects another build directory.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
shift || true

build=${BUILD_DIR:-build-fuzz}
launcher=()
if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ "${launcher[@]}" \
    -DLUMO_BUILD_FUZZERS=ON -DLUMO_BUILD_TESTS=OFF -DLUMO_BUILD_BENCH=OFF \
    -DLUMO_BUILD_EXAMPLES=OFF >/dev/null

if [ $# -gt 0 ]; then
    targets=("$@")
else
    mapfile -t targets < <(ls fuzz/*Fuzz.cpp | sed -e 's|^fuzz/||' -e 's|Fuzz\.cpp$||')
fi
cmake --build "$build" --target "${targets[@]/#/fuzz_}"

# Leaks are findings; a report ends the target at once.
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:allocator_may_return_null=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
failed=()
summary=()
for t in "${targets[@]}"; do
    work=$build/corpus/$t
    findings=$build/findings/$t
    seeds=fuzz/corpus/$t
    mkdir -p "$work" "$findings" "$seeds"
    log=$build/logs/$t.log
    mkdir -p "$(dirname "$log")"
    echo "== $t (${seconds}s)"
    status=0
    "$build/fuzz/fuzz_$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$findings/" "$work" "$seeds" >"$log" 2>&1 ||
        status=$?
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
    if [ "$status" -ne 0 ]; then
        failed+=("$t")
        summary+=("$t: FOUND SOMETHING after ${runs:-?} executions (see $log, $findings)")
        grep -E "^(SUMMARY|model mismatch|==[0-9]+==ERROR)" "$log" | head -5 || true
    else
        summary+=("$t: ${runs:-?} executions in ${seconds}s, nothing found")
    fi
done

echo "== summary"
printf '%s\n' "${summary[@]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz.sh: findings in: ${failed[*]}" >&2
    exit 1
fi
