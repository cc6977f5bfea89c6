// The texts of the string table as 8-bit text in the system ANSI code page, for the
// ANSI windows of the pages: converted once per id and kept for the whole process.
#pragma once

#include <cstdint>

// One converted text; nodes are appended at the tail and never freed.
struct AnsiStringCacheNode {
    AnsiStringCacheNode* next;
    char* text;  // null when the conversion could not get memory; not retried
    std::uint32_t id;
};

extern AnsiStringCacheNode* g_ansiStringCache;

// The text of string id `id` in the UI language (English_UK where the language has
// none), converted with CP_ACP including both terminating NULs, so a filter list
// arrives whole. Null for an id above 48. The same id gives the same pointer; callers
// never free it.
const char* GetLocalString(std::uint32_t id) noexcept;
