// Calibrates the Options page's leak test, outside the test suite: the same squeeze and
// the same rounds, but keeping one handle per round on purpose, as a leaking page would.
// Prints the round in which the page first failed to do its work.
//
// Usage: option_page_leak_calibration [icon|bitmap|none] [headroom] [rounds]
// It takes Wine's whole USER handle table: run it while no other program of the prefix runs.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/pages/option_page_cycles.h"

using namespace option_test;

int main(int argc, char** argv) {
    const std::string leak = argc > 1 ? argv[1] : "icon";
    const std::size_t headroom = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 300;
    const int rounds = argc > 3 ? std::atoi(argv[3]) : 1000;

    page_test::TempFolder folder("option-leak-calibration");
    const std::string file = folder.File("leak.vqc");
    if (!OpenPickApplyClose(file)) {
        std::printf("the first round failed without a squeeze\n");
        return 2;
    }
    std::vector<UniqueIcon> keptIcons;
    std::vector<UniqueGdiObject> keptBitmaps;
    HandleSqueeze squeeze(headroom);
    std::printf("held %zu icons and %zu bitmaps, %zu icons and %zu bitmaps left\n", squeeze.IconsHeld(),
                squeeze.BitmapsHeld(), HandleSqueeze::IconsLeft(), HandleSqueeze::BitmapsLeft());
    for (int round = 1; round <= rounds; ++round) {
        if (!OpenPickApplyClose(file)) {
            std::printf("leak %s: round %d failed\n", leak.c_str(), round);
            return 1;
        }
        if (leak == "icon") keptIcons.emplace_back(MakeTestIcon(16, 4));
        if (leak == "bitmap") keptBitmaps.emplace_back(CreateBitmap(1, 1, 1, 1, nullptr));
    }
    std::printf("leak %s: all %d rounds succeeded\n", leak.c_str(), rounds);
    return 0;
}
