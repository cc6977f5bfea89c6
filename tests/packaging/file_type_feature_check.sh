#!/usr/bin/env bash
# The ".vqc" file type is a feature of its own that an administrator can leave out: installed
# with ADDLOCAL=Server the package writes the class (in both views) but no ".vqc" or "VCLIENT" key, and on a
# machine where it was installed whole, msiexec /i ... REMOVE=FileType takes the file type
# away and leaves the class. Fresh prefixes of its own.
#   file_type_feature_check.sh ROOT PACKAGING_DIR PACKAGE
set -uo pipefail
ROOT="$1" PACKAGING_DIR="$2" package="$3"
source "$ROOT/tests/packaging/package_prefixes.sh"

# expect_class_without_file_type PREFIX HOW
expect_class_without_file_type() {
  registry_of "$1" >"$work/registry"
  grep -qixF "HKLM\\Software\\Classes\\CLSID\\$CLASS_ID\\InProcServer32" "$work/registry" ||
    fail "$2: the class must be registered"
  grep -qixF "HKLM\\Software\\Classes\\Wow6432Node\\CLSID\\$CLASS_ID\\InProcServer32" "$work/registry" ||
    fail "$2: the class must be registered in the 32-bit view"
  if grep -iE '^HK(LM|CU)\\Software\\Classes\\(\.vqc|VCLIENT)(\\|$)' "$work/registry"; then
    fail "$2: no .vqc or VCLIENT key may be written"
  fi
  [ -f "$(install_folder_of "$1")/vqcprop64.dll" ] || fail "$2: the DLL must be installed"
}

server_only=$(new_prefix feature-server-only)
msiexec_in "$server_only" /i "$package" ADDLOCAL=Server || fail "msiexec /i ADDLOCAL=Server failed with status $?"
expect_class_without_file_type "$server_only" "ADDLOCAL=Server"

removed_later=$(new_prefix feature-removed-later)
msiexec_in "$removed_later" /i "$package" || fail "msiexec /i failed with status $?"
registry_of "$removed_later" >"$work/whole"
grep -qixF 'HKLM\Software\Classes\.vqc' "$work/whole" || fail "the whole package must write .vqc"
msiexec_in "$removed_later" /i "$package" REMOVE=FileType || fail "msiexec /i REMOVE=FileType failed with status $?"
expect_class_without_file_type "$removed_later" "REMOVE=FileType after a whole install"
echo "PASS: without the FileType feature the class is registered and no .vqc or VCLIENT key exists"
