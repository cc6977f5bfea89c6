// Icons made for the tests from pixels of our own: a DIB at the asked depth (with a
// palette below 16 bits per pixel), made into an icon by CreateIconFromResourceEx.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "connection/icon_stream.h"
#include "tests/support/pixel_section.h"

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
    return CreateIconFromResourceEx(dib.data(), static_cast<DWORD>(dib.size()), TRUE, 0x00030000, width, height, 0);
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

// The two planes of a black-and-white test icon, top-down: the AND bit (1 keeps the
// background) is a 4-pixel checker board, the XOR bit (1 inverts) stripes two pixels
// wide, so all four combinations occur.
inline bool MonochromeAndBit(int x, int y) { return (x / 4 + y / 4) % 2 != 0; }
inline bool MonochromeXorBit(int x, int y) { return ((x ^ y) & 2) != 0; }

// A black-and-white icon as CreateIcon makes one from 1-bit planes: it has no colour
// bitmap, only the double-height mask.
inline HICON MakeMonochromeTestIcon(int size) {
    const int rowBytes = (size + 15) / 16 * 2;  // device-dependent rows are word-aligned
    std::vector<std::uint8_t> andBits(static_cast<std::size_t>(rowBytes) * size, 0);
    std::vector<std::uint8_t> xorBits(andBits.size(), 0);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const auto bit = static_cast<std::uint8_t>(0x80 >> (x % 8));
            if (MonochromeAndBit(x, y)) andBits[y * rowBytes + x / 8] |= bit;
            if (MonochromeXorBit(x, y)) xorBits[y * rowBytes + x / 8] |= bit;
        }
    return CreateIcon(nullptr, size, size, 1, 1, andBits.data(), xorBits.data());
}

// The icon drawn with DrawIconEx (its own size) over a square of `background`, top-down
// 0x00RRGGBB pixels.
inline std::vector<std::uint32_t> RenderedIcon(HICON icon, int size, COLORREF background, UINT flags = DI_NORMAL) {
    const test_support::PixelSection section(size, size);
    if (!section) return {};
    {
        const UniqueMemoryDC dc(CreateCompatibleDC(nullptr));
        const SelectedObject selected(dc.Get(), section.Bitmap());
        const UniqueGdiObject brush(CreateSolidBrush(background));
        const RECT all{0, 0, size, size};
        FillRect(dc.Get(), &all, static_cast<HBRUSH>(brush.Get()));
        DrawIconEx(dc.Get(), 0, 0, icon, 0, 0, 0, nullptr, flags);
    }
    return section.Pixels();
}
