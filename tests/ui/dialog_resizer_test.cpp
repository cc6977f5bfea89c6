// The dialog resizer alone, on a plain dialog of the Options template: nothing is handled
// before Init, and a map row naming a control the dialog lacks is left out.
#include "ui/dialog_resizer.h"

#include <gtest/gtest.h>

#include "resources/dialog_template.h"

namespace {

INT_PTR CALLBACK PlainDialogProc(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

// A control's rectangle in its parent's client coordinates.
RECT ChildRect(HWND child) {
    RECT rect{};
    GetWindowRect(child, &rect);
    MapWindowPoints(HWND_DESKTOP, GetParent(child), reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

}  // namespace

TEST(DialogResizer, NothingIsHandledBeforeInit) {
    DialogResizer resizer;
    LRESULT result = 0xdeadbeef;
    EXPECT_FALSE(resizer.ProcessWindowMessage(nullptr, WM_SIZE, SIZE_RESTORED, MAKELPARAM(10, 10), result));
    EXPECT_EQ(result, static_cast<LRESULT>(0xdeadbeef));
}

TEST(DialogResizer, RowsForMissingControlsAreLeftOut) {
    const HWND dialog = reinterpret_cast<HWND>(
        CreateTableDialog(GetModuleHandleA(nullptr), 3, nullptr, PlainDialogProc, 0, 0, nullptr, 0));
    ASSERT_NE(dialog, nullptr);
    const ResizeMapEntry map[] = {{4242, DLSZ_MOVE_X}, {1040, DLSZ_MOVE_X}, kResizeMapEnd};
    DialogResizer resizer;
    resizer.Init(dialog, map);
    const RECT before = ChildRect(GetDlgItem(dialog, 1040));
    RECT client{};
    GetClientRect(dialog, &client);
    resizer.UpdateLayout(client.right + 12, client.bottom);
    EXPECT_EQ(ChildRect(GetDlgItem(dialog, 1040)).left, before.left + 12);
    DestroyWindow(dialog);
}
