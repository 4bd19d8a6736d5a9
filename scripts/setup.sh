#!/usr/bin/env bash
# Installs the Debian packages lumo needs to build, test and benchmark, if missing.
# Optional groups named as arguments add the tools of one job: docs (the API
# reference), fuzz (the fuzz targets' compiler), package (the Debian package check).
set -euo pipefail

packages=(
    g++ cmake ninja-build pkg-config dpkg-dev file
    libxerces-c-dev libicu-dev libssl-dev
    googletest libgtest-dev libgmock-dev libbenchmark-dev
    libxml2-utils python3 libxml2-dev libpcre2-dev
)
for group in "$@"; do
    case "$group" in
    docs) packages+=(doxygen) ;;
    fuzz) packages+=(clang llvm libclang-rt-14-dev) ;; # the libFuzzer and sanitizer runtimes
    package) packages+=(lintian) ;;
    *)
        echo "setup.sh: unknown group '$group'" >&2
        exit 2
        ;;
    esac
done

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    export DEBIAN_FRONTEND=noninteractive
    $sudo apt-get update -qq
    $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
