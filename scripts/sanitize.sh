#!/usr/bin/env bash
# Builds Quorvex with AddressSanitizer and UndefinedBehaviorSanitizer into a
# build folder of its own and runs the whole test suite there. The build is
# clang's, with the fuzzing coverage on, so that scripts/fuzz.sh builds its
# targets in the same folder.
# Usage: scripts/sanitize.sh [BUILD_DIR]   (default build-asan)
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${1:-"$root/build-asan"}

# shellcheck source=scripts/sanitizer-env.sh
source "$root/scripts/sanitizer-env.sh"
# -O1 keeps the sanitized suite fast enough to run whole; -g1 keeps the line
# numbers of a report at a fraction of full debug information's cost.
CC=clang CXX=clang++ "$root/scripts/build.sh" "$build_dir" Debug \
  -DQUORVEX_SANITIZERS=address,undefined \
  -DQUORVEX_BUILD_FUZZERS=ON \
  -DQUORVEX_WARNINGS_AS_ERRORS=OFF \
  "-DCMAKE_C_FLAGS_DEBUG=-O1 -g1" \
  "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g1"
ctest --test-dir "$build_dir" --output-on-failure -j"$(nproc)"
