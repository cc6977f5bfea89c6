// A small DLL for the fault layer's own tests: it makes the calls the layer wraps in known
// order, and one of its functions leaks a file on purpose when its allocation fails, so a
// test can prove that a sweep sees such a leak.
#include <windows.h>

#include <cstdlib>

extern "C" {

// CreateFileA of `path` for reading; answers the handle (or INVALID_HANDLE_VALUE) and the
// thread's last error right after the call.
__declspec(dllexport) HANDLE ProbeOpen(const char* path, DWORD* error) {
    SetLastError(0);
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    *error = GetLastError();
    return file;
}

__declspec(dllexport) BOOL ProbeClose(HANDLE file) { return CloseHandle(file); }

// GetFileAttributesA of `path`.
__declspec(dllexport) DWORD ProbeAttributes(const char* path) { return GetFileAttributesA(path); }

// Opens the file, takes a buffer, frees both. When the buffer cannot be had it returns
// without closing the file: the deliberate leak.
__declspec(dllexport) int ProbeOpenWithBuffer(const char* path) {
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 1;
    void* buffer = std::malloc(64);
    if (!buffer) return 2;  // the file stays open
    static_cast<volatile char*>(buffer)[0] = 1;
    std::free(buffer);
    CloseHandle(file);
    return 0;
}

// The same steps with both released on every road.
__declspec(dllexport) int ProbeOpenWithBufferCarefully(const char* path) {
    HANDLE file = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return 1;
    void* buffer = std::malloc(64);
    const int result = buffer ? 0 : 2;
    if (buffer) static_cast<volatile char*>(buffer)[0] = 1;
    std::free(buffer);
    CloseHandle(file);
    return result;
}

}  // extern "C"
