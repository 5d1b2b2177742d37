#!/usr/bin/env bash
# Builds the wbx tool and evaluates the bundled planar linkage with the joint
# angles set (in radians) and the tool position known only within ranges (in
# millimetres): the joint limits hold, the position equations stay unknown.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target wbx
build/tools/wbx/wbx eval examples/linkage.wbx --set a1=0.5 --set a2=1 \
    --set 'px=[250, 300]' --set 'py=[350, 450]'
