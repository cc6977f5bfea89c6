// The option walk over an argument list, without files: what the Windows side is handed
// as the last icon instruction, and elements the splitter would never produce.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "connection/option_walk.h"

namespace {

IconInstruction Walk(std::vector<const char*> elements, ConnectionSettings& s) {
    elements.insert(elements.begin(), "C:\\program.exe");
    return LayOptions(elements.data(), static_cast<int>(elements.size()), s);
}

}  // namespace

TEST(OptionWalk, NoIconOptionLeavesTheIconsAlone) {
    ConnectionSettings s;
    EXPECT_EQ(Walk({"-h", "x"}, s).kind, IconInstruction::Kind::None);
}

TEST(OptionWalk, LastIconInstructionWins) {
    ConnectionSettings s;
    IconInstruction i = Walk({"-I", "0000", "-i"}, s);
    EXPECT_EQ(i.kind, IconInstruction::Kind::Clear);
    i = Walk({"-i", "-I", "00AA"}, s);
    EXPECT_EQ(i.kind, IconInstruction::Kind::Decode);
    EXPECT_STREQ(i.text, "00AA");
}

TEST(OptionWalk, IconOptionAsLastElementDecodesNoText) {
    ConnectionSettings s;
    const IconInstruction i = Walk({"-I"}, s);
    EXPECT_EQ(i.kind, IconInstruction::Kind::Decode);
    EXPECT_EQ(i.text, nullptr);
}

TEST(OptionWalk, ProgramPathIsNeverLookedAt) {
    ConnectionSettings s;
    const char* argv[] = {"-l"};
    LayOptions(argv, 1, s);
    EXPECT_EQ(s.encrypt, 0);
    EXPECT_EQ(s.noOptionM, 1);
}

TEST(OptionWalk, NoVectorStillSetsNoOptionM) {
    ConnectionSettings s;
    LayOptions(nullptr, 5, s);
    EXPECT_EQ(s.noOptionM, 1);
}

TEST(OptionWalk, DashAloneAndEmptyElementsAreSkipped) {
    ConnectionSettings s;
    Walk({"-", "", "-h", "x"}, s);
    EXPECT_EQ(s.host, "x");
}

TEST(OptionWalk, NullElementCountsAsEmpty) {
    ConnectionSettings s;
    Walk({"-h", nullptr, "-u", "bob"}, s);
    EXPECT_EQ(s.host, "");
    EXPECT_EQ(s.login, "bob");
}

TEST(OptionWalk, DoubleDashAloneSwitchesDisguiseOff) {
    ConnectionSettings s;
    Walk({"--disguise-http", "--"}, s);
    EXPECT_EQ(s.disguiseHttp, 0);
}

TEST(OptionWalk, CommandLineKeepsBothBlanksAroundAnEmptyElement) {
    ConnectionSettings s;
    Walk({"-C", "a", "", "b"}, s);
    EXPECT_EQ(s.commandLine, "a  b");
}

TEST(OptionWalk, CommandLineIsAppendedToWhatTheRecordHolds) {
    ConnectionSettings s;
    s.commandLine = "kept";
    Walk({"-C", "x", "y"}, s);
    EXPECT_EQ(s.commandLine, "keptx y");
}

TEST(OptionWalk, CommandLineWithNothingAfterItAppendsNothing) {
    ConnectionSettings s;
    s.commandLine = "kept";
    Walk({"-C"}, s);
    EXPECT_EQ(s.commandLine, "kept");
}

TEST(OptionWalk, BrokerWithEmptyArgumentLeavesTheLetterAlone) {
    ConnectionSettings s;
    Walk({"-F", ""}, s);
    EXPECT_EQ(s.route, 2);
    EXPECT_EQ(s.brokerUpperF, 0);
    EXPECT_EQ(s.brokerHost, "");
}

TEST(OptionWalk, BrokerSplitsHostAndPortButNoUser) {
    ConnectionSettings s;
    s.login = "kept";
    Walk({"-f", "u@broker:77"}, s);
    EXPECT_EQ(s.brokerHost, "broker");
    EXPECT_EQ(s.brokerPort, 77);
    EXPECT_EQ(s.login, "kept");
    EXPECT_EQ(s.proxyUser, "");
}
