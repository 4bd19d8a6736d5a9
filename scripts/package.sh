#!/usr/bin/env bash
# Makes the Debian packages liblumo0 and liblumo-dev from a build (BUILD_DIR, default
# build) into <build>/packages and checks them with lintian, failing on any error.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh package
build=${BUILD_DIR:-build}
if [ ! -f "$build/CPackConfig.cmake" ]; then
    cmake -S . -B "$build" -G Ninja >/dev/null
fi
cmake --build "$build"
rm -rf "$build/packages"
cpack -G DEB --config "$build/CPackConfig.cmake" -B "$build/packages"
lintian --fail-on error "$build"/packages/*.deb
echo "packages: $(ls "$build"/packages/*.deb | xargs -n1 basename | tr '\n' ' ')"
