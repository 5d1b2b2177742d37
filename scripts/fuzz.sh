#!/usr/bin/env bash
# Runs every libFuzzer target (or the ones named) for SECONDS each (60 by
# default) over its corpus, seeded from examples/ and from the target's past
# findings in fuzz/regressions/, and fails on any finding.
# The targets are built with clang, AddressSanitizer and
# UndefinedBehaviorSanitizer in build-sanitize (the test command's sanitizer
# build) unless ZORWBX_FUZZ_BUILD names another build directory.
# Usage: scripts/fuzz.sh [SECONDS] [parser|values|output|symbolic|polynomial|solver ...]
# ZORWBX_FUZZ_SEED fixes libFuzzer's seed (the test command uses 1, so that
# its short runs try the same inputs on every machine); 0, the default, lets
# libFuzzer draw one. ZORWBX_FUZZ_ARGS adds libFuzzer options, for instance
# "-runs=10000000 -entropic=0 -max_len=128" for a campaign of a given length
# (give SECONDS large enough).
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${1:-60}
shift || true
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(parser values output symbolic polynomial solver)
build=${ZORWBX_FUZZ_BUILD:-build-sanitize}
read -r -a extra <<<"${ZORWBX_FUZZ_ARGS:-}"

if ! grep -qs '^ZORWBX_BUILD_FUZZ:BOOL=ON' "$build/CMakeCache.txt"; then
    scripts/install-deps.sh clang
    CC=clang CXX=clang++ cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Sanitize \
        -DCMAKE_CXX_FLAGS_SANITIZE="-O1 -gline-tables-only" -DZORWBX_SANITIZE=ON \
        -DZORWBX_BUILD_FUZZ=ON -DZORWBX_WERROR=ON >/dev/null
fi
cmake --build "$build" -j2 --target $(printf 'fuzz_%s ' "${targets[@]}")

export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1:allocator_may_return_null=1
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
failed=0
for name in "${targets[@]}"; do
    corpus=fuzz/corpus-$name
    mkdir -p "$corpus"
    seeds=(examples)
    [ -d "fuzz/regressions/$name" ] && seeds+=("fuzz/regressions/$name")
    log=$build/fuzz_$name.log
    # A finding is written to fuzz/crash-* (or leak-*, timeout-*); -timeout
    # turns a hang into a finding, -rss_limit_mb a runaway allocation.
    if "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 \
        -seed="${ZORWBX_FUZZ_SEED:-0}" "${extra[@]}" \
        -print_final_stats=1 -artifact_prefix=fuzz/ "$corpus" "${seeds[@]}" >"$log" 2>&1; then
        runs=$(sed -n 's/^Done \([0-9]*\) runs.*/\1/p' "$log" | tail -1)
        echo "fuzz_$name: ${runs:-?} executions, no finding"
    else
        echo "fuzz_$name: FINDING (see $log)"
        tail -40 "$log"
        failed=1
    fi
done
exit $failed
