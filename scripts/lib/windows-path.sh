# windows_path PATH [PREFIX]: a host path as a Windows program under Wine names it. PATH may be
# relative (to the current folder) and need not exist. A path inside the prefix's drive_c is
# spelled on C:, where the program itself would look for it; any other path on Z:, Wine's drive
# for the whole host file system. PREFIX defaults to $WINEPREFIX; without one every path is on Z:.
windows_path() {
  local path drive prefix=${2:-${WINEPREFIX:-}}
  path=$(realpath -m -- "$1")
  if [ -n "$prefix" ]; then
    drive=$(realpath -m -- "$prefix/drive_c")
    case "$path" in
      "$drive") printf 'C:\\'; return ;;
      "$drive"/*) path=${path#"$drive"}; printf 'C:%s' "${path//\//\\}"; return ;;
    esac
  fi
  printf 'Z:%s' "${path//\//\\}"
}
