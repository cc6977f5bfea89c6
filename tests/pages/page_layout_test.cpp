// Our pages in a sheet whose first page is larger than any of ours (a plain page of
// 260 x 240 dialog units), so the sheet makes every page larger than its template: each page
// follows its resize map exactly and keeps every shown control inside. Runs in the process's
// language (LC_ALL), as the shell's sheet does.
#include <windows.h>
#include <prsht.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "connection/vqc_file_info.h"
#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "tests/pages/page_layout_check.h"
#include "tests/pages/page_test_support.h"

using namespace page_test;

namespace {

// An empty dialog template of 260 x 240 dialog units, a child as a page is, in the dialog
// font; kept in memory as the sheet reads it.
struct alignas(4) PlainPageTemplate {
    DLGTEMPLATE header{DS_SETFONT | DS_CONTROL | WS_CHILD | WS_CAPTION, 0, 0, 0, 0, 260, 240};
    WORD menu = 0;
    WORD windowClass = 0;
    WORD title = 0;
    WORD pointSize = 8;
    wchar_t face[14] = L"MS Shell Dlg";
};

INT_PTR CALLBACK PlainPageProcedure(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

HPROPSHEETPAGE PlainLargePage(const PlainPageTemplate& dialogTemplate) {
    PROPSHEETPAGEA page{};
    page.dwSize = sizeof(page);
    page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
    page.hInstance = GetModuleHandleA(nullptr);
    page.pResource = &dialogTemplate.header;
    page.pszTitle = "Large";
    page.pfnDlgProc = PlainPageProcedure;
    return CreatePropertySheetPageA(&page);
}

}  // namespace

TEST(PageLayout, ALargerFirstPageMakesEveryPageOfOursFollowItsMap) {
    const PlainPageTemplate large;
    ComPtr<VQCFileInfo> record(new VQCFileInfo("C:\\no such folder\\layout.vqc"));
    record->route = kRouteProxy;  // the Proxy page shows its proxy group
    DirectSheet sheet;
    const HPROPSHEETPAGE first = PlainLargePage(large);
    ASSERT_NE(first, nullptr);
    sheet.AddHandle(first);
    ASSERT_NE(sheet.Add<CVQCConnectionPage>(record.Get(), "Connection"), nullptr);
    ASSERT_NE(sheet.Add<CVQCProxyPage>(record.Get(), "Proxy"), nullptr);
    ASSERT_NE(sheet.Add<CVQCOptionPage>(record.Get(), "Options"), nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    for (const OurPage& page : OurPagesAfterOneOther()) {
        ShowPage(sheet.Sheet(), page.index);
        const HWND window = PageWindow(sheet.Sheet(), page.index);
        ASSERT_NE(window, nullptr) << page.name;
        // Larger than the template, or the test would prove nothing.
        RECT client{};
        GetClientRect(window, &client);
        EXPECT_GT(client.right, PlacesOfTemplate(page.templateIndex).client.cx) << page.name;
        ExpectLaidOutByItsMap(window, page.templateIndex, page.map, page.name);
    }
}
