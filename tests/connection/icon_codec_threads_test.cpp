// The icon decoder on threads of its own while another thread of the process creates and
// destroys windows, as Explorer's icon threads decode beside its UI thread. Wine 8 refuses a
// good image now and then in that case (CreateIconFromResourceEx answers null, last error 0;
// a few calls in 10,000 here); every decode must still make both icons.
#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "connection/icon_codec.h"
#include "connection/icon_stream.h"
#include "tests/support/test_icons.h"

namespace {

constexpr int kDecodingThreads = 3;
constexpr auto kDuration = std::chrono::seconds(6);

// A top-level window made, shown, drawn and destroyed, with its messages handled.
void MakeAndDestroyAWindow() {
    const HWND window = CreateWindowExA(0, "STATIC", "window churn", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 120, 80,
                                        nullptr, nullptr, nullptr, nullptr);
    if (window) {
        UpdateWindow(window);
        DestroyWindow(window);
    }
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
}

}  // namespace

TEST(IconCodecThreads, EveryDecodeMakesBothIconsWhileAnotherThreadMakesWindows) {
    const IconImage images[] = {MakeTestIconImage(32, 8, 3), MakeTestIconImage(16, 4, 4)};
    const std::string text = HexTextOf(BuildIconStream(images, 2));

    std::atomic<bool> stop{false};
    std::atomic<long> decodes{0};
    std::atomic<long> incomplete{0};
    std::vector<std::thread> decoders;
    for (int t = 0; t < kDecodingThreads; ++t) {
        decoders.emplace_back([&] {
            while (!stop.load()) {
                DecodedIcon large, small;
                DecodeIconImages(text.c_str(), &large, &small);
                ++decodes;
                if (!large.handle || !small.handle) ++incomplete;
            }
        });
    }
    long windows = 0;
    const auto end = std::chrono::steady_clock::now() + kDuration;
    while (std::chrono::steady_clock::now() < end) {
        MakeAndDestroyAWindow();
        ++windows;
    }
    stop = true;
    for (std::thread& decoder : decoders) decoder.join();

    std::printf("%ld decodes on %d threads beside %ld windows: %ld without both icons\n", decodes.load(),
                kDecodingThreads, windows, incomplete.load());
    EXPECT_GT(windows, 0);
    EXPECT_GT(decodes.load(), 0);
    EXPECT_EQ(incomplete.load(), 0);
}
