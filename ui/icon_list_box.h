// IconListBox: the Options page's owner-drawn icon list, and the one owner of the icons
// its items carry as item data: an item's icon is destroyed when the item is removed.
#pragma once

#include <windows.h>

#include "common/win_handles.h"

class IconListBox {
public:
    IconListBox() noexcept = default;
    explicit IconListBox(HWND list) noexcept : list_(list) {}
    IconListBox(const IconListBox&) = delete;
    IconListBox& operator=(const IconListBox&) = delete;

    void Attach(HWND list) noexcept { list_ = list; }
    HWND Window() const noexcept { return list_; }

    // Appends an item whose data is the icon (null allowed); the list owns it from then on.
    // False, and the icon destroyed, when there is no list or it refuses the item.
    bool Add(UniqueIcon icon) noexcept;
    int Count() const noexcept;
    // The icon of item `index`, still owned by the list; null for an item that does not
    // exist (the list answers LB_ERR) or has none.
    HICON IconAt(int index) const noexcept;
    // Removes every item from the first on, destroying its icon, with redrawing switched
    // off meanwhile.
    void Clear() noexcept;

private:
    HWND list_ = nullptr;
};
