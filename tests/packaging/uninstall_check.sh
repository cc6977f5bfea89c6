#!/usr/bin/env bash
# msiexec /x /qn takes back everything msiexec /i /qn did, both DLLs and both views of the
# registry, the file type included: in a fresh prefix of its own, the registry and the files
# below C:\ afterwards are as they were before the install, and neither a 64-bit nor a 32-bit
# program sees a key of ours.
#   uninstall_check.sh ROOT PACKAGING_DIR PACKAGE
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" package="$3"
source "$ROOT/tests/packaging/package_prefixes.sh"

prefix=$(new_prefix uninstall)
remember_state "$prefix" before
msiexec_in "$prefix" /i "$package" || fail "msiexec /i failed with status $?"
folder=$(install_folder_of "$prefix")
[ -f "$folder/vqcprop64.dll" ] && [ -f "$folder/vqctool.exe" ] || fail "msiexec /i installed no files in $folder"
[ -f "$(install_folder32_of "$prefix")/vqcprop32.dll" ] || fail "msiexec /i installed no vqcprop32.dll in $(install_folder32_of "$prefix")"
installed=$(registry_of "$prefix" "HKLM\\Software\\Classes\\CLSID\\$CLASS_ID" "HKLM\\Software\\Classes\\.vqc" \
  "HKLM\\Software\\Classes\\VCLIENT")
for key in "CLSID\\$CLASS_ID" ".vqc" "VCLIENT\\DefaultIcon"; do
  grep -qixF "HKLM\\Software\\Classes\\$key" <<<"$installed" || fail "msiexec /i wrote no $key"
done

expect_server_in_view "$prefix" 64 "$INSTALL_FOLDER_WINDOWS\\vqcprop64.dll"
expect_server_in_view "$prefix" 32 "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll"

msiexec_in "$prefix" /x "$package" || fail "msiexec /x failed with status $?"
expect_state_as "$prefix" before
for view in 64 32; do
  our_keys_in_view "$prefix" "$view" >"$work/left-$view"
  [ ! -s "$work/left-$view" ] || { cat "$work/left-$view"; fail "after msiexec /x the $view-bit view still holds keys of ours"; }
done
echo "PASS: after msiexec /x the registry and C:\\ are as before the install"
