#include "ui/resize_layout.h"

std::size_t ResizeMapLength(const ResizeMapEntry* map) noexcept {
    std::size_t length = 0;
    if (!map) return 0;
    while (!(map[length].controlId == kResizeMapEnd.controlId && map[length].flags == kResizeMapEnd.flags)) {
        ++length;
    }
    return length;
}

ControlRect LaidOutRect(const ControlRect& initial, unsigned flags, int dx, int dy) noexcept {
    ControlRect rect = initial;
    if (flags & DLSZ_MOVE_X) {
        rect.left += dx;
        rect.right += dx;
    }
    if (flags & DLSZ_MOVE_Y) {
        rect.top += dy;
        rect.bottom += dy;
    }
    if (flags & DLSZ_SIZE_X) rect.right += dx;
    if (flags & DLSZ_SIZE_Y) rect.bottom += dy;
    return rect;
}
