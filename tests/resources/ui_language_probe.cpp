// Run once per locale (LC_ALL in Wine's environment): checks that Wine gave the process
// the expected user default LCID and that the language index decided from it is the
// table's. Usage: ui_language_probe <expected LCID, hex> <expected index>
#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "resources/ui_language.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: ui_language_probe <lcid-hex> <index>\n");
        return 2;
    }
    const unsigned long wantLcid = std::strtoul(argv[1], nullptr, 16);
    const int wantIndex = std::atoi(argv[2]);
    const LCID lcid = GetUserDefaultLCID();
    const int before = g_languageIndex;
    const int first = GetUILanguageIndex();
    const int second = GetUILanguageIndex();
    std::printf("user default LCID 0x%04lx, language index %d then %d (state before: %d)\n",
                static_cast<unsigned long>(lcid), first, second, before);
    int failures = 0;
    if (lcid != wantLcid) {
        std::printf("FAIL: expected LCID 0x%04lx\n", wantLcid);
        ++failures;
    }
    if (before != -1) {
        std::printf("FAIL: the index was decided before the first call\n");
        ++failures;
    }
    if (first != wantIndex || second != wantIndex || g_languageIndex != wantIndex) {
        std::printf("FAIL: expected index %d\n", wantIndex);
        ++failures;
    }
    return failures == 0 ? 0 : 1;
}
