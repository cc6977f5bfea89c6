// The icon codec under Wine: real icons at every depth survive encoding and decoding
// with the same pixels and mask, and the decoder's refusals and limits.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "connection/icon_codec.h"
#include "connection/icon_stream.h"
#include "test_icons.h"

namespace {

const HICON kUnset = reinterpret_cast<HICON>(static_cast<std::uintptr_t>(0xdeadbeef));

std::string Encode(HICON icon, HICON smallIcon, std::uint64_t* reported = nullptr) {
    const std::uint64_t size = EncodeIcons(nullptr, icon, smallIcon);
    if (reported) *reported = size;
    if (size == 0) return std::string();
    std::string text(size - 1, '\0');
    char* cursor = text.data();
    EXPECT_EQ(EncodeIcons(&cursor, icon, smallIcon), size);
    EXPECT_EQ(cursor, text.data() + text.size());
    return text;
}

// The pixels of a bitmap read at 32 bits per pixel, and its mask at 1 bit per pixel.
struct Pixels {
    std::vector<std::uint8_t> colour;
    std::vector<std::uint8_t> mask;
    SIZE size{};
};

std::vector<std::uint8_t> BitsOf(HBITMAP bitmap, int width, int height, WORD depth) {
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
    EXPECT_EQ(GetDIBits(dc.get(), bitmap, 0, height, bits.data(), reinterpret_cast<BITMAPINFO*>(&info),
                        DIB_RGB_COLORS),
              height);
    return bits;
}

Pixels PixelsOf(HICON icon) {
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

std::string WithoutLineBreaks(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }),
               text.end());
    return text;
}

// Replaces the image size of directory entry `index` in a stream.
void SetEntrySize(std::vector<std::uint8_t>& stream, int index, std::uint32_t size) {
    for (int b = 0; b < 4; ++b) stream[6 + 16 * index + 8 + b] = static_cast<std::uint8_t>(size >> (8 * b));
}

}  // namespace

class IconDepth : public ::testing::TestWithParam<int> {};

TEST_P(IconDepth, RoundTripKeepsPixelsAndMask) {
    const UniqueIcon original(MakeTestIcon(32, static_cast<std::uint16_t>(GetParam())));
    ASSERT_TRUE(original);
    const std::string text = Encode(original.get(), nullptr);
    ASSERT_FALSE(text.empty());

    HICON decoded = kUnset;
    HICON decodedSmall = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &decoded, &decodedSmall), 1);
    const UniqueIcon icon(decoded);
    EXPECT_EQ(decodedSmall, nullptr);
    ASSERT_TRUE(icon);

    const Pixels before = PixelsOf(original.get());
    const Pixels after = PixelsOf(icon.get());
    EXPECT_EQ(after.size.cx, 32);
    EXPECT_EQ(after.size.cy, 32);
    EXPECT_EQ(after.colour, before.colour);
    EXPECT_EQ(after.mask, before.mask);
    // The pattern is not blank, so equal pixels mean something.
    EXPECT_NE(std::count(before.mask.begin(), before.mask.end(), 0), static_cast<long>(before.mask.size()));
}

INSTANTIATE_TEST_SUITE_P(Depths, IconDepth, ::testing::Values(1, 4, 8, 24, 32));

TEST(IconCodec, EncodedStreamIsTheIconFileOfTheColourBitmapAtItsOwnDepth) {
    // Wine keeps every icon's colour bitmap at 32 bits per pixel, so that is the depth
    // the encoder finds and writes.
    const UniqueIcon icon(MakeTestIcon(32, 32));
    std::uint64_t size = 0;
    const std::string text = Encode(icon.get(), nullptr, &size);
    const std::uint64_t bytes = 6 + 16 + 40 + 32 * (128 + 4);
    EXPECT_EQ(bytes, 4286u);
    EXPECT_EQ(size, 2 * bytes + 2 * (bytes / 32) + 1);
    EXPECT_EQ(text.size() + 1, size);
    // Header: reserved 0, type 1, one image; entry 32 x 32, 0 colours, 1 plane, 32 bits,
    // 4264 (0x10A8) bytes at offset 22; the image's header with doubled height and size 0.
    EXPECT_EQ(text.substr(0, 12), "000001000100");
    EXPECT_EQ(text.substr(12, 32), "2020000001002000A810000016000000");
    EXPECT_EQ(WithoutLineBreaks(text).substr(44, 80),
              "28000000200000004000000001002000000000000000000000000000000000000000000000000000");
}

TEST(IconCodec, LineBreakStandsBeforeEveryByteWhoseIndexModulo32Is31) {
    const UniqueIcon icon(MakeTestIcon(16, 32));
    const std::string text = Encode(icon.get(), nullptr);
    ASSERT_GT(text.size(), 200u);
    EXPECT_EQ(text.substr(62, 2), "\r\n");
    EXPECT_EQ(text.find("\r\n"), 62u);
    EXPECT_EQ(text.find("\r\n", 64), 64u + 64u);
    EXPECT_NE(text.substr(text.size() - 2), "\r\n");
    EXPECT_NE(text.substr(0, 2), "\r\n");
    EXPECT_EQ(text.find_first_not_of("0123456789ABCDEF\r\n"), std::string::npos);
}

TEST(IconCodec, TwoImagesWhenSmallIconIsPresent) {
    const UniqueIcon icon(MakeTestIcon(32, 8));
    const UniqueIcon small(MakeTestIcon(16, 8, 2));
    const std::string text = WithoutLineBreaks(Encode(icon.get(), small.get()));
    EXPECT_EQ(text.substr(0, 12), "000001000200");
    EXPECT_EQ(text.substr(12, 8), "20200000");  // 32 x 32 first
    EXPECT_EQ(text.substr(44, 8), "10100000");  // 16 x 16 second
    // Second offset = 6 + 32 + first size (40 + 32 x (128 + 4) = 4264 = 0x10A8) = 4302 = 0x10CE.
    EXPECT_EQ(text.substr(44 + 24, 8), "CE100000");
}

TEST(IconCodec, EncodingWithoutIconGivesNothing) {
    const UniqueIcon small(MakeTestIcon(16, 8));
    char buffer[4] = {'x', 'x', 'x', 'x'};
    char* cursor = buffer;
    EXPECT_EQ(EncodeIcons(&cursor, nullptr, small.get()), 0u);
    EXPECT_EQ(cursor, buffer);
    EXPECT_EQ(buffer[0], 'x');
}

TEST(IconCodec, DecodedIconKeepsItsOwnSizeAndSmallIconTakesSystemSize) {
    const IconImage images[] = {MakeTestIconImage(48, 8), MakeTestIconImage(48, 8, 3)};
    const std::string text = HexTextOf(BuildIconStream(images, 2));
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &icon, &small), 1);
    const UniqueIcon a(icon), b(small);
    EXPECT_EQ(IconSize(icon).cx, 48);
    EXPECT_EQ(IconSize(icon).cy, 48);
    EXPECT_EQ(IconSize(small).cx, GetSystemMetrics(SM_CXSMICON));
    EXPECT_EQ(IconSize(small).cy, GetSystemMetrics(SM_CYSMICON));
}

TEST(IconCodec, DecoderAcceptsTextWithoutLineBreaksAndWithQuotes) {
    const UniqueIcon original(MakeTestIcon(32, 4));
    const std::string text = Encode(original.get(), nullptr);
    for (const std::string& variant :
         {text, WithoutLineBreaks(text), "\"" + text + "\"", "\"" + WithoutLineBreaks(text) + "\""}) {
        HICON icon = kUnset, small = kUnset;
        EXPECT_EQ(DecodeIcons(variant.c_str(), &icon, &small), 1);
        const UniqueIcon owned(icon);
        EXPECT_TRUE(owned);
        EXPECT_EQ(small, nullptr);
        EXPECT_EQ(PixelsOf(icon).colour, PixelsOf(original.get()).colour);
    }
}

TEST(IconCodec, ReservedNotZeroYieldsNoIcons) {
    const IconImage image = MakeTestIconImage(16, 4);
    std::string text = HexTextOf(BuildIconStream(&image, 1));
    text.replace(0, 4, "0001");
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &icon, &small), 0);
    EXPECT_EQ(icon, nullptr);
    EXPECT_EQ(small, nullptr);
}

TEST(IconCodec, TypeNotOneYieldsNoIcons) {
    const IconImage image = MakeTestIconImage(16, 4);
    std::string text = HexTextOf(BuildIconStream(&image, 1));
    text.replace(4, 4, "0200");
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &icon, &small), 0);
    EXPECT_EQ(icon, nullptr);
}

TEST(IconCodec, CountOf17YieldsNoIcons) {
    const IconImage image = MakeTestIconImage(16, 4);
    std::string text = HexTextOf(BuildIconStream(&image, 1));
    text.replace(8, 4, "1100");
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &icon, &small), 0);
    EXPECT_EQ(icon, nullptr);
    EXPECT_EQ(small, nullptr);
}

TEST(IconCodec, CountOfZeroReturnsOneWithoutIcons) {
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons("000001000000", &icon, &small), 1);
    EXPECT_EQ(icon, nullptr);
    EXPECT_EQ(small, nullptr);
}

TEST(IconCodec, NoTextYieldsNoIcons) {
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(nullptr, &icon, &small), 0);
    EXPECT_EQ(icon, nullptr);
    EXPECT_EQ(small, nullptr);
}

TEST(IconCodec, FirstImageOf16349BytesStopsWithoutIcon) {
    const IconImage images[] = {MakeTestIconImage(16, 4), MakeTestIconImage(16, 4)};
    std::vector<std::uint8_t> stream = BuildIconStream(images, 2);
    SetEntrySize(stream, 0, 16349);
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(HexTextOf(stream).c_str(), &icon, &small), 0);
    EXPECT_EQ(icon, nullptr);
    EXPECT_EQ(small, nullptr);
}

TEST(IconCodec, SecondImageOf16349BytesKeepsTheFirst) {
    const IconImage images[] = {MakeTestIconImage(16, 4), MakeTestIconImage(16, 4)};
    std::vector<std::uint8_t> stream = BuildIconStream(images, 2);
    SetEntrySize(stream, 1, 16349);
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(HexTextOf(stream).c_str(), &icon, &small), 1);
    const UniqueIcon owned(icon);
    EXPECT_TRUE(owned);
    EXPECT_EQ(small, nullptr);
}

TEST(IconCodec, ImageOfExactly16348BytesIsRead) {
    // 64 x 64 at 32 bits: 40 + 64 x (256 + 8) = 16,936 bytes, too big; 62 x 62 at 32 bits:
    // 40 + 62 x (248 + 8) = 15,912 fits. Pad the entry up to the limit with trailing bytes.
    IconImage image = MakeTestIconImage(62, 32);
    image.dib.resize(16348, 0);
    const std::string text = HexTextOf(BuildIconStream(&image, 1));
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &icon, &small), 1);
    const UniqueIcon owned(icon);
    EXPECT_EQ(IconSize(icon).cx, 62);
}

TEST(IconCodec, ThirdImageIsReadAndDropped) {
    const IconImage images[] = {MakeTestIconImage(32, 4), MakeTestIconImage(16, 4), MakeTestIconImage(48, 4)};
    std::vector<std::uint8_t> stream = BuildIconStream(images, 3);
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(HexTextOf(stream).c_str(), &icon, &small), 1);
    const UniqueIcon a(icon), b(small);
    EXPECT_EQ(IconSize(icon).cx, 32);
    EXPECT_TRUE(b);
}

TEST(IconCodec, OffsetFieldIsNotUsed) {
    const IconImage image = MakeTestIconImage(32, 8);
    std::vector<std::uint8_t> stream = BuildIconStream(&image, 1);
    for (int b = 0; b < 4; ++b) stream[6 + 12 + b] = 0xFF;
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(HexTextOf(stream).c_str(), &icon, &small), 1);
    const UniqueIcon owned(icon);
    EXPECT_TRUE(owned);
}

TEST(IconCodec, TruncatedTextMakesNoIconButDoesNotFail) {
    const IconImage image = MakeTestIconImage(32, 8);
    const std::string text = HexTextOf(BuildIconStream(&image, 1)).substr(0, 200);
    HICON icon = kUnset, small = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &icon, &small), 1);
    const UniqueIcon owned(icon);
    EXPECT_EQ(small, nullptr);
}
