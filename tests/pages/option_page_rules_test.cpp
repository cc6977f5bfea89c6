// The Options page's rules with exact values: the "Shell Icon Size" setting as the
// registry query hands it over, the item size, the icon's place in an item, the paint
// plan of an owner-drawn item, when an icon is listed, and the check box.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pages/option_page_rules.h"

using namespace option_page;

namespace {

// A string value as the query returns it: the text and its terminating NUL.
int SizeFromString(const std::string& text, std::uint32_t type = kRegistryString) {
    const std::vector<std::uint8_t> bytes(text.c_str(), text.c_str() + text.size() + 1);
    return IconSizeFromSetting(true, type, bytes.data(), bytes.size());
}

int SizeFromBytes(const std::vector<std::uint8_t>& bytes, std::uint32_t type = kRegistryString) {
    return IconSizeFromSetting(true, type, bytes.data(), bytes.size());
}

}  // namespace

TEST(IconSizeSetting, FortyEightIsTaken) { EXPECT_EQ(SizeFromString("48"), 48); }

TEST(IconSizeSetting, TwentyFourIsTaken) { EXPECT_EQ(SizeFromString("24"), 24); }

TEST(IconSizeSetting, ZeroGivesThirtyTwo) { EXPECT_EQ(SizeFromString("0"), 32); }

TEST(IconSizeSetting, NegativeGivesThirtyTwo) { EXPECT_EQ(SizeFromString("-5"), 32); }

TEST(IconSizeSetting, LettersGiveThirtyTwo) { EXPECT_EQ(SizeFromString("abc"), 32); }

TEST(IconSizeSetting, LeadingBlanksAndPlusSignAreAllowed) { EXPECT_EQ(SizeFromString(" +20"), 20); }

TEST(IconSizeSetting, LeadingTabIsWhiteSpaceToo) { EXPECT_EQ(SizeFromString("\t16"), 16); }

TEST(IconSizeSetting, ConversionStopsAtTheFirstNonDigit) {
    EXPECT_EQ(SizeFromString("40px"), 40);
    EXPECT_EQ(SizeFromString("3 2"), 3);
    EXPECT_EQ(SizeFromString("+-4"), 32);
}

TEST(IconSizeSetting, SevenCharactersAndTheirNulFillTheBuffer) {
    EXPECT_EQ(SizeFromString("0000048"), 48);
    EXPECT_EQ(SizeFromString("9999999"), 9999999);
}

TEST(IconSizeSetting, EightCharactersDoNotFitAndTheReadFails) {
    // The query into 8 bytes fails with more data; whatever it left is not looked at.
    const std::string text = "00000048";
    EXPECT_EQ(IconSizeFromSetting(false, kRegistryString, reinterpret_cast<const std::uint8_t*>(text.data()), 8), 32);
    // Handed over as if it had been read, nine bytes are still too many.
    EXPECT_EQ(SizeFromString(text), 32);
}

TEST(IconSizeSetting, ExpandStringCountsLikeAString) { EXPECT_EQ(SizeFromString("48", kRegistryExpandString), 48); }

TEST(IconSizeSetting, DwordGivesThirtyTwo) {
    // 48 as a REG_DWORD: 30 00 00 00, which would even end in a NUL.
    EXPECT_EQ(SizeFromBytes({0x30, 0, 0, 0}, 4), 32);
    EXPECT_EQ(SizeFromBytes({'4', '8', 0}, 4), 32);
}

TEST(IconSizeSetting, OtherTypesGiveThirtyTwo) {
    EXPECT_EQ(SizeFromBytes({'4', '8', 0}, 0), 32);     // REG_NONE
    EXPECT_EQ(SizeFromBytes({'4', '8', 0}, 3), 32);     // REG_BINARY
    EXPECT_EQ(SizeFromBytes({'4', '8', 0, 0}, 7), 32);  // REG_MULTI_SZ
}

TEST(IconSizeSetting, EmptyValueGivesThirtyTwo) {
    EXPECT_EQ(SizeFromBytes({}), 32);
    EXPECT_EQ(SizeFromString(""), 32);
    EXPECT_EQ(IconSizeFromSetting(true, kRegistryString, nullptr, 0), 32);
}

TEST(IconSizeSetting, DataNotEndingInNulGivesThirtyTwo) {
    EXPECT_EQ(SizeFromBytes({'4', '8'}), 32);
    EXPECT_EQ(SizeFromBytes({'4', 0, '8'}), 32);
}

TEST(IconSizeSetting, NulBeforeTheEndStopsTheNumber) { EXPECT_EQ(SizeFromBytes({'6', '4', 0, '9', 0}), 64); }

TEST(IconSizeSetting, FailedReadGivesThirtyTwo) {
    EXPECT_EQ(IconSizeFromSetting(false, kRegistryString, reinterpret_cast<const std::uint8_t*>("48"), 3), 32);
}

TEST(IconSizeSetting, MoreThanEightBytesNeverCount) {
    // The query cannot return more than the buffer; handed more, the rule still refuses.
    EXPECT_EQ(IconSizeFromSetting(true, kRegistryString, reinterpret_cast<const std::uint8_t*>("4800000000"), 11), 32);
}

TEST(ItemExtent, IsOneAndAHalfIconSizes) {
    EXPECT_EQ(ItemExtent(32), 48);
    EXPECT_EQ(ItemExtent(48), 72);
    EXPECT_EQ(ItemExtent(24), 36);
    EXPECT_EQ(ItemExtent(20), 30);
    EXPECT_EQ(ItemExtent(1), 1);
    EXPECT_EQ(ItemExtent(33), 49);  // integer division
    EXPECT_EQ(ItemExtent(9999999), 14999998);
}

TEST(IconOrigin, CentresTheNominalSizeInADefaultItem) {
    const ItemPoint p = IconOrigin({0, 48, 48, 96}, 32);
    EXPECT_EQ(p.x, 8);
    EXPECT_EQ(p.y, 56);
}

TEST(IconOrigin, CentresInAWideItemOfALargeSize) {
    const ItemPoint p = IconOrigin({72, 0, 144, 72}, 48);
    EXPECT_EQ(p.x, 84);
    EXPECT_EQ(p.y, 12);
}

TEST(IconOrigin, OddSlackIsRoundedTowardsTheItemsTopLeft) {
    const ItemPoint p = IconOrigin({10, 20, 43, 53}, 32);  // 1 pixel of slack each way
    EXPECT_EQ(p.x, 10);
    EXPECT_EQ(p.y, 20);
    const ItemPoint q = IconOrigin({10, 20, 45, 56}, 32);  // 3 and 4 pixels
    EXPECT_EQ(q.x, 11);
    EXPECT_EQ(q.y, 22);
}

TEST(IconOrigin, ItemSmallerThanTheIconUsesSignedDivision) {
    // -5 / 2 is -2 (towards zero), not -3.
    const ItemPoint p = IconOrigin({100, 200, 127, 227}, 32);
    EXPECT_EQ(p.x, 98);
    EXPECT_EQ(p.y, 198);
    const ItemPoint q = IconOrigin({0, 0, 0, 0}, 32);
    EXPECT_EQ(q.x, -16);
    EXPECT_EQ(q.y, -16);
}

TEST(PlanItemPaint, WholeUnselectedItemIsFilledWithTheWindowColour) {
    const ItemPaint p = PlanItemPaint(1041, 0, kDrawEntire, 0);
    EXPECT_TRUE(p.background);
    EXPECT_EQ(p.colour, kColourWindow);
    EXPECT_FALSE(p.focus);
}

TEST(PlanItemPaint, SelectedItemIsFilledWithTheHighlightColour) {
    const ItemPaint p = PlanItemPaint(1041, 3, kDrawSelect, kStateSelected);
    EXPECT_TRUE(p.background);
    EXPECT_EQ(p.colour, kColourHighlight);
    EXPECT_FALSE(p.focus);
}

TEST(PlanItemPaint, DeselectionRepaintsWithTheWindowColour) {
    const ItemPaint p = PlanItemPaint(1041, 3, kDrawSelect, 0);
    EXPECT_TRUE(p.background);
    EXPECT_EQ(p.colour, kColourWindow);
}

TEST(PlanItemPaint, FocusActionDrawsOnlyTheFocusRectangle) {
    const ItemPaint p = PlanItemPaint(1041, 1, kDrawFocus, kStateSelected | kStateFocus);
    EXPECT_FALSE(p.background);
    EXPECT_TRUE(p.focus);
}

TEST(PlanItemPaint, FocusedItemDrawnWholeGetsFillAndFocusRectangle) {
    const ItemPaint p = PlanItemPaint(1041, 1, kDrawEntire, kStateSelected | kStateFocus);
    EXPECT_TRUE(p.background);
    EXPECT_EQ(p.colour, kColourHighlight);
    EXPECT_TRUE(p.focus);
}

TEST(PlanItemPaint, LosingFocusStillDrawsTheFocusRectangle) {
    // DrawFocusRect inverts, so drawing it again on ODA_FOCUS removes it.
    const ItemPaint p = PlanItemPaint(1041, 1, kDrawFocus, 0);
    EXPECT_FALSE(p.background);
    EXPECT_TRUE(p.focus);
}

TEST(PlanItemPaint, NegativeItemIdDrawsNothing) {
    const ItemPaint p = PlanItemPaint(1041, -1, kDrawEntire | kDrawFocus, kStateFocus);
    EXPECT_FALSE(p.background);
    EXPECT_FALSE(p.focus);
}

TEST(PlanItemPaint, OtherControlDrawsNothing) {
    for (std::uint32_t id : {0u, 1037u, 1040u, 1042u}) {
        const ItemPaint p = PlanItemPaint(id, 0, kDrawEntire | kDrawFocus, kStateSelected | kStateFocus);
        EXPECT_FALSE(p.background) << id;
        EXPECT_FALSE(p.focus) << id;
    }
}

TEST(PlanItemPaint, NoActionBitsAndNoFocusDrawNothing) {
    const ItemPaint p = PlanItemPaint(1041, 0, 0, kStateSelected);
    EXPECT_FALSE(p.background);
    EXPECT_FALSE(p.focus);
}

TEST(IconListing, ListedWhenTheExtractionSucceededWithASmallIcon) {
    EXPECT_TRUE(IconIsListed(2, true));
    EXPECT_TRUE(IconIsListed(1, true));
}

TEST(IconListing, NotListedWithoutASmallIcon) { EXPECT_FALSE(IconIsListed(2, false)); }

TEST(IconListing, NotListedWhenTheExtractionFailed) {
    EXPECT_FALSE(IconIsListed(0, true));
    EXPECT_FALSE(IconIsListed(0xFFFFFFFFu, true));
    EXPECT_FALSE(ExtractionSucceeded(0));
    EXPECT_FALSE(ExtractionSucceeded(0xFFFFFFFFu));
    EXPECT_TRUE(ExtractionSucceeded(1));
}

TEST(DynamicSizing, CheckedExactlyWhenOptionSIsZero) {
    EXPECT_TRUE(DynamicSizingChecked(0));
    EXPECT_FALSE(DynamicSizingChecked(1));
    EXPECT_FALSE(DynamicSizingChecked(2));
}

TEST(DynamicSizing, CheckingClearsOptionSAndUncheckingSetsIt) {
    EXPECT_EQ(OptionSFromCheck(true), 0);
    EXPECT_EQ(OptionSFromCheck(false), 1);
}
