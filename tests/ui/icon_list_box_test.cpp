// The icon list as the owner of its items' icons, on a real owner-drawn list box.
#include <windows.h>

#include <gtest/gtest.h>

#include "common/win_handles.h"
#include "ui/icon_list_box.h"
#include "tests/support/test_icons.h"

namespace {

bool IconAlive(HICON icon) {
    ICONINFO info{};
    if (!GetIconInfo(icon, &info)) return false;
    const UniqueGdiObject colour(info.hbmColor), mask(info.hbmMask);
    return true;
}

// A hidden window with an owner-drawn list box as the Options page has it (no strings).
class ListHost {
public:
    ListHost() {
        parent_ = CreateWindowExA(0, "STATIC", "host", WS_POPUP, 0, 0, 300, 300, nullptr, nullptr, nullptr, nullptr);
        list_ = CreateWindowExA(0, "LISTBOX", "", WS_CHILD | LBS_OWNERDRAWFIXED | LBS_NOTIFY | LBS_MULTICOLUMN, 0, 0,
                                200, 200, parent_, reinterpret_cast<HMENU>(1041), nullptr, nullptr);
    }
    ~ListHost() { DestroyWindow(parent_); }
    ListHost(const ListHost&) = delete;
    ListHost& operator=(const ListHost&) = delete;
    HWND List() const { return list_; }

private:
    HWND parent_ = nullptr;
    HWND list_ = nullptr;
};

}  // namespace

TEST(IconListBox, ItemsCarryTheIconsAsData) {
    ListHost host;
    ASSERT_NE(host.List(), nullptr);
    IconListBox list(host.List());
    UniqueIcon a(MakeTestIcon(32, 4)), b(MakeTestIcon(32, 8));
    const HICON ha = a.Get(), hb = b.Get();
    EXPECT_TRUE(list.Add(std::move(a)));
    EXPECT_TRUE(list.Add(std::move(b)));
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(SendMessageA(host.List(), LB_GETCOUNT, 0, 0), 2);
    EXPECT_EQ(list.IconAt(0), ha);
    EXPECT_EQ(list.IconAt(1), hb);
    EXPECT_EQ(SendMessageA(host.List(), LB_GETITEMDATA, 1, 0), reinterpret_cast<LRESULT>(hb));
    list.Clear();
}

TEST(IconListBox, MissingItemHasNoIcon) {
    ListHost host;
    IconListBox list(host.List());
    EXPECT_EQ(list.IconAt(0), nullptr);
    EXPECT_EQ(list.IconAt(-1), nullptr);
    EXPECT_TRUE(list.Add(UniqueIcon(MakeTestIcon(16, 4))));
    EXPECT_EQ(list.IconAt(1), nullptr);
    list.Clear();
}

TEST(IconListBox, ClearDestroysEveryIconAndEmptiesTheList) {
    ListHost host;
    IconListBox list(host.List());
    HICON icons[3];
    for (HICON& icon : icons) {
        UniqueIcon made(MakeTestIcon(32, 4));
        icon = made.Get();
        ASSERT_TRUE(list.Add(std::move(made)));
    }
    for (HICON icon : icons) EXPECT_TRUE(IconAlive(icon));
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
    for (HICON icon : icons) EXPECT_FALSE(IconAlive(icon));
}

TEST(IconListBox, ClearOfAnEmptyListDoesNothing) {
    ListHost host;
    IconListBox list(host.List());
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

TEST(IconListBox, ClearLeavesRedrawingOn) {
    ListHost host;
    IconListBox list(host.List());
    ASSERT_TRUE(list.Add(UniqueIcon(MakeTestIcon(32, 4))));
    ShowWindow(GetParent(host.List()), SW_SHOWNA);
    ShowWindow(host.List(), SW_SHOWNA);
    list.Clear();
    // WM_SETREDRAW FALSE takes WS_VISIBLE away; TRUE gives it back.
    EXPECT_TRUE(GetWindowLongA(host.List(), GWL_STYLE) & WS_VISIBLE);
}

TEST(IconListBox, NullIconIsListedAsAnItemWithoutIcon) {
    ListHost host;
    IconListBox list(host.List());
    EXPECT_TRUE(list.Add(UniqueIcon()));
    EXPECT_EQ(list.Count(), 1);
    EXPECT_EQ(list.IconAt(0), nullptr);
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

TEST(IconListBox, WithoutAListTheIconIsRefusedAndDestroyed) {
    IconListBox list;
    UniqueIcon icon(MakeTestIcon(32, 4));
    const HICON handle = icon.Get();
    EXPECT_FALSE(list.Add(std::move(icon)));
    EXPECT_FALSE(IconAlive(handle));
    EXPECT_EQ(list.Count(), 0);
    list.Clear();
}

TEST(IconListBox, ListWindowThatIsGoneRefusesTheIconAndDestroysIt) {
    // A destroyed window answers 0 to every message, which would read as "added at 0".
    ListHost host;
    IconListBox box(host.List());
    DestroyWindow(host.List());
    UniqueIcon icon(MakeTestIcon(32, 4));
    const HICON handle = icon.Get();
    EXPECT_FALSE(box.Add(std::move(icon)));
    EXPECT_FALSE(IconAlive(handle));
    EXPECT_EQ(box.Count(), 0);
}
