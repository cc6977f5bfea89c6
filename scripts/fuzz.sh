#!/usr/bin/env bash
# Runs each libFuzzer target of the native build for a given time on every core and prints
# how many inputs it ran, read from libFuzzer's own final statistics (summed over the jobs).
#   bash scripts/fuzz.sh [SECONDS] [TARGET...]      (default: 60 s, every target)
# New inputs go to build/fuzz/TARGET (kept between runs, so a longer run starts where the last
# one stopped); the committed seed corpus is only read. A crash leaves its input in
# build/fuzz/TARGET-findings and makes the script exit 1.
# Environment: BUILD_DIR (default ./build), JOBS (default: number of cores), FUZZ_BIN (a folder
# holding the targets: then nothing is built).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
seconds=${1:-60}
[[ "$seconds" =~ ^[0-9]+$ ]] || { echo "fuzz.sh: SECONDS must be a whole number, got $seconds" >&2; exit 2; }
shift || true

# Each target with the seed corpus its test reads.
declare -A seeds=(
  [option_walk_fuzzer]=option_walk
  [split_address_fuzzer]=split_address
  [icon_stream_fuzzer]=icon_stream
  [record_chain_fuzzer]=record_chain
  [icon_road_fuzzer]=icon_road
)
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(option_walk_fuzzer split_address_fuzzer icon_stream_fuzzer record_chain_fuzzer icon_road_fuzzer)
for target in "${targets[@]}"; do
  [ -n "${seeds[$target]:-}" ] || { echo "fuzz.sh: no fuzz target $target" >&2; exit 2; }
done

if [ -z "${FUZZ_BIN:-}" ]; then
  source "$ROOT/scripts/lib/packages.sh"
  source "$ROOT/scripts/lib/build.sh"
  install_missing_packages
  configure_tree fuzz "$BUILD_DIR/native"
  cmake --build "$BUILD_DIR/native" -j "$JOBS" >/dev/null
  FUZZ_BIN="$BUILD_DIR/native/tests/connection"
fi
FUZZ_BIN=$(cd "$FUZZ_BIN" && pwd)  # the targets run from a folder of their own

status=0
printf '%-22s %8s %14s %12s %8s\n' target seconds inputs inputs/s crashes
for target in "${targets[@]}"; do
  corpus="$BUILD_DIR/fuzz/$target"
  findings="$BUILD_DIR/fuzz/$target-findings"
  logs=$(mktemp -d)
  mkdir -p "$corpus" "$findings"
  # -jobs/-workers: one fuzzing process per core, each for the whole time.
  (cd "$logs" && "$FUZZ_BIN/$target" -max_total_time="$seconds" -jobs="$JOBS" -workers="$JOBS" \
      -print_final_stats=1 -max_len=65536 -artifact_prefix="$findings/" \
      "$corpus" "$ROOT/tests/connection/fuzz/corpus/${seeds[$target]}" >"$logs/main.log" 2>&1) || true
  inputs=$({ cat "$logs"/fuzz-*.log 2>/dev/null || true; } |
    sed -n 's/^stat::number_of_executed_units: *\([0-9]*\)$/\1/p' | awk '{sum += $1} END {print sum + 0}')
  crashes=$(find "$findings" -maxdepth 1 -type f \( -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' -o -name 'oom-*' \) | wc -l)
  rate=$(( seconds > 0 ? inputs / seconds : 0 ))
  printf '%-22s %8s %14s %12s %8s\n' "$target" "$seconds" "$inputs" "$rate" "$crashes"
  if [ "$inputs" -eq 0 ]; then
    echo "fuzz.sh: $target ran no input; its log:" >&2
    tail -n 20 "$logs"/*.log >&2
    status=1
  fi
  [ "$crashes" -eq 0 ] || status=1
  rm -rf "$logs"
done
exit $status
