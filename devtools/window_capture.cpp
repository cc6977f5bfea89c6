#include "devtools/window_capture.h"

#include <wincodec.h>

#include <string>

#include "common/com_ptr.h"
#include "common/win_handles.h"

namespace window_capture {

namespace {

// The DC of a whole window, frame included, given back with ReleaseDC.
class WholeWindowDC {
public:
    explicit WholeWindowDC(HWND window) noexcept : window_(window), dc_(GetWindowDC(window)) {}
    ~WholeWindowDC() {
        if (dc_) ReleaseDC(window_, dc_);
    }
    WholeWindowDC(const WholeWindowDC&) = delete;
    WholeWindowDC& operator=(const WholeWindowDC&) = delete;
    HDC Get() const noexcept { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

// COM for the calling thread while the picture is encoded; a thread already in an apartment
// of the other kind keeps it (WIC works in either).
class ComApartment {
public:
    ComApartment() noexcept : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComApartment() {
        if (SUCCEEDED(result_)) CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    bool Usable() const noexcept { return SUCCEEDED(result_) || result_ == RPC_E_CHANGED_MODE; }

private:
    HRESULT result_;
};

std::wstring Wide(const std::string& text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
    if (length <= 0) return std::wstring();
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), length);
    wide.resize(static_cast<std::size_t>(length - 1));
    return wide;
}

// Encodes top-down 24-bit BGR rows as one PNG frame into the file at path.
bool WritePng(const std::string& path, UINT width, UINT height, UINT rowBytes, BYTE* rows) {
    const ComApartment apartment;
    if (!apartment.Usable()) return false;
    ComPtr<IWICImagingFactory> factory;
    if (FAILED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                factory.PutVoid())))
        return false;
    ComPtr<IWICStream> stream;
    const std::wstring widePath = Wide(path);
    if (widePath.empty() || FAILED(factory->CreateStream(stream.Put())) ||
        FAILED(stream->InitializeFromFilename(widePath.c_str(), GENERIC_WRITE)))
        return false;
    ComPtr<IWICBitmapEncoder> encoder;
    if (FAILED(factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Put())) ||
        FAILED(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache)))
        return false;
    ComPtr<IWICBitmapFrameEncode> frame;
    ComPtr<IPropertyBag2> options;
    if (FAILED(encoder->CreateNewFrame(frame.Put(), options.Put())) || FAILED(frame->Initialize(options.Get())) ||
        FAILED(frame->SetSize(width, height)))
        return false;
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    // The encoder names the format it will write; anything but ours would misread the rows.
    if (FAILED(frame->SetPixelFormat(&format)) || !IsEqualGUID(format, GUID_WICPixelFormat24bppBGR)) return false;
    return SUCCEEDED(frame->WritePixels(height, rowBytes, rowBytes * height, rows)) && SUCCEEDED(frame->Commit()) &&
           SUCCEEDED(encoder->Commit());
}

}  // namespace

bool SaveWindowPng(HWND window, const std::string& path) {
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
    info.bmiHeader.biHeight = -height;  // top-down, as the encoder takes its rows
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

    const UINT rowBytes = (static_cast<UINT>(width) * 3 + 3) & ~3u;
    return WritePng(path, static_cast<UINT>(width), static_cast<UINT>(height), rowBytes, static_cast<BYTE*>(bits));
}

}  // namespace window_capture
