#!/usr/bin/env bash
# The main job as a new user runs it, headless: scripts/properties.sh on a sample file with
# --screenshots opens the file's Properties through Wine's shell, names the pages (the
# shell's General page, then Connection, Proxy, Options), writes one PNG of each and
# cancels, so the file is left as it was. With --32 the same through the 32-bit road
# (vqcprop32.dll, the 32-bit regsvr32 and a 32-bit program asking the shell).
#   properties_pictures_check.sh ROOT BUILD_DIR PREFIX [--32]
# It registers a copy of the DLL and the file type in the prefix's real HKEY_CLASSES_ROOT and
# unregisters it at the end (RESOURCE_LOCK wine_classes_root).
set -uo pipefail
root="$1"
export BUILD_DIR="$2" VQC_WINEPREFIX="$3" WINEPREFIX="$3" WINEDEBUG=-all
road=("${@:4}")
if [ "${road[*]}" = "--32" ]; then
  regsvr32=("$root/scripts/lib/wine32" 'C:\windows\syswow64\regsvr32.exe') dll=vqcprop32.dll
else
  regsvr32=("$root/scripts/lib/wine64" regsvr32) dll=vqcprop64.dll
fi

fail() { echo "FAIL: $*"; exit 1; }

source "$root/scripts/lib/on-exit.sh"
source "$root/scripts/lib/windows-path.sh"
work=$(mktemp -d)
on_exit rm -rf "$work"
unregister() {
  "${regsvr32[@]}" /u /s "$(windows_path "$BUILD_DIR/properties/extension/$dll")" </dev/null >/dev/null 2>&1
}
on_exit unregister
cp "$root/docs/samples/office.vqc" "$work/office.vqc"

bash "$root/scripts/properties.sh" "$work/office.vqc" --screenshots "$work/shots" "${road[@]}" </dev/null >"$work/out" 2>"$work/err"
status=$?
cat "$work/out" "$work/err"
[ "$status" -eq 0 ] || fail "properties.sh must succeed, got status $status"

printf 'page1\tGeneral\npage2\tConnection\npage3\tProxy\npage4\tOptions\n' >"$work/titles"
grep -P '^page\d\t' "$work/out" | diff "$work/titles" - || fail "the pages must be General, Connection, Proxy, Options"
for page in 1 2 3 4; do
  picture="$work/shots/page$page.png"
  [ -f "$picture" ] || fail "page$page.png is missing"
  [ "$(head -c 8 "$picture" | od -An -tx1 | tr -d ' \n')" = "89504e470d0a1a0a" ] || fail "page$page.png is no PNG"
  # Width and height from IHDR: the whole sheet, some hundreds of pixels each way.
  width=$(od -An -tu1 -j16 -N4 "$picture" | awk '{print $1*16777216+$2*65536+$3*256+$4}')
  height=$(od -An -tu1 -j20 -N4 "$picture" | awk '{print $1*16777216+$2*65536+$3*256+$4}')
  [ "$width" -ge 300 ] && [ "$height" -ge 300 ] || fail "page$page.png is ${width}x$height, not a sheet"
  # 24-bit colour, and the file ends with the IEND chunk (length 0, type, CRC).
  [ "$(od -An -tu1 -j24 -N2 "$picture" | tr -s ' ')" = " 8 2" ] || fail "page$page.png is not 8-bit RGB"
  [ "$(tail -c 12 "$picture" | od -An -tx1 | tr -d ' \n')" = "0000000049454e44ae426082" ] || fail "page$page.png does not end"
  echo "${width}x$height" >>"$work/sizes"
done
# One sheet, whichever page is in front: every picture has its size.
[ "$(sort -u "$work/sizes" | wc -l)" -eq 1 ] || fail "the pictures must all be the sheet's size: $(tr '\n' ' ' <"$work/sizes")"
# Each page brought to the front before its picture: no two pictures alike.
[ "$(md5sum "$work/shots"/page?.png | cut -d' ' -f1 | sort -u | wc -l)" -eq 4 ] || fail "the four pictures must differ"
[ "$(ls "$work/shots" | sort | tr '\n' ' ')" = "page1.png page2.png page3.png page4.png " ] ||
  fail "only the four pictures may be written: $(ls "$work/shots")"
cmp -s "$root/docs/samples/office.vqc" "$work/office.vqc" || fail "Cancel must leave the file as it was"
# The road's DLL served the sheet from the road's own registry view.
if [ "$dll" = vqcprop32.dll ]; then view=32; else view=64; fi
"$root/scripts/lib/wine64" reg query 'HKCR\CLSID\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}\InProcServer32' /ve /reg:$view \
  </dev/null 2>/dev/null | grep -qi "extension\\\\$dll" || fail "the $view-bit view must name the registered $dll"
echo "PASS"
