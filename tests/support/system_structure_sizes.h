// The sizes the system documents for the structures the DLL fills for it, for 64-bit and for
// 32-bit programs: tests compare what the DLL hands over with these, not with sizeof.
#pragma once

#include <windows.h>

namespace system_sizes {

constexpr bool kIs64Bit = sizeof(void*) == 8;

// PROPSHEETPAGEA in full, with the header bitmap.
constexpr DWORD kFullPropertySheetPage = kIs64Bit ? 104 : 56;
// OPENFILENAMEA in full, and as it was up to version 4.0.
constexpr DWORD kFullOpenFileName = kIs64Bit ? 152 : 88;
constexpr DWORD kOpenFileNameVersion400 = kIs64Bit ? 136 : 76;

}  // namespace system_sizes
