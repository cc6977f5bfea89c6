# The ".vqc" file type as the client's installer writes it (the rows are
# scripts/lib/file-type-association.reg), written into and removed from the current
# WINEPREFIX with Wine's regedit.
VQC_ASSOCIATION_FILE="$ROOT/scripts/lib/file-type-association.reg"

# The keys the table names, one a line, as reg.exe takes them ("HKCR\.vqc", ...).
association_keys() {
  sed -n 's/^\[HKEY_CLASSES_ROOT\\\(.*\)\]\r\{0,1\}$/HKCR\\\1/p' "$VQC_ASSOCIATION_FILE"
}

write_file_type_association() {
  "$WINE_LOADER" regedit /S "$(windows_path "$VQC_ASSOCIATION_FILE")" </dev/null >/dev/null 2>&1 || true
  local key
  while read -r key; do
    if ! "$WINE_LOADER" reg query "$key" </dev/null >/dev/null 2>&1; then
      echo "the file type association was not written: $key is missing" >&2
      return 1
    fi
  done < <(association_keys)
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
