#!/usr/bin/env bash
# The solver's benchmark: wbx solve on the interval benchmark problems of
# bench/problems, built in Release (build-release/), one table of the
# solutions found and proved against the reference counts, the cells, the
# CPU seconds (user + system, median of RUNS runs) and their ratio to IBEX's
# own time on this machine kind (bench/problems/ibex-measured.txt, the better
# of its two variants).
#
# Usage: scripts/bench-solver.sh [--quick]
#   --quick   one run each, without the problems IBEX cannot finish
#             (Fourbar, Dietmaier)
# Environment:
#   RUNS      runs per problem (default 3, quick 1)
#   TIMEOUT   seconds per run (default 60, IBEX's limit)
#   THREADS   workers per run (default 1, as IBEX)
#   JOBS      parallel compile jobs (default 2)
#
# The table is also written to build-release/bench-solver.md.
set -euo pipefail
cd "$(dirname "$0")/.."

quick=0
for argument in "$@"; do
    case "$argument" in
        --quick) quick=1 ;;
        *) echo "usage: scripts/bench-solver.sh [--quick]" >&2; exit 2 ;;
    esac
done
runs=${RUNS:-$([ "$quick" = 1 ] && echo 1 || echo 3)}
timeout=${TIMEOUT:-60}
threads=${THREADS:-1}
problems=(Kin1 cyclohexan3D hayes1 kolev36 yamamura8a Redeco8 Trigo1-0010 Neveu1 ponts-geo)
[ "$quick" = 1 ] || problems+=(Fourbar Dietmaier)

build=build-release
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZORWBX_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j"${JOBS:-2}" --target wbx >/dev/null
wbx=$build/tools/wbx/wbx
data=bench/problems
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# IBEX's CPU seconds for a problem: the smaller of its two measured variants.
ibex_seconds() {
    awk -v name="$1" '$1 ~ ("/" name "$") && $7 ~ /^[0-9.]+$/ {
        if (best == "" || $7 < best) best = $7 } END { print best }' "$data/ibex-measured.txt"
}
# The reference count of certified solutions, "-" when there is none.
reference_count() {
    awk -v name="$1" '$1 ~ ("_" name "\\.cov$") { print $5; found = 1 }
        END { if (!found) print "-" }' "$data/reference-counts.txt"
}

table=$build/bench-solver.md
{
    echo "Machine: $(lscpu | sed -n 's/^Model name: *//p'), $(nproc) CPUs; build: Release;" \
        "wbx solve --timeout $timeout --threads $threads; CPU seconds, median of $runs"
    echo
    echo "| problem | solutions (reference) | boundary / unknown / pending | cells | CPU s | IBEX s | ratio | status |"
    echo "|---|---|---|---|---|---|---|---|"
} | tee "$table"
for name in "${problems[@]}"; do
    seconds=()
    for ((run = 0; run < runs; run++)); do
        TIMEFORMAT='%U %S'
        { time "$wbx" solve "$data/$name.bch" --timeout "$timeout" --threads "$threads" \
            >"$scratch/out" 2>/dev/null || true; } 2>"$scratch/time"
        seconds+=("$(awk '{ printf "%.3f", $1 + $2 }' "$scratch/time")")
    done
    median=$(printf '%s\n' "${seconds[@]}" | sort -n | awk '{ a[NR] = $1 } END { print a[int((NR + 1) / 2)] }')
    summary=$(tail -n 1 "$scratch/out")
    status=${summary%%:*}
    # The number before a word of the summary, 0 when the word is missing.
    count() {
        echo "$summary" | awk -v word="$1" '{ for (i = 2; i <= NF; i++) if (index($i, word) == 1) {
            print $(i - 1); found = 1; exit } } END { if (!found) print 0 }'
    }
    ibex=$(ibex_seconds "$name")
    ratio=$(awk -v a="$median" -v b="$ibex" 'BEGIN { if (b > 0) printf "%.2f", a / b; else print "-" }')
    echo "| $name | $(count solution) ($(reference_count "$name")) |" \
        "$(count boundary) / $(count unknown) / $(count pending) | $(count cells) |" \
        "$median | ${ibex:--} | $ratio | $status |" | tee -a "$table"
done
