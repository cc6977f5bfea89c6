# Debian packages the build and the tests need; installs only what is missing.
VQC_PACKAGES=(
  cmake ninja-build make python3
  g++-mingw-w64-x86-64-posix mingw-w64-tools binutils-mingw-w64-x86-64
  # The DLL's 32-bit twin (vqcprop32.dll); wine32:i386 runs it (install_wine32).
  g++-mingw-w64-i686-posix binutils-mingw-w64-i686
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
  wixl msitools zip unzip
  # Signing the files and the package (packaging/signed_package.sh) and the tests' throwaway
  # certificate authority; the engine lets osslsigncode use a key on a PKCS#11 token.
  osslsigncode openssl libengine-pkcs11-openssl
  # The signing tests' own PKCS#11 token.
  softhsm2
)

# install_missing_packages [PACKAGE...]: the build's packages and any named here, and 32-bit Wine.
install_missing_packages() {
  install_missing_amd64_packages "$@"
  install_wine32
}

install_missing_amd64_packages() {
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

# install_wine32: Debian's 32-bit Wine (wine32:i386) beside the 64-bit one, so that 32-bit
# programs run in the same 64-bit prefix. A library of both architectures must be installed
# at one version in both; when the i386 index lags the amd64 one (a mirror mid-sync, security
# updates not yet built for i386), apt cannot choose and gives up. Then every library it names
# is pinned, in both architectures, to the newest version both indexes hold, and apt is asked
# again, until it can or nothing more can be pinned.
install_wine32() {
  dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "ok installed" && return 0
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo=sudo
  echo "installing: wine32:i386"
  dpkg --print-foreign-architectures | grep -qx i386 || $sudo dpkg --add-architecture i386
  # The i386 index of one suite may fail to download; apt then keeps what it has.
  $sudo apt-get update -qq >/dev/null 2>&1 || true
  local pins=() round report names name common
  for round in 1 2 3 4 5 6 7 8; do
    # A dry run names what apt cannot place; -qq would hide those lines.
    if report=$($sudo apt-get install -s --no-install-recommends -o APT::Default-Release=bookworm \
        --allow-downgrades wine32:i386 "${pins[@]}" 2>&1); then
      DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends \
        -o APT::Default-Release=bookworm --allow-downgrades wine32:i386 "${pins[@]}" >/dev/null
      return
    fi
    names=$(printf '%s\n' "$report" \
      | sed -n 's/.*Depends: \([^ :]*\):i386 .*not going to be installed.*/\1/p; s/^ \([^ :]*\):i386 : Depends.*/\1/p' \
      | sort -u)
    local added=0
    for name in $names; do
      case " ${pins[*]} " in *" $name:i386="*) continue ;; esac
      common=$(comm -12 \
        <(apt-cache madison "$name" 2>/dev/null | awk -F' [|] ' '$3 ~ / amd64 /{print $2}' | sort -u) \
        <(apt-cache madison "$name:i386" 2>/dev/null | awk -F' [|] ' '$3 ~ / i386 /{print $2}' | sort -u) \
        | sort -V | tail -1)
      [ -n "$common" ] || continue
      pins+=("$name:i386=$common")
      dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q "ok installed" && pins+=("$name=$common")
      added=1
    done
    if [ $added -eq 0 ]; then
      printf '%s\n' "$report" | tail -20
      echo "wine32:i386 could not be installed (see above)"
      return 1
    fi
    echo "  pinning to versions both architectures have: ${pins[*]}"
  done
  return 1
}
