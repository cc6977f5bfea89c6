#!/usr/bin/env bash
# What the fuzz targets' corpora reach of the code under test: every target is built with
# clang's source-based coverage (a build folder of its own), runs each input of its seed
# corpus and of what scripts/fuzz.sh has grown under build/fuzz once (-runs=0), and the
# table gives, per target and per file of the connection core it links, the lines and the
# branches reached.
#   bash scripts/fuzz-coverage.sh [--seeds] [--unreached] [TARGET...]   (default: every target)
#     --seeds       the committed seed corpus only (the test command's run)
#     --unreached   after the table, every line and branch of those files no input reached
# Environment: BUILD_DIR (default ./build), JOBS (default: number of cores), COVERAGE_BUILD
# (the coverage build folder, default BUILD_DIR/fuzz-coverage).
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BUILD_DIR=${BUILD_DIR:-$ROOT/build}
JOBS=${JOBS:-$(nproc)}
COVERAGE_BUILD=${COVERAGE_BUILD:-$BUILD_DIR/fuzz-coverage}

seeds_only=""
unreached=""
targets=()
for argument in "$@"; do
  case "$argument" in
    --seeds) seeds_only=yes ;;
    --unreached) unreached=yes ;;
    -*) echo "fuzz-coverage.sh: unknown option $argument" >&2; exit 2 ;;
    *) targets+=("$argument") ;;
  esac
done

# Each target with its seed corpus, as scripts/fuzz.sh has them.
declare -A seeds=(
  [option_walk_fuzzer]=option_walk
  [split_address_fuzzer]=split_address
  [icon_stream_fuzzer]=icon_stream
  [record_chain_fuzzer]=record_chain
  [icon_road_fuzzer]=icon_road
)
[ ${#targets[@]} -gt 0 ] || targets=(option_walk_fuzzer split_address_fuzzer icon_stream_fuzzer record_chain_fuzzer icon_road_fuzzer)
for target in "${targets[@]}"; do
  [ -n "${seeds[$target]:-}" ] || { echo "fuzz-coverage.sh: no fuzz target $target" >&2; exit 2; }
done

source "$ROOT/scripts/lib/packages.sh"
install_missing_packages
PROFDATA=$(command -v llvm-profdata-14 || command -v llvm-profdata)
COV=$(command -v llvm-cov-14 || command -v llvm-cov)

# Coverage only: no sanitizers, so that a run counts what the code does, nothing more.
cmake -S "$ROOT" -B "$COVERAGE_BUILD" -G Ninja \
  -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
  -DVQC_SANITIZE=OFF -DVQC_FUZZERS=ON \
  "-DCMAKE_C_FLAGS=-fprofile-instr-generate -fcoverage-mapping" \
  "-DCMAKE_CXX_FLAGS=-fprofile-instr-generate -fcoverage-mapping" \
  -DCMAKE_EXE_LINKER_FLAGS=-fprofile-instr-generate >/dev/null
cmake --build "$COVERAGE_BUILD" -j "$JOBS" --target "${targets[@]}" >/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
printf '%-22s %-36s %-20s %s\n' target file lines branches
for target in "${targets[@]}"; do
  binary="$COVERAGE_BUILD/tests/connection/$target"
  corpora=("$ROOT/tests/connection/fuzz/corpus/${seeds[$target]}")
  if [ -z "$seeds_only" ] && [ -d "$BUILD_DIR/fuzz/$target" ]; then corpora+=("$BUILD_DIR/fuzz/$target"); fi
  mkdir -p "$work/$target"
  # -runs=0: every input of the corpora once, nothing new; a scratch folder first, because
  # libFuzzer writes into the first folder it is given.
  (cd "$work/$target" && LLVM_PROFILE_FILE="$work/$target/%p.profraw" \
     "$binary" -runs=0 -max_len=65536 "$work/$target" "${corpora[@]}" >"$work/$target.log" 2>&1) || {
    echo "fuzz-coverage.sh: $target failed on its corpus; its log:" >&2
    tail -n 20 "$work/$target.log" >&2
    exit 1
  }
  "$PROFDATA" merge -sparse "$work/$target"/*.profraw -o "$work/$target.profdata"
  "$COV" export -instr-profile="$work/$target.profdata" "$binary" >"$work/$target.json"
  python3 "$ROOT/scripts/lib/coverage_report.py" table "$ROOT" "$target" "$work/$target.json" "$work/$target.files"
  if [ -n "$unreached" ]; then
    while read -r file; do
      "$COV" show -instr-profile="$work/$target.profdata" "$binary" "$ROOT/$file" >"$work/$target.show"
      python3 "$ROOT/scripts/lib/coverage_report.py" unreached "$ROOT" "$target" "$work/$target.json" "$file" \
        "$work/$target.show"
    done <"$work/$target.files"
  fi
done
