#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test; then, unless
# QUORVEX_SANITIZE=0, runs the whole suite again under AddressSanitizer and
# UndefinedBehaviorSanitizer and gives each fuzz target its time
# (QUORVEX_FUZZ_SECONDS). Fails when any of it fails.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
ctest --test-dir "$root/build" --output-on-failure -j"$(nproc)"

if [[ "${QUORVEX_SANITIZE:-1}" != 0 ]]; then
  "$root/scripts/sanitize.sh"
  "$root/scripts/fuzz.sh"
fi
