// How vqctool quotes a text field.
#include <gtest/gtest.h>

#include <string>

#include "tools/vqctool/dump_text.h"

TEST(DumpText, PlainTextIsQuoted) { EXPECT_EQ(QuotedForDump("server"), "\"server\""); }

TEST(DumpText, EmptyTextIsTwoQuotes) { EXPECT_EQ(QuotedForDump(""), "\"\""); }

TEST(DumpText, QuoteBackslashAndLineBreaksAreEscaped) {
    EXPECT_EQ(QuotedForDump("a\"b\\c\rd\ne\tf"), "\"a\\\"b\\\\c\\rd\\ne\\tf\"");
}

TEST(DumpText, OtherControlBytesAreHex) {
    EXPECT_EQ(QuotedForDump(std::string("\x01\x1f\0x", 4)), "\"\\x01\\x1F\\x00x\"");
}

TEST(DumpText, HighBytesAndBlanksStayAsTheyAre) { EXPECT_EQ(QuotedForDump("caf\xe9 \x7f"), "\"caf\xe9 \x7f\""); }
