#include "connection/argument_text.h"

#include <string>

#include <gtest/gtest.h>

using argument_text::FindRegistrationKeyword;
using argument_text::JoinLines;
using argument_text::PrepareCommandLine;

TEST(ArgumentText, CrLfBeforeAnOptionBecomesOneBlank) { EXPECT_EQ(JoinLines("-h a\r\n-I x"), "-h a -I x"); }

TEST(ArgumentText, CrLfBeforeAnythingElseGluesTheLines) { EXPECT_EQ(JoinLines("-h ser\r\nver"), "-h server"); }

TEST(ArgumentText, LoneLfOrCrBeforeAnOptionBecomesOneBlank) {
    EXPECT_EQ(JoinLines("a\n-b"), "a -b");
    EXPECT_EQ(JoinLines("a\r-b"), "a -b");
}

TEST(ArgumentText, LoneLfOrCrElsewhereIsDropped) {
    EXPECT_EQ(JoinLines("a\nb"), "ab");
    EXPECT_EQ(JoinLines("a\rb"), "ab");
    EXPECT_EQ(JoinLines("a\n"), "a");
}

TEST(ArgumentText, EachBreakIsJudgedByTheByteThatFollowsIt) {
    // The first CR is followed by a CR (dropped), the CR LF pair loses its CR, and the
    // LF before '-' becomes the one blank.
    EXPECT_EQ(JoinLines("a\r\r\n-b"), "a -b");
    EXPECT_EQ(JoinLines("a\n\n-b"), "a -b");
}

TEST(ArgumentText, HexTextBrokenOverLinesIsGluedBack) {
    EXPECT_EQ(JoinLines("-I \"0000\r\n0100\""), "-I \"00000100\"");
}

TEST(ArgumentText, QuoteRuleTurnsEverySingleQuoteAfterDashWIntoADoubleQuote) {
    std::string text = "-w 'a b' -x 'c'";
    argument_text::ApplyQuoteRule(text);
    EXPECT_EQ(text, "-w \"a b\" -x \"c\"");
}

TEST(ArgumentText, QuoteRuleLeavesQuotesBeforeTheMatchAlone) {
    std::string text = "'z' -w 'a'";
    argument_text::ApplyQuoteRule(text);
    EXPECT_EQ(text, "'z' -w \"a\"");
}

TEST(ArgumentText, QuoteRuleNeedsDashWBlankQuote) {
    std::string text = "-w'a' -W 'b' -w  'c'";
    argument_text::ApplyQuoteRule(text);
    EXPECT_EQ(text, "-w'a' -W 'b' -w  'c'");
}

TEST(ArgumentText, CommandLinePutsTheProgramPathInFrontUnquoted) {
    EXPECT_EQ(PrepareCommandLine("C:\\Program Files\\x.exe", true, "-h a"), "C:\\Program Files\\x.exe -h a");
}

TEST(ArgumentText, CommandLineWithoutProgramNameIsTheJoinedText) {
    EXPECT_EQ(PrepareCommandLine("C:\\ignored.exe", false, "-h a\r\n-u b"), "-h a -u b");
}

TEST(ArgumentText, CommandLineStopsAtTheFirstZeroByte) {
    const std::string text("-h a\0-u b", 9);
    EXPECT_EQ(PrepareCommandLine("", false, text), "-h a");
}

TEST(ArgumentText, CommandLineAppliesTheQuoteRuleAfterJoining) {
    EXPECT_EQ(PrepareCommandLine("p.exe", true, "-w\r\n'x'"), "p.exe -w'x'");
    EXPECT_EQ(PrepareCommandLine("p.exe", true, "-w 'x'\r\n-y 'z'"), "p.exe -w \"x\" -y \"z\"");
}

TEST(ArgumentText, DebugPrefixStartsTheDebuggerWait) {
    EXPECT_TRUE(argument_text::StartsDebuggerWait("--debug"));
    EXPECT_TRUE(argument_text::StartsDebuggerWait("--debugX"));
    EXPECT_TRUE(argument_text::StartsDebuggerWait("--debugger"));
    EXPECT_FALSE(argument_text::StartsDebuggerWait("--debu"));
    EXPECT_FALSE(argument_text::StartsDebuggerWait("-debug"));
    EXPECT_FALSE(argument_text::StartsDebuggerWait("x--debug"));
}

struct KeywordRow {
    const char* word;
    int install;
    int perUser;
    int sandbox;
};

// An independent copy of the keyword table, in table order.
// clang-format off
constexpr KeywordRow kExpectedKeywords[] = {
    {"register", 1, 0, 0},       {"regserver", 1, 0, 0},
    {"registeruser", 1, 1, 0},   {"regserveruser", 1, 1, 0},
    {"registersandbox", 1, 0, 1}, {"regserversandbox", 1, 0, 1},
    {"unregister", 0, 0, 0},     {"unregserver", 0, 0, 0},
    {"unregisteruser", 0, 1, 0}, {"unregserveruser", 0, 1, 0},
};
// clang-format on

TEST(RegistrationKeywords, TableHoldsTheTenKeywordsInOrder) {
    ASSERT_EQ(std::size(argument_text::kRegistrationKeywords), std::size(kExpectedKeywords));
    for (std::size_t i = 0; i < std::size(kExpectedKeywords); ++i) {
        const auto& actual = argument_text::kRegistrationKeywords[i];
        EXPECT_STREQ(actual.word, kExpectedKeywords[i].word);
        EXPECT_EQ(actual.state.install, kExpectedKeywords[i].install) << actual.word;
        EXPECT_EQ(actual.state.perUser, kExpectedKeywords[i].perUser) << actual.word;
        EXPECT_EQ(actual.state.sandbox, kExpectedKeywords[i].sandbox) << actual.word;
    }
}

std::string MixedCase(const std::string& word) {
    std::string mixed = word;
    for (std::size_t i = 0; i < mixed.size(); i += 2) mixed[i] = static_cast<char>(mixed[i] - 'a' + 'A');
    return mixed;
}

TEST(RegistrationKeywords, EveryKeywordMatchesInMixedCaseWithDashOrSlash) {
    for (const KeywordRow& row : kExpectedKeywords) {
        for (const char* lead : {"-", "/"}) {
            const std::string argument = lead + MixedCase(row.word);
            const auto* keyword = FindRegistrationKeyword(argument);
            ASSERT_NE(keyword, nullptr) << argument;
            EXPECT_STREQ(keyword->word, row.word) << argument;
            EXPECT_EQ(keyword->state.install, row.install) << argument;
            EXPECT_EQ(keyword->state.perUser, row.perUser) << argument;
            EXPECT_EQ(keyword->state.sandbox, row.sandbox) << argument;
        }
    }
}

TEST(RegistrationKeywords, SlashRegServerMatchesRegserver) {
    const auto* keyword = FindRegistrationKeyword("/RegServer");
    ASSERT_NE(keyword, nullptr);
    EXPECT_STREQ(keyword->word, "regserver");
}

TEST(RegistrationKeywords, NearMissesMatchNothing) {
    EXPECT_EQ(FindRegistrationKeyword("/regserv"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("/registerusers"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("registeruser"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("registerusers"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("regserver"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("--regserver"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("\\regserver"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("/"), nullptr);
    EXPECT_EQ(FindRegistrationKeyword(""), nullptr);
    EXPECT_EQ(FindRegistrationKeyword("/ regserver"), nullptr);
}
