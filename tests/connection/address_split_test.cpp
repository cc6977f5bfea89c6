// SplitAddress: user, host and port out of [user@]host[:port], odd cases included.
#include <gtest/gtest.h>

#include <string>

#include "connection/address_split.h"

namespace {

struct Split {
    bool result = false;
    std::string user = "<unset>";
    std::string host = "<unset>";
    std::int32_t port = static_cast<std::int32_t>(0xdeadbeef);
};

Split Of(const char* text) {
    Split s;
    s.result = SplitAddress(text, &s.user, &s.host, &s.port);
    return s;
}

constexpr std::int32_t kUnsetPort = static_cast<std::int32_t>(0xdeadbeef);

}  // namespace

TEST(SplitAddress, UserHostAndPort) {
    const Split s = Of("bob@server:4790");
    EXPECT_TRUE(s.result);
    EXPECT_EQ(s.user, "bob");
    EXPECT_EQ(s.host, "server");
    EXPECT_EQ(s.port, 4790);
}

TEST(SplitAddress, HostAndPortLeaveUserUnset) {
    const Split s = Of("server:99");
    EXPECT_EQ(s.user, "<unset>");
    EXPECT_EQ(s.host, "server");
    EXPECT_EQ(s.port, 99);
}

TEST(SplitAddress, HostAloneLeavesUserAndPortUnset) {
    const Split s = Of("server");
    EXPECT_EQ(s.user, "<unset>");
    EXPECT_EQ(s.host, "server");
    EXPECT_EQ(s.port, kUnsetPort);
}

TEST(SplitAddress, NullTextChangesNothingAndFails) {
    const Split s = Of(nullptr);
    EXPECT_FALSE(s.result);
    EXPECT_EQ(s.user, "<unset>");
    EXPECT_EQ(s.host, "<unset>");
    EXPECT_EQ(s.port, kUnsetPort);
}

TEST(SplitAddress, ColonBeforeAtGivesEmptyHost) {
    const Split s = Of("a:b@c");
    EXPECT_EQ(s.user, "a:b");
    EXPECT_EQ(s.host, "");
    EXPECT_EQ(s.port, 0);  // "b@c" by atoi's rules
}

TEST(SplitAddress, ColonRightAfterAtGivesEmptyHost) {
    const Split s = Of("bob@:99");
    EXPECT_EQ(s.user, "bob");
    EXPECT_EQ(s.host, "");
    EXPECT_EQ(s.port, 99);
}

TEST(SplitAddress, ColonAtPositionZeroLetsHostRunToTheEnd) {
    const Split s = Of(":99");
    EXPECT_EQ(s.host, ":99");
    EXPECT_EQ(s.port, 99);
}

TEST(SplitAddress, EmptyUserIsNotAssigned) {
    const Split s = Of("@server");
    EXPECT_EQ(s.user, "<unset>");
    EXPECT_EQ(s.host, "server");
}

TEST(SplitAddress, EmptyPortTextIsNotAssigned) {
    const Split s = Of("server:");
    EXPECT_EQ(s.host, "server");
    EXPECT_EQ(s.port, kUnsetPort);
}

TEST(SplitAddress, EmptyTextAssignsAnEmptyHostOnly) {
    const Split s = Of("");
    EXPECT_TRUE(s.result);
    EXPECT_EQ(s.user, "<unset>");
    EXPECT_EQ(s.host, "");
    EXPECT_EQ(s.port, kUnsetPort);
}

TEST(SplitAddress, PortFollowsAtoi) {
    EXPECT_EQ(Of("h: -12x").port, -12);
    EXPECT_EQ(Of("h:abc").port, 0);
    EXPECT_EQ(Of("h:99999999999").port, 2147483647);
}

TEST(SplitAddress, NothingIsTrimmed) {
    const Split s = Of(" bob @ server :1");
    EXPECT_EQ(s.user, " bob ");
    EXPECT_EQ(s.host, " server ");
    EXPECT_EQ(s.port, 1);
}

TEST(SplitAddress, FirstAtAndFirstColonCount) {
    const Split s = Of("a@b@c:1:2");
    EXPECT_EQ(s.user, "a");
    EXPECT_EQ(s.host, "b@c");
    EXPECT_EQ(s.port, 1);
}

TEST(SplitAddress, EveryOutputIsOptional) {
    EXPECT_TRUE(SplitAddress("bob@server:1", nullptr, nullptr, nullptr));
    std::string host;
    EXPECT_TRUE(SplitAddress("bob@server:1", nullptr, &host, nullptr));
    EXPECT_EQ(host, "server");
}
