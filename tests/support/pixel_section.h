// A top-down 32-bit DIB section: a picture that tests draw or copy a window into and read
// back pixel by pixel as 0x00RRGGBB.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "common/win_handles.h"

namespace test_support {

class PixelSection {
public:
    PixelSection(int width, int height) : count_(width > 0 && height > 0 ? width * height : 0) {
        BITMAPINFO info{};
        info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        info.bmiHeader.biWidth = width;
        info.bmiHeader.biHeight = -height;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        bitmap_.Reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits_, nullptr, 0));
    }

    explicit operator bool() const { return bitmap_ && bits_ && count_ > 0; }
    HGDIOBJ Bitmap() const { return bitmap_.Get(); }
    std::uint32_t* Bits() const { return static_cast<std::uint32_t*>(bits_); }

    // Every pixel without its top byte, after GDI has finished drawing.
    std::vector<std::uint32_t> Pixels() const {
        std::vector<std::uint32_t> pixels;
        if (!*this) return pixels;
        GdiFlush();
        for (int i = 0; i < count_; ++i) pixels.push_back(Bits()[i] & 0x00FFFFFF);
        return pixels;
    }

private:
    int count_;
    void* bits_ = nullptr;
    UniqueGdiObject bitmap_;
};

}  // namespace test_support
