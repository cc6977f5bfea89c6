"""What one fuzz target's corpus reached of the connection core, from llvm-cov's output.

    coverage_report.py table ROOT TARGET EXPORT_JSON FILES_OUT
        one row per file of connection/ in the target: lines reached of lines, branches
        reached of branches; the files' names go to FILES_OUT
    coverage_report.py unreached ROOT TARGET EXPORT_JSON FILE SHOW_TEXT
        every line of FILE that no input reached (from `llvm-cov show` of that file), then
        every way of a condition that none took

Lines are llvm-cov's own, merged over a template's instantiations. Branches are counted as
ways: each condition has a true and a false way, reached when any instantiation of it took
that way (llvm-cov's summary counts every instantiation's conditions apart, so the walk that
two argument sources instantiate would count twice, once unreachable by half).
"""
import collections
import json
import os
import re
import sys


def load_files(root, export_json):
    data = json.load(open(export_json))["data"][0]
    files = {}
    for entry in data["files"]:
        name = os.path.relpath(entry["filename"], root)
        # The connection core the target tests; the harness and the libraries are left out.
        if name.startswith("connection/") and entry["summary"]["lines"]["count"] > 0:
            files[name] = entry
    return files


def condition_ways(entry):
    """(line, column) -> [times true, times false], summed over instantiations."""
    ways = collections.OrderedDict()
    for branch in entry["branches"]:
        line, column, _, _, taken, not_taken = branch[:6]
        counts = ways.setdefault((line, column), [0, 0])
        counts[0] += taken
        counts[1] += not_taken
    return ways


def table(root, target, export_json, files_out):
    files = load_files(root, export_json)
    with open(files_out, "w") as listing:
        for name in sorted(files):
            lines = files[name]["summary"]["lines"]
            ways = condition_ways(files[name])
            reached = sum((taken > 0) + (not_taken > 0) for taken, not_taken in ways.values())
            print("%-22s %-36s %-20s %s" % (target, name, "%d/%d" % (lines["covered"], lines["count"]),
                                             "%d/%d" % (reached, 2 * len(ways))))
            listing.write(name + "\n")


def unreached(root, target, export_json, name, show_text):
    for text in open(show_text, encoding="utf-8", errors="replace"):
        line = re.match(r"^\s*(\d+)\|\s*(\S*)\|(.*)$", text.rstrip("\n"))
        if line and line.group(2) == "0":
            print("%s: %s:%s unreached:%s" % (target, name, line.group(1), line.group(3)))
    for (line, column), (taken, not_taken) in condition_ways(load_files(root, export_json)[name]).items():
        for way, count in (("true", taken), ("false", not_taken)):
            if count == 0:
                print("%s: %s:%d:%d never %s" % (target, name, line, column, way))


if __name__ == "__main__":
    command, arguments = sys.argv[1], sys.argv[2:]
    {"table": table, "unreached": unreached}[command](*arguments)
