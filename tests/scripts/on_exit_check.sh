#!/usr/bin/env bash
# scripts/lib/on-exit.sh, the one exit trap every script registers its clean-up with:
#   on_exit_check.sh CASE ROOT
# Each case runs a small script of its own that sources the library the way the scripts do and
# checks what its clean-ups left in a record file, and the script's exit status.
set -uo pipefail
case_name="$1" root="$2"

fail() { echo "FAIL: $*"; exit 1; }

work=$(mktemp -d)
source "$root/scripts/lib/on-exit.sh"
on_exit rm -rf "$work"
record="$work/record"

# run SCRIPT_BODY: runs it under `set -euo pipefail` with the library sourced; sets $status.
run() {
  {
    echo 'set -euo pipefail'
    echo "source '$root/scripts/lib/on-exit.sh'"
    echo "record='$record'"
    echo 'note() { echo "$1" >>"$record"; }'
    printf '%s\n' "$1"
  } >"$work/script.sh"
  : >"$record"
  bash "$work/script.sh" >"$work/out" 2>&1
  status=$?
  echo "status $status; clean-ups ran:"
  sed 's/^/  /' "$record"
}

expect_record() {
  local expected="$1"
  [ "$(cat "$record")" = "$expected" ] || fail "the clean-ups must have run as: $(tr '\n' ' ' <<<"$expected")"
}

case "$case_name" in
  failure)
    # Two clean-ups, registered as a library and then its script would: the script fails
    # under set -e half-way; both run, the later one first, and the failure's status is kept.
    run '
      on_exit note "first registered"
      on_exit note "second registered"
      false
      note "after the failure"'
    [ "$status" -eq 1 ] || fail "the script must end with the failure's status 1, got $status"
    expect_record $'second registered\nfirst registered' ;;

  failing-clean-up)
    # A clean-up that fails does not stop the ones registered before it.
    run '
      on_exit note "first registered"
      broken() { note "broken one"; return 3; }
      on_exit broken
      exit 4'
    [ "$status" -eq 4 ] || fail "the script must end with its own status 4, got $status"
    expect_record $'broken one\nfirst registered' ;;

  arguments)
    # Arguments are kept as registered, blanks and quotes included, whatever changes later.
    run '
      target="$(dirname "$record")/a folder with \"quotes\" and blanks"
      mkdir -p "$target"
      on_exit rmdir "$target"
      check() { if [ -d "$1" ]; then note "there before: $1"; fi; }
      on_exit check "$target"
      target=elsewhere'
    [ "$status" -eq 0 ] || fail "the script must end with status 0, got $status"
    expect_record "there before: $work/a folder with \"quotes\" and blanks"
    [ ! -e "$work/a folder with \"quotes\" and blanks" ] || fail "the folder must be removed" ;;

  subshell)
    # A subshell that registers a clean-up runs only its own, when it ends; the script's
    # own clean-ups run once, at the script's exit.
    run '
      on_exit note "script"
      ( on_exit note "subshell"; note "in the subshell" )
      note "after the subshell"'
    [ "$status" -eq 0 ] || fail "the script must end with status 0, got $status"
    expect_record $'in the subshell\nsubshell\nafter the subshell\nscript' ;;

  *) fail "unknown case $case_name" ;;
esac
echo "PASS"
