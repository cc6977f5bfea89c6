// The Options page's icon list drawn with the real keyboard focus: the current item gets the
// dotted focus rectangle, and loses it with the focus. The keyboard focus is the whole
// desktop's: a sheet another test program shows at the same moment takes it away from ours
// (about one run in nine beside a page test program), so this program runs alone.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "pages/option_page.h"
#include "tests/pages/option_page_draw_support.h"
#include "tests/pages/option_page_test_support.h"
#include "tests/window_assertions.h"

using namespace option_test;
using page_test::TempFolder;

TEST(OptionPageFocus, FocusedListDrawsTheFocusRectangleAroundTheCurrentItem) {
    TempFolder folder("option-draw-focus");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    sheet.ClickItem(0);
    SetFocus(sheet.List());
    page_test::PumpMessages();
    ASSERT_TRUE(IsSameWindow(GetFocus(), sheet.List()));
    const RECT item = ItemRect(sheet.List(), 0);
    const int width = item.right - item.left, height = item.bottom - item.top;
    const std::uint32_t highlight = Rgb(GetSysColor(COLOR_HIGHLIGHT));
    const std::vector<std::uint32_t> edge = Edge(WindowPixels(sheet.List(), item), width, height);
    // The dotted rectangle inverts every other pixel of the edge.
    EXPECT_GT(CountOf(edge, highlight), static_cast<long>(edge.size()) / 4);
    EXPECT_GT(CountOf(edge, highlight ^ 0x00FFFFFF), static_cast<long>(edge.size()) / 4);

    // Without the focus the edge is the plain fill.
    SetFocus(sheet.Control(dialog_ids::kBrowseButton));
    page_test::PumpMessages();
    const std::vector<std::uint32_t> plain = Edge(WindowPixels(sheet.List(), item), width, height);
    EXPECT_EQ(CountOf(plain, highlight), static_cast<long>(plain.size()));
}
