// The owner-draw router on real pages: the four messages and their reflected forms reach
// the page's hooks, the defaults answer what a page leaves alone, and a page that did not
// opt in never sees them.
#include "ui/owner_draw_router.h"

#include <gtest/gtest.h>

#include <vector>

#include "pages/connection_page.h"
#include "pages/property_page.h"
#include "pages/resize_maps.h"
#include "tests/pages/page_test_support.h"

using namespace page_test;

namespace {

// A page on the Options template with hooks of its own for drawing and measuring.
class DrawProbePage final : public CVQCPropertyPageImpl<DrawProbePage>, public OwnerDrawRouter<DrawProbePage> {
public:
    DrawProbePage(VQCFileInfo* record, const char* title) : CVQCPropertyPageImpl(record, 3, title) {}
    static const ResizeMapEntry* ResizeMap() noexcept { return kOptionPageResizeMap; }

    bool OnPageMessage(UINT message, WPARAM, LPARAM, LRESULT& result) {
        if (message != WM_INITDIALOG) return false;
        DlgResize_Init();
        result = TRUE;
        return true;
    }
    void DrawItem(DRAWITEMSTRUCT* item) { drawn.push_back(item->CtlID); }
    void MeasureItem(MEASUREITEMSTRUCT* item) {
        measured.push_back(item->CtlID);
        item->itemHeight = 48;
        item->itemWidth = 48;
    }

    std::vector<UINT> drawn;
    std::vector<UINT> measured;
};

// A page on the Options template that keeps every default hook.
class DefaultHooksPage final : public CVQCPropertyPageImpl<DefaultHooksPage>, public OwnerDrawRouter<DefaultHooksPage> {
public:
    DefaultHooksPage(VQCFileInfo* record, const char* title) : CVQCPropertyPageImpl(record, 3, title) {}
    static const ResizeMapEntry* ResizeMap() noexcept { return kOptionPageResizeMap; }

    bool OnPageMessage(UINT message, WPARAM, LPARAM, LRESULT& result) {
        if (message != WM_INITDIALOG) return false;
        DlgResize_Init();
        result = TRUE;
        return true;
    }
};

}  // namespace

TEST(OwnerDrawRouter, DrawAndMeasureReachThePagesHooksInBothForms) {
    DirectSheet sheet;
    auto* page = sheet.Add<DrawProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    page->drawn.clear();
    page->measured.clear();
    for (UINT message : {static_cast<UINT>(WM_DRAWITEM), OCM_DRAWITEM_MESSAGE}) {
        DRAWITEMSTRUCT draw{};
        draw.CtlType = ODT_LISTBOX;
        draw.CtlID = 1041;
        SetWindowLongPtrA(page->Window(), DWLP_MSGRESULT, 0x55);
        EXPECT_EQ(DrawProbePage::PageDialogProc(page->Window(), message, 1041, reinterpret_cast<LPARAM>(&draw)), TRUE);
        EXPECT_EQ(GetWindowLongPtrA(page->Window(), DWLP_MSGRESULT), TRUE);
    }
    for (UINT message : {static_cast<UINT>(WM_MEASUREITEM), OCM_MEASUREITEM_MESSAGE}) {
        MEASUREITEMSTRUCT measure{};
        measure.CtlType = ODT_LISTBOX;
        measure.CtlID = 1041;
        EXPECT_EQ(SendMessageA(page->Window(), message, 1041, reinterpret_cast<LPARAM>(&measure)), TRUE);
        EXPECT_EQ(measure.itemHeight, 48u);
    }
    EXPECT_EQ(page->drawn, (std::vector<UINT>{1041, 1041}));
    EXPECT_EQ(page->measured, (std::vector<UINT>{1041, 1041}));
}

TEST(OwnerDrawRouter, TheOwnerDrawnListIsDrawnThroughTheHook) {
    DirectSheet sheet;
    auto* page = sheet.Add<DrawProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    // The list measured its fixed item height while it was created, through the page.
    EXPECT_EQ(page->measured, (std::vector<UINT>{1041}));
    const HWND list = PageControl(page->Window(), 1041);
    EXPECT_EQ(SendMessageA(list, LB_GETITEMHEIGHT, 0, 0), 48);
    page->drawn.clear();
    SendMessageA(list, LB_ADDSTRING, 0, 0x1234);
    RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ERASE);
    PumpMessages();
    ASSERT_FALSE(page->drawn.empty());
    EXPECT_EQ(page->drawn.front(), 1041u);
}

TEST(OwnerDrawRouter, CompareAndDeleteKeepTheDefaults) {
    DirectSheet sheet;
    auto* page = sheet.Add<DrawProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    for (UINT message : {static_cast<UINT>(WM_COMPAREITEM), OCM_COMPAREITEM_MESSAGE}) {
        COMPAREITEMSTRUCT compare{};
        compare.CtlType = ODT_LISTBOX;
        compare.CtlID = 1041;
        compare.itemData1 = 1;
        compare.itemData2 = 2;
        // WM_COMPAREITEM's answer is the dialog procedure's own return value: all equal.
        EXPECT_EQ(DrawProbePage::PageDialogProc(page->Window(), message, 1041, reinterpret_cast<LPARAM>(&compare)),
                  message == WM_COMPAREITEM ? 0 : TRUE);
        LRESULT result = 0xdeadbeef;
        EXPECT_TRUE(
            page->ProcessWindowMessage(page->Window(), message, 1041, reinterpret_cast<LPARAM>(&compare), result));
        EXPECT_EQ(result, 0);
    }
    for (UINT message : {static_cast<UINT>(WM_DELETEITEM), OCM_DELETEITEM_MESSAGE}) {
        DELETEITEMSTRUCT erase{};
        erase.CtlType = ODT_LISTBOX;
        erase.CtlID = 1041;
        LRESULT result = 0xdeadbeef;
        EXPECT_TRUE(
            page->ProcessWindowMessage(page->Window(), message, 1041, reinterpret_cast<LPARAM>(&erase), result));
        EXPECT_EQ(result, TRUE);
    }
}

TEST(OwnerDrawRouter, DefaultMeasureGivesALineOfTheControlsFont) {
    DirectSheet sheet;
    auto* page = sheet.Add<DefaultHooksPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND list = PageControl(page->Window(), 1041);
    const HDC dc = GetDC(list);
    const HGDIOBJ previous = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(list, WM_GETFONT, 0, 0)));
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    SelectObject(dc, previous);
    ReleaseDC(list, dc);

    MEASUREITEMSTRUCT measure{};
    measure.CtlType = ODT_LISTBOX;
    measure.CtlID = 1041;
    measure.itemHeight = 0xdead;
    EXPECT_EQ(SendMessageA(page->Window(), WM_MEASUREITEM, 1041, reinterpret_cast<LPARAM>(&measure)), TRUE);
    EXPECT_EQ(measure.itemHeight, static_cast<UINT>(metrics.tmHeight));
}

TEST(OwnerDrawRouter, PagesThatDidNotOptInLeaveTheMessagesAlone) {
    DirectSheet sheet;
    auto* page = sheet.Add<CVQCConnectionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    DRAWITEMSTRUCT draw{};
    draw.CtlType = ODT_LISTBOX;
    for (UINT message : {static_cast<UINT>(WM_DRAWITEM), static_cast<UINT>(WM_MEASUREITEM),
                         static_cast<UINT>(WM_COMPAREITEM), static_cast<UINT>(WM_DELETEITEM), OCM_DRAWITEM_MESSAGE}) {
        LRESULT result = 0xdeadbeef;
        EXPECT_FALSE(page->ProcessWindowMessage(page->Window(), message, 0, reinterpret_cast<LPARAM>(&draw), result))
            << message;
    }
}
