// What the Options page's drawing tests share: a record whose client lists the test icons,
// an item's place in the list, and counting pixels along the edge of a picture.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/file_bytes.h"
#include "tests/pages/option_page_test_support.h"

namespace option_test {

inline ComPtr<VQCFileInfo> IconsRecord(const page_test::TempFolder& folder) {
    const std::string file = folder.File("draw.vqc");
    WriteFileBytes(file, "-h server ");
    ComPtr<VQCFileInfo> record = RecordFor(file);
    record->clientPath = IconsDll();
    return record;
}

inline RECT ItemRect(HWND list, int index) {
    RECT rect{};
    SendMessageA(list, LB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&rect));
    return rect;
}

// The pixels along the inside edge of a width x height picture, clockwise from top-left.
inline std::vector<std::uint32_t> Edge(const std::vector<std::uint32_t>& pixels, int width, int height) {
    std::vector<std::uint32_t> edge;
    for (int x = 0; x < width; ++x) edge.push_back(pixels[x]);
    for (int y = 1; y < height; ++y) edge.push_back(pixels[static_cast<std::size_t>(y) * width + width - 1]);
    for (int x = width - 2; x >= 0; --x) edge.push_back(pixels[static_cast<std::size_t>(height - 1) * width + x]);
    for (int y = height - 2; y > 0; --y) edge.push_back(pixels[static_cast<std::size_t>(y) * width]);
    return edge;
}

inline long CountOf(const std::vector<std::uint32_t>& pixels, std::uint32_t value) {
    return static_cast<long>(std::count(pixels.begin(), pixels.end(), value));
}

}  // namespace option_test
