#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test. Fails when any test
# fails.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
ctest --test-dir "$root/build" --output-on-failure -j"$(nproc)"
