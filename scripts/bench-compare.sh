#!/usr/bin/env bash
# Times modules back to back on the 1920x1080 frame cases: each case runs
# through every module in turn, for several rounds, so that a machine whose
# speed drifts touches them all alike. Prints each module's median ms a
# frame, wall clock and processor time of all threads ("cpu", the measure
# to trust on a machine that others share), and their ratios to the first
# module's.
# Usage: scripts/bench-compare.sh BEFORE.so [AFTER.so ...]   (after: build-release/bin/Quorvex.so)
# Environment: ROUNDS (default 2), CASES (an extended regex of case names).
# Build the release first (scripts/bench.sh builds it). On two quiet cores
# the six cases should take about 20 s per module and round.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
if (($# < 1)); then
  echo "usage: scripts/bench-compare.sh BEFORE.so [AFTER.so ...]" >&2
  exit 2
fi
modules=("$@")
if (($# == 1)); then
  modules+=("$root/build-release/bin/Quorvex.so")
fi
for module in "${modules[@]}"; do
  [[ -f "$module" ]] || { echo "bench-compare: no module $module" >&2; exit 1; }
done
bench="$root/build-release/bin/QuorvexBenchmarks"
[[ -x "$bench" ]] || { echo "bench-compare: build $bench first (scripts/bench.sh does)" >&2; exit 1; }
rounds=${ROUNDS:-2}
cases=${CASES:-'Frame/(BlockGlitch|BadTV)/1920x1080/(8|16|32)bit'}

results=$(mktemp /tmp/quorvex-compare-XXXXXX)
trap 'rm -f "$results"' EXIT
names=$("$bench" --benchmark_list_tests=true | sed 's#/iterations.*##' | grep -E "^($cases)\$" || true)
[[ -n "$names" ]] || { echo "bench-compare: no case matches $cases" >&2; exit 1; }
for name in $names; do
  for ((round = 1; round <= rounds; ++round)); do
    for index in "${!modules[@]}"; do
      figures=$("$bench" --module="${modules[$index]}" --benchmark_filter="^$name/" 2>/dev/null |
        awk -v n="$name" '$1 == "Case" { for (i = 1; i <= NF; ++i) if ($i == "cpu") c = i }
                          $1 == n { print $2, $c }')
      echo "$name $index ${figures:-nan nan}" >>"$results"
      echo "$name, module $((index + 1)), round $round: ${figures:-failed} (ms, cpu ms)" >&2
    done
  done
done

echo "Median ms a frame (wall | cpu) over $rounds rounds, $(date -u +%Y-%m-%d), $(nproc) cores; ratio to module 1"
for index in "${!modules[@]}"; do
  echo "  module $((index + 1)): ${modules[$index]}"
done
# median NAME INDEX FIELD: the median of one figure of one case and module.
median() {
  awk -v n="$1" -v i="$2" -v f="$3" '$1 == n && $2 == i { print $f }' "$results" | sort -g |
    awk '{ v[NR] = $1 } END { print NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}
for name in $names; do
  line="$name"
  for index in "${!modules[@]}"; do
    line+=$(awk -v w="$(median "$name" "$index" 3)" -v c="$(median "$name" "$index" 4)" \
      -v w1="$(median "$name" 0 3)" -v c1="$(median "$name" 0 4)" \
      'BEGIN { printf " | %.1f (%.2f) %.1f (%.2f)", w, w / w1, c, c / c1 }')
  done
  echo "$line"
done
