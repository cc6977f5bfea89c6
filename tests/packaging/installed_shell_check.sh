#!/usr/bin/env bash
# What the package installs works as the shell uses it, in a fresh prefix of its own where
# msiexec /i /qn installed it: shell_properties.exe opens a sample file's Properties through
# Wine's shell (the General page, then Connection, Proxy and Options), and
# installed_server_tests plays the shell's part for the icon (Wine's shell loads no icon
# handler) against the installed copy.
# PREFIX_NAME names the test's prefix (default shell-installed), so that the signed package's
# run does not share the unsigned one's.
#   installed_shell_check.sh ROOT PACKAGING_DIR PACKAGE SHELL_PROPERTIES_EXE INSTALLED_SERVER_TESTS_EXE [PREFIX_NAME]
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" package="$3" shell_properties="$4" server_tests="$5" prefix_name="${6:-shell-installed}"
source "$ROOT/tests/packaging/package_prefixes.sh"
[ -n "${DISPLAY:-}" ] || start_test_display || fail "no display for the property sheet"

prefix=$(new_prefix "$prefix_name")
msiexec_in "$prefix" /i "$package" || fail "msiexec /i failed with status $?"

cp "$ROOT/docs/samples/office.vqc" "$work/office.vqc"
in_prefix "$prefix" "$shell_properties" "$(windows_path "$work/office.vqc")" --screenshots "$(windows_path "$work")" ||
  fail "shell_properties found no property sheet for the installed package"
printf 'page1\tGeneral\npage2\tConnection\npage3\tProxy\npage4\tOptions\n' >"$work/titles"
grep -P '^page\d\t' "$TEST_LOG" | diff "$work/titles" - || fail "the pages must be General, Connection, Proxy, Options"
cmp -s "$ROOT/docs/samples/office.vqc" "$work/office.vqc" || fail "Cancel must leave the file as it was"

in_prefix "$prefix" "$server_tests" || fail "the installed icon handler failed its tests"
grep -E '^\[  PASSED  \] 3 tests' "$TEST_LOG" || fail "installed_server_tests must pass its three tests"
echo "PASS: Properties with four pages and the icon handler, both from the installed copy"
