#!/usr/bin/env python3
"""Prints the version block of a PE file (its VS_VERSIONINFO resource), one line each:
    FixedFileVersion=1.0.0.0
    FixedProductVersion=1.0.0.0
    ProductName=...            (every string of every StringFileInfo table)
read by walking the block's nodes (length, value length, type, key, value, children), so a
string is found by its own key, never by a byte search.
    version_block.py FILE"""
import struct
import sys


def node(data, at):
    """(length, value_length, type, key, value_start, children_start) of the node at `at`."""
    length, value_length, kind = struct.unpack_from("<3H", data, at)
    end = at + 6
    while data[end:end + 2] != b"\0\0":
        end += 2
    key = data[at + 6:end].decode("utf-16-le")
    value_start = (end + 2 + 3) & ~3
    value_bytes = value_length * 2 if kind == 1 else value_length
    children = (value_start + value_bytes + 3) & ~3
    return length, value_length, kind, key, value_start, children


def children_of(data, start, end):
    at = start
    while at < end:
        length = struct.unpack_from("<H", data, at)[0]
        if length == 0:
            break
        yield at
        at = (at + length + 3) & ~3


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: version_block.py FILE")
    data = open(sys.argv[1], "rb").read()
    at = data.find("VS_VERSION_INFO".encode("utf-16-le")) - 6
    if at < 0:
        sys.exit(f"{sys.argv[1]}: no version block")
    length, value_length, _, key, value_start, children = node(data, at)
    signature, _, file_ms, file_ls, product_ms, product_ls = struct.unpack_from("<6I", data, value_start)
    if key != "VS_VERSION_INFO" or signature != 0xFEEF04BD:
        sys.exit(f"{sys.argv[1]}: no version block")

    def dotted(ms, ls):
        return f"{ms >> 16}.{ms & 0xFFFF}.{ls >> 16}.{ls & 0xFFFF}"

    print(f"FixedFileVersion={dotted(file_ms, file_ls)}")
    print(f"FixedProductVersion={dotted(product_ms, product_ls)}")
    for info in children_of(data, children, at + length):
        info_length, _, _, info_key, _, tables = node(data, info)
        if info_key != "StringFileInfo":
            continue
        for table in children_of(data, tables, info + info_length):
            table_length, _, _, _, _, strings = node(data, table)
            for string in children_of(data, strings, table + table_length):
                _, chars, _, name, start, _ = node(data, string)
                text = data[start:start + chars * 2].decode("utf-16-le").rstrip("\0")
                print(f"{name}={text}")


if __name__ == "__main__":
    main()
