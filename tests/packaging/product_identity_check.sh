#!/usr/bin/env bash
# One product everywhere: the version block of every file inside the package (vqcprop64.dll,
# vqcprop32.dll, vqctool.exe, taken out with msiextract) and the package's summary and
# properties carry the same product name, company, description and version, the ones of
# packaging/product.txt and the file VERSION (or the package's own version, for a package of
# another version).
#   product_identity_check.sh ROOT PACKAGE
set -uo pipefail
root="$1" package="$2"
fail() { echo "FAIL: $*"; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
[ -f "$package" ] || fail "no package at $package"
version=$(basename "$package" | sed -nE 's/^vqcprop64-([0-9]+\.[0-9]+\.[0-9]+)-x64\.msi$/\1/p')
[ -n "$version" ] || fail "$package is not named vqcprop64-X.Y.Z-x64.msi"
product() { sed -n "s/^$1=//p" "$root/packaging/product.txt"; }
name=$(product name) company=$(product company) description=$(product description)
[ -n "$name" ] && [ -n "$company" ] && [ -n "$description" ] || fail "packaging/product.txt must name the product, company and description"

# The package: its summary (Author, Subject, Comments) and its Property table.
msiinfo suminfo "$package" | tr -d '\r' >"$work/summary" || fail "msiinfo cannot read $package"
summary() { sed -n "s/^$1: //p" "$work/summary"; }
property() { msiinfo export "$package" Property | tr -d '\r' | sed -n "s/^$1\t//p"; }
[ "$(summary Author)" = "$company" ] || fail "the summary's Author is '$(summary Author)', not '$company'"
[ "$(summary Subject)" = "$name $version (vqcprop64)" ] || fail "the summary's Subject is '$(summary Subject)', not '$name $version (vqcprop64)'"
[ "$(summary Comments)" = "$description" ] || fail "the summary's Comments are '$(summary Comments)', not '$description'"
[ "$(property Manufacturer)" = "$company" ] || fail "the Manufacturer property is '$(property Manufacturer)', not '$company'"
[ "$(property ProductName)" = "$name" ] || fail "the ProductName property is '$(property ProductName)', not '$name'"
[ "$(property ProductVersion)" = "$version" ] || fail "the ProductVersion property is '$(property ProductVersion)', not '$version'"

# Every file: its version block's strings and fixed versions.
msiextract -C "$work/files" "$package" >/dev/null || fail "msiextract could not read $package"
checked=0
for file in vqcprop64.dll vqcprop32.dll vqctool.exe; do
  path=$(find "$work/files" -name "$file" | head -n1)
  [ -n "$path" ] || fail "the package holds no $file"
  python3 "$root/tests/packaging/version_block.py" "$path" >"$work/$file.block" || fail "$file has no version block"
  field() { sed -n "s/^$1=//p" "$work/$file.block"; }
  for expected in "ProductName=$name" "CompanyName=$company" "Comments=$description" \
                  "ProductVersion=$version.0" "FileVersion=$version.0" \
                  "FixedProductVersion=$version.0" "FixedFileVersion=$version.0" "OriginalFilename=$file"; do
    grep -qxF "$expected" "$work/$file.block" || { cat "$work/$file.block"; fail "$file: ${expected%%=*} is '$(field "${expected%%=*}")', not '${expected#*=}'"; }
  done
  [ -n "$(field FileDescription)" ] || fail "$file has no FileDescription"
  checked=$((checked + 1))
done
echo "PASS: $checked files and the package say '$name', '$company', '$description', $version"
