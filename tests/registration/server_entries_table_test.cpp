#include "registration/server_entries.h"

#include <gtest/gtest.h>

TEST(ServerEntriesTable, AppIdRowsAreRowsOneToThree) {
    const auto rows = AppIdRows("vqcprop64.dll");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0].number, 1);
    EXPECT_EQ(rows[0].below, 0);
    EXPECT_TRUE(rows[0].createsKey);
    EXPECT_EQ(rows[0].keyName, "AppID");
    EXPECT_FALSE(rows[0].hasValue);

    EXPECT_EQ(rows[1].below, 1);
    EXPECT_EQ(rows[1].keyName, "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}");
    EXPECT_EQ(rows[1].valueName, nullptr);
    EXPECT_EQ(rows[1].data, "vqcprop");
    EXPECT_EQ(rows[1].ByteCount(), 8u);

    // Below "AppID" itself, not below the key of row 2.
    EXPECT_EQ(rows[2].below, 1);
    EXPECT_EQ(rows[2].keyName, "vqcprop64.dll");
    EXPECT_STREQ(rows[2].valueName, "AppID");
    EXPECT_EQ(rows[2].data, "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}");
    EXPECT_EQ(rows[2].ByteCount(), 39u);
}

TEST(ServerEntriesTable, ClassRowsAreRowsFourToEight) {
    const auto rows = ClassRows("C:\\x\\vqcprop64.dll");
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[0].number, 4);
    EXPECT_EQ(rows[0].keyName, "CLSID");
    EXPECT_FALSE(rows[0].hasValue);

    EXPECT_EQ(rows[1].below, 4);
    EXPECT_EQ(rows[1].keyName, "{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}");
    EXPECT_EQ(rows[1].data, "VQCProp Class");
    EXPECT_EQ(rows[1].ByteCount(), 14u);

    EXPECT_EQ(rows[2].below, 5);
    EXPECT_EQ(rows[2].keyName, "InProcServer32");
    EXPECT_EQ(rows[2].valueName, nullptr);
    EXPECT_EQ(rows[2].data, "C:\\x\\vqcprop64.dll");
    EXPECT_EQ(rows[2].ByteCount(), 19u);

    EXPECT_EQ(rows[3].below, 6);
    EXPECT_FALSE(rows[3].createsKey);
    EXPECT_STREQ(rows[3].valueName, "ThreadingModel");
    EXPECT_EQ(rows[3].data, "Apartment");
    EXPECT_EQ(rows[3].ByteCount(), 10u);

    // The application id goes on "InProcServer32", not on the class key.
    EXPECT_EQ(rows[4].below, 6);
    EXPECT_FALSE(rows[4].createsKey);
    EXPECT_STREQ(rows[4].valueName, "AppID");
    EXPECT_EQ(rows[4].data, "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}");
    EXPECT_EQ(rows[4].ByteCount(), 39u);
}

TEST(ServerEntriesTable, RemovalDeletesFiveKeysInOrder) {
    ASSERT_EQ(kRemovalRows.size(), 5u);
    EXPECT_STREQ(kRemovalRows[0].below, "AppID");
    EXPECT_STREQ(kRemovalRows[0].keyName, "{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}");
    EXPECT_STREQ(kRemovalRows[1].below, "AppID");
    EXPECT_EQ(kRemovalRows[1].keyName, nullptr);  // the DLL's file name
    EXPECT_STREQ(kRemovalRows[2].below, "CLSID");
    EXPECT_STREQ(kRemovalRows[2].keyName, "{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}");
    EXPECT_EQ(kRemovalRows[3].below, nullptr);
    EXPECT_STREQ(kRemovalRows[3].keyName, "VCLIENT");
    EXPECT_EQ(kRemovalRows[4].below, nullptr);
    EXPECT_STREQ(kRemovalRows[4].keyName, ".vqc");
}

TEST(ServerEntriesTable, Win32CodesBecomeFacilityWin32Results) {
    EXPECT_EQ(HResultFromWin32(1021), static_cast<std::int32_t>(0x800703FD));
    EXPECT_EQ(HResultFromWin32(87), static_cast<std::int32_t>(0x80070057));
    EXPECT_EQ(HResultFromWin32(0x12345), static_cast<std::int32_t>(0x80072345));  // low 16 bits only
}

TEST(ServerEntriesTable, ZeroAndNegativeCodesPassUnchanged) {
    EXPECT_EQ(HResultFromWin32(0), 0);
    EXPECT_EQ(HResultFromWin32(static_cast<std::int32_t>(0x80004005)), static_cast<std::int32_t>(0x80004005));
}
