#!/usr/bin/env bash
# The package writes exactly what registering the DLL writes plus the file type rows: in one
# fresh prefix the package's own DLL (taken out of the package with msiextract, put where the
# package puts it) is registered with regsvr32 and scripts/lib/file-type-association.reg is
# imported; in another the package is installed with msiexec /i /qn. What each changed below
# HKEY_CLASSES_ROOT (the Installer's own bookkeeping aside) must be the same, key by key and
# value by value: a row the DLL writes that the package does not, or the other way round, fails.
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
dll=$(find "$work/extracted" -iname vqcprop64.dll | head -n1)
[ -n "$dll" ] || fail "the package holds no vqcprop64.dll"
mkdir -p "$(install_folder_of "$reference")"
cp "$dll" "$(install_folder_of "$reference")/"
in_prefix "$reference" regsvr32 /s "$INSTALL_FOLDER_WINDOWS\\vqcprop64.dll" || fail "regsvr32 failed"
in_prefix "$reference" regedit /S "$(windows_path "$ROOT/scripts/lib/file-type-association.reg")" ||
  fail "regedit could not import the association rows"
registry_of "$reference" >"$work/reference-after"
class_changes "$work/reference-before" "$work/reference-after" >"$work/reference-changes"

installed=$(new_prefix registry-installed)
in_prefix "$installed" cmd /c exit
registry_of "$installed" >"$work/installed-before"
msiexec_in "$installed" /i "$package" || fail "msiexec /i failed with status $?"
registry_of "$installed" >"$work/installed-after"
class_changes "$work/installed-before" "$work/installed-after" >"$work/installed-changes"

echo "regsvr32 and the association rows changed:"
cat "$work/reference-changes"
# Both must have written the class, its server, the application id and the file type; an
# empty comparison proves nothing.
for key in "CLSID\\$CLASS_ID\\InProcServer32" "AppID\\$APP_ID" "AppID\\vqcprop64.dll" ".vqc" \
           "VCLIENT\\shellex\\PropertySheetHandlers\\$CLASS_ID" "VCLIENT\\shellex\\IconHandler" "VCLIENT\\DefaultIcon"; do
  grep -qixF "+HKLM\\Software\\Classes\\$key" "$work/reference-changes" || fail "regsvr32 and the rows wrote no $key"
done
diff -u --label "regsvr32 + association rows" --label "msiexec /i" \
  "$work/reference-changes" "$work/installed-changes" || fail "the package's registry differs from registration's"
echo "PASS: the package wrote the same $(wc -l <"$work/installed-changes") keys and values"
