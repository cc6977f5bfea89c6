#!/usr/bin/env bash
# scripts/associate.sh writes the ".vqc" file type into the prefix and -u removes it again;
# every key is read back with reg.exe, one by one.
#   associate_check.sh ROOT PREFIX
# The keys live in the prefix's real HKEY_CLASSES_ROOT: the test holds the lock that every
# test touching them holds (RESOURCE_LOCK wine_classes_root).
set -uo pipefail
root="$1"
export VQC_WINEPREFIX="$2" WINEPREFIX="$2" WINEDEBUG=-all
WINE_LOADER="$root/scripts/lib/wine64"
clsid="{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}"

fail() { echo "FAIL: $*"; bash "$root/scripts/associate.sh" -u >/dev/null 2>&1; exit 1; }

# default_value KEY: the key's default value as reg.exe shows it, or "<no key>".
default_value() {
  local shown
  shown=$("$WINE_LOADER" reg query "$1" /ve </dev/null 2>/dev/null | tr -d '\r') || { echo "<no key>"; return; }
  sed -n 's/^ *(Default) *REG_SZ *//p' <<<"$shown"
}
key_exists() { "$WINE_LOADER" reg query "$1" </dev/null >/dev/null 2>&1; }

bash "$root/scripts/associate.sh" </dev/null || fail "associate.sh must succeed"

[ "$(default_value 'HKCR\.vqc')" = "VCLIENT" ] || fail "HKCR\\.vqc must name VCLIENT, got '$(default_value 'HKCR\.vqc')'"
key_exists "HKCR\\VCLIENT\\shellex\\PropertySheetHandlers\\$clsid" || fail "the property-sheet handler key is missing"
[ "$(default_value 'HKCR\VCLIENT\shellex\IconHandler')" = "$clsid" ] ||
  fail "the icon handler must be $clsid, got '$(default_value 'HKCR\VCLIENT\shellex\IconHandler')'"
[ "$(default_value 'HKCR\VCLIENT\DefaultIcon')" = "%1" ] ||
  fail "the default icon must be %1, got '$(default_value 'HKCR\VCLIENT\DefaultIcon')'"

bash "$root/scripts/associate.sh" -u </dev/null || fail "associate.sh -u must succeed"
for key in 'HKCR\.vqc' 'HKCR\VCLIENT' 'HKCR\VCLIENT\shellex' 'HKCR\VCLIENT\DefaultIcon'; do
  ! key_exists "$key" || fail "$key must be gone after -u"
done
key_exists 'HKCR\CLSID' || fail "removal must leave other keys alone"
echo "PASS"
