#!/usr/bin/env bash
# Every figure of the extension against the shell's own work, in one table:
#   1. builds what is missing of the Windows tree (MinGW-w64);
#   2. starts Xvfb and the build's Wine prefix as scripts/test.sh does;
#   3. runs the five benchmarks of build/windows/devtools, every ratio the median of ROUNDS
#      rounds that alternate the two sides, and prints one table: measure, ours, floor,
#      ratio, the rounds' spread of the ratio, target, met.
#   bash scripts/bench.sh
# Counts (environment; the defaults take a few minutes on two cores):
#   BENCH_ROUNDS (9), BENCH_ICON_CYCLES (500), BENCH_PROPERTIES_CYCLES (25),
#   BENCH_LOAD_CYCLES (200), BENCH_READ_ITERATIONS (6300: the typical file's Reads over all
#   rounds; the 1 MB file gets a twentieth).
# BENCH_BIN names a built Windows tree to use as it is: then nothing is built and the Wine
# environment of the caller (WINEPREFIX, DISPLAY) is used, as the test command's smoke run does.
# Exit status: 0 when every benchmark ran (whether or not its target is met), 1 otherwise.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
ROUNDS=${BENCH_ROUNDS:-9}
ICON_CYCLES=${BENCH_ICON_CYCLES:-500}
PROPERTIES_CYCLES=${BENCH_PROPERTIES_CYCLES:-25}
LOAD_CYCLES=${BENCH_LOAD_CYCLES:-200}
READ_ITERATIONS=${BENCH_READ_ITERATIONS:-6300}
for count in ROUNDS ICON_CYCLES PROPERTIES_CYCLES LOAD_CYCLES READ_ITERATIONS; do
  [[ "${!count}" =~ ^[1-9][0-9]*$ ]] || { echo "bench.sh: $count must be a positive number" >&2; exit 2; }
done

if [ -n "${BENCH_BIN:-}" ]; then
  [ -n "${WINEPREFIX:-}" ] || { echo "bench.sh: BENCH_BIN needs the caller's WINEPREFIX" >&2; exit 2; }
  WINDOWS_BUILD=$BENCH_BIN
else
  source "$ROOT/scripts/lib/packages.sh"
  source "$ROOT/scripts/lib/wine-env.sh"
  source "$ROOT/scripts/lib/build.sh"
  install_missing_packages
  build_windows >/dev/null
  start_windows_test_environment
  WINDOWS_BUILD=$BUILD_DIR/windows
fi

# Each measure: its title in the table, what the floor is, and the target on the ratio.
declare -A TITLE=(
  [icon-typical]="Icon, typical 2 KB file (32x32 and 16x16)"
  [icon-none]="Icon, file without an icon"
  [icon-100kb]="Icon, 100 KB file (62x62 32-bit icon)"
  [properties]="Properties, three pages"
  [load]="LoadLibrary + DllGetClassObject"
  [cold-start]="First file in a fresh process"
  [read-typical]="Read, typical file"
  [read-1mb]="Read, 1 MB -C line"
)
declare -A FLOOR=(
  [icon-typical]="shortcut" [icon-none]="shortcut" [icon-100kb]="shortcut"
  [properties]="empty pages" [load]="wmiutils.dll" [cold-start]="first shortcut"
  [read-typical]="floor" [read-1mb]="floor"
)
declare -A TARGET=(
  [icon-typical]=1.00 [icon-none]=1.00 [icon-100kb]=1.50 [properties]=1.50
  [read-typical]=1.05 [read-1mb]=1.15
)
ORDER=(icon-typical icon-none icon-100kb properties load cold-start read-typical read-1mb)

source "$ROOT/scripts/lib/on-exit.sh"
rows=$(mktemp "${TMPDIR:-/tmp}/vqc-bench.XXXXXX")
on_exit rm -f "$rows"

status=0
run() {
  local program=$1
  shift
  echo "== $program $* ==" >&2
  local output
  if ! output=$(bash "$ROOT/scripts/wine-run.sh" "$WINEPREFIX" "$WINDOWS_BUILD/devtools/$program.exe" "$@" 2>&1); then
    echo "$output" >&2
    echo "bench.sh: $program failed" >&2
    status=1
    return
  fi
  grep -v '^row|' <<<"$output" | tr -d '\r' >&2
  grep '^row|' <<<"$output" | tr -d '\r' >>"$rows" || true
}

run vqc_icon_benchmark "$ICON_CYCLES" "$ROUNDS"
run vqc_properties_benchmark "$PROPERTIES_CYCLES" "$ROUNDS"
run vqc_load_benchmark "$LOAD_CYCLES" "$ROUNDS"
run vqc_cold_start_benchmark "$ROUNDS"
run vqc_read_benchmark "$READ_ITERATIONS" "$ROUNDS"

# The stripped DLL, as it ships.
stripped=$(mktemp "${TMPDIR:-/tmp}/vqc-bench-dll.XXXXXX")
x86_64-w64-mingw32-strip -o "$stripped" "$WINDOWS_BUILD/shellext/vqcprop64.dll"
dll_bytes=$(stat -c %s "$stripped")
rm -f "$stripped"

# Times in us below 10 ms, in ms above.
show_time() { awk -v us="$1" 'BEGIN { if (us >= 10000) printf "%.1f ms", us / 1000; else printf "%d us", us + 0.5 }'; }

echo
printf '%s\n' "| Measure | Ours | Floor | Ratio | Spread of the rounds | Target | Met |"
printf '%s\n' "|---|---|---|---|---|---|---|"
for measure in "${ORDER[@]}"; do
  row=$(grep "^row|$measure|" "$rows" | tail -n1 || true)
  if [ -z "$row" ]; then
    printf '| %s | - | - | - | - | %s | not run |\n' "${TITLE[$measure]}" "${TARGET[$measure]:+<= ${TARGET[$measure]}}"
    status=1
    continue
  fi
  IFS='|' read -r _ _ ours floor ratio lowest highest rounds <<<"$row"
  target=${TARGET[$measure]:-}
  if [ -n "$target" ]; then
    met=$(awk -v r="$ratio" -v t="$target" 'BEGIN { print (sprintf("%.2f", r) + 0 <= t + 0) ? "yes" : "no" }')
    target_text="<= $target"
  else
    met="-"
    target_text="(reported)"
  fi
  printf '| %s | %s | %s (%s) | %.2f | %.2f .. %.2f (%s rounds) | %s | %s |\n' "${TITLE[$measure]}" \
    "$(show_time "$ours")" "$(show_time "$floor")" "${FLOOR[$measure]}" "$ratio" "$lowest" "$highest" "$rounds" \
    "$target_text" "$met"
done
dll_met=$([ "$dll_bytes" -lt $((400 * 1024)) ] && echo yes || echo no)
printf '| %s | %d KB | - | - | - | < 400 KB | %s |\n' "DLL, stripped" $(((dll_bytes + 1023) / 1024)) "$dll_met"
exit $status
