# The ".vqc" file type as the client's installer writes it (the rows are
# scripts/lib/file-type-association.reg), written into and removed from the current
# WINEPREFIX with Wine's regedit.
VQC_ASSOCIATION_FILE="$ROOT/scripts/lib/file-type-association.reg"

# The keys the table names, one a line, as reg.exe takes them ("HKCR\.vqc", ...).
association_keys() {
  sed -n 's/^\[HKEY_CLASSES_ROOT\\\(.*\)\]\r\{0,1\}$/HKCR\\\1/p' "$VQC_ASSOCIATION_FILE"
}

# Windows shares these keys between the 64-bit and the 32-bit registry view. For 32-bit
# programs (VQC_SHELL_BITS=32, the road of properties.sh --32) the rows are imported with the
# 32-bit regedit as well, and each key is checked as a program of each bitness sees it, with
# the reg.exe of that bitness: Wine's 64-bit `reg query /reg:32` looks into
# Classes\Wow6432Node alone and misses the keys a 32-bit program is shown from the shared
# place.
write_file_type_association() {
  local views=(64) view key
  [ "${VQC_SHELL_BITS:-64}" != 32 ] || views+=(32)
  for view in "${views[@]}"; do
    if [ "$view" = 32 ]; then
      "$WINE32_LOADER" 'C:\windows\syswow64\regedit.exe' /S "$(windows_path "$VQC_ASSOCIATION_FILE")" \
        </dev/null >/dev/null 2>&1 || true
    else
      "$WINE_LOADER" regedit /S "$(windows_path "$VQC_ASSOCIATION_FILE")" </dev/null >/dev/null 2>&1 || true
    fi
    local query=("$WINE_LOADER" reg query)
    [ "$view" != 32 ] || query=("$WINE32_LOADER" 'C:\windows\syswow64\reg.exe' query)
    while read -r key; do
      if ! "${query[@]}" "$key" </dev/null >/dev/null 2>&1; then
        echo "the file type association was not written: $key is missing from the $view-bit view" >&2
        return 1
      fi
    done < <(association_keys)
  done
}

# Deletes the top-level keys of the table (".vqc" and "VCLIENT") with everything below them.
remove_file_type_association() {
  local removal top
  removal=$(mktemp "${TMPDIR:-/tmp}/vqc-association-removal.XXXXXX")
  {
    echo "REGEDIT4"
    echo
    association_keys | cut -d'\' -f2 | sort -u | while read -r top; do
      echo "[-HKEY_CLASSES_ROOT\\$top]"
    done
  } >"$removal"
  "$WINE_LOADER" regedit /S "$(windows_path "$removal")" </dev/null >/dev/null 2>&1 || true
  rm -f "$removal"
  while read -r top; do
    if "$WINE_LOADER" reg query "$top" </dev/null >/dev/null 2>&1; then
      echo "the file type association was not removed: $top is still there" >&2
      return 1
    fi
  done < <(association_keys | cut -d'\' -f1-2 | sort -u)
}
