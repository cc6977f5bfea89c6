// What each real page's own dialog procedure answers to the messages the base hands to the
// page itself: WM_INITDIALOG (TRUE lets the dialog set the default focus; the Options page
// answers 0), WM_COMMAND from a control that is not the page's own (not handled), and
// WM_DESTROY (handled only by the Options page; what it gives back there is pinned by the
// Options page's own tests).
#include <gtest/gtest.h>

#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "tests/pages/page_test_support.h"

using namespace page_test;

namespace {

constexpr int kNoControlOfAnyPage = 9999;

// Sends a message straight to the page's own dialog procedure and gives back what it
// returned (for WM_INITDIALOG the answer itself, otherwise TRUE when handled).
INT_PTR CallPageProcedure(HWND page, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
    const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrA(page, DWLP_DLGPROC));
    return procedure ? procedure(page, message, wParam, lParam) : -1;
}

// One page of class Page, without a record, in a modeless sheet of its own.
template <typename Page>
class OnePageSheet {
public:
    OnePageSheet() {
        sheet_.Add<Page>(nullptr);
        if (sheet_.Show()) page_ = page_test::PageWindow(sheet_.Sheet(), 0);
    }
    HWND PageWindow() const { return page_; }

private:
    DirectSheet sheet_;
    HWND page_ = nullptr;
};

WPARAM CommandFrom(int id, int code) { return MAKEWPARAM(id, code); }

}  // namespace

TEST(PageMessages, ConnectionPageAnswersInitDialogTrue) {
    OnePageSheet<CVQCConnectionPage> sheet;
    ASSERT_NE(sheet.PageWindow(), nullptr);
    EXPECT_EQ(CallPageProcedure(sheet.PageWindow(), WM_INITDIALOG), TRUE);
}

TEST(PageMessages, ProxyPageAnswersInitDialogTrue) {
    OnePageSheet<CVQCProxyPage> sheet;
    ASSERT_NE(sheet.PageWindow(), nullptr);
    EXPECT_EQ(CallPageProcedure(sheet.PageWindow(), WM_INITDIALOG), TRUE);
}

TEST(PageMessages, OptionsPageAnswersInitDialogZero) {
    OnePageSheet<CVQCOptionPage> sheet;
    ASSERT_NE(sheet.PageWindow(), nullptr);
    EXPECT_EQ(CallPageProcedure(sheet.PageWindow(), WM_INITDIALOG), 0);
}

TEST(PageMessages, CommandFromAForeignControlIsLeftToTheDialogOnEveryPage) {
    OnePageSheet<CVQCConnectionPage> connection;
    OnePageSheet<CVQCProxyPage> proxy;
    OnePageSheet<CVQCOptionPage> options;
    for (HWND page : {connection.PageWindow(), proxy.PageWindow(), options.PageWindow()}) {
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(CallPageProcedure(page, WM_COMMAND, CommandFrom(kNoControlOfAnyPage, BN_CLICKED)), FALSE);
    }
}

TEST(PageMessages, OnlyTheOptionsPageHandlesDestroy) {
    OnePageSheet<CVQCConnectionPage> connection;
    OnePageSheet<CVQCProxyPage> proxy;
    OnePageSheet<CVQCOptionPage> options;
    ASSERT_NE(connection.PageWindow(), nullptr);
    ASSERT_NE(proxy.PageWindow(), nullptr);
    ASSERT_NE(options.PageWindow(), nullptr);
    EXPECT_EQ(CallPageProcedure(connection.PageWindow(), WM_DESTROY), FALSE);
    EXPECT_EQ(CallPageProcedure(proxy.PageWindow(), WM_DESTROY), FALSE);
    EXPECT_EQ(CallPageProcedure(options.PageWindow(), WM_DESTROY), TRUE);
}
