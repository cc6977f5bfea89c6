#!/usr/bin/env bash
# scripts/bench.sh with tiny counts on the suite's own build and prefix: every benchmark
# runs and the table has its header and one row of seven cells per measure. No time is
# asserted: the figures come from runs with the script's own counts.
#   bench_smoke_check.sh ROOT WINDOWS_BUILD PREFIX
set -uo pipefail
root="$1"
export BENCH_BIN="$2" WINEPREFIX="$3" WINEDEBUG=-all
export BENCH_ROUNDS=2 BENCH_ICON_CYCLES=2 BENCH_PROPERTIES_CYCLES=1 BENCH_LOAD_CYCLES=2 BENCH_READ_ITERATIONS=4

fail() { echo "FAIL: $*"; exit 1; }

table=$(bash "$root/scripts/bench.sh" 2>/dev/null </dev/null) || fail "bench.sh must succeed, printed:
$table"
echo "$table"

grep -qxF "| Measure | Ours | Floor | Ratio | Spread of the rounds | Target | Met |" <<<"$table" ||
  fail "the table has no header"
for title in "Icon, typical 2 KB file" "Icon, file without an icon" "Icon, 100 KB file" \
             "Properties, three pages" "LoadLibrary + DllGetClassObject" "First file in a fresh process" \
             "Read, typical file" "Read, 1 MB -C line" "DLL, stripped"; do
  row=$(grep -F "| $title" <<<"$table") || fail "no row for $title"
  [ "$(grep -c . <<<"$row")" = 1 ] || fail "more than one row for $title"
  cells=$(awk -F'|' '{ print NF - 2 }' <<<"$row")
  [ "$cells" = 7 ] || fail "the row for $title has $cells cells, not 7: $row"
  grep -q "not run" <<<"$row" && fail "$title did not run"
  if [ "$title" != "DLL, stripped" ]; then
    grep -Eq '\| [0-9]+\.[0-9]{2} \| [0-9]+\.[0-9]{2} \.\. [0-9]+\.[0-9]{2} \(2 rounds\) \|' <<<"$row" ||
      fail "the row for $title has no ratio with the spread of its two rounds: $row"
    grep -Eq '\| (yes|no|-) \|$' <<<"$row" || fail "the row for $title says nothing in Met: $row"
  fi
done
echo "PASS"
