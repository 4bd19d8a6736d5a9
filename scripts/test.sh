#!/usr/bin/env bash
# Builds the library, its tests and benchmarks, and runs every test with CTest.
# BUILD_DIR and SANITIZE (e.g. address,undefined or thread) select other builds,
# WERROR=ON makes warnings errors, BENCH=OFF skips the benchmarks; further arguments go to ctest.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
build=${BUILD_DIR:-build}
cmake -S . -B "$build" -G Ninja -DLUMO_BUILD_TESTS=ON -DLUMO_BUILD_BENCH="${BENCH:-ON}" \
    -DLUMO_SANITIZE="${SANITIZE:-}" -DLUMO_WERROR="${WERROR:-OFF}" >/dev/null
cmake --build "$build"
ctest --test-dir "$build" --output-on-failure -j "$(nproc)" "$@"
