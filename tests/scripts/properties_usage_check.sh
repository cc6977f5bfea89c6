#!/usr/bin/env bash
# scripts/properties.sh refuses what is not one connection file before it does anything:
#   properties_usage_check.sh CASE ROOT
# Each case runs the script with a fresh, empty BUILD_DIR and wants status 2, exactly one
# line on stderr (the expected one), nothing on stdout, and BUILD_DIR still empty: nothing
# was built, staged, registered or written.
set -uo pipefail
case_name="$1" root="$2"

fail() { echo "FAIL: $*"; exit 1; }

source "$root/scripts/lib/on-exit.sh"
work=$(mktemp -d)
on_exit rm -rf "$work"
build="$work/build"
mkdir -p "$build" "$work/files"

case "$case_name" in
  missing-file)
    target="$work/files/absent.vqc"
    expected="properties.sh: $target: no such file" ;;
  directory)
    target="$work/files/folder.vqc"
    mkdir "$target"
    expected="properties.sh: $target: is a directory, not a connection file" ;;
  wrong-extension)
    target="$work/files/connection.txt"
    printf '%s' "-h server.example -u tester " >"$target"
    expected="properties.sh: $target: not a connection file (the name must end in .vqc)" ;;
  no-extension)
    target="$work/files/vqc"
    printf '%s' "-h server.example -u tester " >"$target"
    expected="properties.sh: $target: not a connection file (the name must end in .vqc)" ;;
  *) fail "unknown case $case_name" ;;
esac
before=$( [ -f "$target" ] && sha256sum "$target" )

BUILD_DIR="$build" bash "$root/scripts/properties.sh" "$target" --screenshots "$work/shots" \
  >"$work/out" 2>"$work/err" </dev/null
status=$?
echo "status $status; stderr:"; cat "$work/err"

[ "$status" -eq 2 ] || fail "status must be 2, got $status"
[ "$(wc -l <"$work/err")" -eq 1 ] || fail "stderr must be exactly one line"
[ "$(cat "$work/err")" = "$expected" ] || fail "stderr must read: $expected"
[ ! -s "$work/out" ] || fail "stdout must be empty, got: $(cat "$work/out")"
[ -z "$(ls -A "$build")" ] || fail "nothing may be built or registered, but BUILD_DIR holds: $(ls -A "$build")"
[ ! -e "$work/shots" ] || fail "no screenshot folder may be made"
after=$( [ -f "$target" ] && sha256sum "$target" )
[ "$before" = "$after" ] || fail "the file must be left as it was"
echo "PASS"
