# Runs one ctest suite and prints what it needed to say about flakes.
#
# A test that times out is run once more (ctest --repeat after-timeout:2): Wine's process
# start-up has hung a passing test before. Each such retry is named in the summary, and a
# test that times out twice fails the run. Nothing else is retried.

# run_ctest_suite BUILD LOG: ctest in BUILD, its output shown and kept in LOG.
run_ctest_suite() {
  local build="$1" log="$2" status=0
  ctest --test-dir "$build" -j "$JOBS" --output-on-failure --repeat after-timeout:2 2>&1 \
    | tee "$log" || status=$?
  print_retried_timeouts "$log"
  return $status
}

# The tests that timed out in the LOGs, each with the number of its timeouts: "COUNT NAME".
timed_out_tests() {
  sed -nE 's/^ *([0-9]+\/[0-9]+ )?Test +#[0-9]+: ([^ ]+) \.*\*\*\*Timeout.*/\2/p' "$@" | sort | uniq -c
}

print_retried_timeouts() {
  local lines
  lines=$(timed_out_tests "$1")
  [ -n "$lines" ] || return 0
  echo "== timed out and run again (a second timeout fails the run) =="
  printf '%s\n' "$lines" | while read -r count name; do echo "  $name: timed out ${count}x"; done
}

# suite_summary NAME LOG: one line of what the suite in LOG counted and how long it took.
suite_summary() {
  local counts seconds
  counts=$(grep -Eo '[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$2" | tail -n1)
  seconds=$(sed -nE 's/^Total Test time \(real\) = +([0-9.]+) sec.*/\1/p' "$2" | tail -n1)
  echo "$1: ${counts:-no result}${seconds:+, $seconds s}"
}
