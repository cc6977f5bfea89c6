#!/usr/bin/env bash
# Opens a connection file's Properties through Wine's own shell, as a right-click and
# "Properties" open them on Windows: builds what is missing, registers a copy of
# vqcprop64.dll and the ".vqc" file type in the project's Wine prefix, and runs
# shell_properties.exe, which asks the shell for the file's context menu and invokes its
# verb "properties". The sheet holds the shell's own General page, then Connection, Proxy
# and Options.
#   bash scripts/properties.sh FILE.vqc [--screenshots DIR] [--lang xx_YY] [--client-version N]
#                                       [--local-server] [--failed-save] [--32]
# With a DISPLAY the dialog is shown for you to use, and the script returns when you close
# it (OK or Apply writes the file). With --screenshots, or without a DISPLAY (then on an
# Xvfb display of its own), it writes one PNG per page (DIR/page1.png is the General page;
# default DIR: $BUILD_DIR/screenshots) and closes the dialog with Cancel.
#   --lang xx_YY          the user's locale for the dialog (de_DE, ja_JP, zh_TW, ...)
#   --client-version N    a stand-in client DLL of product version N/100.N%100 (640: 6.40)
#                         beside the DLL; without it no client is installed
#   --local-server        a "vserver.dll" beside the DLL, so "Connect locally" is offered
#   --failed-save         with the pictures, also DIR/save-failed.png: OK pressed while the
#                         file is held open elsewhere, and the box that tells the user
#   --32                  the 32-bit road: vqcprop32.dll registered by the 32-bit regsvr32
#                         and a 32-bit shell_properties.exe (build/windows-x86), in the same
#                         64-bit prefix
# Exit status: 0 done, 1 a step failed, 2 usage error (missing file, a directory, a path
# without ".vqc", a bad option); nothing is built, registered or written on status 2.
# Do not run it while scripts/test.sh runs in the same build folder: both use its prefix.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}

usage_error() {
  echo "properties.sh: $*" >&2
  exit 2
}

file="" screenshots="" lang="" client_version="" local_server="" failed_save="" bits=64
while [ $# -gt 0 ]; do
  case "$1" in
    --screenshots) [ $# -ge 2 ] || usage_error "--screenshots needs a folder"; screenshots=$2; shift 2 ;;
    --lang) [ $# -ge 2 ] || usage_error "--lang needs a locale such as de_DE"; lang=$2; shift 2 ;;
    --client-version) [ $# -ge 2 ] || usage_error "--client-version needs a number such as 640"
      client_version=$2; shift 2 ;;
    --local-server) local_server=yes; shift ;;
    --failed-save) failed_save=yes; shift ;;
    --32) bits=32; shift ;;
    -*) usage_error "unknown option $1 (usage: properties.sh FILE.vqc [--screenshots DIR] [--lang xx_YY] [--client-version N] [--local-server] [--failed-save] [--32])" ;;
    *) [ -z "$file" ] || usage_error "one connection file only, got $file and $1"; file=$1; shift ;;
  esac
done
[ -n "$file" ] || usage_error "usage: properties.sh FILE.vqc [--screenshots DIR] [--lang xx_YY] [--client-version N] [--local-server] [--failed-save] [--32]"
[ -e "$file" ] || usage_error "$file: no such file"
[ ! -d "$file" ] || usage_error "$file: is a directory, not a connection file"
case "${file,,}" in *.vqc) ;; *) usage_error "$file: not a connection file (the name must end in .vqc)" ;; esac
[ -z "$lang" ] || [[ "$lang" =~ ^[a-z]{2,3}_[A-Z]{2}$ ]] || usage_error "--lang $lang: not a locale such as de_DE"
[ -z "$client_version" ] || [[ "$client_version" =~ ^[0-9]{1,6}$ ]] ||
  usage_error "--client-version $client_version: not a number such as 640"

source "$ROOT/scripts/lib/packages.sh"
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/project-prefix.sh"
source "$ROOT/scripts/lib/association.sh"
source "$ROOT/scripts/lib/build.sh"
source "$ROOT/scripts/lib/shell-extension.sh"
export VQC_SHELL_BITS=$bits

install_missing_packages
build_shell_extension
extension=$(stage_shell_extension "$client_version" "$local_server")

if [ -n "$screenshots" ] || [ -z "${DISPLAY:-}" ]; then
  screenshots=${screenshots:-$BUILD_DIR/screenshots}
  mkdir -p "$screenshots"
  rm -f "$screenshots"/page*.png "$screenshots"/save-failed.png
fi
enter_project_prefix
register_shell_extension "$extension"
write_file_type_association
link_cjk_fonts

shell_program="$(shell_extension_tree)/devtools/shell_properties.exe"
program=("$(wine_loader_for "$shell_program")" "$shell_program" "$(windows_path "$file")")
[ -z "$screenshots" ] || program+=(--screenshots "$(windows_path "$screenshots")")
[ -z "$screenshots" ] || [ -z "$failed_save" ] || program+=(--failed-save)
# Through a file: the helpers Wine starts on demand keep the standard handles they inherit.
output=$(mktemp "${TMPDIR:-/tmp}/vqc-properties.XXXXXX")
status=0
if [ -n "$lang" ]; then
  LC_ALL="$lang.UTF-8" "${program[@]}" </dev/null >"$output" 2>&1 || status=$?
else
  "${program[@]}" </dev/null >"$output" 2>&1 || status=$?
fi
cat "$output"
rm -f "$output"
[ $status -eq 0 ] || exit 1

if [ -n "$screenshots" ]; then
  for picture in "$screenshots"/page*.png "$screenshots"/save-failed.png; do
    if [ -e "$picture" ]; then echo "$picture"; fi
  done
fi
