// Resizing on real pages: at the template size nothing moves; a page made wider and taller
// moves and sizes exactly the controls of its map by dx and dy, hidden ones too; no page
// has a size grip.
#include "ui/dialog_resizer.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "pages/resize_maps.h"
#include "resources/dialog_template.h"
#include "tests/pages/page_test_support.h"
#include "tests/window_assertions.h"

using namespace page_test;

namespace {

using Rects = std::map<int, RECT>;

Rects ChildRects(HWND window) {
    Rects rects;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        rects[GetDlgCtrlID(child)] = ChildRect(child);
    }
    return rects;
}

std::map<int, unsigned> MapFlags(const ResizeMapEntry* map) {
    std::map<int, unsigned> flags;
    for (std::size_t i = 0; i < ResizeMapLength(map); ++i) flags[map[i].controlId] = map[i].flags;
    return flags;
}

SIZE ClientSize(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

// Makes the page window itself larger (the sheet never resizes its pages).
void GrowPage(HWND page, int dx, int dy) {
    RECT rect{};
    GetWindowRect(page, &rect);
    SetWindowPos(page, nullptr, 0, 0, rect.right - rect.left + dx, rect.bottom - rect.top + dy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    PumpMessages();
}

std::string Describe(const RECT& r) {
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
           std::to_string(r.bottom);
}

INT_PTR CALLBACK PlainDialogProc(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

template <typename Page>
void ExpectTemplateSizeKeepsEveryControlWhereTheTemplatePutIt() {
    // The same template as a plain dialog without any resizing: where the template puts
    // each control.
    const HWND plain = reinterpret_cast<HWND>(
        CreateTableDialog(GetModuleHandleA(nullptr), Page::kTemplateIndex, nullptr, PlainDialogProc, 0, 0, nullptr, 0));
    ASSERT_NE(plain, nullptr);
    const Rects templatePlaces = ChildRects(plain);
    const SIZE templateClient = ClientSize(plain);
    DestroyWindow(plain);

    DirectSheet sheet;
    auto* page = sheet.template Add<Page>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND window = page->Window();
    ASSERT_NE(window, nullptr);
    // The sheet sizes each page to its own page area; shown at the template's size again,
    // every control is where the template put it.
    const SIZE given = ClientSize(window);
    GrowPage(window, templateClient.cx - given.cx, templateClient.cy - given.cy);
    ASSERT_EQ(ClientSize(window).cx, templateClient.cx);
    ASSERT_EQ(ClientSize(window).cy, templateClient.cy);
    const Rects shown = ChildRects(window);
    ASSERT_EQ(shown.size(), templatePlaces.size());
    for (const auto& [id, rect] : templatePlaces) {
        ASSERT_TRUE(shown.count(id)) << id;
        EXPECT_TRUE(EqualRect(&shown.at(id), &rect))
            << id << ": " << Describe(shown.at(id)) << " vs " << Describe(rect);
    }
}

template <typename Page>
void ExpectGrowthMovesExactlyTheMappedControls(int dx, int dy) {
    DirectSheet sheet;
    auto* page = sheet.template Add<Page>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND window = page->Window();
    ASSERT_NE(window, nullptr);
    const SIZE before = ClientSize(window);
    const Rects initial = ChildRects(window);
    GrowPage(window, dx, dy);
    const SIZE after = ClientSize(window);
    ASSERT_EQ(after.cx - before.cx, dx);
    ASSERT_EQ(after.cy - before.cy, dy);

    const std::map<int, unsigned> flags = MapFlags(Page::ResizeMap());
    const Rects moved = ChildRects(window);
    ASSERT_EQ(moved.size(), initial.size());
    int mapped = 0;
    for (const auto& [id, rect] : initial) {
        const auto row = flags.find(id);
        const unsigned f = row == flags.end() ? 0 : row->second;
        if (row != flags.end()) ++mapped;
        const ControlRect want = LaidOutRect({rect.left, rect.top, rect.right, rect.bottom}, f, dx, dy);
        const RECT& got = moved.at(id);
        EXPECT_EQ(got.left, want.left) << id;
        EXPECT_EQ(got.top, want.top) << id;
        EXPECT_EQ(got.right, want.right) << id;
        EXPECT_EQ(got.bottom, want.bottom) << id;
    }
    EXPECT_EQ(mapped, static_cast<int>(flags.size()));
}

}  // namespace

TEST(PageResizing, ConnectionPageAtTemplateSizeKeepsEveryControlInPlace) {
    ExpectTemplateSizeKeepsEveryControlWhereTheTemplatePutIt<CVQCConnectionPage>();
}

TEST(PageResizing, ProxyPageAtTemplateSizeKeepsEveryControlInPlace) {
    ExpectTemplateSizeKeepsEveryControlWhereTheTemplatePutIt<CVQCProxyPage>();
}

TEST(PageResizing, OptionPageAtTemplateSizeKeepsEveryControlInPlace) {
    ExpectTemplateSizeKeepsEveryControlWhereTheTemplatePutIt<CVQCOptionPage>();
}

TEST(PageResizing, WiderAndTallerConnectionPageWidensExactlyItsMappedControls) {
    ExpectGrowthMovesExactlyTheMappedControls<CVQCConnectionPage>(40, 30);
}

TEST(PageResizing, WiderAndTallerProxyPageWidensExactlyItsMappedControls) {
    ExpectGrowthMovesExactlyTheMappedControls<CVQCProxyPage>(40, 30);
}

TEST(PageResizing, WiderAndTallerOptionPageMovesTheButtonAndCheckBoxAndGrowsTheList) {
    ExpectGrowthMovesExactlyTheMappedControls<CVQCOptionPage>(40, 30);
}

TEST(PageResizing, OptionPageWiderMovesBrowseRightAndWidensTheList) {
    DirectSheet sheet;
    auto* page = sheet.Add<CVQCOptionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND window = page->Window();
    const RECT browse = ChildRect(PageControl(window, 1040));
    const RECT list = ChildRect(PageControl(window, 1041));
    const RECT sizing = ChildRect(PageControl(window, 1042));
    GrowPage(window, 25, 0);
    const RECT browseAfter = ChildRect(PageControl(window, 1040));
    const RECT listAfter = ChildRect(PageControl(window, 1041));
    const RECT sizingAfter = ChildRect(PageControl(window, 1042));
    EXPECT_EQ(browseAfter.left, browse.left + 25);
    EXPECT_EQ(browseAfter.right - browseAfter.left, browse.right - browse.left);
    EXPECT_EQ(listAfter.right - listAfter.left, list.right - list.left + 25);
    EXPECT_EQ(listAfter.bottom - listAfter.top, list.bottom - list.top);
    EXPECT_TRUE(EqualRect(&sizingAfter, &sizing));
}

TEST(PageResizing, OptionPageTallerMovesDynamicSizingDownAndMakesTheListTaller) {
    DirectSheet sheet;
    auto* page = sheet.Add<CVQCOptionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND window = page->Window();
    const RECT browse = ChildRect(PageControl(window, 1040));
    const RECT list = ChildRect(PageControl(window, 1041));
    const RECT sizing = ChildRect(PageControl(window, 1042));
    GrowPage(window, 0, 18);
    const RECT browseAfter = ChildRect(PageControl(window, 1040));
    const RECT listAfter = ChildRect(PageControl(window, 1041));
    const RECT sizingAfter = ChildRect(PageControl(window, 1042));
    EXPECT_EQ(sizingAfter.top, sizing.top + 18);
    EXPECT_EQ(sizingAfter.bottom - sizingAfter.top, sizing.bottom - sizing.top);
    EXPECT_EQ(listAfter.bottom - listAfter.top, list.bottom - list.top + 18);
    EXPECT_EQ(listAfter.top, list.top);
    EXPECT_TRUE(EqualRect(&browseAfter, &browse));
}

TEST(PageResizing, HiddenControlsAreLaidOutToo) {
    DirectSheet sheet;
    auto* page = sheet.Add<CVQCProxyPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND window = page->Window();
    const HWND broker = PageControl(window, 1032);
    ShowWindow(broker, SW_HIDE);
    const RECT before = ChildRect(broker);
    GrowPage(window, 33, 0);
    EXPECT_FALSE(IsWindowVisible(broker));
    const RECT after = ChildRect(broker);
    EXPECT_EQ(after.right - after.left, before.right - before.left + 33);
    EXPECT_EQ(after.left, before.left);
}

TEST(PageResizing, ComboBoxListKeepsItsLengthWhenWidened) {
    DirectSheet sheet;
    auto* page = sheet.Add<CVQCConnectionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND combo = PageControl(page->Window(), 1002);
    RECT dropped{};
    SendMessageA(combo, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped));
    GrowPage(page->Window(), 20, 0);
    RECT droppedAfter{};
    SendMessageA(combo, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&droppedAfter));
    EXPECT_EQ(droppedAfter.bottom - droppedAfter.top, dropped.bottom - dropped.top);
    EXPECT_EQ(droppedAfter.right - droppedAfter.left, dropped.right - dropped.left + 20);
}

TEST(PageResizing, MinimiseRequestIsIgnored) {
    DirectSheet sheet;
    auto* page = sheet.Add<CVQCOptionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const Rects before = ChildRects(page->Window());
    SendMessageA(page->Window(), WM_SIZE, SIZE_MINIMIZED, MAKELPARAM(0, 0));
    const Rects after = ChildRects(page->Window());
    for (const auto& [id, rect] : before) EXPECT_TRUE(EqualRect(&after.at(id), &rect)) << id;
    // A real size after that still lays out from the recorded start.
    const SIZE client = ClientSize(page->Window());
    SendMessageA(page->Window(), WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.cx + 10, client.cy));
    EXPECT_EQ(ChildRect(PageControl(page->Window(), 1040)).left, before.at(1040).left + 10);
}

TEST(PageResizing, NoPageSetsAMinimumTrackingSize) {
    DirectSheet sheet;
    auto* connection = sheet.Add<CVQCConnectionPage>(nullptr);
    auto* proxy = sheet.Add<CVQCProxyPage>(nullptr);
    auto* options = sheet.Add<CVQCOptionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    for (HWND window : {connection->Window(), proxy->Window(), options->Window()}) {
        ASSERT_NE(window, nullptr);
        MINMAXINFO info{};
        info.ptMinTrackSize = {7, 9};
        SendMessageA(window, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&info));
        EXPECT_EQ(info.ptMinTrackSize.x, 7);
        EXPECT_EQ(info.ptMinTrackSize.y, 9);
    }
}

TEST(PageResizing, NoPageHasASizeGrip) {
    DirectSheet sheet;
    auto* connection = sheet.Add<CVQCConnectionPage>(nullptr);
    auto* proxy = sheet.Add<CVQCProxyPage>(nullptr);
    auto* options = sheet.Add<CVQCOptionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    const int templateControls[] = {24, 12, 7};
    int i = 0;
    for (HWND window : {connection->Window(), proxy->Window(), options->Window()}) {
        ASSERT_NE(window, nullptr);
        // Only the template's controls: no scroll bar of any kind was added.
        EXPECT_EQ(static_cast<int>(ChildIds(window).size()), templateControls[i++]);
        for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
            char className[32] = {};
            GetClassNameA(child, className, sizeof(className));
            EXPECT_NE(lstrcmpiA(className, "ScrollBar"), 0) << GetDlgCtrlID(child);
        }
    }
}
