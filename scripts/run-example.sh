#!/usr/bin/env bash
# Builds the wbx tool and runs it on a bundled example.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target wbx
build/tools/wbx/wbx --version
