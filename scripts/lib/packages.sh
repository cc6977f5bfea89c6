# Debian packages the build and the tests need; installs only what is missing.
VQC_PACKAGES=(
  cmake ninja-build make python3
  g++-mingw-w64-x86-64-posix mingw-w64-tools binutils-mingw-w64-x86-64
  clang libclang-rt-14-dev
  # The fuzz targets' coverage (scripts/fuzz-coverage.sh): llvm-profdata-14, llvm-cov-14.
  llvm-14
  # The sources' layout and static checks (tests/style).
  clang-format clang-tidy
  googletest
  # vqctool's JSON (header-only, used by the MinGW build too).
  nlohmann-json3-dev
  wine wine64
  xvfb xauth
  # The glyphs of the Korean, Japanese and Chinese pages (scripts/properties.sh --lang).
  fonts-wqy-microhei
  # The installer package (scripts/package.sh): wixl builds it, msitools reads its tables.
  wixl msitools zip
)

# install_missing_packages [PACKAGE...]: the build's packages and any named here.
install_missing_packages() {
  local missing=()
  for package in "${VQC_PACKAGES[@]}" "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "ok installed" \
      || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  echo "installing: ${missing[*]}"
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo=sudo
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
    "${missing[@]}" >/dev/null
}
