// What a user's clicks and keystrokes send to a page's controls, for the page tests: a
// list entry chosen, a text typed into an edit, a check box clicked; and what the user
// then sees (texts, list entries, visible controls, the sheet's Apply button).
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <string>
#include <vector>

#include "tests/pages/page_test_support.h"

namespace page_test {

// Chooses the list entry with exactly this text, as a click on it does: the selection
// moves (CB_SETCURSEL notifies nobody) and the list tells its page CBN_SELCHANGE. Returns
// the entry's index, CB_ERR when the list has no such entry (nothing is sent then).
inline int ChooseListEntry(HWND page, int listId, const std::string& text) {
    const HWND list = GetDlgItem(page, listId);
    const int index = static_cast<int>(
        SendMessageA(list, CB_FINDSTRINGEXACT, WPARAM(-1), reinterpret_cast<LPARAM>(text.c_str())));
    if (index == CB_ERR) return CB_ERR;
    SendMessageA(list, CB_SETCURSEL, WPARAM(index), 0);
    SendMessageA(page, WM_COMMAND, MAKEWPARAM(listId, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    return index;
}

// Replaces an edit's text; the edit tells its page EN_CHANGE.
inline void TypeText(HWND page, int editId, const std::string& text) {
    SetDlgItemTextA(page, editId, text.c_str());
}

// A mouse click on a button (a check box toggles and tells its page BN_CLICKED).
inline void ClickControl(HWND page, int buttonId) {
    SendMessageA(GetDlgItem(page, buttonId), BM_CLICK, 0, 0);
}

inline std::string ControlTextOf(HWND page, int id) {
    char text[512] = {};
    GetDlgItemTextA(page, id, text, sizeof(text));
    return text;
}

inline bool IsChecked(HWND page, int id) { return IsDlgButtonChecked(page, id) == BST_CHECKED; }

// The entries of a combo box's list, in list order.
inline std::vector<std::string> ListEntries(HWND page, int listId) {
    const HWND list = GetDlgItem(page, listId);
    std::vector<std::string> entries;
    const int count = static_cast<int>(SendMessageA(list, CB_GETCOUNT, 0, 0));
    for (int index = 0; index < count; ++index) {
        const int length = static_cast<int>(SendMessageA(list, CB_GETLBTEXTLEN, WPARAM(index), 0));
        std::string entry(static_cast<std::size_t>(length > 0 ? length : 0) + 1, '\0');
        SendMessageA(list, CB_GETLBTEXT, WPARAM(index), reinterpret_cast<LPARAM>(entry.data()));
        entry.resize(static_cast<std::size_t>(length > 0 ? length : 0));
        entries.push_back(entry);
    }
    return entries;
}

// The selected entry's index, CB_ERR for none.
inline int ListSelection(HWND page, int listId) {
    return static_cast<int>(SendDlgItemMessageA(page, listId, CB_GETCURSEL, 0, 0));
}

// Whether the control's own visibility style is set (the page itself may be hidden).
inline bool IsShown(HWND page, int id) {
    return (GetWindowLongA(GetDlgItem(page, id), GWL_STYLE) & WS_VISIBLE) != 0;
}

// Of the given controls, those shown, in the given order.
inline std::vector<int> ShownAmong(HWND page, const std::vector<int>& ids) {
    std::vector<int> shown;
    for (int id : ids) {
        if (IsShown(page, id)) shown.push_back(id);
    }
    return shown;
}

inline bool ApplyButtonEnabled(HWND sheet) {
    return IsWindowEnabled(GetDlgItem(sheet, kApplyButtonId)) != FALSE;
}

}  // namespace page_test
