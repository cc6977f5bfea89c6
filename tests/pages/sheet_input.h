// A user's input on a page's controls, sent as the clicks and keys would send it, and what
// a user sees of them: list items, texts, check marks, shown and enabled controls.
// For every page's tests; user_actions.h names the same by page and control id.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>
#include <vector>

namespace page_test {

// The sheet's Apply button.
inline constexpr int kApplyButtonId = 0x3021;

// The sheet's Apply button is enabled (some page reported a change since the last apply).
inline bool ApplyEnabled(HWND sheet) { return IsWindowEnabled(GetDlgItem(sheet, kApplyButtonId)) != FALSE; }

// The control's own visibility flag, whatever its parents show.
inline bool Shown(HWND control) { return (GetWindowLongPtrA(control, GWL_STYLE) & WS_VISIBLE) != 0; }
inline bool Enabled(HWND control) { return IsWindowEnabled(control) != FALSE; }

inline std::string WindowText(HWND window) {
    const int length = GetWindowTextLengthA(window);
    std::string text(static_cast<std::size_t>(length > 0 ? length : 0) + 1, '\0');
    const int copied = GetWindowTextA(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(copied > 0 ? copied : 0));
    return text;
}

// The items of a combo box, in list order.
inline std::vector<std::string> ListItems(HWND list) {
    std::vector<std::string> items;
    const LRESULT count = SendMessageA(list, CB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        const LRESULT length = SendMessageA(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(i), 0);
        std::string text(static_cast<std::size_t>(length > 0 ? length : 0) + 1, '\0');
        SendMessageA(list, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<std::size_t>(length > 0 ? length : 0));
        items.push_back(text);
    }
    return items;
}

inline int ListSelection(HWND list) { return static_cast<int>(SendMessageA(list, CB_GETCURSEL, 0, 0)); }

// The selected item's text; empty with no selection.
inline std::string SelectedItem(HWND list) {
    const int index = ListSelection(list);
    if (index < 0) return {};
    return ListItems(list)[static_cast<std::size_t>(index)];
}

// A pick from a combo box's list: the selection moves, then the list tells its parent.
// (CB_SETCURSEL alone notifies nobody.)
inline void SelectItem(HWND list, int index) {
    SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageA(GetParent(list), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(list), CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(list));
}

// Picks the item with exactly this text; false when the list has none.
inline bool SelectItem(HWND list, const std::string& text) {
    const LRESULT index =
        SendMessageA(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
    if (index == CB_ERR) return false;
    SelectItem(list, static_cast<int>(index));
    return true;
}

// New text in a single-line edit (SetDlgItemTextA does the same): the edit sends EN_CHANGE
// to its parent.
inline void TypeText(HWND edit, const std::string& text) { SetWindowTextA(edit, text.c_str()); }

// What the keyboard does to any edit: the whole text selected, then replaced by the typed
// text; the edit sends EN_CHANGE. Multi-line edits and the edit inside a combo box send
// nothing for text set with WM_SETTEXT, so their tests type this way.
inline void ReplaceText(HWND edit, const std::string& text) {
    SendMessageA(edit, EM_SETSEL, 0, -1);
    SendMessageA(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text.c_str()));
}

// The edit inside a drop-down combo box.
inline HWND ComboEdit(HWND combo) {
    COMBOBOXINFO info{};
    info.cbSize = sizeof(info);
    if (!GetComboBoxInfo(combo, &info)) return nullptr;
    return info.hwndItem;
}

// Typing into a drop-down combo box happens in its edit, which makes the combo box send
// CBN_EDITCHANGE (text set on the combo box itself sends none).
inline void TypeIntoCombo(HWND combo, const std::string& text) { ReplaceText(ComboEdit(combo), text); }

// A click on a check box or button.
inline void Click(HWND button) { SendMessageA(button, BM_CLICK, 0, 0); }

inline bool Checked(HWND box) { return SendMessageA(box, BM_GETCHECK, 0, 0) == BST_CHECKED; }

}  // namespace page_test
