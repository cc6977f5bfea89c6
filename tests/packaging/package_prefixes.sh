# Sourced by the package tests: Wine prefixes of their own, each a copy of one fresh prefix
# made once under the build folder, so that every test installs into a machine nothing else
# has touched and none of them shares the class registry of the suite's prefix.
# Needs ROOT (the source tree) and PACKAGING_DIR (the folder for the prefixes) set.
# Every prefix made here is stopped and deleted when the test exits.
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/project-prefix.sh"
trap remove_own_prefixes EXIT
OWN_PREFIXES=()
TEST_LOG=$(mktemp "${TMPDIR:-/tmp}/vqc-package-test.XXXXXX")

fail() {
  echo "FAIL: $*"
  if [ -s "$TEST_LOG" ]; then echo "--- what the Windows programs printed:"; tail -n 40 "$TEST_LOG"; fi
  exit 1
}

remove_own_prefixes() {
  local prefix
  for prefix in "${OWN_PREFIXES[@]}"; do
    WINEPREFIX="$prefix" wineserver -k >/dev/null 2>&1 || true
    rm -rf "$prefix"
  done
  rm -f "$TEST_LOG"
}

# new_prefix NAME: prints the path of a fresh prefix of this test's own.
new_prefix() {
  local template="$PACKAGING_DIR/fresh-prefix" prefix="$PACKAGING_DIR/$1"
  mkdir -p "$PACKAGING_DIR"
  # Tests run side by side: the first one makes the template, the others wait for it.
  (
    flock 9
    [ -f "$template/.vqc-ready" ] || prepare_wine_prefix "$template"
  ) 9>"$PACKAGING_DIR/fresh-prefix.lock"
  rm -rf "$prefix"
  cp -a "$template" "$prefix"
  OWN_PREFIXES+=("$prefix")
  echo "$prefix"
}

# in_prefix PREFIX PROGRAM [ARGS...]: runs a Windows program there, its output to the log
# (never to ours: the helpers Wine starts on demand would keep it open).
in_prefix() {
  local prefix="$1"
  shift
  echo "> $*" >>"$TEST_LOG"
  WINEPREFIX="$prefix" "$WINE_LOADER" "$@" </dev/null >>"$TEST_LOG" 2>&1
}

# msiexec_in PREFIX /i|/x PACKAGE [PROPERTY=VALUE...]: silent, with a verbose log of its own
# appended to the test's log.
msiexec_in() {
  local prefix="$1" action="$2" package="$3" status=0
  shift 3
  local log="$prefix/drive_c/msiexec.log"
  in_prefix "$prefix" msiexec "$action" "$(windows_path "$package")" /qn /l*v 'C:\msiexec.log' "$@" || status=$?
  iconv -f UTF-16LE -t UTF-8 "$log" 2>/dev/null | tr -d '\r' | grep -E "^(MSI|Action ended|Product:)|error|Error" \
    >>"$TEST_LOG" || true
  rm -f "$log"
  return $status
}

# Waits until the prefix's server has ended, so its registry files are written.
settle() {
  WINEPREFIX="$1" timeout 60 wineserver -w >/dev/null 2>&1 || true
}

# registry_of PREFIX [KEY...]: the prefix's registry, one sorted line per key and value.
registry_of() {
  local prefix="$1"
  shift
  settle "$prefix"
  python3 "$ROOT/tests/packaging/registry_snapshot.py" "$prefix" "$@"
}

# What a prefix holds besides the system itself: every file and folder below C:\ except
# C:\windows, and the Installer's own cache of packages in C:\windows\Installer.
files_of() {
  local drive="$1/drive_c"
  (cd "$drive" && find . -path ./windows -prune -o -print; find ./windows/Installer 2>/dev/null) | sort
}

# Keys Wine writes anew at every start (hardware it finds again), whatever was installed.
without_wine_start_noise() {
  grep -v -E '^HKLM\\System\\CurrentControlSet\\Control\\Class\\|^HKLM\\Software\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards(\\|$)' || true
}

# The installed files, where the package puts them.
INSTALL_FOLDER_WINDOWS='C:\Program Files\vqcprop64'
install_folder_of() { echo "$1/drive_c/Program Files/vqcprop64"; }

CLASS_ID="{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}"
APP_ID="{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}"
