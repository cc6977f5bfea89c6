#!/usr/bin/env bash
# The package's tables as msiinfo reads them, before anything runs it: the two files (the
# built ones, byte counts included) in 64-bit components with fixed codes below the 64-bit
# Program Files, the registry rows in the Registry table (the association's in a component of
# the FileType feature, nothing self-registering), the upgrade rows of the fixed upgrade code
# (older versions replaced, newer ones detected) and the downgrade refusal, and the product
# version the build gave the DLL.
#   package_tables_check.sh ROOT PACKAGE DLL TOOL VERSION
set -uo pipefail
root="$1" package="$2" dll="$3" tool="$4" version="$5"
fail() { echo "FAIL: $*"; exit 1; }
[ -f "$package" ] || fail "no package at $package (is wixl installed? scripts/lib/packages.sh installs it)"
command -v msiinfo >/dev/null || fail "msiinfo is missing (msitools; scripts/lib/packages.sh installs it)"
upgrade_code="{277BAF3B-6F65-486B-992A-71E513441E7A}"
class_id="{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}"
app_id="{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}"

# table NAME: the table's rows without its three header lines, tab-separated.
table() { msiinfo export "$package" "$1" | tr -d '\r' | tail -n +4; }
# expect_row TABLE ROW: ROW (tab-separated) is one of the table's rows.
expect_row() { table "$1" | grep -qxF "$2" || { table "$1"; fail "$1 has no row '$(tr '\t' '|' <<<"$2")'"; }; }

msiinfo tables "$package" >/dev/null || fail "msiinfo cannot read $package"

# Files: exactly the two, with the sizes of the built files.
[ "$(table File | wc -l)" -eq 2 ] || fail "the File table must hold two files: $(table File | cut -f1 | tr '\n' ' ')"
expect_row File $'vqcprop64.dll\tShellExtension\tvqcprop64.dll\t'"$(stat -c %s "$dll")"$'\t\t\t512\t1'
expect_row File $'vqctool.exe\tTool\tvqctool.exe\t'"$(stat -c %s "$tool")"$'\t\t\t512\t2'

# Components: fixed codes, 64-bit (attribute 256), in the install folder below Program Files 64.
expect_row Component $'ShellExtension\t{2ADD4298-60F6-490E-B418-184127FA058F}\tINSTALLFOLDER\t256\t\tvqcprop64.dll'
expect_row Component $'Tool\t{DC9E288C-A783-4B8A-9E5A-92EC549173B9}\tINSTALLFOLDER\t256\t\tvqctool.exe'
table Component | grep -qE $'^FileTypeAssociation\t\\{B9BF7A03-A2F1-4D4E-BC14-C6BFC915EC2B\\}\tINSTALLFOLDER\t260\t\treg' ||
  fail "the file type's component must have its fixed code, be 64-bit and keyed by a registry row"
[ "$(table Component | wc -l)" -eq 3 ] || fail "the package must have three components"
table Directory | grep -qE $'^INSTALLFOLDER\tProgramFiles64Folder\tvqcprop64$' || fail "the files must go to Program Files\\vqcprop64"
expect_row FeatureComponents $'Server\tShellExtension'
expect_row FeatureComponents $'Server\tTool'
expect_row FeatureComponents $'FileType\tFileTypeAssociation'
table Feature | grep -qE $'^FileType\tServer\t.*\t1\t\t0$' || fail "FileType must be a feature below Server, on by default (level 1)"

# Registry: the server's rows (HKCR is root 0), the InProcServer32 value the installed DLL's path.
registry=$(table Registry | cut -f2-6)
expect_registry() { grep -qxF "$1" <<<"$registry" || { echo "$registry"; fail "no Registry row '$(tr '\t' '|' <<<"$1")'"; }; }
expect_registry $'0\tAppID\\'"$app_id"$'\t\tvqcprop\tShellExtension'
expect_registry $'0\tAppID\\vqcprop64.dll\tAppID\t'"$app_id"$'\tShellExtension'
expect_registry $'0\tCLSID\\'"$class_id"$'\t\tVQCProp Class\tShellExtension'
expect_registry $'0\tCLSID\\'"$class_id"$'\\InProcServer32\t\t[#vqcprop64.dll]\tShellExtension'
expect_registry $'0\tCLSID\\'"$class_id"$'\\InProcServer32\tThreadingModel\tApartment\tShellExtension'
expect_registry $'0\tCLSID\\'"$class_id"$'\\InProcServer32\tAppID\t'"$app_id"$'\tShellExtension'
# Every key of the association rows, in the file type's component.
while read -r key; do
  grep -qE "^0"$'\t'"$(sed 's/[][\\.{}]/\\&/g' <<<"$key")"$'\t.*\tFileTypeAssociation$' <<<"$registry" ||
    fail "no Registry row of the file type for $key"
done < <(sed -n 's/^\[HKEY_CLASSES_ROOT\\\(.*\)\]\r\{0,1\}$/\1/p' "$root/scripts/lib/file-type-association.reg")
[ "$(wc -l <<<"$registry")" -eq 10 ] || fail "the Registry table must hold the 10 rows, holds $(wc -l <<<"$registry")"
[ -z "$(table SelfReg 2>/dev/null)" ] || fail "nothing may register itself at install time"
! table InstallExecuteSequence | grep -qiE '^(SelfRegModules|RegisterClassInfo)' || fail "no self-registration action"

# Upgrades: older versions found and removed, newer ones detected, the downgrade refused.
expect_row Upgrade "$upgrade_code"$'\t\t'"$version"$'\t\t1\t\tWIX_UPGRADE_DETECTED'
expect_row Upgrade "$upgrade_code"$'\t'"$version"$'\t\t\t2\t\tWIX_DOWNGRADE_DETECTED'
table InstallExecuteSequence | grep -qE $'^RemoveExistingProducts\t' || fail "older versions must be removed"
table LaunchCondition | grep -qE $'^NOT WIX_DOWNGRADE_DETECTED\tA newer version of VOXA connection file properties is already installed\\.' ||
  fail "a downgrade must be refused with its message"

# The product: the fixed upgrade code, per machine, the build's version.
expect_row Property $'UpgradeCode\t'"$upgrade_code"
expect_row Property $'ALLUSERS\t1'
expect_row Property $'ProductVersion\t'"$version"
echo "PASS: File, Component, Registry, Upgrade, LaunchCondition and Property tables as they must be"
