// Icons made for the tests from pixels of our own: a DIB at the asked depth (with a
// palette below 16 bits per pixel), made into an icon by CreateIconFromResourceEx.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "connection/icon_stream.h"

// Deterministic pixels: a pattern that uses every palette entry the depth allows and a
// mask with a transparent diagonal band.
inline IconImage MakeTestIconImage(int size, std::uint16_t bitsPerPixel, unsigned seed = 1) {
    IconImageFormat format;
    format.width = size;
    format.height = size;
    format.planes = 1;
    format.bitsPerPixel = bitsPerPixel;
    const std::uint32_t colours = ColourTableEntries(bitsPerPixel);
    std::vector<std::uint8_t> table(4 * colours);
    for (std::uint32_t i = 0; i < colours; ++i) {
        table[4 * i + 0] = static_cast<std::uint8_t>(i * 37 + seed);
        table[4 * i + 1] = static_cast<std::uint8_t>(i * 91 + 3 * seed);
        table[4 * i + 2] = static_cast<std::uint8_t>(255 - i * 13);
        table[4 * i + 3] = 0;
    }
    const std::uint32_t xorRow = XorRowBytes(format);
    std::vector<std::uint8_t> xorBits(std::size_t{xorRow} * size, 0);
    for (int y = 0; y < size; ++y)
        for (std::uint32_t b = 0; b < xorRow; ++b)
            xorBits[y * xorRow + b] = static_cast<std::uint8_t>((y * 29 + b * 7 + seed * 11) & 0xFF);
    if (bitsPerPixel == 32)  // opaque where the mask shows the pixel, so alpha agrees with the mask
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) xorBits[y * xorRow + 4 * x + 3] = (x + y) % 7 == 0 ? 0 : 0xFF;
    const std::uint32_t andRow = AndRowBytes(format);
    std::vector<std::uint8_t> andBits(std::size_t{andRow} * size, 0);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            if ((x + y) % 7 == 0) andBits[y * andRow + x / 8] |= static_cast<std::uint8_t>(0x80 >> (x % 8));
    return IconImage::Make(format, table, xorBits, andBits);
}

inline HICON MakeIconFromImage(const IconImage& image, int width = 0, int height = 0) {
    std::vector<std::uint8_t> dib = image.dib;
    return CreateIconFromResourceEx(dib.data(), static_cast<DWORD>(dib.size()), TRUE, 0x00030000,
                                    width, height, 0);
}

inline HICON MakeTestIcon(int size, std::uint16_t bitsPerPixel, unsigned seed = 1) {
    return MakeIconFromImage(MakeTestIconImage(size, bitsPerPixel, seed));
}

// The hex text of a stream of the given images, as the writer puts it after -I.
inline std::string HexTextOf(const std::vector<std::uint8_t>& stream) {
    std::string text(HexTextLength(stream.size()), '\0');
    WriteHexText(text.data(), stream.data(), stream.size());
    return text;
}

inline SIZE IconSize(HICON icon) {
    ICONINFO info{};
    SIZE size{0, 0};
    if (!icon || !GetIconInfo(icon, &info)) return size;
    const UniqueGdiObject colour(info.hbmColor);
    const UniqueGdiObject mask(info.hbmMask);
    BITMAP bitmap{};
    if (GetObjectA(info.hbmMask, sizeof(bitmap), &bitmap)) {
        size.cx = bitmap.bmWidth;
        size.cy = info.hbmColor ? bitmap.bmHeight : bitmap.bmHeight / 2;
    }
    return size;
}
