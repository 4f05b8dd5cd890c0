#!/usr/bin/env bash
# The peers section of the benchmark: one generated 48-frame 1920x1080
# lossless clip (FFV1, RGBA) through quorvex and through ffmpeg filters that
# do a similar job, all in one run, each to a lossless FFV1 file:
#   quorvex render, Block Glitch and Bad TV (Speed 1)
#   ffmpeg -vf rgbashift          (ffmpeg's own channel shift)
#   ffmpeg -vf frei0r=glitch0r    (Debian's frei0r-plugins)
#   ffmpeg -vf frei0r=quorvex     (our frei0r plug-in, Bad TV, Speed 1)
# Prints each one's seconds and frames per second, and the ratio of
# quorvex Bad TV's time to rgbashift's.
# Usage: scripts/peers.sh        (bench.sh runs it too; bench.sh --peers-only)
# About two minutes on two cores after the build.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir="$root/build-release"
frames=48

"$root/scripts/install-deps.sh"
"$root/scripts/build.sh" "$build_dir" Release -DQUORVEX_BUILD_BENCHMARKS=ON -DQUORVEX_BUILD_TESTS=OFF

work=$(mktemp -d /tmp/quorvex-peers-XXXXXX)
trap 'rm -rf "$work"' EXIT

ffmpeg -nostdin -v error -f lavfi -i "testsrc2=size=1920x1080:rate=24,format=rgba" \
  -frames:v "$frames" -c:v ffv1 "$work/clip.mkv"

names=()
seconds=()
# peer NAME COMMAND...: runs the command once, timed by the wall clock.
peer() {
  local name=$1
  shift
  local start end
  start=$(date +%s.%N)
  "$@" >/dev/null
  end=$(date +%s.%N)
  names+=("$name")
  seconds+=("$(awk -v a="$start" -v b="$end" 'BEGIN { print b - a }')")
}

quorvex="$build_dir/bin/quorvex"
ff=(ffmpeg -nostdin -v error -y -i "$work/clip.mkv")
peer "quorvex render, Block Glitch" "$quorvex" render "$work/clip.mkv" "$work/block.mkv" --glitch block --quiet
peer "quorvex render, Bad TV" "$quorvex" render "$work/clip.mkv" "$work/badtv.mkv" --glitch badtv --quiet
peer "ffmpeg -vf rgbashift" "${ff[@]}" -vf "rgbashift=rh=-8:bh=8" -c:v ffv1 "$work/rgbashift.mkv"
peer "ffmpeg -vf frei0r=glitch0r" "${ff[@]}" -vf "frei0r=glitch0r" -c:v ffv1 "$work/glitch0r.mkv"
peer "ffmpeg -vf frei0r=quorvex, Bad TV" env FREI0R_PATH="$build_dir/lib/frei0r-1" \
  "${ff[@]}" -vf "frei0r=quorvex:1|0.3333333" -c:v ffv1 "$work/frei0r-quorvex.mkv"

echo "Peers: $frames frames of 1920x1080 RGBA, FFV1 in and out, $(date -u +%Y-%m-%d), $(nproc) cores"
printf '| %-36s | %8s | %6s |\n' "Run" "seconds" "fps"
printf '|%s|%s|%s|\n' "$(printf -- '-%.0s' {1..38})" "----------" "--------"
for i in "${!names[@]}"; do
  printf '| %-36s | %8.2f | %6.1f |\n' "${names[$i]}" "${seconds[$i]}" \
    "$(awk -v n="$frames" -v s="${seconds[$i]}" 'BEGIN { print n / s }')"
done
printf 'quorvex Bad TV / rgbashift: %.2f\n' \
  "$(awk -v a="${seconds[1]}" -v b="${seconds[2]}" 'BEGIN { print a / b }')"
