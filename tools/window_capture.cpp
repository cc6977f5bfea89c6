#include "tools/window_capture.h"

#include <vector>

#include "common/win_handles.h"

namespace window_capture {

namespace {

// The DC of a whole window, frame included, given back with ReleaseDC.
class WholeWindowDC {
public:
    explicit WholeWindowDC(HWND window) noexcept : window_(window), dc_(GetWindowDC(window)) {}
    ~WholeWindowDC() { if (dc_) ReleaseDC(window_, dc_); }
    WholeWindowDC(const WholeWindowDC&) = delete;
    WholeWindowDC& operator=(const WholeWindowDC&) = delete;
    HDC Get() const noexcept { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

bool WriteAll(HANDLE file, const void* data, DWORD size) {
    DWORD written = 0;
    return WriteFile(file, data, size, &written, nullptr) && written == size;
}

}  // namespace

bool SaveWindowBitmap(HWND window, const std::string& path) {
    RECT frame{};
    if (!GetWindowRect(window, &frame)) return false;
    const int width = frame.right - frame.left;
    const int height = frame.bottom - frame.top;
    if (width <= 0 || height <= 0) return false;

    const WholeWindowDC source(window);
    if (!source.Get()) return false;
    const UniqueMemoryDC memory(CreateCompatibleDC(source.Get()));
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = height;  // bottom-up, as a BMP file stores its rows
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    const UniqueGdiObject bitmap(CreateDIBSection(memory.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!memory || !bitmap || !bits) return false;
    {
        const SelectedObject selected(memory.Get(), bitmap.Get());
        if (!BitBlt(memory.Get(), 0, 0, width, height, source.Get(), 0, 0, SRCCOPY)) return false;
    }
    GdiFlush();

    const DWORD rowBytes = (static_cast<DWORD>(width) * 3 + 3) & ~3u;
    const DWORD pixelBytes = rowBytes * static_cast<DWORD>(height);
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42;  // "BM"
    header.bfOffBits = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    header.bfSize = header.bfOffBits + pixelBytes;
    info.bmiHeader.biSizeImage = pixelBytes;

    const UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file && WriteAll(file.Get(), &header, sizeof(header)) &&
           WriteAll(file.Get(), &info.bmiHeader, sizeof(info.bmiHeader)) &&
           WriteAll(file.Get(), bits, pixelBytes);
}

}  // namespace window_capture
