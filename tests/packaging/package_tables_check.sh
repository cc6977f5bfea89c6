#!/usr/bin/env bash
# The package's tables as msiinfo reads them, before anything runs it: the three files (the
# built ones, byte counts included) in components with fixed codes, vqcprop64.dll and
# vqctool.exe 64-bit below the 64-bit Program Files, vqcprop32.dll 32-bit below the 32-bit
# one, the registry rows in the Registry table (each DLL's class rows in its own component,
# the application id once, the association's in a component of the FileType feature, nothing
# self-registering), the upgrade rows of the fixed upgrade code (older versions replaced,
# newer ones detected) and the downgrade refusal, and the product version the build gave the DLL.
#   package_tables_check.sh ROOT PACKAGE DLL TOOL VERSION DLL32
set -uo pipefail
root="$1" package="$2" dll="$3" tool="$4" version="$5" dll32="$6"
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

# Files: exactly the three, with the sizes of the built files.
[ "$(table File | wc -l)" -eq 3 ] || fail "the File table must hold three files: $(table File | cut -f1 | tr '\n' ' ')"
expect_row File $'vqcprop64.dll\tShellExtension\tvqcprop64.dll\t'"$(stat -c %s "$dll")"$'\t\t\t512\t1'
expect_row File $'vqctool.exe\tTool\tvqctool.exe\t'"$(stat -c %s "$tool")"$'\t\t\t512\t2'
expect_row File $'vqcprop32.dll\tShellExtension32\tvqcprop32.dll\t'"$(stat -c %s "$dll32")"$'\t\t\t512\t3'

# Components: fixed codes, 64-bit (attribute 256), in the install folder below Program Files 64.
expect_row Component $'ShellExtension\t{2ADD4298-60F6-490E-B418-184127FA058F}\tINSTALLFOLDER\t256\t\tvqcprop64.dll'
expect_row Component $'Tool\t{DC9E288C-A783-4B8A-9E5A-92EC549173B9}\tINSTALLFOLDER\t256\t\tvqctool.exe'
table Component | grep -qE $'^FileTypeAssociation\t\\{B9BF7A03-A2F1-4D4E-BC14-C6BFC915EC2B\\}\tINSTALLFOLDER\t260\t\treg' ||
  fail "the file type's component must have its fixed code, be 64-bit and keyed by a registry row"
# The 32-bit DLL's component is 32-bit (attribute 0): its files go to the 32-bit Program
# Files and its registry rows into the 32-bit view.
expect_row Component $'ShellExtension32\t{F512B449-6195-4989-A088-7DDE9D68C2A4}\tINSTALLFOLDER32\t0\t\tvqcprop32.dll'
[ "$(table Component | wc -l)" -eq 4 ] || fail "the package must have four components"
table Directory | grep -qE $'^INSTALLFOLDER\tProgramFiles64Folder\tvqcprop64$' || fail "the files must go to Program Files\\vqcprop64"
table Directory | grep -qE $'^INSTALLFOLDER32\tProgramFilesFolder\tvqcprop64$' ||
  fail "vqcprop32.dll must go to the 32-bit Program Files, folder vqcprop64"
expect_row FeatureComponents $'Server\tShellExtension'
expect_row FeatureComponents $'Server\tShellExtension32'
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
# The 32-bit DLL's rows: its class in the 32-bit view, its file name below the shared "AppID";
# the application id's own key is shared too and written by the 64-bit component only.
expect_registry $'0\tAppID\\vqcprop32.dll\tAppID\t'"$app_id"$'\tShellExtension32'
expect_registry $'0\tCLSID\\'"$class_id"$'\t\tVQCProp Class\tShellExtension32'
expect_registry $'0\tCLSID\\'"$class_id"$'\\InProcServer32\t\t[#vqcprop32.dll]\tShellExtension32'
expect_registry $'0\tCLSID\\'"$class_id"$'\\InProcServer32\tThreadingModel\tApartment\tShellExtension32'
expect_registry $'0\tCLSID\\'"$class_id"$'\\InProcServer32\tAppID\t'"$app_id"$'\tShellExtension32'
[ "$(grep -cF $'0\tAppID\\'"$app_id"$'\t' <<<"$registry")" -eq 1 ] || fail "the application id's key must be written by one component"
# Every key of the association rows, in the file type's component.
while read -r key; do
  grep -qE "^0"$'\t'"$(sed 's/[][\\.{}]/\\&/g' <<<"$key")"$'\t.*\tFileTypeAssociation$' <<<"$registry" ||
    fail "no Registry row of the file type for $key"
done < <(sed -n 's/^\[HKEY_CLASSES_ROOT\\\(.*\)\]\r\{0,1\}$/\1/p' "$root/scripts/lib/file-type-association.reg")
[ "$(wc -l <<<"$registry")" -eq 15 ] || fail "the Registry table must hold the 15 rows, holds $(wc -l <<<"$registry")"
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
