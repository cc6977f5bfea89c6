// The file mapping helper: every access mode maps the whole file with its own sharing,
// and the file is free again on every way out.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "connection/mapped_file.h"
#include "test_files.h"

namespace {

bool OpensForReadingAlongside(const char* path) {
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
}

std::string ViewText(const MappedFile& file) { return std::string(static_cast<const char*>(file.View()), file.Size()); }

}  // namespace

TEST(MappedFile, AccessRulesTable) {
    const MapAccessRule& readOnly = RuleFor(MapAccess::ReadOnly);
    EXPECT_EQ(readOnly.fileAccess, static_cast<DWORD>(GENERIC_READ));
    EXPECT_EQ(readOnly.shareMode, static_cast<DWORD>(FILE_SHARE_READ));
    EXPECT_EQ(readOnly.pageProtection, static_cast<DWORD>(PAGE_READONLY));
    const MapAccessRule& readWrite = RuleFor(MapAccess::ReadWrite);
    EXPECT_EQ(readWrite.fileAccess, static_cast<DWORD>(GENERIC_READ | GENERIC_WRITE));
    EXPECT_EQ(readWrite.shareMode, 0u);
    EXPECT_EQ(readWrite.pageProtection, static_cast<DWORD>(PAGE_READWRITE));
    const MapAccessRule& writeCopy = RuleFor(MapAccess::WriteCopy);
    EXPECT_EQ(writeCopy.fileAccess, static_cast<DWORD>(GENERIC_READ | GENERIC_WRITE));
    EXPECT_EQ(writeCopy.shareMode, 0u);
    EXPECT_EQ(writeCopy.pageProtection, static_cast<DWORD>(PAGE_WRITECOPY));
    const MapAccessRule& executeRead = RuleFor(MapAccess::ExecuteRead);
    EXPECT_EQ(executeRead.fileAccess, static_cast<DWORD>(GENERIC_READ | GENERIC_EXECUTE));
    EXPECT_EQ(executeRead.shareMode, static_cast<DWORD>(FILE_SHARE_READ));
    EXPECT_EQ(executeRead.pageProtection, static_cast<DWORD>(PAGE_EXECUTE_READ));
}

TEST(MappedFile, ReadOnlyMapsTheWholeFileAndSharesReading) {
    TempFile temp("map-ro", "-h server -u bob");
    MappedFile file;
    ASSERT_TRUE(file.Open(temp.Path(), MapAccess::ReadOnly));
    EXPECT_EQ(file.Size(), 16u);
    EXPECT_EQ(ViewText(file), "-h server -u bob");
    EXPECT_TRUE(OpensForReadingAlongside(temp.Path()));
}

TEST(MappedFile, ExecuteReadMapsTheWholeFileAndSharesReading) {
    TempFile temp("map-xr", "abc");
    MappedFile file;
    ASSERT_TRUE(file.Open(temp.Path(), MapAccess::ExecuteRead));
    EXPECT_EQ(ViewText(file), "abc");
    EXPECT_TRUE(OpensForReadingAlongside(temp.Path()));
}

TEST(MappedFile, ReadWriteMapsAndWritesThroughWithoutSharing) {
    TempFile temp("map-rw", "abc");
    {
        MappedFile file;
        ASSERT_TRUE(file.Open(temp.Path(), MapAccess::ReadWrite));
        EXPECT_EQ(ViewText(file), "abc");
        EXPECT_FALSE(OpensForReadingAlongside(temp.Path()));
        static_cast<char*>(const_cast<void*>(file.View()))[0] = 'X';
    }
    EXPECT_EQ(temp.Content(), "Xbc");
}

TEST(MappedFile, WriteCopyKeepsWritesInMemoryWithoutSharing) {
    TempFile temp("map-wc", "abc");
    {
        MappedFile file;
        ASSERT_TRUE(file.Open(temp.Path(), MapAccess::WriteCopy));
        EXPECT_EQ(ViewText(file), "abc");
        EXPECT_FALSE(OpensForReadingAlongside(temp.Path()));
        char* view = static_cast<char*>(const_cast<void*>(file.View()));
        view[0] = 'X';
        EXPECT_EQ(view[0], 'X');
    }
    EXPECT_EQ(temp.Content(), "abc");
}

TEST(MappedFile, CloseFreesTheFile) {
    TempFile temp("map-close", "abc");
    MappedFile file;
    ASSERT_TRUE(file.Open(temp.Path()));
    EXPECT_FALSE(temp.OpensExclusively());
    file.Close();
    EXPECT_TRUE(temp.OpensExclusively());
    EXPECT_EQ(file.View(), nullptr);
    EXPECT_EQ(file.Size(), 0u);
}

TEST(MappedFile, DestructionFreesTheFile) {
    TempFile temp("map-dtor", "abc");
    {
        MappedFile file;
        ASSERT_TRUE(file.Open(temp.Path()));
    }
    EXPECT_TRUE(temp.OpensExclusively());
}

TEST(MappedFile, EmptyFileFailsAtTheMappingAndIsFreed) {
    TempFile temp("map-empty", "");
    MappedFile file;
    EXPECT_FALSE(file.Open(temp.Path()));
    EXPECT_EQ(file.Size(), 0u);
    EXPECT_EQ(file.View(), nullptr);
    EXPECT_NE(file.Error(), 0u);
    file.Close();
    EXPECT_TRUE(temp.OpensExclusively());
}

TEST(MappedFile, MissingFileFailsWithFileNotFound) {
    TempFile temp("map-missing");
    MappedFile file;
    EXPECT_FALSE(file.Open(temp.Path()));
    EXPECT_EQ(file.Error(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(file.Size(), 0u);
}

TEST(MappedFile, ReopeningClosesTheFirstFile) {
    TempFile first("map-first", "one");
    TempFile second("map-second", "two");
    MappedFile file;
    ASSERT_TRUE(file.Open(first.Path()));
    ASSERT_TRUE(file.Open(second.Path()));
    EXPECT_EQ(ViewText(file), "two");
    EXPECT_TRUE(first.OpensExclusively());
}
