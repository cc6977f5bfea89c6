// Whether two window handles name the same window. A 64-bit handle carries the window in its
// low 32 bits, and the system hands the same window out both sign-extended and zero-extended
// (a modeless PropertySheetA answers 0xFFFFFFFF8xxxxxxx where GetParent answers 0x8xxxxxxx),
// so handles are compared by those 32 bits, never as pointers.
#pragma once

#include <windows.h>

#include <cstdint>

inline bool SameWindow(HWND a, HWND b) noexcept {
    return static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(a)) ==
           static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(b));
}
