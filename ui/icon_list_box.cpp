#include "ui/icon_list_box.h"

bool IconListBox::Add(UniqueIcon icon) noexcept {
    if (!list_ || !IsWindow(list_)) return false;  // a window that is gone answers 0, not LB_ERR
    // Without LBS_HASSTRINGS the "string" of an owner-drawn item is its data.
    const LRESULT index = SendMessageA(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(icon.Get()));
    if (index < 0) return false;  // LB_ERR, LB_ERRSPACE: the icon stays ours and goes
    icon.Detach();
    return true;
}

int IconListBox::Count() const noexcept {
    if (!list_) return 0;
    const LRESULT count = SendMessageA(list_, LB_GETCOUNT, 0, 0);
    return count > 0 ? static_cast<int>(count) : 0;
}

HICON IconListBox::IconAt(int index) const noexcept {
    if (!list_) return nullptr;
    const LRESULT data = SendMessageA(list_, LB_GETITEMDATA, static_cast<WPARAM>(index), 0);
    if (data == LB_ERR) return nullptr;
    return reinterpret_cast<HICON>(data);
}

void IconListBox::Clear() noexcept {
    const int count = Count();
    if (!list_) return;
    SendMessageA(list_, WM_SETREDRAW, FALSE, 0);
    for (int i = 0; i < count; ++i) {
        UniqueIcon(IconAt(0)).Reset();  // the icon goes first, then its item
        SendMessageA(list_, LB_DELETESTRING, 0, 0);
    }
    SendMessageA(list_, WM_SETREDRAW, TRUE, 0);
}
