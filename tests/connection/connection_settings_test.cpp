#include "connection/connection_settings.h"

#include <gtest/gtest.h>

TEST(ConnectionSettings, FreshRecordHasTheDocumentedDefaults) {
    const ConnectionSettings record("C:\\conn\\a.vqc");
    EXPECT_EQ(record.servicePort, -1);
    EXPECT_EQ(record.proxyPort, 8080);
    EXPECT_EQ(record.brokerPort, 14600);
    EXPECT_EQ(record.clientVersion, 726);
    EXPECT_EQ(record.route, 0);
    EXPECT_EQ(record.lastError, 0u);
}

TEST(ConnectionSettings, FreshRecordHasEveryFlagClear) {
    const ConnectionSettings record("a.vqc");
    // clang-format off
    const std::uint8_t flags[] = {
        record.modified,  record.encrypt,      record.disguiseHttp, record.optionT,
        record.localConnect, record.optionR,   record.optionN,      record.optionNM,
        record.optionL,   record.optionK,      record.brokerUpperF, record.option_s,
        record.noOptionM, record.inDomain,     record.inDomainKnown,
    };
    // clang-format on
    for (std::uint8_t flag : flags) EXPECT_EQ(flag, 0);
}

TEST(ConnectionSettings, FreshRecordHasEveryTextEmptyButThePath) {
    const ConnectionSettings record("C:\\conn\\a.vqc");
    // clang-format off
    const std::string* texts[] = {
        &record.answerBack,  &record.login,          &record.host,      &record.commandLine,
        &record.localTarget, &record.serviceName,    &record.startDirectory,
        &record.proxyHost,   &record.proxyUser,      &record.brokerHost, &record.clientPath,
        &record.spareText,
    };
    // clang-format on
    for (const std::string* text : texts) EXPECT_EQ(*text, "");
    EXPECT_EQ(record.filePath, "C:\\conn\\a.vqc");
}

TEST(ConnectionSettings, NullPathLeavesFilePathEmpty) {
    const ConnectionSettings record(nullptr);
    EXPECT_EQ(record.filePath, "");
    EXPECT_EQ(record.servicePort, -1);
}

TEST(ConnectionSettings, PathIsCopiedNotReferenced) {
    char path[] = "C:\\a.vqc";
    const ConnectionSettings record(path);
    path[3] = 'b';
    EXPECT_EQ(record.filePath, "C:\\a.vqc");
}
