#include "connection/icon_codec.h"

#include <cstring>
#include <optional>
#include <stdexcept>
#include <vector>

#include "common/win_handles.h"
#include "connection/icon_stream.h"

namespace {

constexpr DWORD kIconResourceVersion = 0x00030000;

// BITMAPINFOHEADER followed by room for the largest colour table.
struct BitmapInfoWithColours {
    BITMAPINFOHEADER header;
    RGBQUAD colours[256];
};

// The format of a bitmap as GetDIBits reports it (a header with bits per pixel 0 asks
// for the format only).
std::optional<BITMAPINFOHEADER> QueryBitmapFormat(HDC dc, HBITMAP bitmap) {
    BitmapInfoWithColours query{};
    query.header.biSize = sizeof(BITMAPINFOHEADER);
    query.header.biBitCount = 0;
    if (!GetDIBits(dc, bitmap, 0, 0, nullptr, reinterpret_cast<BITMAPINFO*>(&query), DIB_RGB_COLORS))
        return std::nullopt;
    return query.header;
}

// A bitmap's rows bottom-up at 1 bit per pixel.
std::optional<std::vector<std::uint8_t>> ReadOneBitRows(HDC dc, HBITMAP bitmap, std::int32_t width, std::int32_t rows) {
    BitmapInfoWithColours info{};
    info.header.biSize = sizeof(BITMAPINFOHEADER);
    info.header.biWidth = width;
    info.header.biHeight = rows;
    info.header.biPlanes = 1;
    info.header.biBitCount = 1;
    info.header.biCompression = BI_RGB;
    IconImageFormat oneBit;
    oneBit.width = width;
    oneBit.bitsPerPixel = 1;
    std::vector<std::uint8_t> bits(std::size_t{static_cast<std::uint32_t>(rows)} * AndRowBytes(oneBit));
    if (GetDIBits(dc, bitmap, 0, static_cast<UINT>(rows), bits.data(), reinterpret_cast<BITMAPINFO*>(&info),
                  DIB_RGB_COLORS) != rows)
        return std::nullopt;
    return bits;
}

// A black-and-white icon: only the double-height mask, AND mask above the XOR bits.
std::optional<IconImage> ReadMonochromeIconImage(HDC dc, HBITMAP mask) {
    const std::optional<BITMAPINFOHEADER> format = QueryBitmapFormat(dc, mask);
    if (!format) return std::nullopt;
    const std::int32_t width = format->biWidth;
    const std::int32_t rows = format->biHeight < 0 ? -format->biHeight : format->biHeight;
    if (width <= 0 || rows <= 0 || rows % 2 != 0) return std::nullopt;
    const std::optional<std::vector<std::uint8_t>> bits = ReadOneBitRows(dc, mask, width, rows);
    if (!bits) return std::nullopt;
    try {
        return MakeMonochromeIconImage(width, rows / 2, *bits);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

// The image of one icon: its colour bitmap at its own depth, and its 1-bit mask.
std::optional<IconImage> ReadIconImage(HDC dc, HICON icon) {
    ICONINFO info{};
    if (!icon || !GetIconInfo(icon, &info)) return std::nullopt;
    const UniqueGdiObject colour(info.hbmColor);
    const UniqueGdiObject mask(info.hbmMask);
    if (!mask) return std::nullopt;
    if (!colour) return ReadMonochromeIconImage(dc, static_cast<HBITMAP>(mask.Get()));

    const std::optional<BITMAPINFOHEADER> query = QueryBitmapFormat(dc, static_cast<HBITMAP>(colour.Get()));
    if (!query) return std::nullopt;

    IconImageFormat format;
    format.width = query->biWidth;
    format.height = query->biHeight < 0 ? -query->biHeight : query->biHeight;
    format.planes = 1;
    format.bitsPerPixel = query->biBitCount;
    if (format.width <= 0 || format.height <= 0 || format.bitsPerPixel == 0) return std::nullopt;
    const std::uint32_t rows = static_cast<std::uint32_t>(format.height);

    // Colour bits at the bitmap's own depth, bottom-up, with its colour table.
    BitmapInfoWithColours colourInfo{};
    colourInfo.header = *query;
    colourInfo.header.biHeight = format.height;
    colourInfo.header.biPlanes = 1;
    colourInfo.header.biCompression = BI_RGB;
    colourInfo.header.biSizeImage = 0;
    colourInfo.header.biClrUsed = 0;
    colourInfo.header.biClrImportant = 0;
    std::vector<std::uint8_t> xorBits(std::size_t{rows} * XorRowBytes(format));
    if (GetDIBits(dc, static_cast<HBITMAP>(colour.Get()), 0, rows, xorBits.data(),
                  reinterpret_cast<BITMAPINFO*>(&colourInfo), DIB_RGB_COLORS) != static_cast<int>(rows))
        return std::nullopt;
    const std::uint32_t colours = ColourTableEntries(format.bitsPerPixel);
    std::vector<std::uint8_t> colourTable(4 * std::size_t{colours});
    if (colours) std::memcpy(colourTable.data(), colourInfo.colours, colourTable.size());

    // The mask read as 1 bit per pixel at the colour bitmap's size.
    const std::optional<std::vector<std::uint8_t>> andBits =
        ReadOneBitRows(dc, static_cast<HBITMAP>(mask.Get()), format.width, format.height);
    if (!andBits) return std::nullopt;

    try {
        return IconImage::Make(format, colourTable, xorBits, *andBits);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    }
}

// How many times an image is offered to the system before it counts as refused. Wine 8 refuses
// a good icon now and then (null, last error untouched) while another thread of the process
// creates or destroys a window, as Explorer's UI thread does beside its icon threads; icons
// made by CreateIconIndirect are refused alike, bitmaps and DCs never. Refusals come in short
// runs: 8 threads beside a window thread for 60 s saw, in 193,512 images, 2,588 runs of one,
// 18 of two and one of three; an hour of the thread stress saw three in a row twice. Waiting
// between calls made longer runs, not shorter. An image the system really refuses costs the
// seven calls more.
constexpr int kIconAttempts = 8;

HICON MakeIcon(const std::uint8_t* bytes, std::uint32_t size, int width, int height) noexcept {
    // Too short to hold even a bitmap header: nothing to make an icon of.
    if (size < kBitmapInfoHeaderBytes) return nullptr;
    for (int attempt = 0; attempt < kIconAttempts; ++attempt) {
        const HICON icon =
            CreateIconFromResourceEx(const_cast<PBYTE>(bytes), size, TRUE, kIconResourceVersion, width, height, 0);
        if (icon) return icon;
    }
    return nullptr;
}

// Makes image 0 at its own size and image 1 at the system small-icon size; with
// keepImages, the block of every icon made stays beside it.
class IconMaker : public IconImageSink {
public:
    IconMaker(DecodedIcon* icon, DecodedIcon* smallIcon, bool keepImages)
        : icon_(icon), smallIcon_(smallIcon), keepImages_(keepImages) {}

    void TakeImage(std::uint32_t index, const std::uint8_t* bytes, std::uint32_t size) override {
        DecodedIcon* out = index == 0 ? icon_ : index == 1 ? smallIcon_ : nullptr;
        if (!out) return;
        if (index == 1) {
            out->width = GetSystemMetrics(SM_CXSMICON);
            out->height = GetSystemMetrics(SM_CYSMICON);
        }
        out->handle.Reset(MakeIcon(bytes, size, out->width, out->height));
        if (out->handle && keepImages_) out->image.assign(bytes, bytes + size);
    }

private:
    DecodedIcon* icon_;
    DecodedIcon* smallIcon_;
    bool keepImages_;
};

std::int32_t Decode(const char* text, DecodedIcon* icon, DecodedIcon* smallIcon, bool keepImages) {
    if (icon) *icon = DecodedIcon{};
    if (smallIcon) *smallIcon = DecodedIcon{};
    IconMaker maker(icon, smallIcon, keepImages);
    return ParseIconStream(text ? std::string_view(text) : std::string_view(), maker);
}

}  // namespace

std::uint64_t EncodeIcons(char** out, HICON icon, HICON smallIcon) {
    if (!icon) return 0;
    std::vector<IconImage> images;
    {
        const WindowDC desktop(GetDesktopWindow());
        if (!desktop.Get()) return 0;
        for (HICON handle : {icon, smallIcon}) {
            if (!handle) continue;
            std::optional<IconImage> image = ReadIconImage(desktop.Get(), handle);
            if (!image) return 0;
            images.push_back(std::move(*image));
        }
    }
    const std::vector<std::uint8_t> stream = BuildIconStream(images.data(), images.size());
    if (out && *out) *out = WriteHexText(*out, stream.data(), stream.size());
    return HexTextLength(stream.size()) + 1;
}

std::int32_t DecodeIcons(const char* text, HICON* iconOut, HICON* smallIconOut) {
    DecodedIcon icon, smallIcon;
    const std::int32_t result = Decode(text, iconOut ? &icon : nullptr, smallIconOut ? &smallIcon : nullptr, false);
    if (iconOut) *iconOut = icon.handle.Detach();
    if (smallIconOut) *smallIconOut = smallIcon.handle.Detach();
    return result;
}

std::int32_t DecodeIconImages(const char* text, DecodedIcon* icon, DecodedIcon* smallIcon) {
    return Decode(text, icon, smallIcon, true);
}

HICON RemakeIcon(const DecodedIcon& decoded) noexcept {
    return MakeIcon(decoded.image.data(), static_cast<std::uint32_t>(decoded.image.size()), decoded.width,
                    decoded.height);
}
