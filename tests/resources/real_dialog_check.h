// Creates one of the four dialogs as a real window and compares every control with the
// expected table: class, style bits, caption, position and size through MapDialogRect.
#pragma once

#include <windows.h>

#include <string>

// The DEFAULT_GUI_FONT face as this process sees it.
std::wstring StockGuiFontFace();

// A hidden top-level owner for the dialogs, destroyed with the object.
class TestOwnerWindow {
public:
    TestOwnerWindow();
    ~TestOwnerWindow();
    TestOwnerWindow(const TestOwnerWindow&) = delete;
    TestOwnerWindow& operator=(const TestOwnerWindow&) = delete;
    HWND Get() const { return window_; }

private:
    HWND window_;
};

INT_PTR CALLBACK QuietDialogProc(HWND, UINT message, WPARAM, LPARAM);

// GoogleTest expectations for template `index` shown in the process's language
// `languageIndex` (which the caller has checked is this process's language).
void ExpectRealDialogMatchesTable(int index, int languageIndex);
