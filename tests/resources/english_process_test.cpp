// The entry points of the resources in an English_UK process (LC_ALL=en_GB.UTF-8).
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "real_dialog_check.h"
#include "resources/dialog_template.h"
#include "resources/local_string_cache.h"
#include "template_decoder.h"

namespace {

void* const kUntouched = reinterpret_cast<void*>(static_cast<std::uintptr_t>(0xdeadbeef));

std::vector<std::uint8_t> Built(int index, std::uint32_t pointSize = 0) {
    const DialogDesc* desc = FindDialogDesc(index);
    std::vector<std::uint8_t> bytes(BuildDialogTemplate(desc, nullptr, 0));
    BuildDialogTemplate(desc, bytes.data(), pointSize);
    return bytes;
}

int CacheNodes() {
    int count = 0;
    for (const AnsiStringCacheNode* node = g_ansiStringCache; node != nullptr; node = node->next) ++count;
    return count;
}

}  // namespace

TEST(EnglishProcess, AnsiCodePageIsWesternEuropean) { EXPECT_EQ(GetACP(), 1252u); }

TEST(LocalStringCache, IdsAboveFortyEightGiveNull) {
    EXPECT_EQ(GetLocalString(49), nullptr);
    EXPECT_EQ(GetLocalString(50), nullptr);
    EXPECT_EQ(GetLocalString(1000), nullptr);
    EXPECT_EQ(GetLocalString(0xFFFFFFFFu), nullptr);
}

TEST(LocalStringCache, SameIdGivesTheIdenticalPointer) {
    const char* first = GetLocalString(21);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(GetLocalString(21), first);
    EXPECT_STREQ(first, "Connection");
    EXPECT_NE(GetLocalString(23), first);
}

TEST(LocalStringCache, EachIdIsConvertedOnceAndKept) {
    GetLocalString(30);
    const int nodes = CacheNodes();
    GetLocalString(30);
    GetLocalString(30);
    EXPECT_EQ(CacheNodes(), nodes);
    bool found = false;
    for (const AnsiStringCacheNode* node = g_ansiStringCache; node != nullptr; node = node->next)
        if (node->id == 30) {
            EXPECT_EQ(node->text, GetLocalString(30));
            found = true;
        }
    EXPECT_TRUE(found);
    GetLocalString(31);
    EXPECT_EQ(CacheNodes(), nodes + 1);
}

TEST(LocalStringCache, NullIdsAddNoNode) {
    const int nodes = CacheNodes();
    GetLocalString(49);
    EXPECT_EQ(CacheNodes(), nodes);
}

TEST(LocalStringCache, FilterListArrivesWholeForTheFileDialog) {
    const char* filter = GetLocalString(40);
    ASSERT_NE(filter, nullptr);
    static const char kWant[] = "Executable and icon files\0*.exe;*.dll;*.ico\0All files\0*.*\0";
    ASSERT_EQ(sizeof(kWant), 59u);  // the literal's own NUL is the list's final empty string
    EXPECT_EQ(std::memcmp(filter, kWant, sizeof(kWant)), 0);
}

TEST(DialogBuilder, BuildWithoutDescriptionGivesZero) { EXPECT_EQ(BuildDialogTemplate(nullptr, nullptr, 0), 0u); }

TEST(DialogBuilder, DefaultGuiFontFaceIsTheStockFontsAnsiFaceWidened) {
    LOGFONTA font{};
    ASSERT_NE(GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof(font), &font), 0);
    const std::string ansi = font.lfFaceName;
    ASSERT_FALSE(ansi.empty());
    EXPECT_EQ(DefaultGuiFontFace(), std::wstring(ansi.begin(), ansi.end()));
    const DecodedTemplate t = DecodeTemplate(Built(1).data(), Built(1).size());
    EXPECT_EQ(std::wstring(t.faceName.begin(), t.faceName.end()), DefaultGuiFontFace());
}

// Under Wine the stock face happens to be "MS Shell Dlg" too, so a description with a
// different stored face shows which of the two is written.
TEST(DialogBuilder, StoredFaceOnlySwitchesTheFontOn) {
    static constexpr LocalValue zero{0, 1, nullptr};
    const ControlDesc* const controls[] = {nullptr};
    const DialogDesc desc{
        {9, &zero, &zero, &zero, &zero, &zero, &zero, nullptr, nullptr}, 8, u"Stored Face Never Written", controls};
    std::vector<std::uint8_t> bytes(BuildDialogTemplate(&desc, nullptr, 0));
    ASSERT_EQ(BuildDialogTemplate(&desc, bytes.data(), 0), bytes.size());
    const DecodedTemplate t = DecodeTemplate(bytes.data(), bytes.size());
    ASSERT_TRUE(t.ok);
    EXPECT_TRUE(t.hasFont);
    EXPECT_EQ(std::wstring(t.faceName.begin(), t.faceName.end()), StockGuiFontFace());
}

TEST(DialogBuilder, AllocOutsideOneToFourGivesNull) {
    EXPECT_EQ(AllocDialogTemplate(0, 0), nullptr);
    EXPECT_EQ(AllocDialogTemplate(5, 0), nullptr);
    EXPECT_EQ(AllocDialogTemplate(-1, 0), nullptr);
}

TEST(DialogBuilder, AllocGivesAHeapCopyOfTheTemplate) {
    for (int index = 1; index <= 4; ++index) {
        DLGTEMPLATE* block = AllocDialogTemplate(index, 0);
        ASSERT_NE(block, nullptr) << index;
        const std::vector<std::uint8_t> want = Built(index);
        EXPECT_EQ(std::memcmp(block, want.data(), want.size()), 0) << index;
        free(block);
    }
}

TEST(DialogBuilder, AllocWithPointSizeUsesIt) {
    DLGTEMPLATE* block = AllocDialogTemplate(3, 12);
    ASSERT_NE(block, nullptr);
    const std::size_t size = BuildDialogTemplate(FindDialogDesc(3), nullptr, 0);
    EXPECT_EQ(DecodeTemplate(reinterpret_cast<const std::uint8_t*>(block), size).pointSize, 12);
    free(block);
}

TEST(DialogBuilder, CreateRejectsIndicesOutsideOneToFour) {
    for (int index : {0, 5, -3}) {
        void* out = kUntouched;
        EXPECT_EQ(CreateTableDialog(nullptr, index, nullptr, nullptr, 0, 0, &out, 0x2), 0);
        EXPECT_EQ(out, kUntouched);
        EXPECT_EQ(CreateTableDialog(GetModuleHandleW(nullptr), index, nullptr, QuietDialogProc, 0, 0, nullptr, 0), 0);
    }
}

TEST(DialogBuilder, HeapFlagIgnoresPointSizeWithoutFlagOne) {
    void* out = kUntouched;
    EXPECT_EQ(CreateTableDialog(nullptr, 2, nullptr, nullptr, 0, 20, &out, 0x2), 0);
    ASSERT_NE(out, kUntouched);
    ASSERT_NE(out, nullptr);
    const std::vector<std::uint8_t> want = Built(2);
    EXPECT_EQ(DecodeTemplate(static_cast<const std::uint8_t*>(out), want.size()).pointSize, 8);
    EXPECT_EQ(std::memcmp(out, want.data(), want.size()), 0);
    free(out);
}

TEST(DialogBuilder, HeapFlagWithFlagOneUsesThePointSize) {
    void* out = kUntouched;
    EXPECT_EQ(CreateTableDialog(nullptr, 2, nullptr, nullptr, 0, 20, &out, 0x3), 0);
    ASSERT_NE(out, kUntouched);
    const std::vector<std::uint8_t> want = Built(2, 20);
    EXPECT_EQ(std::memcmp(out, want.data(), want.size()), 0);
    free(out);
}

TEST(DialogBuilder, CallerBufferFlagBuildsIntoItAndCreatesNothing) {
    const std::vector<std::uint8_t> want = Built(4);
    std::vector<std::uint8_t> buffer(want.size() + 16, 0xAB);
    void* inOut = buffer.data();
    EXPECT_EQ(CreateTableDialog(nullptr, 4, nullptr, nullptr, 0, 0, &inOut, 0x4), 0);
    EXPECT_EQ(inOut, buffer.data());
    // Padding bytes are not written, so compare field by field through the decoder.
    const DecodedTemplate got = DecodeTemplate(buffer.data(), want.size());
    const DecodedTemplate expect = DecodeTemplate(want.data(), want.size());
    ASSERT_TRUE(got.ok);
    EXPECT_EQ(got.title, expect.title);
    ASSERT_EQ(got.controls.size(), expect.controls.size());
    for (std::size_t i = 0; i < got.controls.size(); ++i) {
        EXPECT_EQ(got.controls[i].id, expect.controls[i].id);
        EXPECT_EQ(got.controls[i].caption, expect.controls[i].caption);
    }
    for (std::size_t i = want.size(); i < buffer.size(); ++i) EXPECT_EQ(buffer[i], 0xAB) << i;
}

namespace {

INT_PTR CALLBACK EndAtOnceProc(HWND dialog, UINT message, WPARAM, LPARAM initParam) {
    if (message == WM_INITDIALOG) {
        EndDialog(dialog, static_cast<INT_PTR>(initParam));
        return TRUE;
    }
    return FALSE;
}

}  // namespace

TEST(DialogBuilder, ModalFlagRunsTheDialogAndReturnsItsResult) {
    TestOwnerWindow owner;
    EXPECT_EQ(CreateTableDialog(GetModuleHandleW(nullptr), 1, owner.Get(), EndAtOnceProc, 42, 0, nullptr, 0x10), 42);
}

TEST(DialogBuilder, WithoutFlagsTheDialogIsModeless) {
    TestOwnerWindow owner;
    const INT_PTR result =
        CreateTableDialog(GetModuleHandleW(nullptr), 2, owner.Get(), QuietDialogProc, 0, 0, nullptr, 0);
    const HWND dialog = reinterpret_cast<HWND>(result);
    ASSERT_TRUE(IsWindow(dialog));
    EXPECT_NE(GetDlgItem(dialog, 1035), nullptr);
    DestroyWindow(dialog);
}
