// The icon's byte stream and hex text: sizes, layout, the line-break rule, and the
// parser's reading of digits, refusals and limits.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "connection/icon_stream.h"

namespace {

IconImage FourBitImage(int size) {
    IconImageFormat f;
    f.width = size;
    f.height = size;
    f.planes = 1;
    f.bitsPerPixel = 4;
    std::vector<std::uint8_t> table(64);
    for (int i = 0; i < 64; ++i) table[i] = static_cast<std::uint8_t>(i);
    std::vector<std::uint8_t> xorBits(std::size_t{XorRowBytes(f)} * size, 0x5A);
    std::vector<std::uint8_t> andBits(std::size_t{AndRowBytes(f)} * size, 0x0F);
    return IconImage::Make(f, table, xorBits, andBits);
}

std::string Hex(const std::vector<std::uint8_t>& stream) {
    std::string text(HexTextLength(stream.size()), '?');
    char* end = WriteHexText(text.data(), stream.data(), stream.size());
    EXPECT_EQ(end, text.data() + text.size());
    return text;
}

struct Taken : IconImageSink {
    std::vector<std::pair<std::uint32_t, std::vector<std::uint8_t>>> images;
    void TakeImage(std::uint32_t index, const std::uint8_t* bytes, std::uint32_t size) override {
        images.emplace_back(index, std::vector<std::uint8_t>(bytes, bytes + size));
    }
};

}  // namespace

TEST(IconStream, FourBit32By32IconIs766BytesAnd1579Characters) {
    const IconImage image = FourBitImage(32);
    const std::vector<std::uint8_t> stream = BuildIconStream(&image, 1);
    EXPECT_EQ(stream.size(), 766u);
    EXPECT_EQ(IconImageBytes(image.format), 40u + 64u + 32u * (16u + 4u));
    const std::string text = Hex(stream);
    std::size_t breaks = 0;
    for (std::size_t at = text.find("\r\n"); at != std::string::npos; at = text.find("\r\n", at + 2)) ++breaks;
    EXPECT_EQ(breaks, 23u);
    EXPECT_EQ(text.size(), 1532u + 46u);
    EXPECT_EQ(HexTextLength(766) + 1, 1579u);
}

TEST(IconStream, DirectoryEntryOfAFourBitImage) {
    const IconImage image = FourBitImage(32);
    const std::vector<std::uint8_t> s = BuildIconStream(&image, 1);
    const std::vector<std::uint8_t> header(s.begin(), s.begin() + 22);
    EXPECT_EQ(header, (std::vector<std::uint8_t>{0,    0,  1,  0, 1,  0,           // reserved, type, count
                                                 32,   32, 16, 0, 1,  0, 4, 0,     // size, colours, planes, bits
                                                 0xE8, 2,  0,  0, 22, 0, 0, 0}));  // 744 bytes at 22
    // The image's header: 40, width 32, height 64 (doubled), 1 plane, 4 bits, size 0.
    EXPECT_EQ(s[22], 40);
    EXPECT_EQ(s[26], 32);
    EXPECT_EQ(s[30], 64);
    EXPECT_EQ(s[34], 1);
    EXPECT_EQ(s[36], 4);
    for (int i = 38; i < 62; ++i) EXPECT_EQ(s[i], 0) << i;
}

TEST(IconStream, ColourCountIsZeroFromEightBitsOn) {
    IconImageFormat f;
    f.bitsPerPixel = 1;
    EXPECT_EQ(DirectoryColourCount(f), 2);
    f.bitsPerPixel = 4;
    EXPECT_EQ(DirectoryColourCount(f), 16);
    f.bitsPerPixel = 8;
    EXPECT_EQ(DirectoryColourCount(f), 0);  // 256 does not fit the byte
    f.bitsPerPixel = 24;
    EXPECT_EQ(DirectoryColourCount(f), 0);
}

TEST(IconStream, HexTextLineBreaksBefore31And63) {
    std::vector<std::uint8_t> bytes(64);
    for (int i = 0; i < 64; ++i) bytes[i] = static_cast<std::uint8_t>(i);
    const std::string text = Hex(bytes);
    EXPECT_EQ(text.substr(0, 6), "000102");
    EXPECT_EQ(text.substr(60, 6), "1E\r\n1F");
    EXPECT_EQ(text.substr(64 + 62, 6), "3E\r\n3F");
    EXPECT_EQ(text.size(), 128u + 4u);
}

TEST(IconStream, HexTextIsUpperCase) {
    const std::vector<std::uint8_t> bytes{0xAB, 0xCD, 0xEF};
    EXPECT_EQ(Hex(bytes), "ABCDEF");
}

TEST(IconStream, HexTextLengths) {
    EXPECT_EQ(HexTextLength(0), 0u);
    EXPECT_EQ(HexTextLength(31), 62u);
    EXPECT_EQ(HexTextLength(32), 66u);
    EXPECT_EQ(HexTextLength(63), 128u);
    EXPECT_EQ(HexTextLength(64), 132u);
}

TEST(IconStream, ParserHandsBackTheFirstTwoImages) {
    const IconImage images[] = {FourBitImage(32), FourBitImage(16), FourBitImage(8)};
    Taken taken;
    EXPECT_EQ(ParseIconStream(Hex(BuildIconStream(images, 3)), taken), 1);
    ASSERT_EQ(taken.images.size(), 2u);
    EXPECT_EQ(taken.images[0].first, 0u);
    EXPECT_EQ(taken.images[0].second, images[0].dib);
    EXPECT_EQ(taken.images[1].first, 1u);
    EXPECT_EQ(taken.images[1].second, images[1].dib);
}

TEST(IconStream, ParserSkipsEveryNonHexCharacterAndReadsLowerCase) {
    const IconImage image = FourBitImage(8);
    std::string text = Hex(BuildIconStream(&image, 1));
    std::string noisy = "\" ";
    for (char c : text) {
        noisy.push_back(c >= 'A' && c <= 'F' ? static_cast<char>(c - 'A' + 'a') : c);
        noisy += " g\t";
    }
    noisy += "\"";
    Taken taken;
    EXPECT_EQ(ParseIconStream(noisy, taken), 1);
    ASSERT_EQ(taken.images.size(), 1u);
    EXPECT_EQ(taken.images[0].second, image.dib);
}

TEST(IconStream, ParserRefusesReservedTypeAndCount) {
    Taken taken;
    EXPECT_EQ(ParseIconStream("000101000100", taken), 0);  // reserved 0x0100
    EXPECT_EQ(ParseIconStream("000002000100", taken), 0);  // type 2
    EXPECT_EQ(ParseIconStream("000001001100", taken), 0);  // count 17
    EXPECT_EQ(ParseIconStream("", taken), 0);              // type reads 0
    EXPECT_TRUE(taken.images.empty());
}

TEST(IconStream, ParserAcceptsSixteenImages) {
    std::vector<IconImage> images(16, FourBitImage(8));
    Taken taken;
    EXPECT_EQ(ParseIconStream(Hex(BuildIconStream(images.data(), images.size())), taken), 1);
    EXPECT_EQ(taken.images.size(), 2u);
}

TEST(IconStream, ParserCountZeroReturnsOne) {
    Taken taken;
    EXPECT_EQ(ParseIconStream("000001000000", taken), 1);
    EXPECT_TRUE(taken.images.empty());
}

TEST(IconStream, LoneLastDigitIsItsOwnValue) {
    // Count "1" alone: the second byte of the count is absent and the first reads 1.
    Taken taken;
    EXPECT_EQ(ParseIconStream("00000100"
                              "1",
                              taken),
              1);
    ASSERT_EQ(taken.images.size(), 1u);
    EXPECT_TRUE(taken.images[0].second.empty());  // the entry read as zeros: size 0
}

TEST(IconStream, OversizedImageStopsAndResultTellsWhetherOneWasTaken) {
    const IconImage images[] = {FourBitImage(8), FourBitImage(8)};
    std::vector<std::uint8_t> stream = BuildIconStream(images, 2);
    const auto setSize = [&](int entry, std::uint32_t size) {
        for (int b = 0; b < 4; ++b) stream[6 + 16 * entry + 8 + b] = static_cast<std::uint8_t>(size >> (8 * b));
    };
    setSize(1, 16349);
    Taken first;
    EXPECT_EQ(ParseIconStream(Hex(stream), first), 1);
    EXPECT_EQ(first.images.size(), 1u);
    setSize(0, 16349);
    Taken none;
    EXPECT_EQ(ParseIconStream(Hex(stream), none), 0);
    EXPECT_TRUE(none.images.empty());
    setSize(0, 16348);
    Taken limit;
    EXPECT_EQ(ParseIconStream(Hex(stream), limit), 1);
    ASSERT_FALSE(limit.images.empty());
    EXPECT_EQ(limit.images[0].second.size(), 16348u);
}

TEST(IconStream, MakeRefusesPartsOfTheWrongSize) {
    IconImageFormat f;
    f.width = 8;
    f.height = 8;
    f.bitsPerPixel = 4;
    EXPECT_THROW(IconImage::Make(f, {}, std::vector<std::uint8_t>(32), std::vector<std::uint8_t>(32)),
                 std::invalid_argument);
}

namespace {

// A double-height mask of a 32-pixel-wide black-and-white icon, bottom-up: every byte
// of the first half (the XOR bits) is 0xA0 + row, every byte of the second (AND) 0x50 + row.
std::vector<std::uint8_t> DoubleMask(int height) {
    std::vector<std::uint8_t> bits;
    for (int row = 0; row < 2 * height; ++row)
        bits.insert(bits.end(), 4, static_cast<std::uint8_t>(row < height ? 0xA0 + row : 0x50 + (row - height)));
    return bits;
}

}  // namespace

TEST(IconStream, MonochromeImageTakesXorFromTheLowerRowsAndAndFromTheUpper) {
    const IconImage image = MakeMonochromeIconImage(32, 4, DoubleMask(4));
    EXPECT_EQ(image.format.width, 32);
    EXPECT_EQ(image.format.height, 4);
    EXPECT_EQ(image.format.planes, 1);
    EXPECT_EQ(image.format.bitsPerPixel, 1);
    const std::vector<std::uint8_t> expected = {
        40,   0,    0,    0,    32,   0,    0,    0,
        8,    0,    0,    0,    1,    0,    1,    0,  // size, width, height x 2, planes, bits
        0,    0,    0,    0,    0,    0,    0,    0,
        0,    0,    0,    0,    0,    0,    0,    0,      // compression, image size, resolution
        0,    0,    0,    0,    0,    0,    0,    0,      // colours used, important
        0,    0,    0,    0,    0xFF, 0xFF, 0xFF, 0,      // black, white
        0xA0, 0xA0, 0xA0, 0xA0, 0xA1, 0xA1, 0xA1, 0xA1,   // XOR rows 0 and 1
        0xA2, 0xA2, 0xA2, 0xA2, 0xA3, 0xA3, 0xA3, 0xA3,   // XOR rows 2 and 3
        0x50, 0x50, 0x50, 0x50, 0x51, 0x51, 0x51, 0x51,   // AND rows 0 and 1
        0x52, 0x52, 0x52, 0x52, 0x53, 0x53, 0x53, 0x53};  // AND rows 2 and 3
    EXPECT_EQ(image.dib, expected);
}

TEST(IconStream, MonochromeThirtyTwoPixelIconIs326BytesWithTwoColours) {
    const IconImage image = MakeMonochromeIconImage(32, 32, DoubleMask(32));
    EXPECT_EQ(image.dib.size(), 40u + 8u + 32u * (4u + 4u));
    EXPECT_EQ(IconImageBytes(image.format), 304u);
    const std::vector<std::uint8_t> stream = BuildIconStream(&image, 1);
    ASSERT_EQ(stream.size(), 6u + 16u + 304u);
    const std::vector<std::uint8_t> entry(stream.begin() + 6, stream.begin() + 22);
    EXPECT_EQ(entry, (std::vector<std::uint8_t>{32, 32, 2, 0, 1, 0, 1, 0, 0x30, 1, 0, 0, 22, 0, 0, 0}));
}

TEST(IconStream, MonochromeRowsArePaddedToFourBytes) {
    // 20 pixels fit in 3 bytes; each row of either half takes 4.
    std::vector<std::uint8_t> bits(std::size_t{2} * 3 * 4);
    for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = static_cast<std::uint8_t>(i);
    const IconImage image = MakeMonochromeIconImage(20, 3, bits);
    ASSERT_EQ(image.dib.size(), 40u + 8u + 3u * 8u);
    EXPECT_EQ(std::vector<std::uint8_t>(image.dib.begin() + 48, image.dib.begin() + 60),
              std::vector<std::uint8_t>(bits.begin(), bits.begin() + 12));
    EXPECT_EQ(std::vector<std::uint8_t>(image.dib.begin() + 60, image.dib.end()),
              std::vector<std::uint8_t>(bits.begin() + 12, bits.end()));
}

TEST(IconStream, MonochromeImageRefusesBitsOfTheWrongSize) {
    EXPECT_THROW(MakeMonochromeIconImage(32, 4, std::vector<std::uint8_t>(31)), std::invalid_argument);
    EXPECT_THROW(MakeMonochromeIconImage(32, 4, std::vector<std::uint8_t>(33)), std::invalid_argument);
    EXPECT_THROW(MakeMonochromeIconImage(0, 4, std::vector<std::uint8_t>()), std::invalid_argument);
    EXPECT_THROW(MakeMonochromeIconImage(32, 0, std::vector<std::uint8_t>()), std::invalid_argument);
    EXPECT_THROW(MakeMonochromeIconImage(32, -4, std::vector<std::uint8_t>(32)), std::invalid_argument);
    EXPECT_NO_THROW(MakeMonochromeIconImage(32, 4, std::vector<std::uint8_t>(32)));
}
