#!/usr/bin/env python3
"""Converts the 24-bit BMP files that shell_properties.exe writes into PNG files.

    bmp_to_png.py IN.bmp OUT.png

Only the form that program writes is read: BITMAPINFOHEADER, 24 bits per pixel, no
compression, rows bottom-up or top-down. Anything else is refused with status 1.
"""
import struct
import sys
import zlib


def read_bmp(path):
    with open(path, "rb") as f:
        data = f.read()
    if data[:2] != b"BM":
        raise ValueError("not a BMP file")
    offset = struct.unpack_from("<I", data, 10)[0]
    header_size, width, height, planes, bits, compression = struct.unpack_from("<IiiHHI", data, 14)
    if header_size < 40 or planes != 1 or bits != 24 or compression != 0 or width <= 0 or height == 0:
        raise ValueError("not an uncompressed 24-bit BMP")
    row_bytes = (width * 3 + 3) & ~3
    rows = []
    for y in range(abs(height)):
        start = offset + y * row_bytes
        bgr = data[start:start + width * 3]
        if len(bgr) != width * 3:
            raise ValueError("truncated pixel data")
        rgb = bytearray(bgr)
        rgb[0::3], rgb[2::3] = bgr[2::3], bgr[0::3]
        rows.append(bytes(rgb))
    if height > 0:
        rows.reverse()
    return width, abs(height), rows


def chunk(kind, payload):
    body = kind + payload
    return struct.pack(">I", len(payload)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)


def write_png(path, width, height, rows):
    raw = b"".join(b"\x00" + row for row in rows)
    png = b"\x89PNG\r\n\x1a\n"
    png += chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
    png += chunk(b"IDAT", zlib.compress(raw, 9))
    png += chunk(b"IEND", b"")
    with open(path, "wb") as f:
        f.write(png)


def main(argv):
    if len(argv) != 3:
        sys.stderr.write("usage: bmp_to_png.py IN.bmp OUT.png\n")
        return 2
    try:
        width, height, rows = read_bmp(argv[1])
    except (OSError, ValueError, struct.error) as error:
        sys.stderr.write("bmp_to_png: %s: %s\n" % (argv[1], error))
        return 1
    write_png(argv[2], width, height, rows)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
