#!/usr/bin/env bash
# Builds the library and runs the demo host program.
set -euo pipefail
cd "$(dirname "$0")/.."
tools/deps.sh
cmake -S . -B build/demo -DCMAKE_BUILD_TYPE=Release -DVORN_BUILD_TESTS=OFF >/dev/null
cmake --build build/demo --target vorn_demo -j"$(nproc)"
build/demo/examples/vorn_demo
