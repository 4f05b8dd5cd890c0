#!/usr/bin/env bash
# The main job: installs what is missing, builds, and shows the effect
# through the command-line host.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$root/build"
"$root/build/bin/quorvex" info
