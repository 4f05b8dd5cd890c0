#!/usr/bin/env bash
# Builds the fuzz targets with clang into the sanitized build folder (the one
# scripts/sanitize.sh makes; configured here when missing) and runs each for
# a fixed time from its seed corpus in Tests/Fuzz/corpus/<target>.
#
# Usage: scripts/fuzz.sh [TARGET...]   (default: every target)
# QUORVEX_FUZZ_SECONDS: seconds per target (default 60).
# QUORVEX_FUZZ_BUILD_DIR: the build folder (default build-asan).
#
# A crash, leak, timeout or broken promise stops its target and leaves the
# input in <build>/fuzz/<target>/; the script then fails. Once fixed, copy the
# input into Tests/Fuzz/crashers/<target>/, where every build replays it.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build_dir=${QUORVEX_FUZZ_BUILD_DIR:-"$root/build-asan"}
seconds=${QUORVEX_FUZZ_SECONDS:-60}
targets=("$@")
((${#targets[@]})) || targets=(ModuleFrameFuzzer ToolParsersFuzzer)

# shellcheck source=scripts/sanitizer-env.sh
source "$root/scripts/sanitizer-env.sh"
if [[ ! -f "$build_dir/CMakeCache.txt" ]]; then
  CC=clang CXX=clang++ cmake -S "$root" -B "$build_dir" -DCMAKE_BUILD_TYPE=Debug \
    -DQUORVEX_SANITIZERS=address,undefined -DQUORVEX_BUILD_FUZZERS=ON -DQUORVEX_WARNINGS_AS_ERRORS=OFF \
    "-DCMAKE_C_FLAGS_DEBUG=-O1 -g1" "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -g1" >/dev/null
fi
cmake --build "$build_dir" -j"$(nproc)" --target "${targets[@]}"

status=0
for target in "${targets[@]}"; do
  work="$build_dir/fuzz/$target"
  mkdir -p "$work/corpus"
  echo "fuzz: $target for $seconds s" >&2
  # New inputs go to the first folder; the seeds in the tree stay as they are.
  if ! "$build_dir/Tests/Fuzz/$target" "$work/corpus" "$root/Tests/Fuzz/corpus/$target" \
      -max_total_time="$seconds" -timeout=30 -rss_limit_mb=3072 -print_final_stats=1 \
      -artifact_prefix="$work/" >"$work/log" 2>&1; then
    echo "fuzz: $target failed; its input and log are in $work" >&2
    tail -n 60 "$work/log" >&2
    status=1
  else
    grep -E '^stat::number_of_executed_units|^stat::new_units_added|^stat::peak_rss_mb' "$work/log" \
      | sed "s/^/fuzz: $target /" >&2
  fi
done
exit "$status"
