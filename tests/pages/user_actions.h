// The user's input of sheet_input.h addressed by page and control id, as the tests of the
// pages with many controls write it: a list entry chosen, a text typed into an edit, a
// check box clicked; and what the user then sees.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/pages/sheet_input.h"

namespace page_test {

// Chooses the list entry with exactly this text, as a click on it does. Returns the
// entry's index, CB_ERR when the list has no such entry (nothing is sent then).
inline int ChooseListEntry(HWND page, int listId, const std::string& text) {
    const HWND list = GetDlgItem(page, listId);
    const int index =
        static_cast<int>(SendMessageA(list, CB_FINDSTRINGEXACT, WPARAM(-1), reinterpret_cast<LPARAM>(text.c_str())));
    if (index != CB_ERR) SelectItem(list, index);
    return index;
}

inline void TypeText(HWND page, int editId, const std::string& text) { TypeText(GetDlgItem(page, editId), text); }
inline void ClickControl(HWND page, int buttonId) { Click(GetDlgItem(page, buttonId)); }
inline std::string ControlTextOf(HWND page, int id) { return WindowText(GetDlgItem(page, id)); }
inline bool IsChecked(HWND page, int id) { return Checked(GetDlgItem(page, id)); }
inline std::vector<std::string> ListEntries(HWND page, int listId) { return ListItems(GetDlgItem(page, listId)); }
inline int ListSelection(HWND page, int listId) { return ListSelection(GetDlgItem(page, listId)); }
inline bool IsShown(HWND page, int id) { return Shown(GetDlgItem(page, id)); }

// Of the given controls, those shown, in the given order.
inline std::vector<int> ShownAmong(HWND page, const std::vector<int>& ids) {
    std::vector<int> shown;
    for (int id : ids) {
        if (IsShown(page, id)) shown.push_back(id);
    }
    return shown;
}

}  // namespace page_test
