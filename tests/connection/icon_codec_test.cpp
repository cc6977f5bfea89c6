// The icon codec under Wine: real icons at every depth survive encoding and decoding
// with the same pixels and mask, and the decoder's refusals and limits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "connection/icon_codec.h"
#include "connection/icon_stream.h"
#include "tests/support/test_icons.h"
#include "tests/connection/icon_pixels.h"

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

std::string WithoutLineBreaks(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }), text.end());
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
    const std::string text = Encode(original.Get(), nullptr);
    ASSERT_FALSE(text.empty());

    HICON decoded = kUnset;
    HICON decodedSmall = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &decoded, &decodedSmall), 1);
    const UniqueIcon icon(decoded);
    EXPECT_EQ(decodedSmall, nullptr);
    ASSERT_TRUE(icon);

    const Pixels before = PixelsOf(original.Get());
    const Pixels after = PixelsOf(icon.Get());
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
    const std::string text = Encode(icon.Get(), nullptr, &size);
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
    const std::string text = Encode(icon.Get(), nullptr);
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
    const std::string text = WithoutLineBreaks(Encode(icon.Get(), small.Get()));
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
    EXPECT_EQ(EncodeIcons(&cursor, nullptr, small.Get()), 0u);
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
    const std::string text = Encode(original.Get(), nullptr);
    for (const std::string& variant :
         {text, WithoutLineBreaks(text), "\"" + text + "\"", "\"" + WithoutLineBreaks(text) + "\""}) {
        HICON icon = kUnset, small = kUnset;
        EXPECT_EQ(DecodeIcons(variant.c_str(), &icon, &small), 1);
        const UniqueIcon owned(icon);
        EXPECT_TRUE(owned);
        EXPECT_EQ(small, nullptr);
        EXPECT_EQ(PixelsOf(icon).colour, PixelsOf(original.Get()).colour);
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

namespace {

constexpr COLORREF kGreenish = RGB(0x20, 0xC0, 0x60);
constexpr COLORREF kPurple = RGB(0x90, 0x10, 0xA0);

// What DrawIconEx gives for a black-and-white icon over `background` (0x00RRGGBB): the
// AND bit keeps or clears the background, the XOR bit then inverts it.
std::vector<std::uint32_t> ExpectedMonochromeDrawing(int size, std::uint32_t background) {
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const std::uint32_t kept = MonochromeAndBit(x, y) ? background : 0;
            pixels.push_back(MonochromeXorBit(x, y) ? kept ^ 0x00FFFFFF : kept);
        }
    return pixels;
}

std::uint32_t Rgb(COLORREF colour) {
    return (std::uint32_t{GetRValue(colour)} << 16) | (std::uint32_t{GetGValue(colour)} << 8) | GetBValue(colour);
}

}  // namespace

TEST(IconCodec, BlackAndWhiteIconHasNoColourBitmapAndAMaskTwiceAsHigh) {
    const UniqueIcon icon(MakeMonochromeTestIcon(32));
    ASSERT_TRUE(icon);
    ICONINFO info{};
    info.hbmColor = reinterpret_cast<HBITMAP>(static_cast<std::uintptr_t>(0xdeadbeef));
    ASSERT_TRUE(GetIconInfo(icon.Get(), &info));
    const UniqueGdiObject colour(info.hbmColor);
    const UniqueGdiObject mask(info.hbmMask);
    EXPECT_EQ(info.hbmColor, nullptr);
    BITMAP bitmap{};
    ASSERT_TRUE(GetObjectA(info.hbmMask, sizeof(bitmap), &bitmap));
    EXPECT_EQ(bitmap.bmWidth, 32);
    EXPECT_EQ(bitmap.bmHeight, 64);
    EXPECT_EQ(bitmap.bmBitsPixel, 1);
}

TEST(IconCodec, BlackAndWhiteMaskHoldsTheAndRowsAboveTheXorRows) {
    const UniqueIcon icon(MakeMonochromeTestIcon(32));
    ICONINFO info{};
    ASSERT_TRUE(GetIconInfo(icon.Get(), &info));
    const UniqueGdiObject colour(info.hbmColor);
    const UniqueGdiObject mask(info.hbmMask);
    // 64 rows bottom-up, 4 bytes each: buffer row r is picture row 63 - r.
    const std::vector<std::uint8_t> bits = BitsOf(info.hbmMask, 32, 64, 1);
    ASSERT_EQ(bits.size(), 64u * 4u);
    for (int pictureRow = 0; pictureRow < 64; ++pictureRow) {
        const int y = pictureRow % 32;
        for (int x = 0; x < 32; ++x) {
            const bool bit = (bits[(63 - pictureRow) * 4 + x / 8] & (0x80 >> (x % 8))) != 0;
            const bool expected = pictureRow < 32 ? MonochromeAndBit(x, y) : MonochromeXorBit(x, y);
            ASSERT_EQ(bit, expected) << "picture row " << pictureRow << ", x " << x;
        }
    }
}

TEST(IconCodec, BlackAndWhiteIconDrawsAndThenXor) {
    const UniqueIcon icon(MakeMonochromeTestIcon(32));
    EXPECT_EQ(RenderedIcon(icon.Get(), 32, kGreenish), ExpectedMonochromeDrawing(32, Rgb(kGreenish)));
    EXPECT_EQ(RenderedIcon(icon.Get(), 32, kPurple), ExpectedMonochromeDrawing(32, Rgb(kPurple)));
}

TEST(IconCodec, BlackAndWhiteIconIsEncodedAsOneBitImageWithBlackAndWhite) {
    const UniqueIcon icon(MakeMonochromeTestIcon(32));
    std::uint64_t size = 0;
    const std::string text = WithoutLineBreaks(Encode(icon.Get(), nullptr, &size));
    const std::uint64_t bytes = 6 + 16 + 40 + 8 + 32 * (4 + 4);
    EXPECT_EQ(bytes, 326u);
    EXPECT_EQ(size, 2 * bytes + 2 * (bytes / 32) + 1);
    ASSERT_EQ(text.size(), 2 * bytes);
    // One image: 32 x 32, 2 colours, 1 plane, 1 bit, 304 (0x130) bytes at offset 22.
    EXPECT_EQ(text.substr(0, 12), "000001000100");
    EXPECT_EQ(text.substr(12, 32), "20200200010001003001000016000000");
    // Its header: height 64, 1 plane, 1 bit, image size 0; then black and white.
    EXPECT_EQ(text.substr(44, 96),
              "2800000020000000400000000100010000000000000000000000000000000000000000000000000000000000FFFFFF00");
    // First XOR row is the bottom picture row 31, first AND row the bottom row of the AND plane.
    std::string xorRow, andRow;
    for (int byte = 0; byte < 4; ++byte) {
        int x = 0, a = 0;
        for (int bit = 0; bit < 8; ++bit) {
            x = (x << 1) | (MonochromeXorBit(byte * 8 + bit, 31) ? 1 : 0);
            a = (a << 1) | (MonochromeAndBit(byte * 8 + bit, 31) ? 1 : 0);
        }
        char digits[5];
        std::snprintf(digits, sizeof(digits), "%02X", x);
        xorRow += digits;
        std::snprintf(digits, sizeof(digits), "%02X", a);
        andRow += digits;
    }
    EXPECT_EQ(text.substr(140, 8), xorRow);
    EXPECT_EQ(text.substr(140 + 32 * 8, 8), andRow);
}

TEST(IconCodec, BlackAndWhiteIconRoundTripsWithItsSizePixelsAndMask) {
    const UniqueIcon original(MakeMonochromeTestIcon(32));
    const std::string text = Encode(original.Get(), nullptr);
    ASSERT_FALSE(text.empty());
    HICON decoded = kUnset, decodedSmall = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &decoded, &decodedSmall), 1);
    const UniqueIcon icon(decoded);
    EXPECT_EQ(decodedSmall, nullptr);
    ASSERT_TRUE(icon);
    EXPECT_EQ(IconSize(icon.Get()).cx, 32);
    EXPECT_EQ(IconSize(icon.Get()).cy, 32);
    for (COLORREF background : {kGreenish, kPurple})
        EXPECT_EQ(RenderedIcon(icon.Get(), 32, background), ExpectedMonochromeDrawing(32, Rgb(background)));
    EXPECT_EQ(RenderedIcon(icon.Get(), 32, kGreenish, DI_MASK), RenderedIcon(original.Get(), 32, kGreenish, DI_MASK));
}

TEST(IconCodec, BlackAndWhitePairKeepsBothImages) {
    const UniqueIcon large(MakeMonochromeTestIcon(32));
    const UniqueIcon small(MakeMonochromeTestIcon(16));
    const std::string text = Encode(large.Get(), small.Get());
    const std::string flat = WithoutLineBreaks(text);
    EXPECT_EQ(flat.substr(0, 12), "000001000200");
    // Second entry: 16 x 16, 2 colours, 1 bit, 40 + 8 + 16 x 8 = 176 (0xB0) bytes at
    // 6 + 32 + 304 = 342 (0x156).
    EXPECT_EQ(flat.substr(44, 32), "1010020001000100B000000056010000");

    HICON decoded = kUnset, decodedSmall = kUnset;
    EXPECT_EQ(DecodeIcons(text.c_str(), &decoded, &decodedSmall), 1);
    const UniqueIcon icon(decoded), smallIcon(decodedSmall);
    ASSERT_TRUE(icon);
    ASSERT_TRUE(smallIcon);
    ASSERT_EQ(GetSystemMetrics(SM_CXSMICON), 16);
    EXPECT_EQ(IconSize(smallIcon.Get()).cx, 16);
    EXPECT_EQ(RenderedIcon(smallIcon.Get(), 16, kPurple), ExpectedMonochromeDrawing(16, Rgb(kPurple)));
    EXPECT_EQ(RenderedIcon(icon.Get(), 32, kPurple), ExpectedMonochromeDrawing(32, Rgb(kPurple)));
}

TEST(IconCodec, CopyOfABlackAndWhiteIconIsEncodedLikeTheOriginal) {
    const UniqueIcon original(MakeMonochromeTestIcon(32));
    const UniqueIcon copy(CopyIcon(original.Get()));
    ASSERT_TRUE(copy);
    EXPECT_EQ(Encode(copy.Get(), nullptr), Encode(original.Get(), nullptr));
}
