#!/usr/bin/env bash
# Checks of the test runner itself (scripts/wine-run.sh under ctest), one case per test:
#   runner_check.sh CASE WINE_RUN PREFIX PROBE_DIR
# PROBE_DIR holds crash_probe.exe, hang_probe.exe, silent_probe.exe and gtest_probe.exe.
set -uo pipefail
case_name="$1" wine_run="$2" prefix="$3" probes="$4"
export WINEPREFIX="$prefix"

fail() { echo "FAIL: $*"; exit 1; }

# run PROGRAM ARGS...: sets $status and $output.
run() {
  output=$(bash "$wine_run" "$prefix" "$probes/$1" "${@:2}" 2>&1)
  status=$?
  printf '%s\n' "$output"
}

case "$case_name" in
  crash)
    run crash_probe.exe
    [ "$status" -eq 5 ] || fail "a crash must end with status 5, got $status" ;;

  passed-case)
    run gtest_probe.exe --gtest_filter=HarnessProbe.Passes
    [ "$status" -eq 0 ] || fail "a passing test must pass, got $status" ;;

  skipped-case)
    run gtest_probe.exe --gtest_filter=HarnessProbe.Skips
    [ "$status" -eq 0 ] || fail "a skipped test is no failure, got $status"
    grep -q '^\[  SKIPPED \] 1 test' <<<"$output" || fail "the skip must be reported" ;;

  no-test-selected)
    run gtest_probe.exe --gtest_filter=Nothing.Here
    [ "$status" -ne 0 ] || fail "a filter that runs no test must fail"
    grep -q 'ran no test' <<<"$output" || fail "the runner must say why" ;;

  no-output)
    run silent_probe.exe --gtest_filter=Silent.Case
    [ "$status" -ne 0 ] || fail "a test program that prints nothing must fail"
    grep -q 'ran no test' <<<"$output" || fail "the runner must say why" ;;

  silent-failure)
    run silent_probe.exe --gtest_filter=Silent.Case --status=3
    [ "$status" -eq 3 ] || fail "the program's own status must be kept, got $status"
    grep -q 'ended with status 3 and printed nothing' <<<"$output" || fail "the runner must say what it saw" ;;

  hang)
    # A ctest project of its own with one hanging test and a 3 s limit.
    source "$(dirname "$wine_run")/lib/on-exit.sh"
    work=$(mktemp -d)
    on_exit rm -rf "$work"
    cat >"$work/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.25)
project(hang NONE)
enable_testing()
add_test(NAME Hang.Forever COMMAND bash "$wine_run" "$prefix" "$probes/hang_probe.exe" --gtest_filter=Hang.Forever)
set_tests_properties(Hang.Forever PROPERTIES TIMEOUT 3)
CMAKE
    cmake -S "$work" -B "$work/build" >/dev/null || fail "cmake"
    output=$(ctest --test-dir "$work/build" 2>&1)
    status=$?
    printf '%s\n' "$output"
    [ "$status" -ne 0 ] || fail "a hanging test must fail the run"
    grep -Eq 'Hang\.Forever \.*\*\*\*Timeout' <<<"$output" || fail "the hang must be reported as a timeout"
    # By its full path: other builds on the machine may run a hang_probe of their own.
    for _ in $(seq 50); do pgrep -f "$probes/hang_probe.exe" >/dev/null || break; sleep 0.1; done
    if pgrep -af "$probes/hang_probe.exe"; then fail "the hanging program is still running"; fi ;;

  helpers-detached)
    # A program that touches the desktop, run the way every test runs; afterwards no
    # process of the prefix may hold the pipe our output goes to.
    own=$(readlink /proc/$$/fd/1)
    bash "$wine_run" "$prefix" "$probes/gtest_probe.exe" --gtest_filter=HarnessProbe.MakesAWindow \
      || fail "the window probe failed"
    source "$(dirname "$wine_run")/lib/wine-env.sh"
    processes=$(wine_prefix_processes)
    [ -n "$processes" ] || fail "no process of the prefix found: the check saw nothing"
    holders=$(for pid in $processes; do find "/proc/$pid/fd" -lname "$own" 2>/dev/null; done)
    [ -z "$holders" ] || fail "holding this test's output ($own): $holders" ;;

  fixed-layout)
    # Started the way every test is started, a Windows program runs without address
    # randomization, so its brk heap begins at the same place below the shared user data
    # page (0x7ffe0000) on every start, instead of at a random page that sometimes covers it.
    heaps=()
    for attempt in 1 2; do
      bash "$wine_run" "$prefix" "$probes/hang_probe.exe" >/dev/null 2>&1 &
      runner=$!
      pid=""
      for _ in $(seq 100); do
        pid=$(pgrep -f "^$probes/hang_probe.exe" | head -n1)
        [ -n "$pid" ] && grep -q '\[heap\]' "/proc/$pid/maps" 2>/dev/null && break
        pid=""
        sleep 0.1
      done
      [ -n "$pid" ] || { kill "$runner"; fail "hang_probe did not start (attempt $attempt)"; }
      personality=$(cat "/proc/$pid/personality")
      heap=$(grep -m1 '\[heap\]' "/proc/$pid/maps" | cut -d' ' -f1)
      kill "$pid"; wait "$runner" 2>/dev/null
      echo "attempt $attempt: personality $personality, heap $heap"
      (( 0x$personality & 0x0040000 )) || fail "the program must run with ADDR_NO_RANDOMIZE, personality $personality"
      (( 0x${heap#*-} <= 0x7ff00000 )) || fail "the heap $heap must end below Wine's reserved area at 0x7ff00000"
      heaps+=("$heap")
    done
    [ "${heaps[0]%-*}" = "${heaps[1]%-*}" ] || fail "the heap must start at the same place on every start: ${heaps[*]}" ;;

  *) fail "unknown case $case_name" ;;
esac
echo "ok: $case_name"
