// The resize arithmetic: how each flag moves or sizes a control by the client area's growth.
#include "ui/resize_layout.h"

#include <gtest/gtest.h>

namespace {
constexpr ControlRect kControl = {10, 20, 110, 40};
}  // namespace

TEST(ResizeFlags, HaveTheirDialogResizeValues) {
    EXPECT_EQ(DLSZ_SIZE_X, 0x1u);
    EXPECT_EQ(DLSZ_SIZE_Y, 0x2u);
    EXPECT_EQ(DLSZ_MOVE_X, 0x4u);
    EXPECT_EQ(DLSZ_MOVE_Y, 0x8u);
}

TEST(ResizeLayout, NoGrowthLeavesEveryControlWhereItWas) {
    for (unsigned flags = 0; flags < 16; ++flags) {
        EXPECT_EQ(LaidOutRect(kControl, flags, 0, 0), kControl) << flags;
    }
}

TEST(ResizeLayout, SizeXWidensByDxOnly) {
    EXPECT_EQ(LaidOutRect(kControl, DLSZ_SIZE_X, 30, 17), (ControlRect{10, 20, 140, 40}));
}

TEST(ResizeLayout, SizeYMakesTallerByDyOnly) {
    EXPECT_EQ(LaidOutRect(kControl, DLSZ_SIZE_Y, 30, 17), (ControlRect{10, 20, 110, 57}));
}

TEST(ResizeLayout, MoveXShiftsRightKeepingTheSize) {
    EXPECT_EQ(LaidOutRect(kControl, DLSZ_MOVE_X, 30, 17), (ControlRect{40, 20, 140, 40}));
}

TEST(ResizeLayout, MoveYShiftsDownKeepingTheSize) {
    EXPECT_EQ(LaidOutRect(kControl, DLSZ_MOVE_Y, 30, 17), (ControlRect{10, 37, 110, 57}));
}

TEST(ResizeLayout, SizeXAndSizeYTogetherGrowBothWays) {
    EXPECT_EQ(LaidOutRect(kControl, DLSZ_SIZE_X | DLSZ_SIZE_Y, 30, 17), (ControlRect{10, 20, 140, 57}));
}

TEST(ResizeLayout, MoveAndSizeOnOneAxisAddTheirShares) {
    // Moved by dx and then widened by dx: the right edge travels twice.
    EXPECT_EQ(LaidOutRect(kControl, DLSZ_MOVE_X | DLSZ_SIZE_X, 30, 0), (ControlRect{40, 20, 170, 40}));
}

TEST(ResizeLayout, NoFlagsNeverMoves) { EXPECT_EQ(LaidOutRect(kControl, 0, 300, 200), kControl); }

TEST(ResizeLayout, ShrinkingMovesTheOtherWay) {
    EXPECT_EQ(LaidOutRect(kControl, DLSZ_SIZE_X | DLSZ_MOVE_Y, -8, -5), (ControlRect{10, 15, 102, 35}));
}

TEST(ResizeMapLength, CountsTheRowsBeforeTheEndRow) {
    const ResizeMapEntry map[] = {{1, DLSZ_SIZE_X}, {2, 0}, {-1, 1}, kResizeMapEnd};
    // (-1, 1) is a row like any other: only (-1, 0) ends the map.
    EXPECT_EQ(ResizeMapLength(map), 3u);
}

TEST(ResizeMapLength, EmptyAndNullMapsHaveNoRows) {
    const ResizeMapEntry empty[] = {kResizeMapEnd};
    EXPECT_EQ(ResizeMapLength(empty), 0u);
    EXPECT_EQ(ResizeMapLength(nullptr), 0u);
}
