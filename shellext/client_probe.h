// Finds the installed client's DLL beside the extension and reads its version number.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

// Looks for the candidate client DLLs, in their order, in the directory of `module` only;
// anything of that name counts, a directory too. True with the full path of the first
// one found; false with an empty path otherwise (or when path is null).
bool FindClientInstallation(HMODULE module, std::string* path);

// The client version number from the "040904B0" block's ProductVersion of the file at
// path; 726 whenever it cannot be read.
std::int32_t ReadClientVersion(const char* path);
