# The pieces scripts/properties.sh puts together: the built DLL and the shell program, a copy
# of the DLL in a folder of its own with a stand-in client beside it, its registration, and
# fonts for the languages whose glyphs Wine's own fonts lack. Source after build.sh.

build_shell_extension() {
  [ -f "$BUILD_DIR/windows/build.ninja" ] || configure_tree windows "$BUILD_DIR/windows"
  cmake --build "$BUILD_DIR/windows" --target vqcprop shell_properties >&2
}

# build_stand_in_client N OUT: a DLL whose only content is product version N/100.N%100
# (640 gives "6.40", which the extension reads as client version 640).
build_stand_in_client() {
  local version=$((10#$1)) out="$2"
  local work="$BUILD_DIR/properties/client-$version"
  if [ ! -f "$work/vclient.dll" ]; then
    mkdir -p "$work"
    sed -e 's/@VQC_FIXTURE_BLOCK@/040904B0/' \
        -e "s/@VQC_FIXTURE_VERSION@/$(printf '%d.%02d' $((version / 100)) $((version % 100)))/" \
        "$ROOT/tests/shellext/fixtures/client_version.rc.in" >"$work/client.rc"
    x86_64-w64-mingw32-windres "$work/client.rc" -O coff -o "$work/client.res.o"
    x86_64-w64-mingw32-gcc-posix -shared -o "$work/vclient.dll" \
      "$ROOT/tests/shellext/fixtures/client_fixture.c" "$work/client.res.o"
  fi
  cp "$work/vclient.dll" "$out"
}

# stage_shell_extension CLIENT_VERSION LOCAL_SERVER: a fresh folder with a copy of the DLL,
# the stand-in client when a version is given and "vserver.dll" when LOCAL_SERVER is not
# empty (the extension looks for both beside itself). Prints the copy's path.
stage_shell_extension() {
  local version="$1" local_server="$2" folder="$BUILD_DIR/properties/extension"
  rm -rf "$folder"
  mkdir -p "$folder"
  cp "$BUILD_DIR/windows/shellext/vqcprop64.dll" "$folder/"
  [ -z "$version" ] || build_stand_in_client "$version" "$folder/vclient.dll"
  [ -z "$local_server" ] || echo "stand-in local server" >"$folder/vserver.dll"
  echo "$folder/vqcprop64.dll"
}

register_shell_extension() {
  local output status=0
  output=$(mktemp "${TMPDIR:-/tmp}/vqc-regsvr32.XXXXXX")
  "$WINE_LOADER" regsvr32 /s "$(windows_path "$1")" </dev/null >"$output" 2>&1 || status=$?
  if [ $status -ne 0 ]; then
    echo "regsvr32 $(windows_path "$1") failed with status $status" >&2
    cat "$output" >&2
  fi
  rm -f "$output"
  return $status
}

# Wine's dialog font (Tahoma, for "MS Shell Dlg") has no Korean, Japanese or Chinese glyphs;
# Wine links it to the faces Windows would use for them ("MS UI Gothic", "SimSun", "Gulim",
# "PMingLiU") when those exist. Each of them is made another name of the Debian font
# installed for this (fonts-wqy-microhei, which Wine finds through fontconfig).
VQC_CJK_FONT="WenQuanYi Micro Hei"
link_cjk_fonts() {
  local key='HKCU\Software\Wine\Fonts\Replacements' face
  for face in "MS UI Gothic" "SimSun" "Gulim" "PMingLiU"; do
    "$WINE_LOADER" reg add "$key" /v "$face" /d "$VQC_CJK_FONT" /f </dev/null >/dev/null 2>&1 ||
      { echo "could not link the font for $face" >&2; return 1; }
  done
}
