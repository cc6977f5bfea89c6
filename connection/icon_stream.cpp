#include "connection/icon_stream.h"

#include <array>
#include <cstring>
#include <stdexcept>

namespace {

void PutLittleEndian(std::uint8_t* at, std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) at[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

std::uint32_t GetLittleEndian(const std::uint8_t* at, int bytes) {
    std::uint32_t value = 0;
    for (int i = bytes - 1; i >= 0; --i) value = (value << 8) | at[i];
    return value;
}

int HexDigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

// Bytes from hex text, two digits at a time, anything else skipped. Where the text runs
// out the missing digits are absent: one digit left is its own value, none gives 0.
class HexByteReader {
public:
    explicit HexByteReader(std::string_view text) : text_(text) {}

    std::uint8_t Next() {
        int value = 0;
        for (int digits = 0; digits < 2;) {
            while (position_ < text_.size() && HexDigitValue(text_[position_]) < 0) ++position_;
            if (position_ >= text_.size()) break;
            value = value * 16 + HexDigitValue(text_[position_++]);
            ++digits;
        }
        return static_cast<std::uint8_t>(value);
    }

    void Read(std::uint8_t* out, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) out[i] = Next();
    }

private:
    std::string_view text_;
    std::size_t position_ = 0;
};

}  // namespace

std::uint32_t ColourTableEntries(std::uint16_t bitsPerPixel) {
    switch (bitsPerPixel) {
    case 1: return 2;
    case 4: return 16;
    case 8: return 256;
    default: return 0;
    }
}

std::uint32_t XorRowBytes(const IconImageFormat& f) {
    const std::uint64_t bits = std::uint64_t{f.planes} * f.bitsPerPixel * static_cast<std::uint32_t>(f.width);
    return static_cast<std::uint32_t>((bits + 31) / 32 * 4);
}

std::uint32_t AndRowBytes(const IconImageFormat& f) {
    return static_cast<std::uint32_t>((std::uint64_t{static_cast<std::uint32_t>(f.width)} + 31) / 32 * 4);
}

std::uint64_t IconImageBytes(const IconImageFormat& f) {
    return kBitmapInfoHeaderBytes + 4ull * ColourTableEntries(f.bitsPerPixel) +
           std::uint64_t{static_cast<std::uint32_t>(f.height)} * (XorRowBytes(f) + AndRowBytes(f));
}

std::uint8_t DirectoryColourCount(const IconImageFormat& f) {
    const std::uint32_t depth = std::uint32_t{f.planes} * f.bitsPerPixel;
    return depth < 9 ? static_cast<std::uint8_t>(1u << depth) : 0;
}

IconImage IconImage::Make(const IconImageFormat& format, const std::vector<std::uint8_t>& colourTable,
                          const std::vector<std::uint8_t>& xorBits, const std::vector<std::uint8_t>& andBits) {
    const std::uint64_t rows = static_cast<std::uint32_t>(format.height);
    if (format.width <= 0 || format.height <= 0 ||
        colourTable.size() != 4ull * ColourTableEntries(format.bitsPerPixel) ||
        xorBits.size() != rows * XorRowBytes(format) || andBits.size() != rows * AndRowBytes(format))
        throw std::invalid_argument("icon image parts do not match the format");

    IconImage image;
    image.format = format;
    image.dib.assign(kBitmapInfoHeaderBytes, 0);
    std::uint8_t* header = image.dib.data();
    PutLittleEndian(header + 0, kBitmapInfoHeaderBytes, 4);  // biSize
    PutLittleEndian(header + 4, static_cast<std::uint32_t>(format.width), 4);
    PutLittleEndian(header + 8, static_cast<std::uint64_t>(format.height) * 2u, 4);  // XOR + AND rows
    PutLittleEndian(header + 12, format.planes, 2);
    PutLittleEndian(header + 14, format.bitsPerPixel, 2);
    // biCompression, biSizeImage (written as 0 in the stream) and the rest stay 0.
    image.dib.insert(image.dib.end(), colourTable.begin(), colourTable.end());
    image.dib.insert(image.dib.end(), xorBits.begin(), xorBits.end());
    image.dib.insert(image.dib.end(), andBits.begin(), andBits.end());
    return image;
}

IconImage MakeMonochromeIconImage(std::int32_t width, std::int32_t height,
                                  const std::vector<std::uint8_t>& doubleMaskBits) {
    IconImageFormat format;
    format.width = width;
    format.height = height;
    format.planes = 1;
    format.bitsPerPixel = 1;
    if (width <= 0 || height <= 0) throw std::invalid_argument("icon image parts do not match the format");
    const std::size_t halfBytes = std::size_t{AndRowBytes(format)} * static_cast<std::uint32_t>(height);
    if (doubleMaskBits.size() != 2 * halfBytes) throw std::invalid_argument("icon image parts do not match the format");
    static const std::vector<std::uint8_t> kBlackWhite = {0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0};
    const auto middle = doubleMaskBits.begin() + static_cast<std::ptrdiff_t>(halfBytes);
    return IconImage::Make(format, kBlackWhite, std::vector<std::uint8_t>(doubleMaskBits.begin(), middle),
                           std::vector<std::uint8_t>(middle, doubleMaskBits.end()));
}

std::vector<std::uint8_t> BuildIconStream(const IconImage* images, std::size_t count) {
    const std::size_t directoryEnd = kIconHeaderBytes + kIconDirectoryEntryBytes * count;
    std::size_t total = directoryEnd;
    for (std::size_t i = 0; i < count; ++i) total += images[i].dib.size();

    std::vector<std::uint8_t> stream(directoryEnd, 0);
    stream.reserve(total);
    PutLittleEndian(&stream[2], 1, 2);  // type: icon
    PutLittleEndian(&stream[4], count, 2);
    std::uint64_t offset = directoryEnd;
    for (std::size_t i = 0; i < count; ++i) {
        const IconImageFormat& f = images[i].format;
        std::uint8_t* entry = &stream[kIconHeaderBytes + kIconDirectoryEntryBytes * i];
        entry[0] = static_cast<std::uint8_t>(f.width);
        entry[1] = static_cast<std::uint8_t>(f.height);
        entry[2] = DirectoryColourCount(f);
        entry[3] = 0;
        PutLittleEndian(entry + 4, f.planes, 2);
        PutLittleEndian(entry + 6, f.bitsPerPixel, 2);
        PutLittleEndian(entry + 8, images[i].dib.size(), 4);
        PutLittleEndian(entry + 12, offset, 4);
        offset += images[i].dib.size();
    }
    for (std::size_t i = 0; i < count; ++i) stream.insert(stream.end(), images[i].dib.begin(), images[i].dib.end());
    return stream;
}

std::uint64_t HexTextLength(std::uint64_t byteCount) {
    const std::uint64_t lineBreaks = byteCount / kHexBytesPerLine;  // before 31, 63, 95, ...
    return 2 * byteCount + 2 * lineBreaks;
}

char* WriteHexText(char* out, const std::uint8_t* bytes, std::size_t count) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    for (std::size_t i = 0; i < count; ++i) {
        if (i % kHexBytesPerLine == kHexBytesPerLine - 1) {
            *out++ = '\r';
            *out++ = '\n';
        }
        *out++ = kDigits[bytes[i] >> 4];
        *out++ = kDigits[bytes[i] & 0x0F];
    }
    return out;
}

std::int32_t ParseIconStream(std::string_view text, IconImageSink& sink) {
    HexByteReader reader(text);
    std::uint8_t word[2];
    reader.Read(word, 2);
    if (GetLittleEndian(word, 2) != 0) return 0;
    reader.Read(word, 2);
    if (GetLittleEndian(word, 2) != 1) return 0;
    reader.Read(word, 2);
    const std::uint32_t count = GetLittleEndian(word, 2);
    if (count > kMaxIconImages) return 0;

    std::array<std::uint8_t, std::size_t{kMaxIconImages} * kIconDirectoryEntryBytes> directory;
    reader.Read(directory.data(), std::size_t{kIconDirectoryEntryBytes} * count);

    std::array<std::uint8_t, kMaxIconImageBytes> image;
    bool taken = false;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t size = GetLittleEndian(&directory[kIconDirectoryEntryBytes * i + 8], 4);
        if (size > kMaxIconImageBytes) return taken ? 1 : 0;
        // The entry's offset is not used: the images follow one after the other.
        reader.Read(image.data(), size);
        taken = true;
        if (i < 2) sink.TakeImage(i, image.data(), size);
    }
    return 1;
}
