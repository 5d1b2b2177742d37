#!/usr/bin/env bash
# The polynomial benchmark against SymPy: the same rational integrands,
# polynomials for real root isolation and pairs of dense bivariate
# polynomials for resultants (bench/polynomial_cases.py), run by ZorWBx
# (bench/polynomial_versus_sympy.cpp, Release build in build-bench/) and by
# Debian's python3-sympy (bench/sympy_polynomial.py, run with
# /usr/bin/python3), joined into one table (bench/polynomial_table.py)
# printed and written to build-bench/results/polynomial.md. Not part of the
# test command.
#
# Environment:
#   TIMEOUT   seconds SymPy gets per case (default 60)
#   JOBS      parallel compile jobs (default 2)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh libbenchmark-dev python3-sympy

build=build-bench
results=$build/results
cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZORWBX_BUILD_BENCH=ON \
    -DZORWBX_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" -j"${JOBS:-2}" --target polynomial_versus_sympy
mkdir -p "$results"
cases=$results/polynomial_cases.tsv
/usr/bin/python3 bench/polynomial_cases.py "$cases"
echo "running ZorWBx" >&2
"$build/bench/polynomial_versus_sympy" "$cases" >"$results/polynomial_zorwbx.tsv"
echo "running SymPy (up to ${TIMEOUT:-60} s a case)" >&2
/usr/bin/python3 bench/sympy_polynomial.py "$cases" "${TIMEOUT:-60}" >"$results/polynomial_sympy.tsv"
{
    echo "Machine: $(lscpu | sed -n 's/^Model name: *//p'), $(nproc) CPUs;" \
        "SymPy $(/usr/bin/python3 -c 'import sympy; print(sympy.__version__)')" \
        "(ground types $(/usr/bin/python3 -c 'from sympy.external.gmpy import GROUND_TYPES; print(GROUND_TYPES)'))"
    echo
    /usr/bin/python3 bench/polynomial_table.py "$results/polynomial_zorwbx.tsv" \
        "$results/polynomial_sympy.tsv"
} | tee "$results/polynomial.md"
