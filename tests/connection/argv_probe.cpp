// Prints, one per line, the arguments that BuildArgumentVector makes of the text in
// VQC_PROBE_TEXT with this program's own path in front. Used to see how a program path
// that holds a blank is split.
#include <cstdio>

#include "common/win_handles.h"
#include "connection/argument_vector.h"

int main() {
    char text[1024] = {};
    GetEnvironmentVariableA("VQC_PROBE_TEXT", text, sizeof(text));
    int argc = 0;
    char** argv = nullptr;
    BuildArgumentVector(text, &argc, &argv, true, nullptr, nullptr, nullptr);
    const UniqueLocalMemory block(reinterpret_cast<HLOCAL>(argv));
    for (int i = 0; argv && i < argc; ++i) std::printf("%s\n", argv[i]);
    return argv ? 0 : 1;
}
