// Dies of an access violation on purpose; see tests/harness/CMakeLists.txt.
#include <cstdio>

int main() {
    std::puts("crash_probe: writing through a null pointer");
    std::fflush(stdout);
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
    return 0;
}
