// The plain Win32 side of the page base (property_page.h): which page object a page window
// belongs to, and how a dialog procedure hands a handled message's result back.
#pragma once

#include <windows.h>

// Ties a page window to its page object for the window's life (the dialog's user slot), so
// the page's dialog procedure finds the object. Unbinding leaves the window answering nothing.
void BindPageObject(HWND window, void* object) noexcept;
void* BoundPageObject(HWND window) noexcept;
void UnbindPageObject(HWND window) noexcept;

// What a dialog procedure returns for a message it handled with `result`: the result
// itself for the messages whose answer is the procedure's return value (WM_INITDIALOG,
// WM_COMPAREITEM, WM_VKEYTOITEM, WM_CHARTOITEM, WM_QUERYDRAGICON, the WM_CTLCOLOR* family);
// for every other message TRUE, with the result stored as DWLP_MSGRESULT.
INT_PTR AnswerDialogMessage(HWND dialog, UINT message, LRESULT result) noexcept;

// Whether a message is a sheet's PSN_APPLY notification (from any sender).
bool IsApplyNotification(UINT message, LPARAM lParam) noexcept;
