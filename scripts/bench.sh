#!/usr/bin/env bash
# Builds the benchmark programs (Release, in build-bench/), runs them all and
# prints one table of medians with the targets. Installs, with Debian's
# packages, Google Benchmark and the peers ZorWBx is compared with
# (muparser, GiNaC, Boost.Interval) when they are missing.
#
# Usage: scripts/bench.sh [--quick]
#   --quick        sizes up to 1,000 terms and fewer, shorter repetitions:
#                  enough to check that the suite runs (a few minutes)
# Environment:
#   REPETITIONS    repetitions of each benchmark (default 5, quick 3)
#   MIN_TIME       minimum seconds of each repetition (default 0.2, quick 0.05)
#   JOBS           parallel compile jobs (default 2)
#
# The table is also written to build-bench/results/table.md, beside the JSON
# output of every program and their console logs.
set -euo pipefail
cd "$(dirname "$0")/.."

quick=0
for argument in "$@"; do
    case "$argument" in
        --quick) quick=1 ;;
        *) echo "usage: scripts/bench.sh [--quick]" >&2; exit 2 ;;
    esac
done
if [ "$quick" = 1 ]; then
    repetitions=${REPETITIONS:-3}
    min_time=${MIN_TIME:-0.05}
    # Leaves out the largest formulas and the large parsing model.
    filter='-^(real|interval|system|derivative|build)/.*/10000$|^parse/model/'
else
    repetitions=${REPETITIONS:-5}
    min_time=${MIN_TIME:-0.2}
    filter='.'
fi

scripts/install-deps.sh libbenchmark-dev pkg-config libmuparser-dev libginac-dev ginac-tools \
    libboost-dev

build=build-bench
results=$build/results
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZORWBX_BUILD_BENCH=ON \
    -DZORWBX_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j"${JOBS:-2}"
mkdir -p "$results"
rm -f "$results"/*.json

for program in "$build"/bench/bench_*; do
    [ -x "$program" ] || continue
    name=$(basename "$program")
    echo "running $name" >&2
    "$program" --benchmark_filter="$filter" --benchmark_repetitions="$repetitions" \
        --benchmark_min_time="$min_time" --benchmark_report_aggregates_only=true \
        --benchmark_out="$results/$name.json" --benchmark_out_format=json \
        >"$results/$name.log" 2>&1 || echo "$name failed (see $results/$name.log)" >&2
done

{
    echo "Machine: $(lscpu | sed -n 's/^Model name: *//p'), $(nproc) CPUs;" \
        "compiler: $(${CXX:-c++} --version | head -n 1); build: Release" \
        "($(sed -n 's/^CMAKE_CXX_FLAGS_RELEASE:STRING=//p' "$build/CMakeCache.txt"))"
    "$build/bench/zorwbx_bench_table" "$results"/*.json
} | tee "$results/table.md"
