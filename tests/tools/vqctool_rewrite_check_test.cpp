// check's findings over plain records: what differs after the round trip and why, and what
// the pages would not offer the client version.
#include <gtest/gtest.h>

#include "tools/vqctool/rewrite_check.h"

using namespace vqctool;

namespace {

ConnectionSettings ForVersion(std::int32_t version) {
    ConnectionSettings record;
    record.host = "server";
    record.clientVersion = version;
    return record;
}

}  // namespace

TEST(VqctoolRewriteCheck, TheSameRecordHasNoFindings) {
    const ConnectionSettings record = ForVersion(726);
    EXPECT_TRUE(CompareRewrite(record, record).empty());
    EXPECT_TRUE(UnofferedSettings(record).empty());
}

TEST(VqctoolRewriteCheck, OptionTIsNeverReadBack) {
    ConnectionSettings before = ForVersion(726);
    before.optionT = 1;
    const ConnectionSettings after = ForVersion(726);
    const auto findings = CompareRewrite(before, after);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(FindingText(findings[0]), "optionT: true -> false (-T is written but never read back)");
}

TEST(VqctoolRewriteCheck, EncryptionLostFor640AndBefore620) {
    for (std::int32_t version : {619, 640}) {
        ConnectionSettings before = ForVersion(version);
        before.encrypt = 1;
        const auto findings = CompareRewrite(before, ForVersion(version));
        ASSERT_EQ(findings.size(), 1u);
        EXPECT_EQ(findings[0].reason, "client " + std::to_string(version) + " cannot take -l");
    }
}

TEST(VqctoolRewriteCheck, RoutesLostBefore620) {
    ConnectionSettings before = ForVersion(619);
    before.proxyHost = "proxy";
    before.route = kRouteProxy;
    const auto findings = CompareRewrite(before, ForVersion(619));
    ASSERT_EQ(findings.size(), 2u);
    EXPECT_EQ(findings[0].field, "proxyHost");
    EXPECT_EQ(findings[1].field, "route");
    EXPECT_EQ(findings[1].reason, "client 619 takes no proxy or broker (-c, -f)");
}

TEST(VqctoolRewriteCheck, QuotesInTheCommandLine) {
    ConnectionSettings before = ForVersion(726);
    before.commandLine = "run \"a b\"";
    ConnectionSettings after = ForVersion(726);
    after.commandLine = "run a b";
    const auto findings = CompareRewrite(before, after);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].reason, "quotes in -C are not read back as written");
}

TEST(VqctoolRewriteCheck, TheBrokerIsNotOfferedFrom690) {
    ConnectionSettings record = ForVersion(690);
    record.brokerHost = "broker";
    record.route = kRouteBroker;
    const auto findings = UnofferedSettings(record);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(FindingText(findings[0]),
              "routeName: Connect via a connection broker (client 690 is not offered this route)");
    record.clientVersion = 689;
    EXPECT_TRUE(UnofferedSettings(record).empty());
}

TEST(VqctoolRewriteCheck, LoginTypesByVersion) {
    ConnectionSettings nt = ForVersion(690);
    nt.optionN = 1;
    ASSERT_EQ(UnofferedSettings(nt).size(), 1u);
    EXPECT_EQ(UnofferedSettings(nt)[0].before, "NT domain authentication");
    nt.clientVersion = 689;
    EXPECT_TRUE(UnofferedSettings(nt).empty());
    ConnectionSettings domain = ForVersion(689);
    domain.optionNM = 1;
    EXPECT_EQ(UnofferedSettings(domain).size(), 1u);
}

TEST(VqctoolRewriteCheck, DiscoveryIsNotOfferedBefore665) {
    ConnectionSettings record = ForVersion(664);
    record.optionK = 1;
    const auto findings = UnofferedSettings(record);
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(findings[0].field, "connection-type");
    record.clientVersion = 665;
    EXPECT_TRUE(UnofferedSettings(record).empty());
}

TEST(VqctoolRewriteCheck, AnOptionTheReaderNeverReadsIsDroppedByARewrite) {
    const std::vector<std::string> file = {"prog", "-h", "server", "-T", "-X", "-u", "-T", "-C", "-Y"};
    const std::vector<std::string> rewritten = {"prog", "-h", "server", "-u", "-T", "-C", "-Y"};
    const auto findings = CompareArguments(file, rewritten);
    // "-T" after -u is its value; "-Y" after -C belongs to the command line.
    ASSERT_EQ(findings.size(), 2u);
    EXPECT_EQ(FindingText(findings[0]), "option -T: -T (-T is never read back, so a rewrite drops it)");
    EXPECT_EQ(FindingText(findings[1]), "option -X: -X (-X is never read, so a rewrite drops it)");
}

TEST(VqctoolRewriteCheck, ReadOptionsAndTheirValuesAreNoFindings) {
    const std::vector<std::string> file = {"prog", "-h", "-T", "-N", "-M", "-l", "-V", "5000", "-d", "-K"};
    EXPECT_TRUE(CompareArguments(file, {"prog"}).empty());
}

TEST(VqctoolRewriteCheck, CommandLineArgumentsThatDoNotComeBackAreShownWithTheirQuotes) {
    const auto findings = CompareArguments({"prog", "-C", "run", "a b"}, {"prog", "-C", "run", "a", "b"});
    ASSERT_EQ(findings.size(), 1u);
    EXPECT_EQ(FindingText(findings[0]), "commandLine: run \"a b\" -> run a b (quotes in -C are lost)");
    EXPECT_TRUE(CompareArguments({"prog", "-C", "run", "me"}, {"prog", "-C", "run", "me"}).empty());
}
