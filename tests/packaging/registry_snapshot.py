#!/usr/bin/env python3
"""Prints a Wine prefix's registry as sorted lines, one per key and one per value:
    HKLM\\Software\\Classes\\.vqc
    HKLM\\Software\\Classes\\.vqc\t@=str:"VCLIENT"
read from the prefix's own files (system.reg, user.reg) once its server has saved them.
Timestamps are left out, so two prefixes compare line by line.
    registry_snapshot.py PREFIX [KEY_PREFIX...]
With KEY_PREFIXes only the keys below them (compared case-insensitively) and the keys
themselves are printed, e.g. 'HKLM\\Software\\Classes\\CLSID\\{...}'."""
import os
import sys

HIVES = (("system.reg", "HKLM"), ("user.reg", "HKCU"))


def logical_lines(path):
    """The file's lines with continuations (a trailing backslash) joined."""
    with open(path, encoding="utf-8", errors="surrogateescape") as f:
        pending = ""
        for raw in f:
            line = raw.rstrip("\n")
            if line.endswith("\\") and not line.startswith("["):
                pending += line[:-1].strip() if pending else line[:-1]
                continue
            yield pending + (line.strip() if pending else line)
            pending = ""
        if pending:
            yield pending


def key_name(header):
    """'[Software\\\\Classes\\\\.vqc] 1732467890' -> 'Software\\Classes\\.vqc'."""
    end = header.rindex("]")
    return header[1:end].replace("\\\\", "\\")


def snapshot(prefix):
    lines = []
    for file_name, hive in HIVES:
        key = None
        for line in logical_lines(os.path.join(prefix, file_name)):
            if line.startswith("["):
                key = hive + "\\" + key_name(line)
                lines.append(key)
            elif key is not None and line and not line.startswith(("#", ";")):
                lines.append(key + "\t" + line)
    return lines


def main():
    if len(sys.argv) < 2:
        sys.exit("usage: registry_snapshot.py PREFIX [KEY_PREFIX...]")
    wanted = [k.lower().rstrip("\\") for k in sys.argv[2:]]

    def selected(line):
        key = line.split("\t", 1)[0].lower()
        return not wanted or any(key == w or key.startswith(w + "\\") for w in wanted)

    for line in sorted(set(filter(selected, snapshot(sys.argv[1])))):
        print(line)


if __name__ == "__main__":
    main()
