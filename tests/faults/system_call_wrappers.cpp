// The wrappers that stand in for the module's imports, and the table that names them. A
// wrapper that can fail asks the plan first; when told to, it answers the function's
// documented failure value and sets a last-error code a real failure of it sets. Every
// wrapper puts what the real call made or destroyed into the books.
#define SECURITY_WIN32
#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <security.h>
#include <shellapi.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tests/faults/fault_layer_state.h"
#include "tests/faults/system_call_table.h"

namespace faults::detail {
namespace {

// Every function the layer stands in for, by the name the module imports it under.
// clang-format off
#define VQC_WRAPPED_FUNCTIONS(X) \
    X(malloc) \
    X(calloc) \
    X(realloc) \
    X(_strdup) \
    X(free) \
    X(LocalAlloc) \
    X(LocalFree) \
    X(FormatMessageA) \
    X(CommandLineToArgvW) \
    X(CreateFileA) \
    X(CreateFileMappingA) \
    X(MapViewOfFileEx) \
    X(UnmapViewOfFile) \
    X(CloseHandle) \
    X(CreateEventA) \
    X(CreateSemaphoreA) \
    X(DuplicateHandle) \
    X(WriteFile) \
    X(ReadFile) \
    X(SetFilePointerEx) \
    X(SetEndOfFile) \
    X(GetFileSize) \
    X(GetFileAttributesA) \
    X(GetShortPathNameW) \
    X(GetModuleFileNameA) \
    X(GetEnvironmentVariableA) \
    X(MultiByteToWideChar) \
    X(WideCharToMultiByte) \
    X(CreateIconFromResourceEx) \
    X(CopyIcon) \
    X(ExtractIconExA) \
    X(ExtractIconA) \
    X(DestroyIcon) \
    X(GetIconInfo) \
    X(DeleteObject) \
    X(GetDIBits) \
    X(GetDC) \
    X(ReleaseDC) \
    X(CreatePropertySheetPageA) \
    X(SetPropA) \
    X(CreateDialogIndirectParamA) \
    X(DialogBoxIndirectParamA) \
    X(GetOpenFileNameA) \
    X(MessageBoxA) \
    X(DragQueryFileA) \
    X(DragQueryFileW) \
    X(RegOpenKeyExA) \
    X(RegCreateKeyExA) \
    X(RegCloseKey) \
    X(RegSetValueExA) \
    X(RegQueryValueExA) \
    X(RegDeleteKeyA) \
    X(RegEnumKeyExA) \
    X(RegQueryInfoKeyA) \
    X(GetFileVersionInfoSizeA) \
    X(GetFileVersionInfoA) \
    X(VerQueryValueA) \
    X(GetUserNameExA)
// clang-format on

// The real function behind each wrapper, taken from the module's import slot.
#define VQC_DECLARE_REAL(name) decltype(&::name) real_##name = nullptr;
VQC_WRAPPED_FUNCTIONS(VQC_DECLARE_REAL)
#define VQC_REAL(name) (real_##name)
#define VQC_FAIL_HERE(name) ShouldFail(#name, __builtin_return_address(0))

template <typename Value>
Value FailWith(Value value, DWORD error) {
    SetLastError(error);
    return value;
}

// --- memory ---------------------------------------------------------------------------
void* __cdecl Wrap_malloc(size_t size) {
    if (VQC_FAIL_HERE(malloc)) {
        errno = ENOMEM;
        return nullptr;
    }
    void* block = VQC_REAL(malloc)(size);
    Created(ObjectKind::HeapBlock, block);
    return block;
}
void* __cdecl Wrap_calloc(size_t count, size_t size) {
    if (VQC_FAIL_HERE(calloc)) {
        errno = ENOMEM;
        return nullptr;
    }
    void* block = VQC_REAL(calloc)(count, size);
    Created(ObjectKind::HeapBlock, block);
    return block;
}
void* __cdecl Wrap_realloc(void* old, size_t size) {
    // A failed realloc leaves the old block as it was.
    if (VQC_FAIL_HERE(realloc)) {
        errno = ENOMEM;
        return nullptr;
    }
    void* block = VQC_REAL(realloc)(old, size);
    if (block || size == 0) Destroyed({ObjectKind::HeapBlock}, old);
    Created(ObjectKind::HeapBlock, block);
    return block;
}
char* __cdecl Wrap__strdup(const char* text) {
    if (VQC_FAIL_HERE(_strdup)) {
        errno = ENOMEM;
        return nullptr;
    }
    char* copy = VQC_REAL(_strdup)(text);
    Created(ObjectKind::HeapBlock, copy);
    return copy;
}
void __cdecl Wrap_free(void* block) {
    Destroyed({ObjectKind::HeapBlock}, block);
    VQC_REAL(free)(block);
}
HLOCAL WINAPI Wrap_LocalAlloc(UINT flags, SIZE_T size) {
    if (VQC_FAIL_HERE(LocalAlloc)) return FailWith<HLOCAL>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    HLOCAL block = VQC_REAL(LocalAlloc)(flags, size);
    Created(ObjectKind::LocalBlock, block);
    return block;
}
HLOCAL WINAPI Wrap_LocalFree(HLOCAL block) {
    Destroyed({ObjectKind::LocalBlock}, block);
    return VQC_REAL(LocalFree)(block);
}
DWORD WINAPI Wrap_FormatMessageA(DWORD flags, LPCVOID source, DWORD id, DWORD language, LPSTR buffer, DWORD size,
                                 va_list* arguments) {
    if (VQC_FAIL_HERE(FormatMessageA)) return FailWith<DWORD>(0, ERROR_NOT_ENOUGH_MEMORY);
    const DWORD length = VQC_REAL(FormatMessageA)(flags, source, id, language, buffer, size, arguments);
    if (length && (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER))
        Created(ObjectKind::LocalBlock, *reinterpret_cast<LPSTR*>(buffer));
    return length;
}
LPWSTR* WINAPI Wrap_CommandLineToArgvW(LPCWSTR line, int* count) {
    if (VQC_FAIL_HERE(CommandLineToArgvW)) return FailWith<LPWSTR*>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    LPWSTR* arguments = VQC_REAL(CommandLineToArgvW)(line, count);
    Created(ObjectKind::LocalBlock, arguments);
    return arguments;
}

// --- files ----------------------------------------------------------------------------
HANDLE WINAPI Wrap_CreateFileA(LPCSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security,
                               DWORD disposition, DWORD flags, HANDLE templateFile) {
    if (VQC_FAIL_HERE(CreateFileA)) return FailWith(INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    HANDLE file = VQC_REAL(CreateFileA)(name, access, share, security, disposition, flags, templateFile);
    if (file != INVALID_HANDLE_VALUE) Created(ObjectKind::File, file);
    return file;
}
HANDLE WINAPI Wrap_CreateFileMappingA(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protect, DWORD high, DWORD low,
                                      LPCSTR name) {
    if (VQC_FAIL_HERE(CreateFileMappingA)) return FailWith<HANDLE>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    HANDLE mapping = VQC_REAL(CreateFileMappingA)(file, security, protect, high, low, name);
    Created(ObjectKind::Mapping, mapping);
    return mapping;
}
LPVOID WINAPI Wrap_MapViewOfFileEx(HANDLE mapping, DWORD access, DWORD high, DWORD low, SIZE_T size, LPVOID at) {
    if (VQC_FAIL_HERE(MapViewOfFileEx)) return FailWith<LPVOID>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    LPVOID view = VQC_REAL(MapViewOfFileEx)(mapping, access, high, low, size, at);
    Created(ObjectKind::View, view);
    return view;
}
BOOL WINAPI Wrap_UnmapViewOfFile(LPCVOID view) {
    Destroyed({ObjectKind::View}, view);
    return VQC_REAL(UnmapViewOfFile)(view);
}
BOOL WINAPI Wrap_CloseHandle(HANDLE handle) {
    Destroyed({ObjectKind::File, ObjectKind::Mapping}, handle);
    return VQC_REAL(CloseHandle)(handle);
}
HANDLE WINAPI Wrap_CreateEventA(LPSECURITY_ATTRIBUTES security, BOOL manual, BOOL initial, LPCSTR name) {
    HANDLE event = VQC_REAL(CreateEventA)(security, manual, initial, name);
    Reissued(event);
    return event;
}
HANDLE WINAPI Wrap_CreateSemaphoreA(LPSECURITY_ATTRIBUTES security, LONG initial, LONG maximum, LPCSTR name) {
    HANDLE semaphore = VQC_REAL(CreateSemaphoreA)(security, initial, maximum, name);
    Reissued(semaphore);
    return semaphore;
}
BOOL WINAPI Wrap_DuplicateHandle(HANDLE fromProcess, HANDLE handle, HANDLE toProcess, LPHANDLE copy, DWORD access,
                                 BOOL inherit, DWORD options) {
    const BOOL ok = VQC_REAL(DuplicateHandle)(fromProcess, handle, toProcess, copy, access, inherit, options);
    if (ok && copy) Reissued(*copy);
    return ok;
}
BOOL WINAPI Wrap_WriteFile(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped) {
    if (VQC_FAIL_HERE(WriteFile)) {
        if (written) *written = 0;
        return FailWith(FALSE, ERROR_DISK_FULL);
    }
    return VQC_REAL(WriteFile)(file, data, size, written, overlapped);
}
BOOL WINAPI Wrap_ReadFile(HANDLE file, LPVOID data, DWORD size, LPDWORD read, LPOVERLAPPED overlapped) {
    if (VQC_FAIL_HERE(ReadFile)) {
        if (read) *read = 0;
        return FailWith(FALSE, ERROR_READ_FAULT);
    }
    return VQC_REAL(ReadFile)(file, data, size, read, overlapped);
}
BOOL WINAPI Wrap_SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, PLARGE_INTEGER position, DWORD method) {
    if (VQC_FAIL_HERE(SetFilePointerEx)) return FailWith(FALSE, ERROR_ACCESS_DENIED);
    return VQC_REAL(SetFilePointerEx)(file, distance, position, method);
}
BOOL WINAPI Wrap_SetEndOfFile(HANDLE file) {
    if (VQC_FAIL_HERE(SetEndOfFile)) return FailWith(FALSE, ERROR_DISK_FULL);
    return VQC_REAL(SetEndOfFile)(file);
}
DWORD WINAPI Wrap_GetFileSize(HANDLE file, LPDWORD high) {
    if (VQC_FAIL_HERE(GetFileSize)) return FailWith(INVALID_FILE_SIZE, ERROR_ACCESS_DENIED);
    return VQC_REAL(GetFileSize)(file, high);
}
DWORD WINAPI Wrap_GetFileAttributesA(LPCSTR name) {
    if (VQC_FAIL_HERE(GetFileAttributesA)) return FailWith(INVALID_FILE_ATTRIBUTES, ERROR_ACCESS_DENIED);
    return VQC_REAL(GetFileAttributesA)(name);
}
DWORD WINAPI Wrap_GetShortPathNameW(LPCWSTR longPath, LPWSTR shortPath, DWORD size) {
    if (VQC_FAIL_HERE(GetShortPathNameW)) return FailWith<DWORD>(0, ERROR_ACCESS_DENIED);
    return VQC_REAL(GetShortPathNameW)(longPath, shortPath, size);
}
DWORD WINAPI Wrap_GetModuleFileNameA(HMODULE module, LPSTR name, DWORD size) {
    if (VQC_FAIL_HERE(GetModuleFileNameA)) return FailWith<DWORD>(0, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(GetModuleFileNameA)(module, name, size);
}
DWORD WINAPI Wrap_GetEnvironmentVariableA(LPCSTR name, LPSTR buffer, DWORD size) {
    if (VQC_FAIL_HERE(GetEnvironmentVariableA)) return FailWith<DWORD>(0, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(GetEnvironmentVariableA)(name, buffer, size);
}

// --- text -----------------------------------------------------------------------------
int WINAPI Wrap_MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH text, int length, LPWSTR wide, int size) {
    if (VQC_FAIL_HERE(MultiByteToWideChar)) return FailWith(0, ERROR_INSUFFICIENT_BUFFER);
    return VQC_REAL(MultiByteToWideChar)(codePage, flags, text, length, wide, size);
}
int WINAPI Wrap_WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH wide, int length, LPSTR text, int size,
                                    LPCCH defaultChar, LPBOOL usedDefault) {
    if (VQC_FAIL_HERE(WideCharToMultiByte)) return FailWith(0, ERROR_INSUFFICIENT_BUFFER);
    return VQC_REAL(WideCharToMultiByte)(codePage, flags, wide, length, text, size, defaultChar, usedDefault);
}

// --- icons, bitmaps, DCs --------------------------------------------------------------
HICON WINAPI Wrap_CreateIconFromResourceEx(PBYTE bits, DWORD size, BOOL icon, DWORD version, int width, int height,
                                           UINT flags) {
    if (VQC_FAIL_HERE(CreateIconFromResourceEx)) return FailWith<HICON>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    HICON made = VQC_REAL(CreateIconFromResourceEx)(bits, size, icon, version, width, height, flags);
    Created(ObjectKind::Icon, made);
    return made;
}
HICON WINAPI Wrap_CopyIcon(HICON original) {
    if (VQC_FAIL_HERE(CopyIcon)) return FailWith<HICON>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    HICON copy = VQC_REAL(CopyIcon)(original);
    Created(ObjectKind::Icon, copy);
    return copy;
}
UINT WINAPI Wrap_ExtractIconExA(LPCSTR file, int index, HICON* large, HICON* small, UINT count) {
    if (VQC_FAIL_HERE(ExtractIconExA)) return FailWith<UINT>(0, ERROR_NOT_ENOUGH_MEMORY);
    const UINT extracted = VQC_REAL(ExtractIconExA)(file, index, large, small, count);
    if (index != -1 && extracted != 0 && extracted != UINT_MAX) {
        for (UINT i = 0; i < count; ++i) {
            if (large) Created(ObjectKind::Icon, large[i]);
            if (small) Created(ObjectKind::Icon, small[i]);
        }
    }
    return extracted;
}
HICON WINAPI Wrap_ExtractIconA(HINSTANCE instance, LPCSTR file, UINT index) {
    if (VQC_FAIL_HERE(ExtractIconA)) return FailWith<HICON>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    HICON icon = VQC_REAL(ExtractIconA)(instance, file, index);
    // (HICON)1 is the answer "not an icon file"; index -1 asks for a count.
    if (index != UINT_MAX && reinterpret_cast<UINT_PTR>(icon) > 1) Created(ObjectKind::Icon, icon);
    return icon;
}
BOOL WINAPI Wrap_DestroyIcon(HICON icon) {
    Destroyed({ObjectKind::Icon}, icon);
    return VQC_REAL(DestroyIcon)(icon);
}
BOOL WINAPI Wrap_GetIconInfo(HICON icon, PICONINFO info) {
    if (VQC_FAIL_HERE(GetIconInfo)) return FailWith(FALSE, ERROR_INVALID_CURSOR_HANDLE);
    const BOOL ok = VQC_REAL(GetIconInfo)(icon, info);
    if (ok && info) {
        Created(ObjectKind::Bitmap, info->hbmColor);
        Created(ObjectKind::Bitmap, info->hbmMask);
    }
    return ok;
}
BOOL WINAPI Wrap_DeleteObject(HGDIOBJ object) {
    Destroyed({ObjectKind::Bitmap}, object);
    return VQC_REAL(DeleteObject)(object);
}
int WINAPI Wrap_GetDIBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, LPVOID bits, LPBITMAPINFO info, UINT usage) {
    if (VQC_FAIL_HERE(GetDIBits)) return FailWith(0, ERROR_INVALID_PARAMETER);
    return VQC_REAL(GetDIBits)(dc, bitmap, start, lines, bits, info, usage);
}
HDC WINAPI Wrap_GetDC(HWND window) {
    if (VQC_FAIL_HERE(GetDC)) return FailWith<HDC>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    HDC dc = VQC_REAL(GetDC)(window);
    Created(ObjectKind::DeviceContext, dc);
    return dc;
}
int WINAPI Wrap_ReleaseDC(HWND window, HDC dc) {
    Destroyed({ObjectKind::DeviceContext}, dc);
    return VQC_REAL(ReleaseDC)(window, dc);
}

// --- windows and the sheet --------------------------------------------------------------
HPROPSHEETPAGE WINAPI Wrap_CreatePropertySheetPageA(LPCPROPSHEETPAGEA page) {
    if (VQC_FAIL_HERE(CreatePropertySheetPageA)) return FailWith<HPROPSHEETPAGE>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(CreatePropertySheetPageA)(page);
}
BOOL WINAPI Wrap_SetPropA(HWND window, LPCSTR name, HANDLE data) {
    if (VQC_FAIL_HERE(SetPropA)) return FailWith(FALSE, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(SetPropA)(window, name, data);
}
HWND WINAPI Wrap_CreateDialogIndirectParamA(HINSTANCE instance, LPCDLGTEMPLATEA dialog, HWND parent, DLGPROC procedure,
                                            LPARAM parameter) {
    if (VQC_FAIL_HERE(CreateDialogIndirectParamA)) return FailWith<HWND>(nullptr, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(CreateDialogIndirectParamA)(instance, dialog, parent, procedure, parameter);
}
INT_PTR WINAPI Wrap_DialogBoxIndirectParamA(HINSTANCE instance, LPCDLGTEMPLATEA dialog, HWND parent, DLGPROC procedure,
                                            LPARAM parameter) {
    if (VQC_FAIL_HERE(DialogBoxIndirectParamA)) return FailWith<INT_PTR>(-1, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(DialogBoxIndirectParamA)(instance, dialog, parent, procedure, parameter);
}
BOOL WINAPI Wrap_GetOpenFileNameA(LPOPENFILENAMEA dialog) {
    // A failed dialog answers FALSE, as a cancelled one does.
    if (VQC_FAIL_HERE(GetOpenFileNameA)) return FailWith(FALSE, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(GetOpenFileNameA)(dialog);
}
int WINAPI Wrap_MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type) {
    if (VQC_FAIL_HERE(MessageBoxA)) return FailWith(0, ERROR_NOT_ENOUGH_MEMORY);
    return VQC_REAL(MessageBoxA)(owner, text, caption, type);
}
UINT WINAPI Wrap_DragQueryFileA(HDROP drop, UINT index, LPSTR name, UINT size) {
    if (VQC_FAIL_HERE(DragQueryFileA)) return FailWith<UINT>(0, ERROR_INVALID_PARAMETER);
    return VQC_REAL(DragQueryFileA)(drop, index, name, size);
}
UINT WINAPI Wrap_DragQueryFileW(HDROP drop, UINT index, LPWSTR name, UINT size) {
    if (VQC_FAIL_HERE(DragQueryFileW)) return FailWith<UINT>(0, ERROR_INVALID_PARAMETER);
    return VQC_REAL(DragQueryFileW)(drop, index, name, size);
}

// --- registry -------------------------------------------------------------------------
LSTATUS WINAPI Wrap_RegOpenKeyExA(HKEY parent, LPCSTR name, DWORD options, REGSAM access, PHKEY key) {
    if (VQC_FAIL_HERE(RegOpenKeyExA)) return ERROR_ACCESS_DENIED;
    const LSTATUS status = VQC_REAL(RegOpenKeyExA)(parent, name, options, access, key);
    if (status == ERROR_SUCCESS && key) Created(ObjectKind::RegistryKey, *key);
    return status;
}
LSTATUS WINAPI Wrap_RegCreateKeyExA(HKEY parent, LPCSTR name, DWORD reserved, LPSTR className, DWORD options,
                                    REGSAM access, const LPSECURITY_ATTRIBUTES security, PHKEY key,
                                    LPDWORD disposition) {
    if (VQC_FAIL_HERE(RegCreateKeyExA)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return ERROR_ACCESS_DENIED;
    }
    const LSTATUS status =
        VQC_REAL(RegCreateKeyExA)(parent, name, reserved, className, options, access, security, key, disposition);
    if (status == ERROR_SUCCESS && key) Created(ObjectKind::RegistryKey, *key);
    return status;
}
LSTATUS WINAPI Wrap_RegCloseKey(HKEY key) {
    Destroyed({ObjectKind::RegistryKey}, key);
    return VQC_REAL(RegCloseKey)(key);
}
LSTATUS WINAPI Wrap_RegSetValueExA(HKEY key, LPCSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
    if (VQC_FAIL_HERE(RegSetValueExA)) return ERROR_ACCESS_DENIED;
    return VQC_REAL(RegSetValueExA)(key, name, reserved, type, data, size);
}
LSTATUS WINAPI Wrap_RegQueryValueExA(HKEY key, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) {
    if (VQC_FAIL_HERE(RegQueryValueExA)) return ERROR_ACCESS_DENIED;
    return VQC_REAL(RegQueryValueExA)(key, name, reserved, type, data, size);
}
LSTATUS WINAPI Wrap_RegDeleteKeyA(HKEY parent, LPCSTR name) {
    if (VQC_FAIL_HERE(RegDeleteKeyA)) return ERROR_ACCESS_DENIED;
    return VQC_REAL(RegDeleteKeyA)(parent, name);
}
LSTATUS WINAPI Wrap_RegEnumKeyExA(HKEY key, DWORD index, LPSTR name, LPDWORD size, LPDWORD reserved, LPSTR className,
                                  LPDWORD classSize, PFILETIME written) {
    if (VQC_FAIL_HERE(RegEnumKeyExA)) return ERROR_ACCESS_DENIED;
    return VQC_REAL(RegEnumKeyExA)(key, index, name, size, reserved, className, classSize, written);
}
LSTATUS WINAPI Wrap_RegQueryInfoKeyA(HKEY key, LPSTR className, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                                     LPDWORD maxSubKey, LPDWORD maxClass, LPDWORD values, LPDWORD maxValueName,
                                     LPDWORD maxValue, LPDWORD security, PFILETIME written) {
    if (VQC_FAIL_HERE(RegQueryInfoKeyA)) return ERROR_ACCESS_DENIED;
    return VQC_REAL(RegQueryInfoKeyA)(key, className, classSize, reserved, subKeys, maxSubKey, maxClass, values,
                                      maxValueName, maxValue, security, written);
}

// --- the client's version and the user ------------------------------------------------
DWORD WINAPI Wrap_GetFileVersionInfoSizeA(LPCSTR file, LPDWORD handle) {
    if (VQC_FAIL_HERE(GetFileVersionInfoSizeA)) return FailWith<DWORD>(0, ERROR_RESOURCE_TYPE_NOT_FOUND);
    return VQC_REAL(GetFileVersionInfoSizeA)(file, handle);
}
BOOL WINAPI Wrap_GetFileVersionInfoA(LPCSTR file, DWORD handle, DWORD size, LPVOID data) {
    if (VQC_FAIL_HERE(GetFileVersionInfoA)) return FailWith(FALSE, ERROR_RESOURCE_TYPE_NOT_FOUND);
    return VQC_REAL(GetFileVersionInfoA)(file, handle, size, data);
}
BOOL WINAPI Wrap_VerQueryValueA(LPCVOID block, LPCSTR name, LPVOID* value, PUINT size) {
    if (VQC_FAIL_HERE(VerQueryValueA)) return FailWith(FALSE, ERROR_RESOURCE_TYPE_NOT_FOUND);
    return VQC_REAL(VerQueryValueA)(block, name, value, size);
}
BOOLEAN SEC_ENTRY Wrap_GetUserNameExA(EXTENDED_NAME_FORMAT format, LPSTR name, PULONG size) {
    if (VQC_FAIL_HERE(GetUserNameExA)) return FailWith<BOOLEAN>(FALSE, ERROR_NONE_MAPPED);
    return VQC_REAL(GetUserNameExA)(format, name, size);
}

#define VQC_ROW(name) {#name, reinterpret_cast<void*>(&Wrap_##name), reinterpret_cast<void**>(&VQC_REAL(name))},

}  // namespace

const std::vector<WrappedFunction>& WrappedFunctionTable() {
    static const std::vector<WrappedFunction> table = {VQC_WRAPPED_FUNCTIONS(VQC_ROW)};
    return table;
}

}  // namespace faults::detail
