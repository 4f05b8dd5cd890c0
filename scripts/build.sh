#!/usr/bin/env bash
# Configures and builds Quorvex.
# Usage: scripts/build.sh [BUILD_DIR] [BUILD_TYPE] [CMAKE_OPTIONS...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${1:-"$root/build"}
build_type=${2:-RelWithDebInfo}

cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE="$build_type" "${@:3}" >/dev/null
cmake --build "$build_dir" -j"$(nproc)"
