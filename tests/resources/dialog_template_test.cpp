#include "resources/dialog_template_writer.h"

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "expected_tables.h"
#include "resources/local_strings.h"
#include "template_decoder.h"

namespace {

constexpr std::u16string_view kFace = u"Test Face";

std::vector<std::uint8_t> Build(const DialogDesc& desc, int language, std::uint32_t pointSize = 0,
                                std::u16string_view face = kFace) {
    const std::size_t size = WriteDialogTemplate(desc, nullptr, language, pointSize, face);
    std::vector<std::uint8_t> bytes(size, 0xCD);
    EXPECT_EQ(WriteDialogTemplate(desc, bytes.data(), language, pointSize, face), size);
    return bytes;
}

DecodedTemplate Decode(const std::vector<std::uint8_t>& bytes) { return DecodeTemplate(bytes.data(), bytes.size()); }

// The caption a language sees, worked out from the table's own cells.
std::u16string ExpectedCaption(int id, int language) {
    if (id == expected::kNoCaption) return u"";
    const char16_t* const* texts = g_localStrings[id]->texts;
    const char16_t* text = texts[language - 1] != nullptr ? texts[language - 1] : texts[0];
    return std::u16string(text);
}

std::u16string ToLower(std::u16string text) {
    for (char16_t& c : text)
        if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    return text;
}

}  // namespace

TEST(DialogTemplate, EveryTemplateInEveryLanguageDecodesToItsTable) {
    for (const expected::Dialog& want : expected::kDialogs) {
        const DialogDesc* desc = FindDialogDesc(want.index);
        ASSERT_NE(desc, nullptr);
        for (int language = 1; language <= 27; ++language) {
            SCOPED_TRACE("template " + std::to_string(want.index) + " language " + std::to_string(language));
            const std::vector<std::uint8_t> bytes = Build(*desc, language);
            const DecodedTemplate t = Decode(bytes);
            ASSERT_TRUE(t.ok);
            EXPECT_EQ(t.end, bytes.size());
            EXPECT_EQ(t.style, want.style);
            EXPECT_EQ(t.exStyle, want.exStyle);
            EXPECT_EQ(t.x, want.x);
            EXPECT_EQ(t.y, want.y);
            EXPECT_EQ(t.cx, want.cx);
            EXPECT_EQ(t.cy, want.cy);
            EXPECT_EQ(t.menu, 0);
            EXPECT_EQ(t.className, u"");
            EXPECT_EQ(t.title, ExpectedCaption(want.titleId, language));
            EXPECT_TRUE(t.hasFont);
            EXPECT_EQ(t.pointSize, 8);
            EXPECT_EQ(t.faceName, kFace);
            ASSERT_EQ(t.controlCount, want.controlCount);
            ASSERT_EQ(t.controls.size(), static_cast<std::size_t>(want.controlCount));
            for (int i = 0; i < want.controlCount; ++i) {
                const expected::Control& c = want.controls[i];
                const DecodedControl& got = t.controls[i];
                SCOPED_TRACE("control " + std::to_string(c.id));
                EXPECT_EQ(got.id, c.id);
                EXPECT_EQ(got.style, c.style);
                EXPECT_EQ(got.exStyle, 0u);
                EXPECT_EQ(got.x, c.x);
                EXPECT_EQ(got.y, c.y);
                EXPECT_EQ(got.cx, expected::Width(c, language));
                EXPECT_EQ(got.cy, c.cy);
                EXPECT_EQ(ToLower(got.className), c.className);
                EXPECT_EQ(got.className, c.className);
                EXPECT_EQ(got.caption, ExpectedCaption(c.captionId, language));
                EXPECT_EQ(got.creationDataSize, 0);
            }
        }
    }
}

TEST(DialogTemplate, MeasuringAndWritingGiveTheSameSize) {
    for (int index = 1; index <= 4; ++index) {
        for (int language = 1; language <= 27; ++language) {
            const DialogDesc& desc = *FindDialogDesc(index);
            const std::size_t measured = WriteDialogTemplate(desc, nullptr, language, 0, kFace);
            std::vector<std::uint8_t> bytes(measured + 64, 0xCD);
            EXPECT_EQ(WriteDialogTemplate(desc, bytes.data(), language, 0, kFace), measured);
            // Nothing is written behind the measured end.
            for (std::size_t i = measured; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 0xCD) << i;
        }
    }
}

TEST(DialogTemplate, EveryControlStartsOnAFourByteBoundary) {
    for (int index = 1; index <= 4; ++index) {
        for (int language = 1; language <= 27; ++language) {
            const DecodedTemplate t = Decode(Build(*FindDialogDesc(index), language));
            for (const DecodedControl& c : t.controls) EXPECT_EQ(c.offset % 4, 0u) << index << " " << c.id;
        }
    }
}

TEST(DialogTemplate, AlignmentPaddingIsLeftUnwritten) {
    // With a 9-character face the header ends at an offset that needs padding.
    const std::vector<std::uint8_t> bytes = Build(*FindDialogDesc(3), 1);
    const DecodedTemplate t = Decode(bytes);
    std::size_t padded = 0;
    std::size_t previousEnd = 18 + 2 + 2 + 2 + 2 + (kFace.size() + 1) * 2;  // header .. face
    for (const DecodedControl& c : t.controls) {
        for (std::size_t i = previousEnd; i < c.offset; ++i) {
            EXPECT_EQ(bytes[i], 0xCD) << i;
            ++padded;
        }
        previousEnd = c.offset + 18 + (c.className.size() + 1) * 2 + (c.caption.size() + 1) * 2 + 2;
    }
    EXPECT_GT(padded, 0u);
}

TEST(DialogTemplate, BrowseButtonIsNinetyUnitsWideInGermanOnly) {
    for (int language = 1; language <= 27; ++language) {
        const DecodedTemplate t = Decode(Build(*FindDialogDesc(3), language));
        ASSERT_EQ(t.controls[4].id, 1040);
        EXPECT_EQ(t.controls[4].cx, language == 2 ? 90 : 62) << language;
    }
}

TEST(DialogTemplate, FontFaceIsTheOneGivenNotTheStoredFace) {
    const DialogDesc& desc = *FindDialogDesc(1);
    ASSERT_NE(desc.faceName, nullptr);
    EXPECT_EQ(std::u16string_view(desc.faceName), u"MS Shell Dlg");
    EXPECT_EQ(Decode(Build(desc, 1, 0, u"Tahoma")).faceName, u"Tahoma");
    EXPECT_EQ(Decode(Build(desc, 1, 0, u"")).faceName, u"");
}

TEST(DialogTemplate, PointSizeArgumentReplacesTheTablesSize) {
    EXPECT_EQ(Decode(Build(*FindDialogDesc(2), 1, 0)).pointSize, 8);
    EXPECT_EQ(Decode(Build(*FindDialogDesc(2), 1, 12)).pointSize, 12);
}

TEST(DialogTemplate, ControlWithoutCaptionGetsAnEmptyString) {
    const DecodedTemplate t = Decode(Build(*FindDialogDesc(1), 2));
    ASSERT_EQ(t.controls[1].id, 1002);
    EXPECT_EQ(t.controls[1].caption, u"");
    EXPECT_EQ(t.title, u"");  // the pages have no title in their template
}

TEST(DialogTemplate, LanguageWithoutOwnCaptionGetsEnglish) {
    // German has no text of its own for id 0 ("Use &encryption", control 1023).
    const DecodedTemplate german = Decode(Build(*FindDialogDesc(1), 2));
    ASSERT_EQ(german.controls[22].id, 1023);
    EXPECT_EQ(german.controls[22].caption, u"Use &encryption");
    // Italian has none at all.
    const DecodedTemplate italian = Decode(Build(*FindDialogDesc(4), 5));
    EXPECT_EQ(italian.title, u"Connection Details");
    EXPECT_EQ(italian.controls[0].caption, u"&Server:");
}

TEST(DialogTemplate, OwnCaptionIsUsedWhereTheLanguageHasOne) {
    const DecodedTemplate korean = Decode(Build(*FindDialogDesc(4), 10));
    EXPECT_EQ(korean.title, u"\uC5F0\uACB0 \uC815\uBCF4");
    const DecodedTemplate german = Decode(Build(*FindDialogDesc(3), 2));
    EXPECT_EQ(german.controls[4].caption, u"&Nach Icon durchsuchen...");
}

TEST(DialogTemplate, WsVisibleIsAddedToEveryControl) {
    static constexpr LocalValue hidden{0x40000000, 1, nullptr};  // WS_CHILD only
    static constexpr LocalValue zero{0, 1, nullptr};
    const ControlDesc control{7, &zero, &zero, &zero, &zero, &hidden, &zero, u"static", nullptr};
    const ControlDesc* const controls[] = {&control, nullptr};
    const DialogDesc desc{{9, &zero, &zero, &zero, &zero, &zero, &zero, nullptr, nullptr}, 8, nullptr, controls};
    const DecodedTemplate t = Decode(Build(desc, 1));
    ASSERT_EQ(t.controls.size(), 1u);
    EXPECT_EQ(t.controls[0].style, 0x50000000u);
}

TEST(DialogTemplate, NoFaceMeansNoFontPartAndNoSetFontBit) {
    static constexpr LocalValue zero{0, 1, nullptr};
    static constexpr LocalValue popup{static_cast<std::int32_t>(0x80000000u), 1, nullptr};
    const ControlDesc* const controls[] = {nullptr};
    const DialogDesc desc{{9, &zero, &zero, &zero, &zero, &popup, &zero, u"cls", nullptr}, 8, nullptr, controls};
    const std::vector<std::uint8_t> bytes = Build(desc, 1);
    const DecodedTemplate t = Decode(bytes);
    EXPECT_EQ(t.style, 0x80000000u);
    EXPECT_FALSE(t.hasFont);
    EXPECT_EQ(t.className, u"cls");
    EXPECT_EQ(t.controlCount, 0);
    // Header, menu, "cls" and its NUL, an empty title: and nothing behind.
    EXPECT_EQ(bytes.size(), 18u + 2 + 8 + 2);
}

TEST(DialogTemplate, ValuesAreTruncatedToSixteenBits) {
    static constexpr LocalValue zero{0, 1, nullptr};
    static constexpr LocalValue wide{0x12345, 1, nullptr};
    const ControlDesc control{0x10007, &wide, &zero, &zero, &zero, &zero, &zero, nullptr, nullptr};
    const ControlDesc* const controls[] = {&control, nullptr};
    const DialogDesc desc{{9, &wide, &zero, &zero, &zero, &zero, &zero, nullptr, nullptr}, 8, nullptr, controls};
    const DecodedTemplate t = Decode(Build(desc, 1));
    EXPECT_EQ(static_cast<std::uint16_t>(t.x), 0x2345);
    EXPECT_EQ(static_cast<std::uint16_t>(t.controls[0].x), 0x2345);
    EXPECT_EQ(t.controls[0].id, 7);
    EXPECT_EQ(t.controls[0].className, u"");
}

TEST(DialogTemplate, OnlyTemplatesOneToFourExist) {
    EXPECT_EQ(FindDialogDesc(0), nullptr);
    EXPECT_EQ(FindDialogDesc(5), nullptr);
    EXPECT_EQ(FindDialogDesc(-1), nullptr);
    for (int index = 1; index <= 4; ++index) {
        ASSERT_NE(FindDialogDesc(index), nullptr);
        EXPECT_EQ(FindDialogDesc(index)->id, index);
        EXPECT_EQ(g_dialogDescs[index - 1], FindDialogDesc(index));
    }
}

TEST(LocalValueList, ExactLanguageWinsAtOnce) {
    static constexpr LocalValue english{62, 1, nullptr};
    static constexpr LocalValue german{90, 2, &english};
    EXPECT_EQ(ResolveLocalValue(&german, 2), 90);
    EXPECT_EQ(ResolveLocalValue(&german, 1), 62);
    EXPECT_EQ(ResolveLocalValue(&german, 3), 62);
}

TEST(LocalValueList, FirstNodeOfTheLanguageWins) {
    static constexpr LocalValue second{7, 4, nullptr};
    static constexpr LocalValue first{5, 4, &second};
    EXPECT_EQ(ResolveLocalValue(&first, 4), 5);
}

TEST(LocalValueList, LastLanguageOneNodeIsTheDefault) {
    static constexpr LocalValue later{20, 1, nullptr};
    static constexpr LocalValue other{30, 3, &later};
    static constexpr LocalValue earlier{10, 1, &other};
    EXPECT_EQ(ResolveLocalValue(&earlier, 9), 20);
    // For language 1 itself the first language-1 node is an exact match.
    EXPECT_EQ(ResolveLocalValue(&earlier, 1), 10);
}

TEST(LocalValueList, NoMatchAndNoDefaultGivesZero) {
    static constexpr LocalValue only{30, 3, nullptr};
    EXPECT_EQ(ResolveLocalValue(&only, 2), 0);
    EXPECT_EQ(ResolveLocalValue(nullptr, 1), 0);
}
