// The Options page draws its icon list itself: items one and a half icon sizes square,
// the window or highlight colour around the item's icon, the icon where an icon of the
// nominal size would be centred, and the focus rectangle. Pixels are read back from the
// list's window, and from a page's answer to a WM_DRAWITEM of our own. The list drawn with
// the real keyboard focus is option_page_focus_test.cpp's.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "pages/option_page.h"
#include "tests/pages/option_page_draw_support.h"
#include "tests/pages/option_page_test_support.h"
#include "tests/support/pixel_section.h"
#include "tests/registration/registry_test_support.h"
#include "tests/window_assertions.h"

using namespace option_test;
using page_test::TempFolder;

namespace {

// What an item must look like: `fill` everywhere but where the icon lands, which is
// left + (width - nominal) / 2, top + (height - nominal) / 2, the icon at its own size.
std::vector<std::uint32_t> ExpectedItem(int width, int height, HICON icon, int nominal, COLORREF fill) {
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * height, Rgb(fill));
    const int size = IconWidth(icon);
    const std::vector<std::uint32_t> drawn = RenderedIcon(icon, size, fill);
    const int x0 = (width - nominal) / 2;
    const int y0 = (height - nominal) / 2;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const int px = x0 + x, py = y0 + y;
            if (px < 0 || py < 0 || px >= width || py >= height) continue;
            pixels[static_cast<std::size_t>(py) * width + px] = drawn[static_cast<std::size_t>(y) * size + x];
        }
    return pixels;
}

// A picture the page draws into through WM_DRAWITEM: a 32-bit DIB section in a memory DC,
// filled with a colour the page never uses.
class Canvas {
public:
    static constexpr std::uint32_t kUntouched = 0x123456;

    Canvas(int width, int height) : section_(width, height) {
        dc_.Reset(CreateCompatibleDC(nullptr));
        old_ = SelectObject(dc_.Get(), section_.Bitmap());
        for (int i = 0; i < width * height; ++i) section_.Bits()[i] = kUntouched;
    }
    ~Canvas() { SelectObject(dc_.Get(), old_); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC Dc() const { return dc_.Get(); }
    std::vector<std::uint32_t> Pixels() const { return section_.Pixels(); }

private:
    test_support::PixelSection section_;
    UniqueMemoryDC dc_;
    HGDIOBJ old_ = nullptr;
};

// Sends the page a WM_DRAWITEM for a width x height item at the canvas's top-left.
void DrawThroughThePage(HWND page, const Canvas& canvas, int width, int height, HICON icon, UINT controlId, UINT itemId,
                        UINT action, UINT state) {
    DRAWITEMSTRUCT draw{};
    draw.CtlType = ODT_LISTBOX;
    draw.CtlID = controlId;
    draw.itemID = itemId;
    draw.itemAction = action;
    draw.itemState = state;
    draw.hwndItem = GetDlgItem(page, dialog_ids::kIconList);
    draw.hDC = canvas.Dc();
    draw.rcItem = {0, 0, width, height};
    draw.itemData = reinterpret_cast<ULONG_PTR>(icon);
    SendMessageA(page, WM_DRAWITEM, controlId, reinterpret_cast<LPARAM>(&draw));
}

}  // namespace

// ---- Measuring ------------------------------------------------------------------------------

TEST(OptionPageDraw, MeasuredItemsAreOneAndAHalfIconSizesSquare) {
    TempFolder folder("option-measure");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    MEASUREITEMSTRUCT measure{};
    measure.CtlType = ODT_LISTBOX;
    measure.CtlID = dialog_ids::kIconList;
    measure.itemWidth = 0xdeadbeef;
    measure.itemHeight = 0xdeadbeef;
    EXPECT_EQ(SendMessageA(sheet.Window(), WM_MEASUREITEM, measure.CtlID, reinterpret_cast<LPARAM>(&measure)), TRUE);
    EXPECT_EQ(measure.itemWidth, 48u);
    EXPECT_EQ(measure.itemHeight, 48u);
    EXPECT_EQ(SendMessageA(sheet.List(), LB_GETITEMHEIGHT, 0, 0), 48);
    EXPECT_EQ(ItemRect(sheet.List(), 0).bottom - ItemRect(sheet.List(), 0).top, 48);
}

// ---- Drawing in the list --------------------------------------------------------------------

TEST(OptionPageDraw, ItemShowsItsIconCentredOnTheWindowColour) {
    TempFolder folder("option-draw-item");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    ASSERT_EQ(SendMessageA(sheet.List(), LB_GETCURSEL, 0, 0), LB_ERR);
    for (int index : {0, 2}) {
        const RECT item = ItemRect(sheet.List(), index);
        const int width = item.right - item.left, height = item.bottom - item.top;
        ASSERT_GT(width, 32);
        EXPECT_EQ(height, 48);
        EXPECT_EQ(WindowPixels(sheet.List(), item),
                  ExpectedItem(width, height, sheet.ListIcon(index), 32, GetSysColor(COLOR_WINDOW)))
            << "item " << index;
    }
}

TEST(OptionPageDraw, SelectedItemIsFilledWithTheHighlightColour) {
    TempFolder folder("option-draw-selected");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    sheet.ClickItem(1);
    const RECT selected = ItemRect(sheet.List(), 1);
    const int width = selected.right - selected.left, height = selected.bottom - selected.top;
    const std::vector<std::uint32_t> pixels = WindowPixels(sheet.List(), selected);
    const std::vector<std::uint32_t> expected =
        ExpectedItem(width, height, sheet.ListIcon(1), 32, GetSysColor(COLOR_HIGHLIGHT));
    // The list does not have the focus, so no focus rectangle is drawn.
    EXPECT_FALSE(IsSameWindow(GetFocus(), sheet.List()));
    EXPECT_EQ(pixels, expected);
    EXPECT_GT(CountOf(pixels, Rgb(GetSysColor(COLOR_HIGHLIGHT))), width * height / 4);

    const RECT other = ItemRect(sheet.List(), 0);
    EXPECT_EQ(WindowPixels(sheet.List(), other), ExpectedItem(other.right - other.left, other.bottom - other.top,
                                                              sheet.ListIcon(0), 32, GetSysColor(COLOR_WINDOW)));
}

TEST(OptionPageDraw, LargerIconSizeMakesLargerItemsWithTheIconWhereANominalOneWouldBeCentred) {
    test_support::PrivateCurrentUser root("option-draw-48");
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "Control Panel\\Desktop\\WindowMetrics", 0, nullptr, 0, KEY_ALL_ACCESS,
                              nullptr, &key, nullptr),
              ERROR_SUCCESS);
    const UniqueRegKey owned(key);
    ASSERT_EQ(RegSetValueExA(key, "Shell Icon Size", 0, REG_SZ, reinterpret_cast<const BYTE*>("48"), 3), ERROR_SUCCESS);
    TempFolder folder("option-draw-48");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    const RECT item = ItemRect(sheet.List(), 0);
    const int width = item.right - item.left, height = item.bottom - item.top;
    EXPECT_EQ(height, 72);
    // The listed icon is 32 pixels; it sits where a 48-pixel one would be centred.
    EXPECT_EQ(WindowPixels(sheet.List(), item),
              ExpectedItem(width, height, sheet.ListIcon(0), 48, GetSysColor(COLOR_WINDOW)));
}

// ---- Drawing on a canvas of our own ---------------------------------------------------------

TEST(OptionPageDraw, WholeItemOnACanvasPutsTheIconAt20For32Pixels) {
    TempFolder folder("option-canvas");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    Canvas canvas(72, 72);
    DrawThroughThePage(sheet.Window(), canvas, 72, 72, sheet.ListIcon(0), dialog_ids::kIconList, 0, ODA_DRAWENTIRE, 0);
    const std::vector<std::uint32_t> pixels = canvas.Pixels();
    EXPECT_EQ(pixels, ExpectedItem(72, 72, sheet.ListIcon(0), 32, GetSysColor(COLOR_WINDOW)));
    // (72 - 32) / 2 = 20: the icon's top-left corner is transparent (a quarter of it), its
    // frame starts at x 8 of the icon.
    EXPECT_EQ(pixels[20 * 72 + 19], Rgb(GetSysColor(COLOR_WINDOW)));
    EXPECT_EQ(pixels[(20 + 16) * 72 + 20 + 16], signature::kFourBitLarge);
    EXPECT_EQ(pixels[(20 + 31) * 72 + 20 + 31], 0x181820u);  // the frame's corner
    EXPECT_EQ(pixels[(20 + 32) * 72 + 20 + 32], Rgb(GetSysColor(COLOR_WINDOW)));
}

TEST(OptionPageDraw, SmallerCellThanTheIconPutsItAboveAndLeftBySignedDivision) {
    TempFolder folder("option-canvas-small");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    Canvas canvas(27, 27);
    DrawThroughThePage(sheet.Window(), canvas, 27, 27, sheet.ListIcon(0), dialog_ids::kIconList, 0, ODA_DRAWENTIRE,
                       ODS_SELECTED);
    // (27 - 32) / 2 = -2: the icon starts two pixels above and left of the cell.
    EXPECT_EQ(canvas.Pixels(), ExpectedItem(27, 27, sheet.ListIcon(0), 32, GetSysColor(COLOR_HIGHLIGHT)));
}

TEST(OptionPageDraw, FocusActionDrawsOnlyTheFocusRectangle) {
    TempFolder folder("option-canvas-focus");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    Canvas canvas(48, 48);
    DrawThroughThePage(sheet.Window(), canvas, 48, 48, sheet.ListIcon(0), dialog_ids::kIconList, 0, ODA_FOCUS,
                       ODS_FOCUS);
    const std::vector<std::uint32_t> pixels = canvas.Pixels();
    const std::vector<std::uint32_t> edge = Edge(pixels, 48, 48);
    EXPECT_GT(CountOf(edge, Canvas::kUntouched ^ 0x00FFFFFF), static_cast<long>(edge.size()) / 4);
    EXPECT_GT(CountOf(edge, Canvas::kUntouched), static_cast<long>(edge.size()) / 4);
    // Inside the edge nothing changed: no fill, no icon.
    for (int y = 1; y < 47; ++y)
        for (int x = 1; x < 47; ++x) ASSERT_EQ(pixels[y * 48 + x], Canvas::kUntouched) << x << "," << y;
}

TEST(OptionPageDraw, FocusedWholeItemGetsFillIconAndFocusRectangle) {
    TempFolder folder("option-canvas-whole-focus");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    Canvas canvas(48, 48);
    DrawThroughThePage(sheet.Window(), canvas, 48, 48, sheet.ListIcon(0), dialog_ids::kIconList, 0, ODA_DRAWENTIRE,
                       ODS_SELECTED | ODS_FOCUS);
    const std::vector<std::uint32_t> pixels = canvas.Pixels();
    const std::uint32_t highlight = Rgb(GetSysColor(COLOR_HIGHLIGHT));
    const std::vector<std::uint32_t> edge = Edge(pixels, 48, 48);
    EXPECT_GT(CountOf(edge, highlight ^ 0x00FFFFFF), static_cast<long>(edge.size()) / 4);
    EXPECT_EQ(pixels[24 * 48 + 24], signature::kFourBitLarge);
    EXPECT_EQ(pixels[9 * 48 + 9], highlight);  // the icon's transparent corner
}

TEST(OptionPageDraw, NegativeItemOrAnotherControlDrawsNothing) {
    TempFolder folder("option-canvas-nothing");
    const ComPtr<VQCFileInfo> record = IconsRecord(folder);
    OptionSheet sheet(record.Get());
    const std::vector<std::uint32_t> untouched(48 * 48, Canvas::kUntouched);
    {
        Canvas canvas(48, 48);
        DrawThroughThePage(sheet.Window(), canvas, 48, 48, sheet.ListIcon(0), dialog_ids::kIconList,
                           static_cast<UINT>(-1), ODA_DRAWENTIRE | ODA_FOCUS, ODS_FOCUS);
        EXPECT_EQ(canvas.Pixels(), untouched);
    }
    {
        Canvas canvas(48, 48);
        DrawThroughThePage(sheet.Window(), canvas, 48, 48, sheet.ListIcon(0), 1040, 0, ODA_DRAWENTIRE | ODA_FOCUS,
                           ODS_FOCUS);
        EXPECT_EQ(canvas.Pixels(), untouched);
    }
}
