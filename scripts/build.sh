#!/usr/bin/env bash
# Configures and builds Quorvex.
# Usage: scripts/build.sh [BUILD_DIR] [BUILD_TYPE] [CMAKE_OPTIONS...]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${1:-"$root/build"}
build_type=${2:-RelWithDebInfo}

# A compiler cache, where one is installed, makes rebuilds of other checkouts
# and of the sanitizer build cheap; the build does not need it.
launcher=()
if command -v ccache >/dev/null; then
  launcher=(-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
fi

cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE="$build_type" "${launcher[@]}" "${@:3}" >/dev/null
cmake --build "$build_dir" -j"$(nproc)"
