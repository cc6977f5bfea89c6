// The 8-bit path the DLL works with, for a file the shell names in UTF-16. The DLL's paths
// are in an ANSI code page; a name outside it (a Cyrillic name on a Western system, an
// emoji) would come out as question marks and name no file. Then the file's short (8.3)
// path, which the code page can spell, stands in for it.
#pragma once

#include <windows.h>

#include <string>

// `converted` is the path as the code page spelled it. Answers it unchanged when it names
// the same file as `widePath` (every path the code page can spell), else the short path
// when the volume has one and the code page spells it, else `converted` as it is.
std::string PathForCodePage(const wchar_t* widePath, UINT codePage, std::string converted);
