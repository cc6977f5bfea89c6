#!/usr/bin/env bash
# A newer package replaces an older one and an older one is refused. The test builds the
# next version (patch + 1) with scripts/package.sh in a build folder of its own, then in a
# fresh prefix of its own: version N installed, N+1 installed over it (one product listed,
# N+1's files in place, both DLLs still registered, each in its own view of the registry, with
# the classes as N had them, vqctool saying N+1), N refused by the downgrade condition and the
# machine left as N+1 had it, and msiexec /x of N+1 leaves the registry and C:\ as before.
#   upgrade_check.sh ROOT PACKAGING_DIR PACKAGE
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" package="$3"
source "$ROOT/tests/packaging/package_prefixes.sh"

version=$(basename "$package" | sed -nE 's/^vqcprop64-([0-9]+\.[0-9]+\.[0-9]+)-x64\.msi$/\1/p')
[ -n "$version" ] || fail "$package is not named vqcprop64-X.Y.Z-x64.msi"
next="${version%.*}.$((${version##*.} + 1))"
next_build="$PACKAGING_DIR/next-version"
BUILD_DIR="$next_build" bash "$ROOT/scripts/package.sh" --version "$next" >"$work/package-output" 2>&1 ||
  { cat "$work/package-output"; fail "scripts/package.sh --version $next failed"; }
next_package="$next_build/package/vqcprop64-$next-x64.msi"
[ -f "$next_package" ] && [ -f "$next_build/package/vqcprop64-$next-x64.zip" ] ||
  fail "scripts/package.sh wrote no package and zip for $next"

# products_listed PREFIX: "DisplayVersion" of every installed product of ours, one a line.
products_listed() {
  registry_of "$1" 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall' >"$work/uninstall"
  local key
  for key in $(grep -F $'\t"DisplayName"="VOXA connection file properties"' "$work/uninstall" | cut -f1); do
    grep -F "$key"$'\t"DisplayVersion"=' "$work/uninstall" | sed -E 's/.*"DisplayVersion"="(.*)"$/\1/'
  done
}

# tool_version PREFIX: what the installed vqctool --version prints.
tool_version() {
  WINEPREFIX="$1" "$WINE_LOADER" "$INSTALL_FOLDER_WINDOWS\\vqctool.exe" --version </dev/null 2>/dev/null | tr -d '\r'
}

prefix=$(new_prefix upgrade)
remember_state "$prefix" before
msiexec_in "$prefix" /i "$package" || fail "msiexec /i of $version failed with status $?"
[ "$(products_listed "$prefix")" = "$version" ] || fail "after installing $version the products listed are: $(products_listed "$prefix")"
# The classes root without the Installer's bookkeeping (its source lists name the package).
classes_of() { registry_of "$1" 'HKLM\Software\Classes' | grep -viE '^HKLM\\Software\\Classes\\Installer(\\|$|'$'\t'')'; }
classes_of "$prefix" >"$work/installed.classes"

msiexec_in "$prefix" /i "$next_package" || fail "msiexec /i of $next over $version failed with status $?"
[ "$(products_listed "$prefix")" = "$next" ] ||
  fail "after the upgrade exactly one product, $next, must be listed; listed: $(products_listed "$prefix" | tr '\n' ' ')"
msiextract -C "$work/next-files" "$next_package" >/dev/null || fail "msiextract could not read $next_package"
for file in vqcprop64.dll vqctool.exe; do
  cmp -s "$(find "$work/next-files" -name "$file")" "$(install_folder_of "$prefix")/$file" ||
    fail "$file must be $next's after the upgrade"
done
cmp -s "$(find "$work/next-files" -name vqcprop32.dll)" "$(install_folder32_of "$prefix")/vqcprop32.dll" ||
  fail "vqcprop32.dll must be $next's after the upgrade"
expect_server_in_view "$prefix" 64 "$INSTALL_FOLDER_WINDOWS\\vqcprop64.dll"
expect_server_in_view "$prefix" 32 "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll"
classes_of "$prefix" | diff "$work/installed.classes" - ||
  fail "after the upgrade the classes (both views, the file type) must be as $version had them"
[ "$(tool_version "$prefix")" = "vqctool $next" ] || fail "the installed vqctool says '$(tool_version "$prefix")', not $next"
files_of "$prefix" >"$work/upgraded.files"
registry_of "$prefix" 'HKLM\Software\Classes' >"$work/upgraded.classes"

# Windows Installer shows the package's downgrade message (its LaunchCondition row, checked
# by the tables test) and ends with 1603; Wine's msiexec logs no message text with /qn, so
# the refusal is read from the launch conditions' failure with the newer product detected.
status=0
logged=$(wc -l <"$TEST_LOG")
msiexec_in "$prefix" /i "$package" || status=$?
tail -n +"$((logged + 1))" "$TEST_LOG" >"$work/refusal.log"
[ "$status" -eq $((1603 % 256)) ] || fail "installing $version over $next must end with 1603 (here $((1603 % 256))), got $status"
grep -qE '^Action ended .*: LaunchConditions\. Return value 0\.$' "$work/refusal.log" ||
  fail "the refusal must come from the launch conditions"
grep -qE '^Property\(S\): WIX_DOWNGRADE_DETECTED = \{' "$work/refusal.log" || fail "the refusal must have found the newer product"
[ "$(products_listed "$prefix")" = "$next" ] || fail "the refused downgrade must leave $next installed"
files_of "$prefix" | diff "$work/upgraded.files" - || fail "the refused downgrade must leave the files alone"
registry_of "$prefix" 'HKLM\Software\Classes' | diff "$work/upgraded.classes" - ||
  fail "the refused downgrade must leave the classes alone"
cmp -s "$(find "$work/next-files" -name vqcprop64.dll)" "$(install_folder_of "$prefix")/vqcprop64.dll" ||
  fail "the refused downgrade must leave $next's DLL in place"

msiexec_in "$prefix" /x "$next_package" || fail "msiexec /x of $next failed with status $?"
expect_state_as "$prefix" before
echo "PASS: $version -> $next upgraded to one product, $next -> $version refused (status $status), removal clean"
