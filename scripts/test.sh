#!/usr/bin/env bash
# Installs what is missing, builds everything, and runs every test; then
# builds the Debian package from that build and checks it; then, unless
# QUORVEX_SANITIZE=0, runs the whole suite again under AddressSanitizer and
# UndefinedBehaviorSanitizer and gives each fuzz target its time
# (QUORVEX_FUZZ_SECONDS). Fails when any of it fails.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-deps.sh" test
# The demo builds the same folder without the tests.
"$root/scripts/build.sh" "$root/build" RelWithDebInfo -DQUORVEX_BUILD_TESTS=ON
ctest --test-dir "$root/build" --output-on-failure -j"$(nproc)"

package=$("$root/scripts/package.sh" "$root/build")
"$root/scripts/check-package.sh" "$package"

if [[ "${QUORVEX_SANITIZE:-1}" != 0 ]]; then
  "$root/scripts/sanitize.sh"
  "$root/scripts/fuzz.sh"
fi
