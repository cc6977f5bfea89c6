#!/usr/bin/env bash
# Runs scripts/fuzz-coverage.sh on the committed seed corpus and fails unless its table has a
# row for every fuzz target, each of whose figures reads "reached/all" in whole numbers with
# the lines of a file more than none and nothing reached beyond all.
set -euo pipefail
ROOT=$(cd "$(dirname "$0")/../../.." && pwd)
output=$(bash "$ROOT/scripts/fuzz-coverage.sh" --seeds)
echo "$output"
status=0
for target in option_walk_fuzzer split_address_fuzzer icon_stream_fuzzer record_chain_fuzzer icon_road_fuzzer; do
  rows=$(grep -E "^$target +" <<<"$output" || true)
  if [ -z "$rows" ]; then
    echo "check: no row for $target"
    status=1
    continue
  fi
  while read -r _ file lines branches; do
    if ! [[ "$file" == connection/* && "$lines" =~ ^([0-9]+)/([0-9]+)$ ]] ||
       [ "${BASH_REMATCH[2]}" -eq 0 ] || [ "${BASH_REMATCH[1]}" -gt "${BASH_REMATCH[2]}" ] ||
       ! [[ "$branches" =~ ^([0-9]+)/([0-9]+)$ ]] || [ "${BASH_REMATCH[1]}" -gt "${BASH_REMATCH[2]}" ]; then
      echo "check: a row of $target is not file, lines reached/lines, branches reached/branches: $file $lines $branches"
      status=1
    fi
  done <<<"$rows"
done
exit $status
