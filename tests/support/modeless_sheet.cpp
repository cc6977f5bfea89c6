#include "tests/support/modeless_sheet.h"

namespace test_support {

namespace {

// A modeless PropertySheetA answers its window as an INT_PTR, which comes back
// sign-extended when the handle's bit 31 is set, while GetParent and friends answer the
// same window zero-extended. The system's own form is what the tests compare with.
HWND SheetWindowFromResult(INT_PTR result) {
    if (result == -1 || result == 0) return nullptr;
    const HWND window = reinterpret_cast<HWND>(result);
    const HWND own = GetAncestor(window, GA_ROOT);
    return own ? own : window;
}

}  // namespace

void PumpMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

HWND ShowModelessSheet(std::vector<HPROPSHEETPAGE>& pages, const char* caption, DWORD extraFlags) {
    PROPSHEETHEADERA header{};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_MODELESS | extraFlags;
    header.hInstance = GetModuleHandleA(nullptr);
    header.pszCaption = caption;
    header.nPages = static_cast<UINT>(pages.size());
    header.phpage = pages.data();
    const HWND sheet = SheetWindowFromResult(PropertySheetA(&header));
    PumpMessages();
    return sheet;
}

}  // namespace test_support
