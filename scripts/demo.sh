#!/usr/bin/env bash
# The main job: installs what is missing, builds, and renders the built-in
# test clip with each glitch type into ./quorvex-demo (or the folder given).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
"$root/build/bin/quorvex" demo "${1:-quorvex-demo}"
