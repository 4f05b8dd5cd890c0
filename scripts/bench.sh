#!/usr/bin/env bash
# Benchmarks the effect and the command-line host's own costs in a release
# build (build-release/), prints the table and writes it as JSON; then the
# peers section (scripts/peers.sh): a 1080p clip through quorvex, the frei0r
# plug-in and ffmpeg's filters, in the same run.
# Usage: scripts/bench.sh RESULTS.json [--benchmark_filter=REGEX ...]
#        scripts/bench.sh --peers-only
# About three minutes on two cores after the build, and two more for the
# peers; the build from scratch takes about as long again.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
if [[ "${1:-}" == "--peers-only" ]]; then
  exec "$root/scripts/peers.sh"
fi
if (($# < 1)) || [[ "$1" == -* ]]; then
  echo "usage: scripts/bench.sh RESULTS.json [Google Benchmark options] | --peers-only" >&2
  exit 2
fi
json=$1
shift
build_dir="$root/build-release"

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$build_dir" Release -DQUORVEX_BUILD_BENCHMARKS=ON -DQUORVEX_BUILD_TESTS=OFF

# The module that users load exports its entry point and nothing else; the
# stage markers live in QuorvexProfiled.so only.
exports=$(nm -D --defined-only "$build_dir/bin/Quorvex.so" | awk '{print $3}')
if [[ "$exports" != "EntryPointFunc" ]]; then
  echo "bench: Quorvex.so exports more than EntryPointFunc:" $exports >&2
  exit 1
fi

"$build_dir/bin/QuorvexBenchmarks" --json="$json" "$@"
"$root/scripts/peers.sh"
