// A connection file's Properties through Wine's own shell, end to end, as a user meets the
// extension: the DLL registered by regsvr32 in the prefix's real class registry, the ".vqc"
// file type as the client's installer writes it, the file's context menu and its verb
// "properties". The verb blocks until the sheet closes, so it runs on a thread of its own
// and the test plays the user from here with the messages clicks and keys send.
// These tests share the real HKEY_CLASSES_ROOT and run one at a time (RESOURCE_LOCK).
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pages/connection_page_rules.h"
#include "tests/pages/sheet_input.h"
#include "tests/shellext/shell_registration.h"
#include "tests/shellext/shellext_test_support.h"
#include "tests/support/shell_properties_road.h"
#include "tests/support/system_programs.h"

using namespace test_support;
using shell_road::PropertiesOnShellThread;

namespace {

constexpr DWORD kSheetWait = 20000;
using dialog_ids::kLoginEdit;
using dialog_ids::kServerBox;

std::vector<std::string> Titles(HWND sheet) {
    std::vector<std::string> titles;
    for (const std::wstring& title : shell_road::PageTitles(sheet)) titles.push_back(shell_road::Utf8(title));
    return titles;
}

// The page whose tab reads title, brought to the front as a click on its tab would.
HWND ShowPage(HWND sheet, const std::vector<std::string>& titles, const std::string& title) {
    for (std::size_t i = 0; i < titles.size(); ++i) {
        if (titles[i] != title) continue;
        SendMessageA(sheet, PSM_SETCURSEL, static_cast<WPARAM>(i), 0);
        return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_INDEXTOHWND, static_cast<WPARAM>(i), 0));
    }
    return nullptr;
}

void Press(HWND sheet, int button) { SendMessageA(sheet, PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0); }

// Each test with the DLL registered and the file type written.
class ShellProperties : public ShellRegistration {};

}  // namespace

TEST_F(ShellProperties, VerbOpensTheShellsGeneralPageThenConnectionProxyAndOptions) {
    const std::string file = Connection("office.vqc", "-h server.example -u tester ");
    PropertiesOnShellThread road({file});
    const HWND sheet = road.WaitForSheet(kSheetWait);
    ASSERT_NE(sheet, nullptr) << "verb result " << std::hex << road.Result();
    // Found only once shown, as a user meets it: before that it is still building its pages.
    EXPECT_TRUE(IsWindowVisible(sheet));
    EXPECT_EQ(Titles(sheet), (std::vector<std::string>{"General", "Connection", "Proxy", "Options"}));
    Press(sheet, PSBTN_CANCEL);
    ASSERT_TRUE(road.WaitUntilReturned(kSheetWait));
    EXPECT_EQ(road.Result(), S_OK);
}

TEST_F(ShellProperties, ServerTypedIntoTheConnectionPageIsWrittenOnOk) {
    const std::string file = Connection("office.vqc", "-h server.example -u tester ");
    PropertiesOnShellThread road({file});
    const HWND sheet = road.WaitForSheet(kSheetWait);
    ASSERT_NE(sheet, nullptr);
    const HWND page = ShowPage(sheet, Titles(sheet), "Connection");
    ASSERT_NE(page, nullptr);
    ASSERT_EQ(page_test::WindowText(GetDlgItem(page, kServerBox)), "server.example");
    page_test::TypeIntoCombo(GetDlgItem(page, kServerBox), "office.example");
    EXPECT_TRUE(page_test::ApplyEnabled(sheet));
    Press(sheet, PSBTN_OK);
    ASSERT_TRUE(road.WaitUntilReturned(kSheetWait));
    EXPECT_EQ(road.Result(), S_OK);
    EXPECT_EQ(ReadFileBytes(file), "-h office.example -u tester ");
}

TEST_F(ShellProperties, LoginTypedIntoItsEditIsWrittenOnOk) {
    const std::string file = Connection("office.vqc", "-h server.example -u tester ");
    PropertiesOnShellThread road({file});
    const HWND sheet = road.WaitForSheet(kSheetWait);
    ASSERT_NE(sheet, nullptr);
    const HWND page = ShowPage(sheet, Titles(sheet), "Connection");
    ASSERT_NE(page, nullptr);
    page_test::TypeText(GetDlgItem(page, kLoginEdit), "  operator  ");
    Press(sheet, PSBTN_OK);
    ASSERT_TRUE(road.WaitUntilReturned(kSheetWait));
    EXPECT_EQ(ReadFileBytes(file), "-h server.example -u operator ");
}

TEST_F(ShellProperties, CancelAfterAnEditWritesNothing) {
    const std::string original = "-h  server.example  -u  tester  -C  bookmark";
    const std::string file = Connection("office.vqc", original);
    PropertiesOnShellThread road({file});
    const HWND sheet = road.WaitForSheet(kSheetWait);
    ASSERT_NE(sheet, nullptr);
    const HWND page = ShowPage(sheet, Titles(sheet), "Connection");
    ASSERT_NE(page, nullptr);
    page_test::TypeIntoCombo(GetDlgItem(page, kServerBox), "office.example");
    ASSERT_TRUE(page_test::ApplyEnabled(sheet));
    Press(sheet, PSBTN_CANCEL);
    ASSERT_TRUE(road.WaitUntilReturned(kSheetWait));
    EXPECT_EQ(road.Result(), S_OK);
    EXPECT_EQ(ReadFileBytes(file), original);
}

TEST_F(ShellProperties, TwoSelectedFilesGetNoPagesOfOurs) {
    const std::string first = Connection("first.vqc", "-h first.example ");
    const std::string second = Connection("second.vqc", "-h second.example ");
    PropertiesOnShellThread road({first, second});
    // Wine's shell still opens a sheet for the selection, with its own General page and
    // none of ours.
    const HWND sheet = road.WaitForSheet(kSheetWait);
    ASSERT_NE(sheet, nullptr);
    EXPECT_EQ(Titles(sheet), std::vector<std::string>{"General"});
    Press(sheet, PSBTN_CANCEL);
    ASSERT_TRUE(road.WaitUntilReturned(kSheetWait));
    EXPECT_EQ(ReadFileBytes(first), "-h first.example ");
    EXPECT_EQ(ReadFileBytes(second), "-h second.example ");
}
