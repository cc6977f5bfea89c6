#!/usr/bin/env python3
"""Fails when a file includes a header of a room above its own.

The rooms and their order come from cmake/VqcLayers.cmake (VQC_ROOMS), the same table the
build uses for links; tests/ ranks above every room that ships (tools/ included), and
devtools/, whose programs share the tests' support, above tests/. A product file of room R
may include headers of R and of rooms ranked below R; only a room ranked at or above tests/
may include test code. A test file under tests/R/ may include product headers of R and below, and test
headers of tests/R/ and of the tests of rooms below R; folders of tests/ that are no room
(tests/support, tests/harness) and headers directly in tests/ are shared by every test and
include only the lowest rooms themselves.

usage: check_layers.py [TREE]   (default: the project's top folder)
"""
import pathlib
import re
import sys

SOURCE_SUFFIXES = {".h", ".hpp", ".c", ".cc", ".cpp", ".rc", ".in"}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"/]+)/([^"]*)"', re.MULTILINE)
# What shared test code may itself include: the rooms at the bottom.
SHARED_TEST_RANK = 1


def room_ranks(tree: pathlib.Path) -> dict:
    text = (tree / "cmake" / "VqcLayers.cmake").read_text()
    block = re.search(r"set\(VQC_ROOMS(.*?)\)", text, re.DOTALL)
    if not block:
        sys.exit("check_layers: no VQC_ROOMS in cmake/VqcLayers.cmake")
    return {name: int(rank) for name, rank in re.findall(r"(\w+)=(\d+)", block.group(1))}


def where(path: pathlib.Path, tree: pathlib.Path, ranks: dict):
    """(kind, room, rank) of a file: kind is 'product' or 'test'."""
    parts = path.relative_to(tree).parts
    if parts[0] == "tests":
        if len(parts) > 2 and parts[1] in ranks:
            return "test", parts[1], ranks[parts[1]]
        return "test", None, SHARED_TEST_RANK
    if parts[0] in ranks:
        return "product", parts[0], ranks[parts[0]]
    return None, None, None


def violations(tree: pathlib.Path):
    ranks = room_ranks(tree)
    found = []
    for path in sorted(tree.rglob("*")):
        if path.suffix not in SOURCE_SUFFIXES or not path.is_file():
            continue
        relative = path.relative_to(tree)
        if relative.parts[0] in ("build", ".git"):
            continue
        kind, room, rank = where(path, tree, ranks)
        if kind is None:
            continue
        for match in INCLUDE.finditer(path.read_text(errors="replace")):
            top, rest = match.group(1), match.group(2)
            if top == "tests":
                if kind == "product" and rank < ranks["tests"]:
                    found.append(f"{relative}: product code includes test code {top}/{rest}")
                    continue
                sub = rest.split("/")[0]
                if sub in ranks and ranks[sub] > rank:
                    found.append(f"{relative}: includes tests/{rest}, the tests of a room above {room or 'shared test code'}")
            elif top in ranks and ranks[top] > rank and top != room:
                found.append(f"{relative}: includes {top}/{rest}, a room above {room or 'shared test code'}")
    return found


def main() -> int:
    tree = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent.parent)
    found = violations(tree.resolve())
    for line in found:
        print(line)
    if found:
        print(f"{len(found)} include(s) run up the rooms")
        return 1
    print("every include runs down the rooms")
    return 0


if __name__ == "__main__":
    sys.exit(main())
