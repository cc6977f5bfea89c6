#!/usr/bin/env python3
"""Prints the keys and values of a file `reg export` wrote (UTF-16) as sorted lines, one per
key and one per value, like registry_snapshot.py does for a prefix's own files:
    HKEY_CLASSES_ROOT\\CLSID\\{...}\\InProcServer32
    HKEY_CLASSES_ROOT\\CLSID\\{...}\\InProcServer32\t@="C:\\\\Program Files\\\\..."
Only the keys below the KEY_PREFIXes (compared case-insensitively) and those keys themselves.
    registry_export.py FILE KEY_PREFIX..."""
import sys


def main():
    if len(sys.argv) < 3:
        sys.exit("usage: registry_export.py FILE KEY_PREFIX...")
    with open(sys.argv[1], "rb") as f:
        text = f.read().decode("utf-16")
    wanted = [k.lower().rstrip("\\") for k in sys.argv[2:]]

    def selected(key):
        key = key.lower()
        return any(key == w or key.startswith(w + "\\") for w in wanted)

    lines = set()
    key = None
    pending = ""
    for raw in text.splitlines():
        line = raw.rstrip("\r")
        if line.endswith("\\") and not line.startswith("["):
            pending += line[:-1].strip() if pending else line[:-1]
            continue
        line = pending + (line.strip() if pending else line)
        pending = ""
        if line.startswith("[") and line.endswith("]"):
            key = line[1:-1]
            if selected(key):
                lines.add(key)
        elif key is not None and line and selected(key):
            lines.add(key + "\t" + line)
    for line in sorted(lines):
        print(line)


if __name__ == "__main__":
    main()
