// DialogResizer: makes a dialog's controls follow its size by a resize map (resize_maps.h).
// Init records where every mapped control sits; each WM_SIZE then moves and sizes those
// controls by the growth of the client area since Init, visible or hidden alike, so that a
// group shown later already has the right size. Controls outside the map never move.
#pragma once

#include <windows.h>

#include <vector>

#include "pages/resize_layout.h"

class DialogResizer {
public:
    DialogResizer() = default;
    DialogResizer(const DialogResizer&) = delete;
    DialogResizer& operator=(const DialogResizer&) = delete;

    // Records the client size of `dialog` and the rectangle of every control of `map`
    // (a row whose control does not exist is left out). addGripper creates a size grip in
    // the bottom right corner; useMinTrackSize makes the present size the smallest the user
    // can drag the window to; forceStyle bits are added to the dialog's style. The pages
    // pass false, false, 0: no grip, no minimum, no style change.
    void Init(HWND dialog, const ResizeMapEntry* map, bool addGripper, bool useMinTrackSize, DWORD forceStyle);

    // Moves and sizes the mapped controls for a client area of width x height.
    void UpdateLayout(int width, int height) const;

    // WM_SIZE (a minimise request is ignored) and WM_GETMINMAXINFO (a minimum only when
    // one was recorded). False for every other message, and for all before Init.
    bool ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

    // The size grip window made by Init, or null.
    HWND Gripper() const noexcept { return gripper_; }
    bool Initialized() const noexcept { return dialog_ != nullptr; }

private:
    struct MappedControl {
        int id;
        unsigned flags;
        ControlRect initial;
    };

    HWND dialog_ = nullptr;
    SIZE initialClient_ = {0, 0};
    POINT minTrackSize_ = {-1, -1};
    HWND gripper_ = nullptr;
    ControlRect gripperInitial_ = {0, 0, 0, 0};
    std::vector<MappedControl> controls_;
};
