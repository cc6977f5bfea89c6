// The built DLL's resources: one icon group, id 10600, with a 16x16 and a 32x32 image
// at 8 bits per pixel, and a version block.
#include <windows.h>

#include <gtest/gtest.h>
#include <shellapi.h>

#include <algorithm>
#include <vector>

#include "tests/shellext/shellext_test_support.h"

using namespace test_support;

namespace {

#pragma pack(push, 2)
struct GroupIconEntry {
    BYTE width;
    BYTE height;
    BYTE colourCount;
    BYTE reserved;
    WORD planes;
    WORD bitsPerPixel;
    DWORD bytes;
    WORD id;
};
struct GroupIconHeader {
    WORD reserved;
    WORD type;
    WORD count;
};
#pragma pack(pop)

BOOL CALLBACK CollectName(HMODULE, LPCSTR, LPSTR name, LONG_PTR names) {
    reinterpret_cast<std::vector<ULONG_PTR>*>(names)->push_back(reinterpret_cast<ULONG_PTR>(name));
    return TRUE;
}

class DllAsData : public ::testing::Test {
protected:
    void SetUp() override {
        module_.Reset(LoadLibraryExA(BuiltDllPath().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
        ASSERT_TRUE(module_) << BuiltDllPath();
    }
    UniqueModule module_;
};

}  // namespace

TEST_F(DllAsData, CarriesExactlyOneIconGroupWithId10600) {
    std::vector<ULONG_PTR> names;
    EnumResourceNamesA(module_.Get(), RT_GROUP_ICON, CollectName, reinterpret_cast<LONG_PTR>(&names));
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(names[0], 10600u);
}

TEST_F(DllAsData, IconGroupHoldsA16And32PixelImageAt8Bits) {
    HRSRC found = FindResourceA(module_.Get(), MAKEINTRESOURCEA(10600), RT_GROUP_ICON);
    ASSERT_NE(found, nullptr);
    const auto* header = static_cast<const GroupIconHeader*>(LockResource(LoadResource(module_.Get(), found)));
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->type, 1);
    ASSERT_EQ(header->count, 2);
    const auto* entries = reinterpret_cast<const GroupIconEntry*>(header + 1);
    std::vector<int> sizes;
    for (int i = 0; i < header->count; ++i) {
        EXPECT_EQ(entries[i].width, entries[i].height);
        EXPECT_EQ(entries[i].bitsPerPixel, 8);
        sizes.push_back(entries[i].width);
        // The image itself is an 8-bit DIB of that size.
        HRSRC image = FindResourceA(module_.Get(), MAKEINTRESOURCEA(entries[i].id), RT_ICON);
        ASSERT_NE(image, nullptr);
        const auto* dib = static_cast<const BITMAPINFOHEADER*>(LockResource(LoadResource(module_.Get(), image)));
        ASSERT_NE(dib, nullptr);
        EXPECT_EQ(dib->biWidth, entries[i].width);
        EXPECT_EQ(dib->biHeight, 2 * entries[i].width);
        EXPECT_EQ(dib->biBitCount, 8);
    }
    std::sort(sizes.begin(), sizes.end());
    EXPECT_EQ(sizes, (std::vector<int>{16, 32}));
}

TEST(DllIcon, ExtractsAsThe32And16PixelPair) {
    HICON large = nullptr;
    HICON small = nullptr;
    ASSERT_EQ(ExtractIconExA(BuiltDllPath().c_str(), -1, nullptr, nullptr, 0), 1u);
    ASSERT_EQ(ExtractIconExA(BuiltDllPath().c_str(), 0, &large, &small, 1), 2u);
    UniqueIcon largeOwner(large);
    UniqueIcon smallOwner(small);
    EXPECT_EQ(IconSize(large).cx, 32);
    EXPECT_EQ(IconSize(large).cy, 32);
    EXPECT_EQ(IconSize(small).cx, 16);
    EXPECT_EQ(IconSize(small).cy, 16);
}

TEST(DllVersion, CarriesAUsEnglishVersionBlock) {
    const DWORD size = GetFileVersionInfoSizeA(BuiltDllPath().c_str(), nullptr);
    ASSERT_GT(size, 0u);
    std::vector<char> buffer(size);
    ASSERT_TRUE(GetFileVersionInfoA(BuiltDllPath().c_str(), 0, size, buffer.data()));
    void* text = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\StringFileInfo\\040904B0\\OriginalFilename", &text, &length));
    EXPECT_STREQ(static_cast<const char*>(text), VQC_DLL_FILE_NAME);
    ASSERT_TRUE(VerQueryValueA(buffer.data(), "\\StringFileInfo\\040904B0\\ProductVersion", &text, &length));
    EXPECT_STREQ(static_cast<const char*>(text), VQC_PRODUCT_VERSION);
}
