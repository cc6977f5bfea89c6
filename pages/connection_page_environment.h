// What the Connection page reads from the machine: the recent servers the client keeps in
// the user's registry, and whether the local server module sits beside this module.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

// Under HKEY_CURRENT_USER; each subkey's name is one recent server.
constexpr char kRecentHostsKey[] = "SOFTWARE\\Marrowby\\VClient\\RecentHosts";

// The subkey names in enumeration order. A missing key gives none; an index that cannot be
// read (a name too long for 256 characters, say) is skipped and the walk goes on.
std::vector<std::string> ReadRecentHosts();

// Whether anything named "vserver.dll" (a directory too) exists in the directory of
// `module`; false when the module's path cannot be had.
bool IsServerModulePresent(HMODULE module);
