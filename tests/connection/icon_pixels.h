// What a test compares two icons by: the colour bitmap read at 32 bits per pixel and the
// mask at 1 bit per pixel, with the icon's size.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "common/win_handles.h"
#include "tests/support/test_icons.h"

// The pixels of a bitmap read at 32 bits per pixel, and its mask at 1 bit per pixel.
struct Pixels {
    std::vector<std::uint8_t> colour;
    std::vector<std::uint8_t> mask;
    SIZE size{};
};

inline std::vector<std::uint8_t> BitsOf(HBITMAP bitmap, int width, int height, WORD depth) {
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colours[256];
    } info{};
    info.header.biSize = sizeof(BITMAPINFOHEADER);
    info.header.biWidth = width;
    info.header.biHeight = height;
    info.header.biPlanes = 1;
    info.header.biBitCount = depth;
    info.header.biCompression = BI_RGB;
    std::vector<std::uint8_t> bits(static_cast<std::size_t>((width * depth + 31) / 32 * 4) * height);
    const WindowDC dc(nullptr);
    EXPECT_EQ(GetDIBits(dc.Get(), bitmap, 0, height, bits.data(), reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS),
              height);
    return bits;
}

inline Pixels PixelsOf(HICON icon) {
    Pixels p;
    ICONINFO info{};
    if (!GetIconInfo(icon, &info)) return p;
    const UniqueGdiObject colour(info.hbmColor);
    const UniqueGdiObject mask(info.hbmMask);
    p.size = IconSize(icon);
    p.colour = BitsOf(info.hbmColor, p.size.cx, p.size.cy, 32);
    p.mask = BitsOf(info.hbmMask, p.size.cx, p.size.cy, 1);
    return p;
}

// Two icons of the same size, colour and mask: a copy, or an icon made again from the same
// image. The first must have pixels at all.
inline void ExpectSamePixels(HICON copy, HICON original) {
    const Pixels a = PixelsOf(copy);
    const Pixels b = PixelsOf(original);
    EXPECT_FALSE(a.colour.empty());
    EXPECT_EQ(a.size.cx, b.size.cx);
    EXPECT_EQ(a.size.cy, b.size.cy);
    EXPECT_EQ(a.colour, b.colour);
    EXPECT_EQ(a.mask, b.mask);
}
