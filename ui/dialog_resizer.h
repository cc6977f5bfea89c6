// DialogResizer: makes a dialog's controls follow its size by a resize map (resize_maps.h).
// Init records where every mapped control sits; each WM_SIZE then moves and sizes those
// controls by the growth of the client area since Init, visible or hidden alike, so that a
// group shown later already has the right size. Controls outside the map never move.
#pragma once

#include <windows.h>

#include <vector>

#include "ui/resize_layout.h"

class DialogResizer {
public:
    DialogResizer() = default;
    DialogResizer(const DialogResizer&) = delete;
    DialogResizer& operator=(const DialogResizer&) = delete;

    // Records the client size of `dialog` and the rectangle of every control of `map`
    // (a row whose control does not exist is left out). The dialog gets no size grip, no
    // minimum tracking size and no style of the resizer's: a property page is sized by its
    // sheet, never dragged.
    void Init(HWND dialog, const ResizeMapEntry* map);

    // Moves and sizes the mapped controls for a client area of width x height.
    void UpdateLayout(int width, int height) const;

    // WM_SIZE (a minimise request is ignored) and WM_GETMINMAXINFO (answered, the sizes left
    // as they are). False for every other message, and for all before Init.
    bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

    bool Initialized() const noexcept { return dialog_ != nullptr; }

private:
    struct MappedControl {
        int id;
        unsigned flags;
        ControlRect initial;
    };

    HWND dialog_ = nullptr;
    SIZE initialClient_ = {0, 0};
    std::vector<MappedControl> controls_;
};
