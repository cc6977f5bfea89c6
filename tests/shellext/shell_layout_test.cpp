// Our pages laid out in the sheet Wine's own shell makes, in the language of the process
// (each language runs as a test of its own: LC_ALL). The shell's General page and the
// language's dialog font make that sheet larger than our templates; every page of ours must
// then follow its resize map exactly and keep every shown control inside the page.
#include <windows.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <string>

#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "tests/pages/page_layout_check.h"
#include "tests/shellext/shell_registration.h"
#include "tests/support/shell_properties_road.h"

using namespace test_support;

namespace {

constexpr DWORD kSheetWait = 20000;
// A file that routes through a proxy: the Proxy page shows its proxy group.
constexpr char kLine[] = "-h office.example.com -u alice -C \"reports daily\" -p proxy.example:8080";

class ShellLayout : public ShellRegistration {};

// The window of the sheet's page `index`, brought to the front as a click on its tab would.
HWND ShowPageAt(HWND sheet, int index) {
    SendMessageA(sheet, PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
    return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_INDEXTOHWND, static_cast<WPARAM>(index), 0));
}

}  // namespace

TEST_F(ShellLayout, EveryPageOfOursFollowsItsMapInsideTheShellsSheet) {
    const std::string file = Connection("office.vqc", kLine);
    shell_road::PropertiesOnShellThread road({file});
    const HWND sheet = road.WaitForSheet(kSheetWait);
    ASSERT_NE(sheet, nullptr) << "verb result " << std::hex << road.Result();
    // The shell's General page first, then ours.
    for (const page_test::OurPage& page : page_test::OurPagesAfterOneOther()) {
        const HWND window = ShowPageAt(sheet, page.index);
        ASSERT_NE(window, nullptr) << page.name;
        page_test::ExpectLaidOutByItsMap(window, page.templateIndex, page.map, page.name);
    }
    SendMessageA(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    ASSERT_TRUE(road.WaitUntilReturned(kSheetWait));
}
