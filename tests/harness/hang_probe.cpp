// Never ends on its own: a window, then an endless wait. The runner must report it as
// timed out and leave nothing of it running; see tests/harness/CMakeLists.txt.
#include <windows.h>

#include <cstdio>

int main() {
    std::puts("hang_probe: waiting forever");
    std::fflush(stdout);
    CreateWindowExA(0, "STATIC", "hang probe", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, GetModuleHandleA(nullptr),
                    nullptr);
    Sleep(INFINITE);
    return 0;
}
