#!/usr/bin/env bash
# The soak check, apart from the tests: renders 2,000 frames in a release
# build (build-release/), changing glitch type and depth every frame and size
# every 500, and fails when resident memory, the host's open handles and
# suites, or the effect's live GL objects grew between frame 100 and the end.
# Usage: scripts/soak.sh [--frames=N]
# About two and a half minutes on two cores after the build.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir="$root/build-release"

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$build_dir" Release -DQUORVEX_BUILD_BENCHMARKS=ON -DQUORVEX_BUILD_TESTS=OFF
"$build_dir/bin/QuorvexSoak" "$@"
