// Which files the icon handler leaves unopened: those whose data a cloud provider or offline
// files keep off the disk, by their attribute bits alone.
#include <gtest/gtest.h>

#include <cstdint>

#include "connection/cloud_placeholder.h"

using namespace cloud_placeholder;

namespace {

// Attribute bits a file on the disk carries (the file system's numbers).
constexpr std::uint32_t kReadOnly = 0x1;
constexpr std::uint32_t kHidden = 0x2;
constexpr std::uint32_t kSystem = 0x4;
constexpr std::uint32_t kArchive = 0x20;
constexpr std::uint32_t kNormal = 0x80;
constexpr std::uint32_t kSparse = 0x200;
constexpr std::uint32_t kReparsePoint = 0x400;
constexpr std::uint32_t kCompressed = 0x800;
constexpr std::uint32_t kNotContentIndexed = 0x2000;
constexpr std::uint32_t kEncrypted = 0x4000;
constexpr std::uint32_t kPinned = 0x80000;
constexpr std::uint32_t kUnpinned = 0x100000;

}  // namespace

TEST(CloudPlaceholder, OfflineFileIsLeftUnopened) { EXPECT_TRUE(LeaveUnopenedForIcon(kOffline)); }

TEST(CloudPlaceholder, RecallOnOpenFileIsLeftUnopened) { EXPECT_TRUE(LeaveUnopenedForIcon(kRecallOnOpen)); }

TEST(CloudPlaceholder, RecallOnDataAccessFileIsLeftUnopened) { EXPECT_TRUE(LeaveUnopenedForIcon(kRecallOnDataAccess)); }

TEST(CloudPlaceholder, PlaceholderBitAmongOrdinaryBitsStillLeavesTheFileUnopened) {
    // A provider's placeholder is a sparse reparse point in an archived file as well.
    const std::uint32_t ordinary = kArchive | kReadOnly | kSparse | kReparsePoint | kUnpinned;
    EXPECT_TRUE(LeaveUnopenedForIcon(ordinary | kOffline));
    EXPECT_TRUE(LeaveUnopenedForIcon(ordinary | kRecallOnOpen));
    EXPECT_TRUE(LeaveUnopenedForIcon(ordinary | kRecallOnDataAccess));
}

TEST(CloudPlaceholder, FileOnTheDiskIsOpened) {
    for (const std::uint32_t attributes :
         {0u, kNormal, kArchive, kReadOnly | kArchive, kHidden | kSystem, kSparse, kReparsePoint, kCompressed,
          kNotContentIndexed, kEncrypted, kPinned, kUnpinned, kArchive | kReparsePoint | kSparse | kPinned}) {
        EXPECT_FALSE(LeaveUnopenedForIcon(attributes)) << std::hex << attributes;
    }
}

TEST(CloudPlaceholder, FailedAttributeQueryOpensTheFileAsBefore) {
    // The failure answer has every bit set, the placeholder bits among them.
    EXPECT_FALSE(LeaveUnopenedForIcon(kQueryFailed));
}
