#!/usr/bin/env python3
"""Draws the DLL's icon, the picture of a connection file: a sheet of paper with a
folded corner carrying a small terminal screen with a green prompt. Writes a .ico with
two images, 16x16 and 32x32, 8 bits per pixel with a 256-entry palette.

Usage: make_icon.py OUTPUT.ico
"""
import struct
import sys

# Palette entries (B, G, R order is applied when written); the rest stay black.
TRANSPARENT, OUTLINE, PAPER, FOLD, SCREEN, FRAME, PROMPT = range(7)
PALETTE = {
    TRANSPARENT: (0, 0, 0),
    OUTLINE: (64, 64, 72),
    PAPER: (250, 250, 245),
    FOLD: (200, 200, 190),
    SCREEN: (20, 30, 60),
    FRAME: (90, 110, 160),
    PROMPT: (60, 220, 90),
}


def draw(size):
    """Returns size rows of size palette indices, top row first."""
    s = size / 32.0
    px = [[TRANSPARENT] * size for _ in range(size)]

    def fill(x0, y0, x1, y1, colour):
        for y in range(int(y0 * s), max(int(y0 * s) + 1, int(y1 * s))):
            for x in range(int(x0 * s), max(int(x0 * s) + 1, int(x1 * s))):
                if 0 <= x < size and 0 <= y < size:
                    px[y][x] = colour

    # The sheet, with its top-right corner folded over.
    fill(5, 1, 27, 31, OUTLINE)
    fill(6, 2, 26, 30, PAPER)
    # The fold: above the diagonal the corner is cut away, below it the flap shows.
    for y in range(size):
        for x in range(size):
            u, v = x / s, y / s  # position in 32-unit coordinates
            if u >= 19 and v < 9 and u < 27 and v >= 1:
                d = (u - 19) - (v - 1)
                if d > 1:
                    px[y][x] = TRANSPARENT
                elif d > 0 or u < 20 or v >= 8:
                    px[y][x] = OUTLINE
                else:
                    px[y][x] = FOLD
    # The terminal screen with its prompt.
    fill(8, 12, 24, 26, FRAME)
    fill(9, 13, 23, 25, SCREEN)
    fill(10, 15, 12, 17, PROMPT)
    fill(12, 17, 14, 19, PROMPT)
    fill(10, 19, 12, 21, PROMPT)
    fill(15, 21, 20, 23, PROMPT)
    return px


def image(size):
    pixels = draw(size)
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 8, 0, 0, 0, 0, 256, 0)
    palette = b"".join(
        struct.pack("BBBB", *reversed(PALETTE.get(i, (0, 0, 0))), 0) for i in range(256)
    )
    row_bytes = (size + 3) // 4 * 4
    colour = b"".join(bytes(row) + b"\0" * (row_bytes - size) for row in reversed(pixels))
    mask_bytes = ((size + 31) // 32) * 4
    mask = b""
    for row in reversed(pixels):
        out = bytearray(mask_bytes)
        for x, index in enumerate(row):
            if index == TRANSPARENT:
                out[x // 8] |= 0x80 >> (x % 8)
        mask += bytes(out)
    return header + palette + colour + mask


def main():
    sizes = (16, 32)
    images = [image(size) for size in sizes]
    out = struct.pack("<HHH", 0, 1, len(images))
    offset = 6 + 16 * len(images)
    for size, data in zip(sizes, images):
        out += struct.pack("<BBBBHHII", size, size, 0, 0, 1, 8, len(data), offset)
        offset += len(data)
    out += b"".join(images)
    with open(sys.argv[1], "wb") as f:
        f.write(out)


if __name__ == "__main__":
    main()
