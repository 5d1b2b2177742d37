#!/usr/bin/env bash
# Builds ZorWBx and runs every test suite twice: with g++ and warnings as
# errors (build/), then with clang under AddressSanitizer,
# UndefinedBehaviorSanitizer and LeakSanitizer (build-sanitize/, where any
# report fails the run), and finally runs each libFuzzer target for 30
# seconds (scripts/fuzz.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

jobs=$(nproc)
[ "$jobs" -le 2 ] || jobs=2

cmake -S . -B build -DZORWBX_WERROR=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"

# The sanitizer build: -O1 with line tables keeps reports readable and the
# build short; the same build holds the fuzz targets.
CC=clang CXX=clang++ cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=Sanitize \
    -DCMAKE_CXX_FLAGS_SANITIZE="-O1 -gline-tables-only" -DZORWBX_SANITIZE=ON \
    -DZORWBX_BUILD_FUZZ=ON -DZORWBX_WERROR=ON
cmake --build build-sanitize -j"$jobs"
export ASAN_OPTIONS=halt_on_error=1:detect_leaks=1:abort_on_error=0:detect_stack_use_after_return=0
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
ctest --test-dir build-sanitize --output-on-failure -j"$jobs"

ZORWBX_FUZZ_BUILD=build-sanitize ZORWBX_FUZZ_SEED=1 scripts/fuzz.sh 30
