#!/usr/bin/env bash
# One version everywhere: the DLL's version block (its fixed file and product versions and
# its ProductVersion text), `vqctool --version` and the package's ProductVersion all say the
# version in the file VERSION.
#   version_check.sh ROOT PACKAGE DLL TOOL PREFIX
set -uo pipefail
root="$1" package="$2" dll="$3" tool="$4"
export WINEPREFIX="$5" WINEDEBUG=-all
fail() { echo "FAIL: $*"; exit 1; }
version=$(head -n1 "$root/VERSION")
[[ "$version" =~ ^[0-9]+\.[0-9]+\.[0-9]+$ ]] || fail "VERSION must hold MAJOR.MINOR.PATCH, holds '$version'"

# The version block: VS_FIXEDFILEINFO (after its signature 0xFEEF04BD) and the text values.
dll_versions=$(python3 - "$dll" <<'PY'
import struct, sys
data = open(sys.argv[1], "rb").read()
at = data.find(struct.pack("<I", 0xFEEF04BD))
if at < 0:
    sys.exit("no version block")
_, _, file_ms, file_ls, product_ms, product_ls = struct.unpack_from("<6I", data, at)
def dotted(ms, ls): return f"{ms >> 16}.{ms & 0xFFFF}.{ls >> 16}.{ls & 0xFFFF}"
def text(name):
    key = (name + "\0").encode("utf-16-le")
    start = data.find(key, at)
    start += len(key)
    start += (-start) % 4  # values start on a 32-bit boundary
    end = data.find(b"\0\0", start)
    while (end - start) % 2: end = data.find(b"\0\0", end + 1)
    return data[start:end].decode("utf-16-le")
print(dotted(file_ms, file_ls), dotted(product_ms, product_ls), text("FileVersion"), text("ProductVersion"))
PY
) || fail "cannot read the DLL's version block"
[ "$dll_versions" = "$version.0 $version.0 $version.0 $version.0" ] ||
  fail "the DLL's file version, product version, FileVersion and ProductVersion must be $version.0: $dll_versions"

tool_output=$("$root/scripts/lib/wine64" "$tool" --version </dev/null 2>/dev/null | tr -d '\r')
[ "$tool_output" = "vqctool $version" ] || fail "vqctool --version must print 'vqctool $version', printed '$tool_output'"

[ -f "$package" ] || fail "no package at $package (is wixl installed? scripts/lib/packages.sh installs it)"
package_version=$(msiinfo export "$package" Property | tr -d '\r' | sed -n 's/^ProductVersion\t//p')
[ "$package_version" = "$version" ] || fail "the package's ProductVersion must be $version, is '$package_version'"
[ "$(basename "$package")" = "vqcprop64-$version-x64.msi" ] || fail "the package must be named for $version"
echo "PASS: the DLL ($dll_versions), vqctool and the package all say $version"
