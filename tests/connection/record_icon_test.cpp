// The record's icons: what the reader decoded is copied from its image again (and its own
// handle is handed out once, then made again on demand), anything
// else with CopyIcon; either way the copy is a new icon with the same pixels.
#include <gtest/gtest.h>

#include <vector>

#include "common/win_handles.h"
#include "connection/icon_codec.h"
#include "connection/icon_stream.h"
#include "connection/record_icon.h"
#include "tests/support/test_icons.h"
#include "tests/connection/icon_pixels.h"

namespace {

// The reader's decode of a stream of a 32x32 and a 16x16 image at `bitsPerPixel`.
void DecodeTwo(std::uint16_t bitsPerPixel, DecodedIcon* large, DecodedIcon* small) {
    const IconImage images[] = {MakeTestIconImage(32, bitsPerPixel), MakeTestIconImage(16, bitsPerPixel, 2)};
    const std::string text = HexTextOf(BuildIconStream(images, 2));
    ASSERT_EQ(DecodeIconImages(text.c_str(), large, small), 1);
}

}  // namespace

TEST(DecodeIconImages, KeepsEachImageBlockWithTheSizeItWasMadeAt) {
    DecodedIcon large, small;
    DecodeTwo(8, &large, &small);
    const UniqueIcon largeOwner(large.handle.Detach()), smallOwner(small.handle.Detach());
    EXPECT_EQ(large.image, MakeTestIconImage(32, 8).dib);
    EXPECT_EQ(small.image, MakeTestIconImage(16, 8, 2).dib);
    EXPECT_EQ(large.width, 0);
    EXPECT_EQ(large.height, 0);
    EXPECT_EQ(small.width, GetSystemMetrics(SM_CXSMICON));
    EXPECT_EQ(small.height, GetSystemMetrics(SM_CYSMICON));
}

TEST(DecodeIconImages, AnImageThatMakesNoIconKeepsNoBlock) {
    std::vector<std::uint8_t> stream = BuildIconStream(std::vector<IconImage>{MakeTestIconImage(32, 4)}.data(), 1);
    std::fill(stream.begin() + 6 + 16, stream.begin() + 6 + 16 + 40, std::uint8_t{0});  // no bitmap header
    DecodedIcon large;
    large.image = {1, 2, 3};
    EXPECT_EQ(DecodeIconImages(HexTextOf(stream).c_str(), &large, nullptr), 1);
    EXPECT_EQ(large.handle.Get(), nullptr);
    EXPECT_TRUE(large.image.empty());
}

TEST(RecordIcon, CopyOfADecodedIconIsANewIconWithTheSamePixels) {
    for (std::uint16_t depth : {1, 4, 8, 24, 32}) {
        SCOPED_TRACE(depth);
        DecodedIcon large, small;
        DecodeTwo(depth, &large, &small);
        RecordIcon icon, smallIcon;
        icon.ResetDecoded(std::move(large));
        smallIcon.ResetDecoded(std::move(small));
        const UniqueIcon copy(icon.Copy()), smallCopy(smallIcon.Copy());
        ASSERT_TRUE(copy);
        ASSERT_TRUE(smallCopy);
        EXPECT_NE(copy.Get(), icon.Get());
        EXPECT_NE(smallCopy.Get(), smallIcon.Get());
        ExpectSamePixels(copy.Get(), icon.Get());
        ExpectSamePixels(smallCopy.Get(), smallIcon.Get());
        EXPECT_EQ(IconSize(smallCopy.Get()).cx, GetSystemMetrics(SM_CXSMICON));
    }
}

TEST(RecordIcon, CopyOutlivesTheRecordsIcon) {
    DecodedIcon large, small;
    DecodeTwo(4, &large, &small);
    const UniqueIcon smallOwner(small.handle.Detach());
    RecordIcon icon;
    icon.ResetDecoded(std::move(large));
    const Pixels before = PixelsOf(icon.Get());
    const UniqueIcon copy(icon.Copy());
    icon.Reset();
    EXPECT_FALSE(icon);
    const Pixels after = PixelsOf(copy.Get());
    EXPECT_EQ(after.colour, before.colour);
    EXPECT_EQ(after.mask, before.mask);
}

TEST(RecordIcon, AnIconFromElsewhereIsCopiedAsItIsNotAsTheImageItReplaced) {
    DecodedIcon large, small;
    DecodeTwo(4, &large, &small);
    const UniqueIcon smallOwner(small.handle.Detach());
    RecordIcon icon;
    icon.ResetDecoded(std::move(large));
    // The Options page puts an icon of the user's choice in: a copy must show that one.
    const UniqueIcon chosen(MakeTestIcon(48, 8, 5));
    icon.Reset(CopyIcon(chosen.Get()));
    const UniqueIcon copy(icon.Copy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(IconSize(copy.Get()).cx, 48);
    ExpectSamePixels(copy.Get(), chosen.Get());
}

TEST(RecordIcon, ReleaseHandsTheIconOverAndForgetsTheImage) {
    DecodedIcon large, small;
    DecodeTwo(4, &large, &small);
    const UniqueIcon smallOwner(small.handle.Detach());
    RecordIcon icon;
    icon.ResetDecoded(std::move(large));
    const HICON held = icon.Get();
    const UniqueIcon released(icon.Detach());
    EXPECT_EQ(released.Get(), held);
    EXPECT_FALSE(icon);
    EXPECT_EQ(icon.Copy(), nullptr);
}

TEST(RecordIcon, NoIconGivesNoCopy) {
    RecordIcon icon;
    EXPECT_EQ(icon.Copy(), nullptr);
    DecodedIcon nothing;
    nothing.image = {1, 2, 3};
    icon.ResetDecoded(std::move(nothing));
    EXPECT_FALSE(icon);
    EXPECT_EQ(icon.Copy(), nullptr);
}

TEST(RecordIcon, HandOutGivesTheReadersOwnHandleAndTheRecordMakesItsOwnAgain) {
    DecodedIcon large, small;
    DecodeTwo(8, &large, &small);
    const HICON made = large.handle.Get();
    RecordIcon icon;
    icon.ResetDecoded(std::move(large));
    const UniqueIcon handed(icon.HandOut());
    EXPECT_EQ(handed.Get(), made);
    ASSERT_TRUE(icon);
    const HICON own = icon.Get();
    ASSERT_NE(own, nullptr);
    EXPECT_NE(own, handed.Get());
    EXPECT_EQ(icon.Get(), own);
    ExpectSamePixels(own, handed.Get());
}

TEST(RecordIcon, SecondHandOutIsANewIconWithTheSamePixels) {
    DecodedIcon large, small;
    DecodeTwo(4, &large, &small);
    RecordIcon icon;
    icon.ResetDecoded(std::move(large));
    const UniqueIcon first(icon.HandOut());
    const UniqueIcon second(icon.HandOut());
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_NE(first.Get(), second.Get());
    ExpectSamePixels(second.Get(), first.Get());
}

TEST(RecordIcon, AnIconFromElsewhereIsHandedOutAsACopy) {
    RecordIcon icon;
    icon.Reset(MakeTestIcon(48, 8, 5));
    const HICON held = icon.Get();
    const UniqueIcon handed(icon.HandOut());
    ASSERT_TRUE(handed);
    EXPECT_NE(handed.Get(), held);
    EXPECT_EQ(icon.Get(), held);
    ExpectSamePixels(handed.Get(), held);
}

TEST(RecordIcon, DetachAfterHandOutGivesAnIconOfItsOwn) {
    DecodedIcon large, small;
    DecodeTwo(4, &large, &small);
    RecordIcon icon;
    icon.ResetDecoded(std::move(large));
    const UniqueIcon handed(icon.HandOut());
    const UniqueIcon detached(icon.Detach());
    ASSERT_TRUE(detached);
    EXPECT_NE(detached.Get(), handed.Get());
    EXPECT_FALSE(icon);
    ExpectSamePixels(detached.Get(), handed.Get());
}
