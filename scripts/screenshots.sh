#!/usr/bin/env bash
# Makes the pictures of the property pages in docs/screenshots from the sample connection
# files in docs/samples, through scripts/properties.sh (Wine's own shell, a display of our
# own). Run it again whenever a page changes, and look at every picture before committing.
#   bash scripts/screenshots.sh
# English: the Connection page in its remote, local and discovery layouts, the Proxy page
# in its proxy and broker layouts, the Options page with its list of icons. Every language
# with texts of its own: all three pages.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
export BUILD_DIR
samples="$ROOT/docs/samples"
out="$ROOT/docs/screenshots"
source "$ROOT/scripts/lib/on-exit.sh"
work=$(mktemp -d)
on_exit rm -rf "$work"
mkdir -p "$out"
# Every picture on a display of the same size and depth, whatever screen the user has.
unset DISPLAY

# shoot NAME FILE [properties.sh options...] -- PAGE:PICTURE...
# Opens FILE's Properties and keeps the pages named (page1 is the shell's General page).
shoot() {
  local name="$1" file="$2"
  shift 2
  local options=()
  while [ "$1" != "--" ]; do options+=("$1"); shift; done
  shift
  echo "== $name"
  bash "$ROOT/scripts/properties.sh" "$file" --screenshots "$work/$name" "${options[@]}" >/dev/null
  local keep
  for keep in "$@"; do
    cp "$work/$name/${keep%%:*}.png" "$out/${keep#*:}.png"
    echo "docs/screenshots/${keep#*:}.png"
  done
}

# No client installed: all three pages, and the Options page lists this DLL's own icon. The
# office file routes through a proxy, so its Proxy page shows the proxy layout.
shoot en "$samples/office.vqc" -- \
  page2:en-connection-remote page3:en-proxy-proxy page4:en-options
# "Connect locally" is offered only with a "vserver.dll" beside the extension.
shoot en-local "$samples/workstation.vqc" --local-server -- page2:en-connection-local
shoot en-discovery "$samples/discovery.vqc" -- page2:en-connection-discovery
# The broker route is offered to clients 6.20 to 6.89 only.
shoot en-broker "$samples/broker.vqc" --client-version 680 -- page3:en-proxy-broker
# OK while another program holds the file: the box that tells the user. On a copy, so that
# the sample's own name is not in the picture's path.
mkdir -p "$work/files"
cp "$samples/office.vqc" "$work/files/office.vqc"
shoot en-failed "$work/files/office.vqc" --failed-save -- save-failed:en-save-failed

for lang in de_DE fr_FR es_ES nl_NL ko_KR ja_JP zh_TW zh_CN; do
  tag=$(tr '[:upper:]_' '[:lower:]-' <<<"$lang")
  shoot "$tag" "$samples/office.vqc" --lang "$lang" -- \
    page2:"$tag-connection" page3:"$tag-proxy" page4:"$tag-options"
done
