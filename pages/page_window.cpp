#include "pages/page_window.h"

#include <prsht.h>

// The dialog's own user slot: it exists in every dialog window, so storing the object there
// cannot fail the way a window property can when the system is short of memory (a page
// whose window could not find its object would take edits and never save them).
void BindPageObject(HWND window, void* object) noexcept {
    SetWindowLongPtrA(window, DWLP_USER, reinterpret_cast<LONG_PTR>(object));
}

void* BoundPageObject(HWND window) noexcept {
    return window ? reinterpret_cast<void*>(GetWindowLongPtrA(window, DWLP_USER)) : nullptr;
}

void UnbindPageObject(HWND window) noexcept {
    if (window) SetWindowLongPtrA(window, DWLP_USER, 0);
}

INT_PTR AnswerDialogMessage(HWND dialog, UINT message, LRESULT result) noexcept {
    switch (message) {
    case WM_INITDIALOG:
    case WM_COMPAREITEM:
    case WM_VKEYTOITEM:
    case WM_CHARTOITEM:
    case WM_QUERYDRAGICON:
    case WM_CTLCOLORMSGBOX:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSCROLLBAR:
    case WM_CTLCOLORSTATIC: return static_cast<INT_PTR>(result);
    default: SetWindowLongPtrA(dialog, DWLP_MSGRESULT, result); return TRUE;
    }
}

bool IsApplyNotification(UINT message, LPARAM lParam) noexcept {
    return message == WM_NOTIFY && lParam != 0 &&
           reinterpret_cast<const NMHDR*>(lParam)->code == static_cast<UINT>(PSN_APPLY);
}
