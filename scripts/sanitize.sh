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

log="$build_dir/sanitized-tests.log"
if ctest --test-dir "$build_dir" --output-on-failure -j"$(nproc)" 2>&1 | tee "$log"; then
  exit 0
fi
# LeakSanitizer's stop-the-world tracer itself crashes, rarely, while it
# suspends the threads of a busy process at exit ("Tracer caught signal 11").
# That is the checker failing, not a finding about our code, so when it is
# the only reason for every failure, those tests get one more run. Any other
# failure stands as it is.
failed=$(sed -n '/tests FAILED:/,$p' "$log" | grep -cE '^[[:space:]]+[0-9]+ - ' || true)
tracer=$(grep -c 'LeakSanitizer has encountered a fatal error' "$log" || true)
if (( failed > 0 && failed == tracer )); then
  echo "sanitize: LeakSanitizer's tracer crashed in $failed test(s); running them once more"
  ctest --test-dir "$build_dir" --output-on-failure --rerun-failed
else
  exit 1
fi
