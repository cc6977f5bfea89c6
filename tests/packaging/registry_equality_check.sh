#!/usr/bin/env bash
# The package writes exactly what registering both DLLs writes plus the file type rows, in
# both views of the registry: in one fresh prefix the package's own DLLs (taken out of the
# package with msiextract, put where the package puts them) are registered, vqcprop64.dll with
# the 64-bit regsvr32 and vqcprop32.dll with the 32-bit one, and
# scripts/lib/file-type-association.reg is imported; in another the package is installed with
# msiexec /i /qn. What each changed below HKEY_CLASSES_ROOT (the Installer's own bookkeeping
# aside) must be the same, key by key and value by value, in the registry's own files (both
# views at once) and as a 64-bit and a 32-bit program see it (reg export /reg:64, /reg:32): a
# row a DLL writes that the package does not, or the other way round, fails.
#   registry_equality_check.sh ROOT PACKAGING_DIR PACKAGE
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" package="$3"
source "$ROOT/tests/packaging/package_prefixes.sh"


# Every change below the classes root of both hives, as "+line" and "-line".
class_changes() {
  diff <(grep -iE '^HK(LM|CU)\\Software\\Classes\\' "$1") <(grep -iE '^HK(LM|CU)\\Software\\Classes\\' "$2") \
    | sed -n 's/^> /+/p; s/^< /-/p' | grep -viE '^[+-]HKLM\\Software\\Classes\\Installer(\\|$)' | sort
}

reference=$(new_prefix registry-reference)
in_prefix "$reference" cmd /c exit
registry_of "$reference" >"$work/reference-before"
msiextract -C "$work/extracted" "$package" >/dev/null || fail "msiextract could not read $package"
for dll in vqcprop64.dll vqcprop32.dll; do
  [ -n "$(find "$work/extracted" -iname "$dll")" ] || fail "the package holds no $dll"
done
mkdir -p "$(install_folder_of "$reference")" "$(install_folder32_of "$reference")"
cp "$(find "$work/extracted" -iname vqcprop64.dll | head -n1)" "$(install_folder_of "$reference")/"
cp "$(find "$work/extracted" -iname vqcprop32.dll | head -n1)" "$(install_folder32_of "$reference")/"
in_prefix "$reference" regsvr32 /s "$INSTALL_FOLDER_WINDOWS\\vqcprop64.dll" || fail "regsvr32 of vqcprop64.dll failed"
in_prefix "$reference" "$REGSVR32_32BIT" /s "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll" ||
  fail "the 32-bit regsvr32 of vqcprop32.dll failed"
in_prefix "$reference" regedit /S "$(windows_path "$ROOT/scripts/lib/file-type-association.reg")" ||
  fail "regedit could not import the association rows"
registry_of "$reference" >"$work/reference-after"
class_changes "$work/reference-before" "$work/reference-after" >"$work/reference-changes"
our_keys_in_view "$reference" 64 >"$work/reference-view64"
our_keys_in_view "$reference" 32 >"$work/reference-view32"

installed=$(new_prefix registry-installed)
in_prefix "$installed" cmd /c exit
registry_of "$installed" >"$work/installed-before"
msiexec_in "$installed" /i "$package" || fail "msiexec /i failed with status $?"
registry_of "$installed" >"$work/installed-after"
class_changes "$work/installed-before" "$work/installed-after" >"$work/installed-changes"
our_keys_in_view "$installed" 64 >"$work/installed-view64"
our_keys_in_view "$installed" 32 >"$work/installed-view32"

echo "the two regsvr32 runs and the association rows changed:"
cat "$work/reference-changes"
# Both must have written the class in both views, its server, the application id and the file
# type; an empty comparison proves nothing.
for key in "CLSID\\$CLASS_ID\\InProcServer32" "Wow6432Node\\CLSID\\$CLASS_ID\\InProcServer32" "AppID\\$APP_ID" \
           "AppID\\vqcprop64.dll" "AppID\\vqcprop32.dll" ".vqc" \
           "VCLIENT\\shellex\\PropertySheetHandlers\\$CLASS_ID" "VCLIENT\\shellex\\IconHandler" "VCLIENT\\DefaultIcon"; do
  grep -qixF "+HKLM\\Software\\Classes\\$key" "$work/reference-changes" || fail "regsvr32 and the rows wrote no $key"
done
diff -u --label "regsvr32 (64 and 32) + association rows" --label "msiexec /i" \
  "$work/reference-changes" "$work/installed-changes" || fail "the package's registry differs from registration's"

# Each view names its own DLL, and the package's views are registration's.
expect_server_in_view "$reference" 64 "$INSTALL_FOLDER_WINDOWS\\vqcprop64.dll"
expect_server_in_view "$reference" 32 "$INSTALL_FOLDER32_WINDOWS\\vqcprop32.dll"
for view in 64 32; do
  diff -u --label "regsvr32 (64 and 32) + association rows, /reg:$view" --label "msiexec /i, /reg:$view" \
    "$work/reference-view$view" "$work/installed-view$view" || fail "the package's $view-bit view differs from registration's"
done
echo "PASS: the package wrote the same $(wc -l <"$work/installed-changes") keys and values;" \
  "the 64-bit view ($(wc -l <"$work/installed-view64") lines) and the 32-bit view ($(wc -l <"$work/installed-view32") lines) as registration's"
