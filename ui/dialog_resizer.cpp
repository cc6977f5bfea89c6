#include "ui/dialog_resizer.h"

namespace {

ControlRect RectInClient(HWND dialog, HWND control) {
    RECT rect{};
    GetWindowRect(control, &rect);
    MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return {rect.left, rect.top, rect.right, rect.bottom};
}

// A drop-down combo box's window shows only its closed field, but the height it is given
// includes its list: the rectangle reaches down to the bottom of the dropped list, so that
// sizing it keeps the list as long as the template made it.
ControlRect RecordedRect(HWND dialog, HWND control) {
    ControlRect rect = RectInClient(dialog, control);
    char className[16] = {};
    GetClassNameA(control, className, sizeof(className));
    if (lstrcmpiA(className, "ComboBox") != 0) return rect;
    if ((GetWindowLongPtrA(control, GWL_STYLE) & 0x3) == CBS_SIMPLE) return rect;
    RECT dropped{};
    if (!SendMessageA(control, CB_GETDROPPEDCONTROLRECT, 0, reinterpret_cast<LPARAM>(&dropped))) return rect;
    MapWindowPoints(HWND_DESKTOP, dialog, reinterpret_cast<POINT*>(&dropped), 2);
    if (dropped.bottom > rect.bottom) rect.bottom = dropped.bottom;
    return rect;
}

void Place(HWND control, const ControlRect& rect, unsigned flags) {
    UINT how = SWP_NOZORDER | SWP_NOACTIVATE;
    if (!(flags & (DLSZ_MOVE_X | DLSZ_MOVE_Y))) how |= SWP_NOMOVE;
    if (!(flags & (DLSZ_SIZE_X | DLSZ_SIZE_Y))) how |= SWP_NOSIZE;
    SetWindowPos(control, nullptr, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, how);
}

}  // namespace

void DialogResizer::Init(HWND dialog, const ResizeMapEntry* map) {
    dialog_ = dialog;
    controls_.clear();

    RECT client{};
    GetClientRect(dialog, &client);
    initialClient_ = {client.right - client.left, client.bottom - client.top};

    const std::size_t rows = ResizeMapLength(map);
    controls_.reserve(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        const HWND control = GetDlgItem(dialog, map[i].controlId);
        if (!control) continue;
        controls_.push_back({map[i].controlId, map[i].flags, RecordedRect(dialog, control)});
    }
}

void DialogResizer::UpdateLayout(int width, int height) const {
    if (!dialog_) return;
    const int dx = width - initialClient_.cx;
    const int dy = height - initialClient_.cy;
    // Hidden controls are laid out too: a group shown later is then already in place.
    for (const MappedControl& mapped : controls_) {
        const HWND control = GetDlgItem(dialog_, mapped.id);
        if (control) Place(control, LaidOutRect(mapped.initial, mapped.flags, dx, dy), mapped.flags);
    }
}

bool DialogResizer::ProcessWindowMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) {
    if (!dialog_) return false;
    switch (message) {
    case WM_SIZE:
        if (wParam != SIZE_MINIMIZED) UpdateLayout(LOWORD(lParam), HIWORD(lParam));
        result = 0;
        return true;
    case WM_GETMINMAXINFO: result = 0; return true;
    default: return false;
    }
}
