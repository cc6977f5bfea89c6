#!/usr/bin/env bash
# scripts/lib/windows-path.sh, the one way the scripts name a host path to a Windows program:
#   windows_path_check.sh CASE ROOT [WINE_LOADER PREFIX]
# Each case compares windows_path's answers with the spellings written out here; the case
# "wine" compares them with what Wine's own winepath makes of the same paths in PREFIX.
set -uo pipefail
case_name="$1" root="$2"

fail() { echo "FAIL: $*"; exit 1; }

source "$root/scripts/lib/on-exit.sh"
source "$root/scripts/lib/windows-path.sh"
work=$(mktemp -d)
on_exit rm -rf "$work"
work=$(realpath "$work")
host_form() { printf 'Z:%s' "${1//\//\\}"; }

# expect PATH WANTED [PREFIX]
expect() {
  local got
  got=$(windows_path "$1" "${3:-}")
  echo "$1 -> $got"
  [ "$got" = "$2" ] || fail "windows_path $1${3:+ $3} must be $2, got $got"
}

case "$case_name" in
  blanks)
    # Every separator turned, the blanks and other characters kept as they are.
    unset WINEPREFIX
    expect "/tmp/a folder/office connection.vqc" 'Z:\tmp\a folder\office connection.vqc'
    expect "/tmp/x's & (y)/Ünïcode.vqc" "Z:\\tmp\\x's & (y)\\Ünïcode.vqc"
    expect "/" 'Z:\' ;;

  relative)
    # Relative to the current folder, with . and .. resolved; the path need not exist.
    unset WINEPREFIX
    mkdir -p "$work/here/below"
    cd "$work/here/below" || fail "cd"
    expect "office.vqc" "$(host_form "$work/here/below/office.vqc")"
    expect "./not/there/../yet.vqc" "$(host_form "$work/here/below/not/yet.vqc")"
    expect "../../up.vqc" "$(host_form "$work/up.vqc")" ;;

  prefix-drive)
    # Inside the prefix's drive_c: drive C:, as the programs in the prefix name their files;
    # the prefix comes from the argument or else from WINEPREFIX. Anything else stays on Z:.
    prefix="$work/my prefix"
    mkdir -p "$prefix/drive_c"
    unset WINEPREFIX
    expect "$prefix/drive_c/msiexec.log" 'C:\msiexec.log' "$prefix"
    expect "$prefix/drive_c" 'C:\' "$prefix"
    expect "$prefix/drive_c/Program Files/vqcprop64/vqcprop64.dll" 'C:\Program Files\vqcprop64\vqcprop64.dll' "$prefix"
    expect "$prefix/drive_c_not/file" "$(host_form "$prefix/drive_c_not/file")" "$prefix"
    expect "$prefix/user.reg" "$(host_form "$prefix/user.reg")" "$prefix"
    expect "$prefix/drive_c/msiexec.log" "$(host_form "$prefix/drive_c/msiexec.log")"
    export WINEPREFIX="$prefix"
    expect "$prefix/drive_c/Windows/win.ini" 'C:\Windows\win.ini'
    cd "$prefix" || fail "cd"
    expect "drive_c/users" 'C:\users' ;;

  wine)
    # Wine reads our spellings as the same paths: winepath -w in the prefix gives the same
    # text for a file on Z: (with blanks) and for one on C:.
    loader="$3" prefix="$4"
    [ -d "$prefix/drive_c" ] || fail "no prefix at $prefix"
    export WINEPREFIX="$prefix" WINEDEBUG=-all
    for path in "$work/a folder/office connection.vqc" "$prefix/drive_c/windows/win.ini"; do
      ours=$(windows_path "$path")
      # Through a file: Wine's helpers must never hold ctest's pipe.
      "$loader" winepath -w "$path" </dev/null >"$work/winepath.out" 2>/dev/null || fail "winepath failed on $path"
      wine=$(tr -d '\r' <"$work/winepath.out")
      echo "$path -> ours $ours, Wine's $wine"
      [ "$ours" = "$wine" ] || fail "windows_path $path must be what Wine makes of it, $wine; got $ours"
    done ;;

  *) fail "unknown case $case_name" ;;
esac
echo "PASS"
