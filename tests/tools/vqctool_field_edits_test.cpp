// FIELD=VALUE edits: parsed by the record's field names and the pages' type names, laid
// over a record with the pages' rules for connection and login types.
#include <gtest/gtest.h>

#include "pages/connection_page_rules.h"
#include "tools/vqctool/field_edits.h"
#include "tools/vqctool/record_fields.h"
#include "tools/vqctool/type_names.h"

using namespace vqctool;
namespace cp = connection_page;

namespace {

ConnectionSettings Edited(ConnectionSettings record, std::initializer_list<const char*> arguments) {
    std::vector<FieldEdit> edits;
    for (const char* argument : arguments) {
        std::string error;
        auto edit = ParseEdit(argument, error);
        EXPECT_TRUE(edit) << argument << ": " << error;
        if (edit) edits.push_back(*edit);
    }
    ApplyEdits(record, edits);
    return record;
}

}  // namespace

TEST(VqctoolFields, TheTableHoldsEveryFieldOfTheRecordInDeclaredOrder) {
    ASSERT_EQ(kRecordFieldCount, 33u);
    EXPECT_STREQ(kRecordFields[0].name, "answerBack");
    EXPECT_STREQ(kRecordFields[12].name, "servicePort");
    EXPECT_STREQ(kRecordFields[32].name, "route");
    ConnectionSettings record;
    record.host = "h";
    EXPECT_EQ(FieldValueText(*FindField("host"), record), "h");
    EXPECT_EQ(FieldValueText(*FindField("proxyPort"), record), "8080");
    EXPECT_EQ(FieldValueText(*FindField("encrypt"), record), "false");
    EXPECT_EQ(FindField("Host"), nullptr);
}

TEST(VqctoolFields, NumbersAreDecimalInTheRangeOfTheField) {
    EXPECT_EQ(ParseNumber("790"), 790);
    EXPECT_EQ(ParseNumber("-1"), -1);
    EXPECT_EQ(ParseNumber("+5"), 5);
    EXPECT_EQ(ParseNumber("2147483647"), 2147483647);
    EXPECT_FALSE(ParseNumber("2147483648"));
    EXPECT_FALSE(ParseNumber(""));
    EXPECT_FALSE(ParseNumber(" 5"));
    EXPECT_FALSE(ParseNumber("5x"));
    EXPECT_FALSE(ParseNumber("++5"));
    EXPECT_EQ(ParseFlag("TRUE"), true);
    EXPECT_EQ(ParseFlag("0"), false);
    EXPECT_FALSE(ParseFlag("2"));
}

TEST(VqctoolFieldEdits, TextsAreTrimmedAsThePagesTrimEdits) {
    const ConnectionSettings record = Edited(ConnectionSettings(), {"host=  server  ", "login=bob"});
    EXPECT_EQ(record.host, "server");
    EXPECT_EQ(record.login, "bob");
}

TEST(VqctoolFieldEdits, RouteTakesKeywordsPageTextsAndNumbers) {
    EXPECT_EQ(Edited(ConnectionSettings(), {"route=proxy"}).route, kRouteProxy);
    EXPECT_EQ(Edited(ConnectionSettings(), {"route=Connect via a connection broker"}).route, kRouteBroker);
    EXPECT_EQ(Edited(ConnectionSettings(), {"route=0"}).route, kRouteDirect);
    std::string error;
    EXPECT_FALSE(ParseEdit("route=3", error));
    EXPECT_NE(error.find("direct (Connect directly)"), std::string::npos) << error;
}

TEST(VqctoolFieldEdits, EmptyPortsStoreWhatAnEmptyEditStores) {
    ConnectionSettings record;
    record.servicePort = 5000;
    record.proxyPort = 3128;
    record.brokerPort = 1;
    const ConnectionSettings edited = Edited(record, {"servicePort=", "proxyPort=", "brokerPort="});
    EXPECT_EQ(edited.servicePort, kServicePortNotGiven);
    EXPECT_EQ(edited.proxyPort, kDefaultProxyPort);
    EXPECT_EQ(edited.brokerPort, kDefaultBrokerPort);
}

TEST(VqctoolFieldEdits, ALoginTypeLeavesExactlyOneLoginFlag) {
    ConnectionSettings record;
    record.optionR = 1;
    const ConnectionSettings edited = Edited(record, {"login-type=NT domain authentication"});
    EXPECT_EQ(cp::LoginTypeOf(edited), cp::LoginType::NtDomain);
    EXPECT_EQ(edited.optionR + edited.optionT + edited.optionN + edited.optionL + edited.optionNM, 1);
    EXPECT_EQ(cp::LoginTypeOf(Edited(record, {"login-type=windows-domain"})), cp::LoginType::WindowsDomainCredentials);
}

TEST(VqctoolFieldEdits, ALoginFlagChoosesItsTypeAndClearsTheOthers) {
    ConnectionSettings record;
    record.optionR = 1;
    const ConnectionSettings edited = Edited(record, {"optionL=true"});
    EXPECT_EQ(edited.optionL, 1);
    EXPECT_EQ(edited.optionR, 0);
    const ConnectionSettings cleared = Edited(edited, {"optionL=false"});
    EXPECT_EQ(cp::LoginTypeOf(cleared), cp::LoginType::AlwaysRequirePassword);
    // Clearing a flag that is not the record's type changes nothing.
    EXPECT_EQ(Edited(edited, {"optionN=false"}).optionL, 1);
}

TEST(VqctoolFieldEdits, AConnectionTypeSetsLocalAndDiscoveryAsThePageDoes) {
    const ConnectionSettings local = Edited(ConnectionSettings(), {"connection-type=Connect locally"});
    EXPECT_EQ(local.localConnect, 1);
    EXPECT_EQ(local.optionK, 0);
    const ConnectionSettings discovery = Edited(local, {"connection-type=discovery"});
    EXPECT_EQ(discovery.localConnect, 0);
    EXPECT_EQ(discovery.optionK, 1);
    EXPECT_EQ(cp::ConnectionTypeOf(Edited(discovery, {"optionK=false"})), cp::ConnectionType::Remote);
    EXPECT_EQ(cp::ConnectionTypeOf(Edited(discovery, {"localConnect=true"})), cp::ConnectionType::Local);
}

TEST(VqctoolFieldEdits, ChangesAreDescribedFieldByField) {
    ConnectionSettings before;
    before.host = "old";
    const ConnectionSettings after = Edited(before, {"host=new", "encrypt=yes"});
    EXPECT_EQ(DescribeChanges(before, after), (std::vector<std::string>{"host: old -> new", "encrypt: false -> true"}));
}

TEST(VqctoolTypeNames, NamesAreThePagesEnglishTexts) {
    EXPECT_EQ(RouteText(kRouteProxy), "Connect via a proxy server");
    EXPECT_EQ(ConnectionTypeText(cp::ConnectionType::Remote), "Connect to remote server");
    EXPECT_EQ(LoginTypeText(cp::LoginType::CachePassword), "Cache password");
    EXPECT_EQ(ConnectionTypeByName("CONNECT LOCALLY"), cp::ConnectionType::Local);
    EXPECT_FALSE(LoginTypeByName("Cache"));
}
