// A GoogleTest program that the runner checks are run against by name; its tests are not
// part of the suite themselves.
#include <windows.h>

#include <gtest/gtest.h>

TEST(HarnessProbe, Passes) { EXPECT_EQ(1 + 1, 2); }

TEST(HarnessProbe, Skips) { GTEST_SKIP() << "skipped on purpose"; }

// Touches the desktop, as every test with a window does.
TEST(HarnessProbe, MakesAWindow) {
    const HWND window = CreateWindowExA(0, "STATIC", "probe", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                        GetModuleHandleA(nullptr), nullptr);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(DestroyWindow(window));
}
