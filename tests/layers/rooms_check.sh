#!/usr/bin/env bash
# The order of the rooms is checked, and the checks can fail:
#   1. the project's own tree: every include runs down the rooms;
#   2. a tree whose pages include a shell-extension header: check_layers.py names it and fails;
#   3. a project whose pages library links a shell-extension library: configuring it fails;
#   4. what ships takes nothing of the tests: a tree whose tools/vqctool includes a header of
#      tests/support fails the include check, and a project whose library in tools/vqctool (a
#      folder below the room's own) links the tests' support library fails to configure.
set -uo pipefail
ROOT=$(cd "$(dirname "$0")/../.." && pwd)
source "$ROOT/scripts/lib/on-exit.sh"
scratch=$(mktemp -d)
on_exit rm -rf "$scratch"
status=0
fail() { echo "FAILED: $*"; status=1; }

if ! python3 "$ROOT/scripts/check_layers.py" "$ROOT" >"$scratch/own.txt"; then
  cat "$scratch/own.txt"
  fail "the project's own tree has an include that runs up the rooms"
fi

tree="$scratch/upward-include"
mkdir -p "$tree/cmake" "$tree/pages" "$tree/shellext"
cp "$ROOT/cmake/VqcLayers.cmake" "$tree/cmake/"
printf '#pragma once\n' >"$tree/shellext/module.h"
printf '#include "shellext/module.h"\n' >"$tree/pages/page.h"
if python3 "$ROOT/scripts/check_layers.py" "$tree" >"$scratch/upward.txt"; then
  fail "an include of shellext/ from pages/ passed the check"
elif ! grep -q 'pages/page.h: includes shellext/module.h, a room above pages' "$scratch/upward.txt"; then
  cat "$scratch/upward.txt"
  fail "the check failed without naming the upward include"
fi

project="$scratch/upward-link"
mkdir -p "$project/pages" "$project/shellext"
cat >"$project/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.25)
project(rooms_fixture LANGUAGES NONE)
list(APPEND CMAKE_MODULE_PATH "$ROOT/cmake")
add_subdirectory(pages)
add_subdirectory(shellext)
include(VqcLayers)
vqc_check_room_links()
CMAKE
# Libraries without sources, so no compiler is needed.
echo 'add_library(pages INTERFACE)
target_link_libraries(pages INTERFACE shellext)' >"$project/pages/CMakeLists.txt"
echo 'add_library(shellext INTERFACE)' >"$project/shellext/CMakeLists.txt"
if cmake -S "$project" -B "$project/build" >"$scratch/link.txt" 2>&1; then
  fail "a pages library linking shellext configured"
elif ! grep -q 'pages (pages/) links shellext (shellext/), a room above it' "$scratch/link.txt"; then
  cat "$scratch/link.txt"
  fail "configuring failed without naming the upward link"
fi

tree="$scratch/shipped-includes-tests"
mkdir -p "$tree/cmake" "$tree/tools/vqctool" "$tree/tests/support"
cp "$ROOT/cmake/VqcLayers.cmake" "$tree/cmake/"
printf '#pragma once\n' >"$tree/tests/support/temp_folder.h"
printf '#include "tests/support/temp_folder.h"\n' >"$tree/tools/vqctool/main.cpp"
if python3 "$ROOT/scripts/check_layers.py" "$tree" >"$scratch/shipped.txt"; then
  fail "an include of tests/support from tools/vqctool passed the check"
elif ! grep -q 'tools/vqctool/main.cpp: product code includes test code tests/support/temp_folder.h' "$scratch/shipped.txt"; then
  cat "$scratch/shipped.txt"
  fail "the check failed without naming the include of test code"
fi

project="$scratch/shipped-links-tests"
mkdir -p "$project/tools/vqctool" "$project/tests/support"
cat >"$project/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.25)
project(rooms_fixture LANGUAGES NONE)
list(APPEND CMAKE_MODULE_PATH "$ROOT/cmake")
add_subdirectory(tools)
add_subdirectory(tests)
include(VqcLayers)
vqc_check_room_links()
CMAKE
echo 'add_subdirectory(vqctool)' >"$project/tools/CMakeLists.txt"
echo 'add_library(vqctool_core INTERFACE)
target_link_libraries(vqctool_core INTERFACE test_support)' >"$project/tools/vqctool/CMakeLists.txt"
echo 'add_subdirectory(support)' >"$project/tests/CMakeLists.txt"
echo 'add_library(test_support INTERFACE)' >"$project/tests/support/CMakeLists.txt"
if cmake -S "$project" -B "$project/build" >"$scratch/shipped-link.txt" 2>&1; then
  fail "a tools/vqctool library linking the tests' support configured"
elif ! grep -q 'vqctool_core (tools/) links test_support (tests/), a room above it' "$scratch/shipped-link.txt"; then
  cat "$scratch/shipped-link.txt"
  fail "configuring failed without naming the link to the tests' support"
fi

[ $status -eq 0 ] && echo "the rooms' order holds and both checks fail on an upward step and on shipped code taking test code"
exit $status
