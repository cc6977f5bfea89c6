#!/usr/bin/env bash
# msiexec /x /qn takes back everything msiexec /i /qn did, the file type included: in a fresh
# prefix of its own, the registry and the files below C:\ afterwards are as they were before
# the install.
#   uninstall_check.sh ROOT PACKAGING_DIR PACKAGE
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" package="$3"
source "$ROOT/tests/packaging/package_prefixes.sh"

prefix=$(new_prefix uninstall)
remember_state "$prefix" before
msiexec_in "$prefix" /i "$package" || fail "msiexec /i failed with status $?"
folder=$(install_folder_of "$prefix")
[ -f "$folder/vqcprop64.dll" ] && [ -f "$folder/vqctool.exe" ] || fail "msiexec /i installed no files in $folder"
installed=$(registry_of "$prefix" "HKLM\\Software\\Classes\\CLSID\\$CLASS_ID" "HKLM\\Software\\Classes\\.vqc" \
  "HKLM\\Software\\Classes\\VCLIENT")
for key in "CLSID\\$CLASS_ID" ".vqc" "VCLIENT\\DefaultIcon"; do
  grep -qixF "HKLM\\Software\\Classes\\$key" <<<"$installed" || fail "msiexec /i wrote no $key"
done

msiexec_in "$prefix" /x "$package" || fail "msiexec /x failed with status $?"
expect_state_as "$prefix" before
echo "PASS: after msiexec /x the registry and C:\\ are as before the install"
