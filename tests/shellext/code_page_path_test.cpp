// A file whose name the ANSI code page cannot spell (a Cyrillic name on a Western system, an
// emoji) is reached by its short path: the icon handler gives its icon, the pages show its
// values and Apply writes the file under its own long name. Runs in an English process
// (code page 1252).
#include "shellext/code_page_path.h"

#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <string>

#include "common/com_ptr.h"
#include "common/win_handles.h"
#include "pages/connection_page_rules.h"
#include "tests/pages/page_test_support.h"
#include "tests/shellext/shellext_test_support.h"

using namespace page_test;

namespace {

constexpr wchar_t kCyrillicName[] = L"\x0421\x0432\x044F\x0437\x044C.vqc";  // "Svyaz" in Cyrillic
constexpr wchar_t kEmojiName[] = L"\xD83D\xDD0C office.vqc";                // an electric plug

std::string InCodePage(const std::wstring& wide) {
    const int length = WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<std::size_t>(length > 0 ? length : 1), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, text.data(), length, nullptr, nullptr);
    text.resize(text.size() - 1);
    return text;
}

std::string ReadWide(const std::wstring& path) {
    const UniqueKernelHandle file(
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) return "<cannot open>";
    std::string bytes(GetFileSize(file.Get(), nullptr), '\0');
    DWORD read = 0;
    ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    bytes.resize(read);
    return bytes;
}

void WriteWide(const std::wstring& path, const std::string& bytes) {
    const UniqueKernelHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

// A DLL copy in a folder of its own and a connection file with an icon beside it, named in
// UTF-16; the file goes with the test (the folder's own clean-up reads names in 8 bits).
class WideNamedFile : public ::testing::TestWithParam<const wchar_t*> {
protected:
    WideNamedFile() : dll_("wide-name") {
        path_ = test_support::Wide(dll_.File("")) + GetParam();
        WriteWide(path_, test_support::ConnectionLineWithIcon({32, 16}));
    }
    ~WideNamedFile() override { DeleteFileW(path_.c_str()); }

    ExtensionCopy dll_;
    std::wstring path_;
};

}  // namespace

TEST(PathForCodePage, APathTheCodePageSpellsIsKeptAsItIs) {
    EXPECT_EQ(PathForCodePage(L"C:\\files\\office.vqc", CP_ACP, "C:\\files\\office.vqc"), "C:\\files\\office.vqc");
    EXPECT_EQ(PathForCodePage(L"C:\\no such folder\\caf\x00E9.vqc", 1252, "C:\\no such folder\\caf\xE9.vqc"),
              "C:\\no such folder\\caf\xE9.vqc");
}

TEST(PathForCodePage, AnUnspellableNameOfAMissingFileStaysAsConverted) {
    EXPECT_EQ(PathForCodePage(L"C:\\no such folder\\\x0416.vqc", 1252, "C:\\no such folder\\?.vqc"),
              "C:\\no such folder\\?.vqc");
}

TEST(PathForCodePage, WithoutAWideNameTheConvertedPathStays) {
    EXPECT_EQ(PathForCodePage(nullptr, CP_ACP, "C:\\a.vqc"), "C:\\a.vqc");
}

TEST_P(WideNamedFile, NameBecomesAShortPathTheCodePageSpellsAndThatOpensTheFile) {
    const std::string converted = InCodePage(path_);
    ASSERT_NE(converted.find('?'), std::string::npos) << "the code page spells the name: " << converted;
    const std::string path = PathForCodePage(path_.c_str(), CP_ACP, converted);
    EXPECT_NE(path, converted);
    EXPECT_EQ(path.find('?'), std::string::npos) << path;
    const UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_TRUE(static_cast<bool>(file)) << path;
}

TEST_P(WideNamedFile, IconHandlerGivesTheFilesIcon) {
    ComApartment apartment;
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(dll_.GetClassObject()(kVQCPropClassId, IID_IClassFactory, factory.PutVoid()), S_OK);
    ComPtr<IPersistFile> file;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IPersistFile, file.PutVoid()), S_OK);
    ASSERT_EQ(file->Load(path_.c_str(), STGM_READ), S_OK);
    ComPtr<IExtractIconA> extract;
    ASSERT_EQ(file->QueryInterface(IID_IExtractIconA, extract.PutVoid()), S_OK);
    char location[MAX_PATH] = {};
    int index = -1;
    UINT flags = 0;
    ASSERT_EQ(extract->GetIconLocation(0, location, MAX_PATH, &index, &flags), S_OK);
    EXPECT_EQ(flags, static_cast<UINT>(GIL_PERINSTANCE | GIL_NOTFILENAME | GIL_DONTCACHE));
    HICON large = nullptr;
    HICON small = nullptr;
    ASSERT_EQ(extract->Extract(location, index, &large, &small, MAKELONG(32, 16)), S_OK);
    const UniqueIcon ownedLarge(large);
    const UniqueIcon ownedSmall(small);
    EXPECT_NE(large, nullptr);
    EXPECT_NE(small, nullptr);
}

TEST_P(WideNamedFile, PagesShowTheFilesValues) {
    ShellPropertySheet sheet(dll_.GetClassObject(), path_);
    ASSERT_TRUE(sheet.Open());
    const HWND page = ShowPageTitled(sheet.Sheet(), "Connection");
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(WindowText(PageControl(page, dialog_ids::kServerBox)), "server.example");
    EXPECT_EQ(WindowText(PageControl(page, dialog_ids::kLoginEdit)), "tester");
}

TEST_P(WideNamedFile, ApplyWritesTheFileUnderItsOwnLongName) {
    ShellPropertySheet sheet(dll_.GetClassObject(), path_);
    ASSERT_TRUE(sheet.Open());
    const HWND page = ShowPageTitled(sheet.Sheet(), "Connection");
    ASSERT_NE(page, nullptr);
    TypeText(PageControl(page, dialog_ids::kLoginEdit), "changed");
    ASSERT_TRUE(Apply(sheet.Sheet()));
    const std::string written = ReadWide(path_);
    EXPECT_NE(written.find("-u changed"), std::string::npos) << written;
    EXPECT_NE(written.find("-h server.example"), std::string::npos) << written;
    // Nothing was written under another name: the folder holds the DLL and this file.
    WIN32_FIND_DATAW found{};
    int files = 0;
    const HANDLE search = FindFirstFileW((test_support::Wide(dll_.File("")) + L"*").c_str(), &found);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    do {
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) ++files;
    } while (FindNextFileW(search, &found));
    FindClose(search);
    EXPECT_EQ(files, 2);
}

INSTANTIATE_TEST_SUITE_P(Names, WideNamedFile, ::testing::Values(kCyrillicName, kEmojiName),
                         [](const ::testing::TestParamInfo<const wchar_t*>& info) {
                             return info.index == 0 ? std::string("Cyrillic") : std::string("Emoji");
                         });
