#include "shellext/client_version.h"

#include <gtest/gtest.h>

#include <string>

TEST(ClientVersionNumber, FirstTwoFieldsAreJoinedNotScaled) {
    EXPECT_EQ(ClientVersionFromProductVersion("6.40.0.12"), 640);
    EXPECT_EQ(ClientVersionFromProductVersion("6.20"), 620);
    EXPECT_EQ(ClientVersionFromProductVersion("6.2"), 62);
    EXPECT_EQ(ClientVersionFromProductVersion("10.1.3"), 101);
    EXPECT_EQ(ClientVersionFromProductVersion("6.19.5"), 619);
}

TEST(ClientVersionNumber, SingleFieldIsTakenAlone) { EXPECT_EQ(ClientVersionFromProductVersion("7"), 7); }

TEST(ClientVersionNumber, EmptyOrNonNumericGivesZero) {
    EXPECT_EQ(ClientVersionFromProductVersion(""), 0);
    EXPECT_EQ(ClientVersionFromProductVersion("..."), 0);
    EXPECT_EQ(ClientVersionFromProductVersion("beta"), 0);
}

TEST(ClientVersionNumber, RunsOfDotsAreSkipped) { EXPECT_EQ(ClientVersionFromProductVersion("..6...40..1"), 640); }

TEST(ClientVersionNumber, LeadingDigitsOfTheJoinedTextCount) {
    EXPECT_EQ(ClientVersionFromProductVersion("6.4a.1"), 64);
    EXPECT_EQ(ClientVersionFromProductVersion(" 6.40"), 640);
}

TEST(ClientVersionNumber, UnknownVersionIsNewerThanEveryGate) {
    EXPECT_EQ(kClientVersionUnknown, 726);
    EXPECT_GT(kClientVersionUnknown, 690);
}

TEST(ClientVersionNumber, CandidatesAreTriedInThisOrder) {
    ASSERT_EQ(kClientDllNames.size(), 3u);
    EXPECT_EQ(std::string(kClientDllNames[0]), "vclient.dll");
    EXPECT_EQ(std::string(kClientDllNames[1]), "vlientsh.dll");
    EXPECT_EQ(std::string(kClientDllNames[2]), "vclientu.dll");
}
