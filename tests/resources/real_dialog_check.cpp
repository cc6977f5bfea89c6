#include "real_dialog_check.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "common/same_window.h"
#include "expected_tables.h"
#include "resources/dialog_template.h"
#include "resources/local_strings.h"

std::wstring StockGuiFontFace() {
    LOGFONTW font{};
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof(font), &font);
    return font.lfFaceName;
}

TestOwnerWindow::TestOwnerWindow()
    : window_(CreateWindowExW(0, L"static", L"owner", WS_POPUP, 0, 0, 800, 600, nullptr, nullptr,
                              GetModuleHandleW(nullptr), nullptr)) {}

TestOwnerWindow::~TestOwnerWindow() {
    if (window_ != nullptr) DestroyWindow(window_);
}

INT_PTR CALLBACK QuietDialogProc(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG ? TRUE : FALSE; }

namespace {

std::wstring Wide(std::u16string_view text) { return std::wstring(text.begin(), text.end()); }

std::wstring ExpectedCaption(int id, int language) {
    if (id == expected::kNoCaption) return L"";
    const char16_t* const* texts = g_localStrings[id]->texts;
    return Wide(texts[language - 1] != nullptr ? texts[language - 1] : texts[0]);
}

std::wstring Lower(std::wstring text) {
    for (wchar_t& c : text)
        if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
    return text;
}

std::wstring WindowText(HWND window) {
    wchar_t text[512] = {};
    GetWindowTextW(window, text, 512);
    return text;
}

RECT ClientRectOf(HWND dialog, RECT screen) {
    MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&screen), 2);
    return screen;
}

}  // namespace

namespace {

// What the dialog manager passed to CreateWindowEx for each control, seen through a CBT
// hook: the template's values before any control adjusts its own style or size.
struct Creation {
    HWND window;
    HWND parent;
    int id;
    int x, y, cx, cy;
    std::uint32_t style;
    std::uint32_t exStyle;
};

std::vector<Creation>* g_creations = nullptr;

LRESULT CALLBACK RecordCreation(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_CREATEWND && g_creations != nullptr) {
        const CREATESTRUCTW* cs = reinterpret_cast<CBT_CREATEWNDW*>(lParam)->lpcs;
        g_creations->push_back({reinterpret_cast<HWND>(wParam), cs->hwndParent,
                                static_cast<int>(reinterpret_cast<INT_PTR>(cs->hMenu)), cs->x, cs->y, cs->cx, cs->cy,
                                static_cast<std::uint32_t>(cs->style), static_cast<std::uint32_t>(cs->dwExStyle)});
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// A control's creation, found by its id among the children of the dialog (the first window
// the hook saw). Controls make children of their own (a combo box's edit has id 1001), so
// the parent matters. Handles are not compared with the live windows: in the full parallel
// test run Wine sometimes showed the hook a handle that GetWindow did not return later. The
// hook's own handles are compared by the window they name, as any two handles that may have
// come through different calls must be.
const Creation* FindCreation(const std::vector<Creation>& creations, int id) {
    if (creations.empty()) return nullptr;
    const HWND dialog = creations.front().window;
    for (const Creation& c : creations)
        if (SameWindow(c.parent, dialog) && c.id == id) return &c;
    return nullptr;
}

// Dialog units to pixels the way the dialog manager converts them: position and size
// each on their own.
RECT PixelsOf(HWND dialog, int x, int y, int cx, int cy) {
    RECT r{x, y, cx, cy};
    MapDialogRect(dialog, &r);
    return r;  // left, top = position; right, bottom = width, height
}

}  // namespace

void ExpectRealDialogMatchesTable(int index, int language) {
    const expected::Dialog& want = expected::kDialogs[index - 1];
    TestOwnerWindow owner;
    ASSERT_NE(owner.Get(), nullptr);
    std::vector<Creation> creations;
    g_creations = &creations;
    const HHOOK hook = SetWindowsHookExW(WH_CBT, RecordCreation, nullptr, GetCurrentThreadId());
    const HWND dialog = reinterpret_cast<HWND>(
        CreateTableDialog(GetModuleHandleW(nullptr), index, owner.Get(), QuietDialogProc, 0, 0, nullptr, 0));
    UnhookWindowsHookEx(hook);
    g_creations = nullptr;
    ASSERT_NE(hook, nullptr);
    ASSERT_NE(dialog, nullptr) << "template " << index << " error " << GetLastError();

    EXPECT_EQ(WindowText(dialog), ExpectedCaption(want.titleId, language));
    EXPECT_EQ(static_cast<std::uint32_t>(GetWindowLongW(dialog, GWL_EXSTYLE)) & WS_EX_CONTROLPARENT,
              static_cast<std::uint32_t>(WS_EX_CONTROLPARENT));
    // The dialog font is the stock GUI font's face.
    LOGFONTW font{};
    const auto dialogFont = reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0));
    ASSERT_NE(dialogFont, nullptr);
    GetObjectW(dialogFont, sizeof(font), &font);
    EXPECT_EQ(std::wstring(font.lfFaceName), StockGuiFontFace());

    // Children in z-order are the table's controls in the table's order.
    std::vector<HWND> children;
    for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT))
        children.push_back(child);
    ASSERT_EQ(children.size(), static_cast<std::size_t>(want.controlCount));

    for (int i = 0; i < want.controlCount; ++i) {
        const expected::Control& c = want.controls[i];
        const HWND control = children[i];
        SCOPED_TRACE("template " + std::to_string(index) + " control " + std::to_string(c.id));
        EXPECT_EQ(GetDlgCtrlID(control), c.id);

        wchar_t className[64] = {};
        GetClassNameW(control, className, 64);
        EXPECT_EQ(Lower(className), Wide(c.className));
        EXPECT_EQ(WindowText(control), ExpectedCaption(c.captionId, language));

        const RECT want = PixelsOf(dialog, c.x, c.y, expected::Width(c, language), c.cy);
        // The dialog manager creates a control's WS_BORDER as WS_EX_CLIENTEDGE, the sunken
        // edge of every dialog since Windows 95.
        const bool bordered = (c.style & WS_BORDER) != 0;
        const std::uint32_t createdStyle = bordered ? c.style & ~static_cast<std::uint32_t>(WS_BORDER) : c.style;
        const std::uint32_t createdExStyle = bordered ? WS_EX_CLIENTEDGE : 0;
        const Creation* created = FindCreation(creations, c.id);
        ASSERT_NE(created, nullptr);
        EXPECT_EQ(created->style, createdStyle) << std::hex << created->style;
        EXPECT_EQ(created->exStyle & ~static_cast<std::uint32_t>(WS_EX_NOPARENTNOTIFY), createdExStyle)
            << std::hex << created->exStyle;
        EXPECT_EQ(created->x, want.left);
        EXPECT_EQ(created->y, want.top);
        EXPECT_EQ(created->cx, want.right);
        EXPECT_EQ(created->cy, want.bottom);

        // The live window. List and combo boxes show their scroll bars only when the list
        // needs them and keep the scroll bar bits to match, so those two bits are theirs.
        const auto style = static_cast<std::uint32_t>(GetWindowLongW(control, GWL_STYLE));
        const auto exStyle = static_cast<std::uint32_t>(GetWindowLongW(control, GWL_EXSTYLE));
        std::uint32_t wantStyle = createdStyle;
        std::uint32_t liveStyle = style;
        if (c.className == u"combobox" || c.className == u"listbox") {
            constexpr auto kScrollBits = static_cast<std::uint32_t>(WS_VSCROLL | WS_HSCROLL);
            wantStyle &= ~kScrollBits;
            liveStyle &= ~kScrollBits;
        }
        EXPECT_EQ(liveStyle, wantStyle) << std::hex << style << " " << wantStyle;
        EXPECT_EQ(exStyle & ~static_cast<std::uint32_t>(WS_EX_NOPARENTNOTIFY), createdExStyle) << std::hex << exStyle;

        RECT screen{};
        GetWindowRect(control, &screen);
        const RECT got = ClientRectOf(dialog, screen);
        EXPECT_EQ(got.left, want.left);
        EXPECT_EQ(got.top, want.top);
        EXPECT_EQ(got.right - got.left, want.right);
        // A combo box is as high as its closed field; the table's height is the list's.
        if (c.className != u"combobox") {
            EXPECT_EQ(got.bottom - got.top, want.bottom);
        }
    }
    DestroyWindow(dialog);
}
