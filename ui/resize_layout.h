// The arithmetic of a resizing dialog: a control follows the growth of its dialog's client
// area (dx, dy) by its flags. Plain data, so the rules are checked without windows.
#pragma once

#include <cstddef>

// Flag bits of a resize map row.
enum : unsigned {
    DLSZ_SIZE_X = 0x1,  // the width follows the dialog's width
    DLSZ_SIZE_Y = 0x2,  // the height follows the dialog's height
    DLSZ_MOVE_X = 0x4,  // moves right with the dialog's right edge
    DLSZ_MOVE_Y = 0x8,  // moves down with the dialog's bottom edge
};

// One row of a resize map; a map ends with the row (-1, 0).
struct ResizeMapEntry {
    int controlId;
    unsigned flags;
};

inline constexpr ResizeMapEntry kResizeMapEnd = {-1, 0};

// A control's rectangle in its dialog's client coordinates.
struct ControlRect {
    int left;
    int top;
    int right;
    int bottom;
    friend bool operator==(const ControlRect&, const ControlRect&) = default;
};

// The number of rows before the end row.
std::size_t ResizeMapLength(const ResizeMapEntry* map) noexcept;

// Where a control recorded at `initial` goes when the client area has grown by dx, dy
// (negative when it shrank): SIZE moves the right or bottom edge, MOVE the whole control.
ControlRect LaidOutRect(const ControlRect& initial, unsigned flags, int dx, int dy) noexcept;
