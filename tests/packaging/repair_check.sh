#!/usr/bin/env bash
# A repair puts back what was lost after the install: in a fresh prefix of its own the package
# is installed, then both DLLs are deleted and the class is deleted from both views of the
# registry, with the 32-bit DLL's file name key below "AppID"; the repair (msiexec /i PACKAGE
# REINSTALL=ALL REINSTALLMODE=omus, which is what msiexec /fomus does on Windows; Wine's
# msiexec refuses /f) must leave the files and the classes as the install left them.
#   repair_check.sh ROOT PACKAGING_DIR PACKAGE
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" package="$3"
source "$ROOT/tests/packaging/package_prefixes.sh"

# The classes root without the Installer's bookkeeping (its source lists count the runs).
classes_of() { registry_of "$1" 'HKLM\Software\Classes' | grep -viE '^HKLM\\Software\\Classes\\Installer(\\|$|'$'\t'')'; }

prefix=$(new_prefix repair)
msiexec_in "$prefix" /i "$package" || fail "msiexec /i failed with status $?"
classes_of "$prefix" >"$work/installed.classes"
files_of "$prefix" >"$work/installed.files"
grep -qixF "HKLM\\Software\\Classes\\Wow6432Node\\CLSID\\$CLASS_ID\\InProcServer32" "$work/installed.classes" ||
  fail "msiexec /i wrote no class into the 32-bit view"

rm -f "$(install_folder_of "$prefix")/vqcprop64.dll" "$(install_folder32_of "$prefix")/vqcprop32.dll"
for view in 64 32; do
  in_prefix "$prefix" reg delete "HKCR\\CLSID\\$CLASS_ID" /f "/reg:$view" || fail "reg delete of the class /reg:$view failed"
done
in_prefix "$prefix" reg delete 'HKCR\AppID\vqcprop32.dll' /f || fail "reg delete of AppID\\vqcprop32.dll failed"
classes_of "$prefix" | grep -iE "CLSID\\\\$CLASS_ID|vqcprop32" && fail "the class must be gone before the repair"

msiexec_in "$prefix" /i "$package" REINSTALL=ALL REINSTALLMODE=omus || fail "the repair failed with status $?"
classes_of "$prefix" | diff "$work/installed.classes" - || fail "after the repair the classes must be as the install left them"
files_of "$prefix" | diff "$work/installed.files" - || fail "after the repair the files must be as the install left them"
expect_server_in_view "$prefix" 64 "$INSTALL_FOLDER_WINDOWS\\vqcprop64.dll"
expect_server_in_view "$prefix" 32 "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll"
echo "PASS: the repair put back both DLLs and the class in both views"
