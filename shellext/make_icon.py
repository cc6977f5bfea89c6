#!/usr/bin/env python3
"""Draws the DLL's icon, the picture of a connection file: a sheet of paper with a
folded corner carrying a small terminal screen with a green prompt. Writes a .ico with
two images, 16x16 and 32x32, 8 bits per pixel with a 256-entry palette.

Usage: make_icon.py OUTPUT.ico
"""
import math
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


def nearest(value):
    """Rounds halves up."""
    return math.floor(value + 0.5)


def draw(size):
    """Returns size rows of size palette indices, top row first. Shapes are laid out on a
    32-unit grid and scaled; their outlines stay one pixel wide at both sizes."""
    s = size / 32.0
    px = [[TRANSPARENT] * size for _ in range(size)]

    def box(x0, y0, x1, y1, edge, inside):
        left, top = nearest(x0 * s), nearest(y0 * s)
        right, bottom = nearest(x1 * s) - 1, nearest(y1 * s) - 1
        for y in range(top, bottom + 1):
            for x in range(left, right + 1):
                border = x in (left, right) or y in (top, bottom)
                px[y][x] = edge if border else inside
        return left, top, right, bottom

    # The sheet, its top-right corner folded over: above the diagonal it is cut away.
    left, top, right, bottom = box(5, 1, 27, 31, OUTLINE, PAPER)
    fold = nearest(7 * s)
    for y in range(top, top + fold + 1):
        for x in range(right - fold, right + 1):
            dx, dy = x - (right - fold), y - top
            if dx > dy:
                px[y][x] = TRANSPARENT
            elif dx == dy or x == right - fold or y == top + fold:
                px[y][x] = OUTLINE
            else:
                px[y][x] = FOLD

    # The terminal screen with its prompt "> _".
    sl, st, sr, sb = box(8, 12, 24, 26, FRAME, SCREEN)
    unit = max(1, nearest(2 * s))
    for cx, cy in ((0, 0), (1, 1), (0, 2)):
        for y in range(unit):
            for x in range(unit):
                px[st + 2 + cy * unit + y][sl + 2 + cx * unit + x] = PROMPT
    for x in range(sl + 2 + 3 * unit, min(sr - 1, sl + 2 + 6 * unit)):
        for y in range(unit):
            px[st + 2 + 3 * unit + y][x] = PROMPT
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
