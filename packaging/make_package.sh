#!/usr/bin/env bash
# Packages the built vqcprop64.dll, vqcprop32.dll and vqctool.exe: OUT/vqcprop64-VERSION-x64.msi
# (wixl, from vqcprop64.wxs beside this script) and OUT/vqcprop64-VERSION-x64.zip with the same
# three files in a folder of that name. The build runs it (target vqcprop64_package) on the
# files as built; packaging/signed_package.sh runs it on signed copies.
#   make_package.sh VERSION DLL64 DLL32 TOOL OUT
set -euo pipefail
[ $# -eq 5 ] || { echo "usage: make_package.sh VERSION DLL64 DLL32 TOOL OUT" >&2; exit 2; }
version="$1" dll64="$2" dll32="$3" tool="$4" out="$5"
here=$(cd "$(dirname "$0")" && pwd)
[ "$(basename "$dll64")" = vqcprop64.dll ] || { echo "make_package.sh: $dll64 is not vqcprop64.dll" >&2; exit 2; }
[ "$(basename "$dll32")" = vqcprop32.dll ] || { echo "make_package.sh: $dll32 is not vqcprop32.dll" >&2; exit 2; }

# The product's name, company and description, which the files' version blocks carry too.
product() { sed -n "s/^$1=//p" "$here/product.txt"; }

# Each version has a product code of its own (a newer package then replaces an older one as
# a major upgrade), and always the same one: a name-based GUID of the version in this
# namespace. Never change the namespace: released versions would get new codes.
namespace=08DC3854-79B6-4436-8D7C-7F45B460D713
product_code=$(python3 -c 'import sys, uuid; print(str(uuid.uuid5(uuid.UUID(sys.argv[1]), sys.argv[2])).upper())' \
  "$namespace" "$version")

name="vqcprop64-$version-x64"
mkdir -p "$out"
rm -rf "${out:?}/$name" "$out/$name.msi" "$out/$name.zip"
mkdir "$out/$name"
cp "$dll64" "$dll32" "$tool" "$out/$name/"
# wixl finds the files' sources relative to the folder it runs in.
(cd "$out" && wixl --arch x64 -D Version="$version" -D ProductCode="$product_code" -D BinDir="$name" \
   -D ProductName="$(product name)" -D Manufacturer="$(product company)" -D Description="$(product description)" \
   -o "$name.msi" "$here/vqcprop64.wxs")
(cd "$out" && zip -q -r "$name.zip" "$name")
rm -rf "${out:?}/$name"
