#!/usr/bin/env bash
# Builds ZorWBx with warnings as errors and runs every test suite.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

jobs=$(nproc)
cmake -S . -B build -DZORWBX_WERROR=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs"
