// The embedded icon's byte stream (an ICO file image) and its hex text form: the sizes
// and layout of each image, the directory, the upper-case hex with its line-break rule,
// and the parser that checks the header and hands back the image blocks. Portable; the
// icon handles on either side are made and read in icon_codec (Windows).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

constexpr std::uint32_t kMaxIconImages = 16;
constexpr std::uint32_t kMaxIconImageBytes = 16348;
constexpr std::uint32_t kIconHeaderBytes = 6;
constexpr std::uint32_t kIconDirectoryEntryBytes = 16;
constexpr std::uint32_t kBitmapInfoHeaderBytes = 40;
// A CR LF stands before every byte whose index modulo 32 is 31.
constexpr std::size_t kHexBytesPerLine = 32;

// The format of one image as its colour bitmap has it (height not doubled).
struct IconImageFormat {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t planes = 1;
    std::uint16_t bitsPerPixel = 0;
};

std::uint32_t ColourTableEntries(std::uint16_t bitsPerPixel);  // 2, 16, 256 or 0
std::uint32_t XorRowBytes(const IconImageFormat& format);
std::uint32_t AndRowBytes(const IconImageFormat& format);
// 40 + 4 x colours + height x (XOR row bytes + AND row bytes).
std::uint64_t IconImageBytes(const IconImageFormat& format);
// The directory's colour count: 2 to the power planes x bits when that is below 9, else 0.
std::uint8_t DirectoryColourCount(const IconImageFormat& format);

// One image as icon resources store it: BITMAPINFOHEADER with the height doubled and
// image size 0, colour table, colour (XOR) bits, mask (AND) bits. The three parts must
// have the sizes the format asks for; Make throws std::invalid_argument otherwise.
struct IconImage {
    IconImageFormat format;
    std::vector<std::uint8_t> dib;
    static IconImage Make(const IconImageFormat& format, const std::vector<std::uint8_t>& colourTable,
                          const std::vector<std::uint8_t>& xorBits, const std::vector<std::uint8_t>& andBits);
};

// A black-and-white icon has no colour bitmap: its mask bitmap is twice as high, the
// upper half holding the AND mask and the lower half the XOR bits. Read bottom-up at 1
// bit per pixel, its first `height` rows are therefore the XOR bits and the next `height`
// rows the AND mask, the order an icon resource keeps them in. Gives a 1-bit image with
// the colour table black, white. Throws std::invalid_argument when the bits are not
// exactly 2 x height rows of a 1-bit row of `width` pixels.
IconImage MakeMonochromeIconImage(std::int32_t width, std::int32_t height,
                                  const std::vector<std::uint8_t>& doubleMaskBits);

// Header, directory entries (offsets counted from the start) and the images in order.
std::vector<std::uint8_t> BuildIconStream(const IconImage* images, std::size_t count);

// Characters of the hex text of byteCount bytes, line breaks included, no terminator.
std::uint64_t HexTextLength(std::uint64_t byteCount);
// Writes the hex text of the bytes at out (no terminator) and returns the end.
char* WriteHexText(char* out, const std::uint8_t* bytes, std::size_t count);

// Receives the image blocks the parser takes: index 0 (the icon at its own size) and
// index 1 (the small icon). Later images are read and dropped without a call.
class IconImageSink {
public:
    virtual void TakeImage(std::uint32_t index, const std::uint8_t* bytes, std::uint32_t size) = 0;

protected:
    ~IconImageSink() = default;
};

// Reads the hex text, skipping every character that is not a hex digit. Returns 0 when
// the header is refused (reserved not 0, type not 1, more than 16 images), 1 when every
// directory entry was processed (also for 0 images), and when an image larger than
// 16,348 bytes stops it, 1 if an image had been taken before and 0 otherwise.
std::int32_t ParseIconStream(std::string_view text, IconImageSink& sink);
