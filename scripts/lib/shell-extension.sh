# The pieces scripts/properties.sh puts together: the built DLL and the shell program, a copy
# of the DLL in a folder of its own with a stand-in client beside it, its registration, and
# fonts for the languages whose glyphs Wine's own fonts lack. Source after build.sh.
# VQC_SHELL_BITS (64 or 32, default 64) names the road: the 64-bit DLL with the 64-bit
# shell_properties.exe and regsvr32 of build/windows, or the 32-bit ones of build/windows-x86.

# The preset and build tree, toolchain triple and DLL name of the road.
shell_extension_preset() {
  if [ "${VQC_SHELL_BITS:-64}" = 32 ]; then echo windows-x86; else echo windows; fi
}
shell_extension_tree() { echo "$BUILD_DIR/$(shell_extension_preset)"; }
shell_extension_triple() {
  if [ "${VQC_SHELL_BITS:-64}" = 32 ]; then echo i686-w64-mingw32; else echo x86_64-w64-mingw32; fi
}
shell_extension_dll_name() { echo "vqcprop${VQC_SHELL_BITS:-64}.dll"; }

build_shell_extension() {
  local tree
  tree=$(shell_extension_tree)
  [ -f "$tree/build.ninja" ] || configure_tree "$(shell_extension_preset)" "$tree"
  cmake --build "$tree" --target vqcprop shell_properties >&2
}

# build_stand_in_client N OUT: a DLL whose only content is product version N/100.N%100
# (640 gives "6.40", which the extension reads as client version 640), of the road's bitness.
build_stand_in_client() {
  local version=$((10#$1)) out="$2" triple
  triple=$(shell_extension_triple)
  local work="$BUILD_DIR/properties/client-$version-${VQC_SHELL_BITS:-64}"
  if [ ! -f "$work/vclient.dll" ]; then
    mkdir -p "$work"
    sed -e 's/@VQC_FIXTURE_BLOCK@/040904B0/' \
        -e "s/@VQC_FIXTURE_VERSION@/$(printf '%d.%02d' $((version / 100)) $((version % 100)))/" \
        "$ROOT/tests/shellext/fixtures/client_version.rc.in" >"$work/client.rc"
    "$triple-windres" "$work/client.rc" -O coff -o "$work/client.res.o"
    "$triple-gcc-posix" -shared -o "$work/vclient.dll" \
      "$ROOT/tests/shellext/fixtures/client_fixture.c" "$work/client.res.o"
  fi
  cp "$work/vclient.dll" "$out"
}

# stage_shell_extension CLIENT_VERSION LOCAL_SERVER: a fresh folder with a copy of the DLL,
# the stand-in client when a version is given and "vserver.dll" when LOCAL_SERVER is not
# empty (the extension looks for both beside itself). Prints the copy's path.
stage_shell_extension() {
  local version="$1" local_server="$2" folder="$BUILD_DIR/properties/extension" name
  name=$(shell_extension_dll_name)
  rm -rf "$folder"
  mkdir -p "$folder"
  cp "$(shell_extension_tree)/shellext/$name" "$folder/"
  [ -z "$version" ] || build_stand_in_client "$version" "$folder/vclient.dll"
  [ -z "$local_server" ] || echo "stand-in local server" >"$folder/vserver.dll"
  echo "$folder/$name"
}

# shell_extension_regsvr32 ARGS...: the road's regsvr32 (the 32-bit one writes the 32-bit
# registry view).
shell_extension_regsvr32() {
  if [ "${VQC_SHELL_BITS:-64}" = 32 ]; then
    "$WINE32_LOADER" 'C:\windows\syswow64\regsvr32.exe' "$@"
  else
    "$WINE_LOADER" regsvr32 "$@"
  fi
}

register_shell_extension() {
  local output status=0
  output=$(mktemp "${TMPDIR:-/tmp}/vqc-regsvr32.XXXXXX")
  shell_extension_regsvr32 /s "$(windows_path "$1")" </dev/null >"$output" 2>&1 || status=$?
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
