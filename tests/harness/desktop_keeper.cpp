// Keeps the Wine prefix's on-demand helpers alive for a whole test run.
//
// Wine starts `explorer.exe /desktop` for the first program that touches the desktop and
// hands it that program's standard handles; when a test program does it, the desktop holds
// the test's output pipe and ctest waits for it long after the test has ended. Started once
// before the tests with its standard handles on /dev/null, this program brings the desktop
// (and COM's service) up with those handles instead, and keeps them running until the Wine
// server is stopped at the end of the run.
//
//   desktop_keeper.exe READY_FILE    writes READY_FILE once everything is up, then waits
#include <windows.h>
#include <objbase.h>

#include <cstdio>

#include "common/win_handles.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: desktop_keeper READY_FILE\n");
        return 2;
    }

    // A window of our own: creating it makes Wine start the desktop process, and the
    // desktop stays while a program that uses it is alive.
    const HWND window = CreateWindowExA(0, "STATIC", "vqc desktop keeper", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                        GetModuleHandleA(nullptr), nullptr);
    if (window == nullptr) {
        std::fprintf(stderr, "desktop_keeper: no window (error %lu)\n", GetLastError());
        return 1;
    }

    // COM in a single-threaded apartment, with one object created through the class
    // registry, brings up the helpers COM asks the service manager for.
    if (SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {
        IUnknown* object = nullptr;
        if (SUCCEEDED(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                       reinterpret_cast<void**>(&object)))) {
            object->Release();
        }
    }

    const UniqueKernelHandle ready(
        CreateFileA(argv[1], GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!ready) {
        std::fprintf(stderr, "desktop_keeper: cannot write %s (error %lu)\n", argv[1], GetLastError());
        return 1;
    }

    // Until the server is stopped (wineserver -k) or the window is closed.
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    return 0;
}
