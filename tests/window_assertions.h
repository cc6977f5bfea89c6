// SameWindow for GoogleTest: two window handles compared by the window they name, so that a
// handle the system handed out sign-extended (a sheet from PropertySheetA, a dialog created
// through an INT_PTR) equals the same window's zero-extended one (GetParent, GetFocus). Such
// pairs differ only once the window's handle has bit 31 set, which happens after Wine has
// reused a handle slot often enough, so a pointer comparison fails at random in a long run.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include "common/same_window.h"

inline ::testing::AssertionResult IsSameWindow(HWND actual, HWND expected) {
    if (SameWindow(actual, expected)) return ::testing::AssertionSuccess() << actual << " names " << expected;
    return ::testing::AssertionFailure() << actual << " and " << expected << " name different windows";
}
