#!/usr/bin/env bash
# The main job: installs what the program needs, builds the program, its
# module and the frei0r plug-in (no tests, fuzzers or benchmarks), and
# renders the built-in test clip with each glitch type into ./quorvex-demo
# (or the folder given).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-deps.sh" runtime
"$root/scripts/build.sh" "$root/build" RelWithDebInfo -DQUORVEX_BUILD_TESTS=OFF
"$root/build/bin/quorvex" demo "${1:-quorvex-demo}"
