#!/usr/bin/env bash
# The order of the rooms is checked, and the checks can fail:
#   1. the project's own tree: every include runs down the rooms;
#   2. a tree whose pages include a shell-extension header: check_layers.py names it and fails;
#   3. a project whose pages library links a shell-extension library: configuring it fails.
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

[ $status -eq 0 ] && echo "the rooms' order holds and both checks fail on an upward step"
exit $status
