// The three pages' resize maps, row by row.
#include "pages/resize_maps.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

std::vector<std::pair<int, unsigned>> Rows(const ResizeMapEntry* map) {
    std::vector<std::pair<int, unsigned>> rows;
    for (std::size_t i = 0; i < ResizeMapLength(map); ++i) rows.emplace_back(map[i].controlId, map[i].flags);
    return rows;
}

}  // namespace

TEST(ResizeMaps, ConnectionPageWidensItsElevenInputs) {
    const std::vector<std::pair<int, unsigned>> want = {{1002, 0x1}, {1006, 0x1}, {1010, 0x1}, {1004, 0x1},
                                                        {1008, 0x1}, {1012, 0x1}, {1014, 0x1}, {1020, 0x1},
                                                        {1016, 0x1}, {1018, 0x1}, {1022, 0x1}};
    EXPECT_EQ(Rows(kConnectionPageResizeMap), want);
}

TEST(ResizeMaps, ProxyPageWidensItsSevenInputs) {
    const std::vector<std::pair<int, unsigned>> want = {{1002, 0x1}, {1026, 0x1}, {1028, 0x1}, {1030, 0x1},
                                                        {1035, 0x1}, {1032, 0x1}, {1034, 0x1}};
    EXPECT_EQ(Rows(kProxyPageResizeMap), want);
}

TEST(ResizeMaps, OptionPageMovesTheButtonAndCheckBoxAndGrowsTheList) {
    const std::vector<std::pair<int, unsigned>> want = {{1039, 0x1}, {1040, 0x4}, {1041, 0x3}, {1042, 0x8}};
    EXPECT_EQ(Rows(kOptionPageResizeMap), want);
}

TEST(ResizeMaps, EachEndsWithMinusOneAndZero) {
    for (const ResizeMapEntry* map : {kConnectionPageResizeMap, kProxyPageResizeMap, kOptionPageResizeMap}) {
        const std::size_t length = ResizeMapLength(map);
        EXPECT_EQ(map[length].controlId, -1);
        EXPECT_EQ(map[length].flags, 0u);
    }
}
