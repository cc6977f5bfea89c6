# Which of Wine's two loaders starts a Windows program: lib/wine64 for a 64-bit program,
# lib/wine32 for a 32-bit one (it runs in the same 64-bit prefix, WOW64). Both start the
# loader without address randomization.
VQC_WINE_LIB="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
WINE_LOADER="$VQC_WINE_LIB/wine64"
WINE32_LOADER="$VQC_WINE_LIB/wine32"

# pe_machine FILE: the machine field of a PE image's file header in hex (8664 for x64, 014c
# for i386); nothing when FILE is no PE image.
pe_machine() {
  local header
  [ -f "$1" ] || return 0
  [ "$(od -An -c -N2 "$1" 2>/dev/null | tr -d ' ')" = "MZ" ] || return 0
  header=$(od -An -tu4 -j60 -N4 "$1" | tr -d ' ')
  [ -n "$header" ] || return 0
  [ "$(od -An -tx1 -j"$header" -N4 "$1" | tr -d ' ')" = "50450000" ] || return 0
  od -An -tx2 -j$((header + 4)) -N2 "$1" | tr -d ' '
}

# wine_loader_for PROGRAM: the loader for PROGRAM, a host path. Anything that is not a 32-bit
# image (a 64-bit program, a name Wine looks up itself such as "regsvr32") goes to the 64-bit
# loader, which is what every script used before there were 32-bit programs.
wine_loader_for() {
  if [ "$(pe_machine "$1")" = "014c" ]; then echo "$WINE32_LOADER"; else echo "$WINE_LOADER"; fi
}
