#!/usr/bin/env bash
# The soak check, apart from the tests: renders 2,000 frames in a release
# build (build-release/), changing glitch type and depth every frame and size
# every 500, and fails when resident memory, the host's open handles and
# suites, or the effect's live GL objects grew between frame 100 and the end.
# Then the test suite's long-run memory check, with QUORVEX_SOAK_FRAMES
# (200,000) frames instead of 30,000: the frei0r plug-in in ffmpeg and
# quorvex, their heap's slope over the frames zero within its 99.9%
# interval.
# Usage: scripts/soak.sh [--frames=N]
# About five minutes on two cores after the builds.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir="$root/build-release"

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$build_dir" Release -DQUORVEX_BUILD_BENCHMARKS=ON -DQUORVEX_BUILD_TESTS=OFF
"$build_dir/bin/QuorvexSoak" "$@"

"$root/scripts/build.sh" "$root/build"
QUORVEX_SOAK_FRAMES=${QUORVEX_SOAK_FRAMES:-200000} \
  ctest --test-dir "$root/build" --output-on-failure --verbose -R '^LongRunMemoryTest\.'
