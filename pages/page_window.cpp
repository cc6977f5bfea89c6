#include "pages/page_window.h"

#include <prsht.h>

namespace {
constexpr char kPageObjectProperty[] = "VqcPropertyPageObject";
}  // namespace

void BindPageObject(HWND window, void* object) noexcept { SetPropA(window, kPageObjectProperty, object); }

void* BoundPageObject(HWND window) noexcept {
    return window ? static_cast<void*>(GetPropA(window, kPageObjectProperty)) : nullptr;
}

void UnbindPageObject(HWND window) noexcept {
    if (window) RemovePropA(window, kPageObjectProperty);
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
    case WM_CTLCOLORSTATIC:
        return static_cast<INT_PTR>(result);
    default:
        SetWindowLongPtrA(dialog, DWLP_MSGRESULT, result);
        return TRUE;
    }
}

bool IsApplyNotification(UINT message, LPARAM lParam) noexcept {
    return message == WM_NOTIFY && lParam != 0 &&
           reinterpret_cast<const NMHDR*>(lParam)->code == static_cast<UINT>(PSN_APPLY);
}
