# Sourced by the package tests: Wine prefixes of their own, each a copy of one fresh prefix
# made once under the build folder, so that every test installs into a machine nothing else
# has touched and none of them shares the class registry of the suite's prefix.
# Needs ROOT (the source tree), PACKAGING_DIR (the folder for the prefixes) and package (the
# package under test) set. Gives the test a scratch folder, $work. Every prefix made here,
# the scratch folder and a display started here are removed when the test exits.
source "$ROOT/scripts/lib/wine-env.sh"
source "$ROOT/scripts/lib/project-prefix.sh"
work=$(mktemp -d)
TEST_LOG=$(mktemp "${TMPDIR:-/tmp}/vqc-package-test.XXXXXX")
# The prefixes this test made, one a line (new_prefix runs in a command substitution).
OWN_PREFIXES=$(mktemp "${TMPDIR:-/tmp}/vqc-package-prefixes.XXXXXX")
on_exit remove_own_prefixes

fail() {
  echo "FAIL: $*"
  if [ -s "$TEST_LOG" ]; then echo "--- what the Windows programs printed:"; tail -n 40 "$TEST_LOG"; fi
  exit 1
}

remove_own_prefixes() {
  local prefix
  while read -r prefix; do
    WINEPREFIX="$prefix" wineserver -k >/dev/null 2>&1 || true
    rm -rf "$prefix"
  done <"$OWN_PREFIXES"
  rm -f "$TEST_LOG" "$OWN_PREFIXES"
  rm -rf "$work"
}

[ -f "$package" ] || fail "no package at $package (is wixl installed? scripts/lib/packages.sh installs it)"

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
  echo "$prefix" >>"$OWN_PREFIXES"
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
  in_prefix "$prefix" msiexec "$action" "$(windows_path "$package")" /qn /l*v "$(windows_path "$log" "$prefix")" "$@" ||
    status=$?
  tr -d '\r\0' <"$log" 2>/dev/null | grep -aE "^(Action ended|Message type)|WIX_|rror" >>"$TEST_LOG" || true
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
  (cd "$drive" && find . -path ./windows -prune -o -print; find ./windows/Installer -mindepth 1 2>/dev/null) | sort
}

# Keys Wine writes anew at every start (the devices it finds again: display adapters,
# monitors, network cards), whatever was installed.
without_wine_start_noise() {
  grep -v -E '^HKLM\\System\\CurrentControlSet\\(Control\\Class|Enum)\\|^HKLM\\Software\\Microsoft\\Windows NT\\CurrentVersion\\NetworkCards(\\|$)' || true
}

# The installed files, where the package puts them: vqcprop64.dll and vqctool.exe in the
# 64-bit Program Files, vqcprop32.dll in the 32-bit one.
INSTALL_FOLDER_WINDOWS='C:\Program Files\vqcprop64'
install_folder_of() { echo "$1/drive_c/Program Files/vqcprop64"; }
INSTALL_FOLDER32_WINDOWS='C:\Program Files (x86)\vqcprop64'
install_folder32_of() { echo "$1/drive_c/Program Files (x86)/vqcprop64"; }
# The 32-bit regsvr32, which registers a 32-bit DLL into the 32-bit view.
REGSVR32_32BIT='C:\windows\syswow64\regsvr32.exe'

CLASS_ID="{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}"
APP_ID="{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}"

# our_keys_in_view PREFIX 32|64: every key of ours below HKEY_CLASSES_ROOT as a program of that
# bitness sees it (reg export /reg:32 or /reg:64), one sorted line per key and value.
our_keys_in_view() {
  local prefix="$1" view="$2" export="$work/view-export.reg"
  rm -f "$export"
  in_prefix "$prefix" reg export 'HKCR' "$(windows_path "$export")" "/reg:$view" /y ||
    fail "reg export of HKEY_CLASSES_ROOT /reg:$view failed"
  python3 "$ROOT/tests/packaging/registry_export.py" "$export" "HKEY_CLASSES_ROOT\\CLSID\\$CLASS_ID" \
    "HKEY_CLASSES_ROOT\\AppID\\$APP_ID" 'HKEY_CLASSES_ROOT\AppID\vqcprop64.dll' 'HKEY_CLASSES_ROOT\AppID\vqcprop32.dll' \
    'HKEY_CLASSES_ROOT\.vqc' 'HKEY_CLASSES_ROOT\VCLIENT'
}

# expect_server_in_view PREFIX 32|64 DLL_WINDOWS_PATH: the class's server in that view is DLL.
expect_server_in_view() {
  local doubled="${3//\\/\\\\}"
  our_keys_in_view "$1" "$2" >"$work/view-$2"
  grep -qixF "HKEY_CLASSES_ROOT\\CLSID\\$CLASS_ID\\InProcServer32"$'\t'"@=\"$doubled\"" "$work/view-$2" ||
    { cat "$work/view-$2"; fail "the class's server in the $2-bit view must be $3"; }
}

# remember_state PREFIX NAME: the prefix's registry and files now, in $work/NAME.registry and
# $work/NAME.files, after a first program has run (Wine's own first-start writes done).
remember_state() {
  in_prefix "$1" cmd /c exit
  registry_of "$1" >"$work/$2.registry"
  files_of "$1" >"$work/$2.files"
}

# expect_state_as PREFIX NAME: the registry and the files are as remember_state found them.
# Windows Installer keeps the empty keys it made for its own bookkeeping (below an
# "Installer" key: no value, no product in them); Wine rewrites its hardware keys at every
# start. Anything else that differs fails, and no trace of the product may remain.
expect_state_as() {
  local prefix="$1" name="$2"
  registry_of "$prefix" >"$work/$name.registry-now"
  files_of "$prefix" >"$work/$name.files-now"
  diff <(without_wine_start_noise <"$work/$name.registry") <(without_wine_start_noise <"$work/$name.registry-now") \
    | grep -E '^[<>]' >"$work/$name.registry-diff"
  grep -vE $'^> [^\t]*\\\\Installer(\\\\[^\t]*)?$' "$work/$name.registry-diff" >"$work/$name.registry-unexpected"
  if [ -s "$work/$name.registry-unexpected" ]; then
    cat "$work/$name.registry-unexpected"
    fail "the registry is not as it was before the install (< before, > now)"
  fi
  if grep -iE 'vqcprop|5e1d7c40|4B7D19E2|VCLIENT|\\\.vqc|277BAF3B|B3FAB772' "$work/$name.registry-now"; then
    fail "the registry still names the product"
  fi
  diff "$work/$name.files" "$work/$name.files-now" || fail "the files below C:\\ are not as they were (< before, > now)"
}
