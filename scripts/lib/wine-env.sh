# Xvfb, the Wine prefix and a persistent wineserver for the Windows tests.
# What is started here is stopped when the calling script exits (on_exit): the display that
# start_test_display started, the server that start_wine_server started.
# Every Windows program is started through our loader wrappers (lib/wine64, and lib/wine32 for
# 32-bit programs): one address layout.
source "$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/wine-loader.sh"
source "$(dirname "${BASH_SOURCE[0]}")/on-exit.sh"
source "$(dirname "${BASH_SOURCE[0]}")/windows-path.sh"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml=;winemenubuilder.exe=d"

_vqc_stop_process() { kill "$1" 2>/dev/null || true; }
_vqc_stop_wine_server() { WINEPREFIX="$1" wineserver -k >/dev/null 2>&1 || true; }

# Xvfb first: a wineserver started without a display refuses windows for good. On a busy
# machine Xvfb can take many seconds; programs started without a usable display fail quietly
# (the shell opens no sheet), so this waits for the display's socket and fails loudly when it
# never comes.
start_test_display() {
  local displayfile number=""
  displayfile=$(mktemp)
  Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$displayfile" >/dev/null 2>&1 &
  VQC_XVFB_PID=$!
  on_exit _vqc_stop_process "$VQC_XVFB_PID"
  for _ in $(seq 600); do
    number=$(head -n1 "$displayfile")
    [ -n "$number" ] && [ -S "/tmp/.X11-unix/X$number" ] && break
    number=""
    sleep 0.1
  done
  rm -f "$displayfile"
  if [ -z "$number" ]; then
    echo "Xvfb did not start within 60 s" >&2
    return 1
  fi
  export DISPLAY=":$number"
}

# A private 64-bit prefix, created once and reused; 32-bit programs run in it too. Crashes
# must end the process (exit code 5) instead of opening the debugger dialog, in either
# registry view (a 32-bit process reads the 32-bit one), and top-level windows are unmanaged
# so that DestroyWindow does not wait for a window manager. The marker file names the
# settings a prefix has; an older prefix gets the settings it lacks.
VQC_PREFIX_SETTINGS="crash-ends-process-in-both-views"
prepare_wine_prefix() {
  export WINEPREFIX="$1"
  export WINEARCH=win64
  local marker="$WINEPREFIX/.vqc-ready"
  # A prefix made before 32-bit Wine was installed has no 32-bit system folder, and once
  # 32-bit Wine is there it cannot start any program, 64-bit ones included ("could not load
  # kernel32.dll", status 53): it is made anew.
  if [ -f "$marker" ] && wine32_installed && [ ! -f "$WINEPREFIX/drive_c/windows/syswow64/kernel32.dll" ]; then
    echo "the Wine prefix $WINEPREFIX predates 32-bit Wine: making it anew" >&2
    wineserver -k >/dev/null 2>&1 || true
    rm -f "$marker"
  fi
  if [ ! -f "$marker" ]; then
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    "$WINE_LOADER" wineboot --init >/dev/null 2>&1
    wineserver -w
  fi
  if [ "$(cat "$marker" 2>/dev/null)" != "$VQC_PREFIX_SETTINGS" ]; then
    local view others
    # A server that serves other programs of the prefix (a persistent one) is not waited for.
    others=$(wine_prefix_processes)
    for view in 64 32; do
      "$WINE_LOADER" reg add "HKLM\\Software\\Microsoft\\Windows NT\\CurrentVersion\\AeDebug" \
        /v Debugger /d "" /f /reg:$view >/dev/null 2>&1
    done
    "$WINE_LOADER" reg add "HKCU\\Software\\Wine\\WineDbg" /v ShowCrashDialog /t REG_DWORD \
      /d 0 /f >/dev/null 2>&1
    "$WINE_LOADER" reg add "HKCU\\Software\\Wine\\X11 Driver" /v Managed /d N /f >/dev/null 2>&1
    [ -n "$others" ] || wineserver -w
    echo "$VQC_PREFIX_SETTINGS" >"$marker"
  fi
}

wine32_installed() { [ -x /usr/lib/wine/wine ]; }

# The prefix's persistent server; stopped at exit with every program of the prefix, a server
# that was already running included.
start_wine_server() {
  on_exit _vqc_stop_wine_server "$WINEPREFIX"
  # The server opens every file for the prefix's programs. Run by root it would write a
  # read-only file as no user's Windows does; without CAP_DAC_OVERRIDE it obeys the
  # file's permissions, which is how Wine keeps the read-only attribute.
  local as_a_user=()
  if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null; then
    as_a_user=(setpriv --inh-caps=-dac_override --bounding-set=-dac_override --)
  fi
  # -p fails when a server for this prefix is already running; that one serves as well.
  "${as_a_user[@]}" wineserver -p </dev/null >/dev/null 2>&1 || true
  "$WINE_LOADER" cmd /c exit </dev/null >/dev/null 2>&1 || true
}

# Wine starts helpers on demand (the desktop, services) and hands them the standard handles
# of the program that caused them; a test that starts one would leave it holding ctest's
# pipe. The keeper (tests/harness/desktop_keeper.cpp) brings them up first with /dev/null
# on every handle and keeps them alive for the whole run; `wineserver -k` at exit ends it.
start_wine_helpers() {
  local keeper="$1" ready
  ready=$(mktemp -u "${TMPDIR:-/tmp}/vqc-keeper-ready.XXXXXX")
  "$WINE_LOADER" "$keeper" "$(windows_path "$ready")" </dev/null >/dev/null 2>&1 &
  for _ in $(seq 300); do [ -e "$ready" ] && break; sleep 0.1; done
  if [ ! -e "$ready" ]; then
    echo "the desktop keeper did not start" >&2
    return 1
  fi
  rm -f "$ready"
}

# The processes of this prefix (its server and every Windows program), one PID a line.
wine_prefix_processes() {
  local exe pid
  for exe in $(find /proc -mindepth 2 -maxdepth 2 -name exe -lname '/usr/lib/wine/*' 2>/dev/null); do
    pid=${exe#/proc/}
    pid=${pid%/exe}
    grep -qzxF "WINEPREFIX=$WINEPREFIX" "/proc/$pid/environ" 2>/dev/null && echo "$pid"
  done
  return 0
}

# Prints every process of the prefix whose standard handles include a pipe or a socket,
# and fails if there is one: no helper may hold a pipe of whoever started it.
check_wine_helpers_detached() {
  local pid handle status=0
  for pid in $(wine_prefix_processes); do
    for handle in $(find "/proc/$pid/fd/0" "/proc/$pid/fd/1" "/proc/$pid/fd/2" \
                      \( -lname 'pipe:*' -o -lname 'socket:*' \) 2>/dev/null); do
      echo "$(tr '\0' ' ' <"/proc/$pid/cmdline" 2>/dev/null) (pid $pid) holds $(readlink "$handle") on ${handle##*/}" >&2
      status=1
    done
  done
  return $status
}
