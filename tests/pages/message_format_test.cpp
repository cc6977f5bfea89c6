// Message-style insertion of one string, with exact results: the label's own templates,
// every escape, line breaks, string formats, and names that hold % sequences themselves.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "pages/message_format.h"

namespace {

std::string Formatted(const std::string& pattern, const std::string& argument = "file.ico") {
    const std::optional<std::string> text = FormatMessageText(pattern, argument);
    return text ? *text : "<none>";
}

}  // namespace

TEST(MessageFormat, LabelTemplateTakesTheFileName) {
    EXPECT_EQ(Formatted("Look for icons in: %1", "vclient.dll"), "Look for icons in: vclient.dll");
}

TEST(MessageFormat, ChineseLabelTemplateInItsAnsiBytes) {
    // "查找图标于: %1" in code page 936; no byte of it is a '%' but the insert's.
    const std::string pattern = "\xB2\xE9\xD5\xD2\xCD\xBC\xB1\xEA\xD3\xDA: %1";
    EXPECT_EQ(Formatted(pattern, "a.ico"), "\xB2\xE9\xD5\xD2\xCD\xBC\xB1\xEA\xD3\xDA: a.ico");
}

TEST(MessageFormat, InsertMayStandAnywhereAndRepeat) {
    EXPECT_EQ(Formatted("%1"), "file.ico");
    EXPECT_EQ(Formatted("a%1b%1c"), "afile.icobfile.icoc");
    EXPECT_EQ(Formatted("%1%%"), "file.ico%");
}

TEST(MessageFormat, NameWithPercentSequencesIsInsertedAsItStands) {
    EXPECT_EQ(Formatted("Look for icons in: %1", "100%.ico"), "Look for icons in: 100%.ico");
    EXPECT_EQ(Formatted("Look for icons in: %1", "a%1b.dll"), "Look for icons in: a%1b.dll");
    EXPECT_EQ(Formatted("Look for icons in: %1", "x%nq.exe"), "Look for icons in: x%nq.exe");
    EXPECT_EQ(Formatted("Look for icons in: %1", "e!s!.ico"), "Look for icons in: e!s!.ico");
    EXPECT_EQ(Formatted("Look for icons in: %1", "x\ny"), "Look for icons in: x\ny");
    EXPECT_EQ(Formatted("Look for icons in: %1", "x\ry"), "Look for icons in: x\ry");
}

TEST(MessageFormat, EmptyNameLeavesTheRest) {
    EXPECT_EQ(Formatted("Look for icons in: %1", ""), "Look for icons in: ");
}

TEST(MessageFormat, EscapesOfTheTemplateText) {
    EXPECT_EQ(Formatted("a%%b %1"), "a%b file.ico");
    EXPECT_EQ(Formatted("%%1"), "%1");
    EXPECT_EQ(Formatted("a%nb"), "a\r\nb");
    EXPECT_EQ(Formatted("a%rb"), "a\rb");
    EXPECT_EQ(Formatted("a%tb"), "a\tb");
    EXPECT_EQ(Formatted("a% b"), "a b");
    EXPECT_EQ(Formatted("a%.b"), "a.b");
    EXPECT_EQ(Formatted("a%!b"), "a!b");
}

TEST(MessageFormat, PercentBeforeAnyOtherCharacterGivesThatCharacter) {
    EXPECT_EQ(Formatted("a%xb"), "axb");
    EXPECT_EQ(Formatted("a%Ab"), "aAb");
    EXPECT_EQ(Formatted("a%Nb"), "aNb");
    EXPECT_EQ(Formatted("a%Rb"), "aRb");
    EXPECT_EQ(Formatted("a%Tb"), "aTb");
    EXPECT_EQ(Formatted("a%bb"), "abb");
    EXPECT_EQ(Formatted("a%\nb"), "a\nb");
    EXPECT_EQ(Formatted("a%\r\nb"), "a\r\r\nb");  // the escaped CR, then LF as a line break
}

TEST(MessageFormat, PercentZeroEndsTheText) {
    EXPECT_EQ(Formatted("a%0b"), "a");
    EXPECT_EQ(Formatted("ab%0%1"), "ab");
    EXPECT_EQ(Formatted("a %n"), "a \r\n");
}

TEST(MessageFormat, LineBreaksBecomeCrLf) {
    EXPECT_EQ(Formatted("a\r\nb"), "a\r\nb");
    EXPECT_EQ(Formatted("a\nb"), "a\r\nb");
    EXPECT_EQ(Formatted("a\rb"), "a\r\nb");
    EXPECT_EQ(Formatted("a\n\nb"), "a\r\n\r\nb");
    EXPECT_EQ(Formatted("a\r\rb"), "a\r\n\r\nb");
    EXPECT_EQ(Formatted("a\n\rb"), "a\r\n\r\nb");
    EXPECT_EQ(Formatted("a\tb"), "a\tb");
}

TEST(MessageFormat, BlanksAtEitherEndStay) {
    EXPECT_EQ(Formatted("  lead"), "  lead");
    EXPECT_EQ(Formatted("trail  "), "trail  ");
}

TEST(MessageFormat, InsertNumbersHaveAtMostTwoDigits) {
    EXPECT_EQ(Formatted("%2x%1"), "xfile.ico");  // no argument 2: nothing
    EXPECT_EQ(Formatted("%10x"), "x");
    EXPECT_EQ(Formatted("%100x"), "0x");
    EXPECT_EQ(Formatted("%11|%1"), "|file.ico");
}

TEST(MessageFormat, StringFormats) {
    EXPECT_EQ(Formatted("%1!s!x"), "file.icox");
    EXPECT_EQ(Formatted("%1!hs!|"), "file.ico|");
    EXPECT_EQ(Formatted("%1!10s!|"), "  file.ico|");
    EXPECT_EQ(Formatted("%1!-10s!|"), "file.ico  |");
    EXPECT_EQ(Formatted("%1!.3s!|"), "fil|");
    EXPECT_EQ(Formatted("%1!5.2s!|"), "   fi|");
    EXPECT_EQ(Formatted("%1!12.5s!|"), "       file.|");
    EXPECT_EQ(Formatted("%1!-s!|"), "file.ico|");
    EXPECT_EQ(Formatted("%1!4s!|"), "file.ico|");
}

TEST(MessageFormat, NoTextWhereFormatMessageFails) {
    EXPECT_EQ(FormatMessageText("ab%", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("x%", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!s", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("x%1!%1", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!*s!|", "x"), std::nullopt);
}

TEST(MessageFormat, EmptyResultIsNoText) {
    EXPECT_EQ(FormatMessageText("", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%0", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1", ""), std::nullopt);
    EXPECT_EQ(FormatMessageText("%99", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%01x", "x"), std::nullopt);
}

TEST(MessageFormat, FormatsThisReadingDoesNotTakeGiveNoText) {
    EXPECT_EQ(FormatMessageText("%1!d!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!x!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!S!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!ls!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!+s!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!10000s!", "x"), std::nullopt);
    EXPECT_EQ(FormatMessageText("%1!.99999999999999999999s!", "x"), std::nullopt);
}
