// The Options page on the shell's road, from a copy of the built DLL: a file without an
// icon adopts the first icon of the installed client's DLL, or the DLL's own icon when
// no client is installed, shows it, and the next Apply writes it into the file.
#include <windows.h>
#include <shellapi.h>

#include <gtest/gtest.h>

#include <string>

#include "common/win_handles.h"
#include "connection/vqc_file_info.h"
#include "tests/support/test_icons.h"
#include "tests/pages/page_test_support.h"

using namespace page_test;

namespace {

constexpr int kOptionsPage = 2;  // Connection, Proxy (the client is 620 or later), Options
constexpr COLORREF kBackground = RGB(0x30, 0x70, 0xB0);

HICON Shown(HWND page, int id) {
    return reinterpret_cast<HICON>(SendMessageA(GetDlgItem(page, id), STM_GETICON, 0, 0));
}

std::string Label(HWND page) {
    char text[512] = {};
    GetWindowTextA(GetDlgItem(page, 1039), text, sizeof(text));
    return text;
}

// The icons a file shows after the page opened, against those of its icon source.
void ExpectAdoptedFrom(HWND page, const std::string& source) {
    HICON large = nullptr, small = nullptr;
    ASSERT_EQ(ExtractIconExA(source.c_str(), 0, &large, &small, 1), 2u);
    const UniqueIcon pairLarge(large), pairSmall(small);
    HICON smallAlone = nullptr;
    ASSERT_EQ(ExtractIconExA(source.c_str(), 0, nullptr, &smallAlone, 1), 1u);
    const UniqueIcon ownedSmall(smallAlone);

    ASSERT_NE(Shown(page, 1037), nullptr);
    ASSERT_NE(Shown(page, 1038), nullptr);
    EXPECT_EQ(RenderedIcon(Shown(page, 1037), 32, kBackground), RenderedIcon(pairLarge.Get(), 32, kBackground));
    EXPECT_EQ(RenderedIcon(Shown(page, 1038), 16, kBackground), RenderedIcon(ownedSmall.Get(), 16, kBackground));
}

// The file's icon block decoded, drawn as the page showed it.
void ExpectWrittenAsShown(HWND page, const std::string& file) {
    VQCFileInfo back(file.c_str());
    ASSERT_EQ(back.Read(file.c_str()), 0);
    ASSERT_TRUE(back.icon);
    ASSERT_TRUE(back.smallIcon);
    EXPECT_EQ(RenderedIcon(back.icon.Get(), 32, kBackground), RenderedIcon(Shown(page, 1037), 32, kBackground));
    EXPECT_EQ(RenderedIcon(back.smallIcon.Get(), 16, kBackground), RenderedIcon(Shown(page, 1038), 16, kBackground));
}

}  // namespace

TEST(OptionPageShell, WithoutAClientTheFileAdoptsTheDllsOwnIconAndApplyWritesIt) {
    ExtensionCopy extension("option-shell-own");
    ASSERT_NE(extension.Module(), nullptr);
    const std::string file = extension.File("own.vqc");
    WriteFileBytes(file, "-h server ");
    {
        ShellPropertySheet sheet(extension.GetClassObject(), file);
        ASSERT_TRUE(sheet.Open());
        ASSERT_EQ(PageTitle(sheet.Sheet(), kOptionsPage), "Options");
        ShowPage(sheet.Sheet(), kOptionsPage);
        const HWND page = PageWindow(sheet.Sheet(), kOptionsPage);
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(Label(page), "Look for icons in: " VQC_DLL_FILE_NAME);
        EXPECT_EQ(SendMessageA(GetDlgItem(page, 1041), LB_GETCOUNT, 0, 0), 1);
        ExpectAdoptedFrom(page, extension.DllPath());
        EXPECT_EQ(ReadFileBytes(file), "-h server ");  // nothing written before Apply
        EXPECT_TRUE(Apply(sheet.Sheet()));
        EXPECT_EQ(ReadFileBytes(file).rfind("-h server \r\n-I \"", 0), 0u);
        ExpectWrittenAsShown(page, file);
    }
}

TEST(OptionPageShell, FileAdoptsTheFirstIconOfTheInstalledClientAndApplyWritesIt) {
    ExtensionCopy extension("option-shell-client", "option_icons");
    ASSERT_NE(extension.Module(), nullptr);
    const std::string file = extension.File("client.vqc");
    WriteFileBytes(file, "-h server ");
    {
        ShellPropertySheet sheet(extension.GetClassObject(), file);
        ASSERT_TRUE(sheet.Open());
        ShowPage(sheet.Sheet(), kOptionsPage);
        const HWND page = PageWindow(sheet.Sheet(), kOptionsPage);
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(Label(page), "Look for icons in: vclient.dll");
        EXPECT_EQ(SendMessageA(GetDlgItem(page, 1041), LB_GETCOUNT, 0, 0), 5);
        ExpectAdoptedFrom(page, extension.File("vclient.dll"));
        EXPECT_TRUE(Apply(sheet.Sheet()));
        ExpectWrittenAsShown(page, file);
    }
}

// The icon handler hands its icons to the shell; the pages still see the record's own.
TEST(OptionPageShell, AFileWithItsOwnIconShowsThatIconAndAdoptsNone) {
    ExtensionCopy extension("option-shell-file-icon");
    ASSERT_NE(extension.Module(), nullptr);
    const std::string file = extension.File("own-icon.vqc");
    const IconImage images[] = {MakeTestIconImage(32, 8, 3), MakeTestIconImage(16, 8, 4)};
    const std::string line = "-h server -I \"" + HexTextOf(BuildIconStream(images, 2)) + "\"";
    WriteFileBytes(file, line);
    VQCFileInfo decoded(file.c_str());
    ASSERT_EQ(decoded.Read(file.c_str()), 0);
    {
        ShellPropertySheet sheet(extension.GetClassObject(), file);
        ASSERT_TRUE(sheet.Open());
        ShowPage(sheet.Sheet(), kOptionsPage);
        const HWND page = PageWindow(sheet.Sheet(), kOptionsPage);
        ASSERT_NE(page, nullptr);
        ASSERT_NE(Shown(page, 1037), nullptr);
        ASSERT_NE(Shown(page, 1038), nullptr);
        EXPECT_EQ(RenderedIcon(Shown(page, 1037), 32, kBackground), RenderedIcon(decoded.icon.Get(), 32, kBackground));
        EXPECT_EQ(RenderedIcon(Shown(page, 1038), 16, kBackground),
                  RenderedIcon(decoded.smallIcon.Get(), 16, kBackground));
    }
    EXPECT_EQ(ReadFileBytes(file), line);  // no icon adopted, nothing written
}
