// No USER or GDI handle outlives an Options page. With all but 300 icons, windows and
// bitmaps taken away, a page that kept one handle per round would fail within 300 rounds;
// this page goes through 1,000 rounds of opening, browsing, picking, applying and closing,
// and still fills its list in the last one.
//
// Measured with tests/pages/option_page_leak_calibration (kept out of the suite), with
// the same squeeze and rounds: keeping one icon per round makes round 140 fail, keeping
// one bitmap per round round 279. (An icon holds two GDI bitmaps under Wine, so 300 free
// bitmaps leave room for about 150 icons.) A thousand rounds take a few minutes.
#include <gtest/gtest.h>

#include "tests/pages/option_page_cycles.h"

using namespace option_test;

namespace {
constexpr std::size_t kHeadroom = 300;
constexpr int kRounds = 1000;
}  // namespace

TEST(OptionPageLeaks, AThousandRoundsWithThreeHundredHandlesToSpareStillFillTheList) {
    page_test::TempFolder folder("option-leaks");
    const std::string file = folder.File("leak.vqc");
    ASSERT_TRUE(OpenPickApplyClose(file));  // everything the rounds need is loaded once

    HandleSqueeze squeeze(kHeadroom);
    ASSERT_GT(squeeze.IconsHeld(), 10000u);
    ASSERT_GT(squeeze.BitmapsHeld(), 10000u);
    // The squeeze is real: only about the headroom is left.
    const std::size_t iconsLeft = HandleSqueeze::IconsLeft();
    const std::size_t bitmapsLeft = HandleSqueeze::BitmapsLeft();
    EXPECT_LE(iconsLeft, kHeadroom);
    EXPECT_GT(iconsLeft, 0u);
    EXPECT_LE(bitmapsLeft, kHeadroom + 1);
    EXPECT_GT(bitmapsLeft, 0u);

    int rounds = 0;
    while (rounds < kRounds && OpenPickApplyClose(file)) ++rounds;
    EXPECT_EQ(rounds, kRounds);
    // Nothing was kept: the same handles are left as before.
    EXPECT_EQ(HandleSqueeze::IconsLeft(), iconsLeft);
    EXPECT_EQ(HandleSqueeze::BitmapsLeft(), bitmapsLeft);
}
