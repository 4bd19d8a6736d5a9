#!/usr/bin/env bash
# Builds the library and runs the demo.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
build=${BUILD_DIR:-build}
cmake -S . -B "$build" -G Ninja -DLUMO_BUILD_TESTS=OFF -DLUMO_BUILD_EXAMPLES=ON >/dev/null
cmake --build "$build" --target lumo-demo
"$build"/examples/lumo-demo
