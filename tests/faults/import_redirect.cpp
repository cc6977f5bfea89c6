// Installs the layer into a loaded module: walks the module's import descriptors and points
// every import slot of a wrapped function at its wrapper, keeping the real address.
#include <windows.h>

#include <cstring>

#include "tests/faults/fault_layer.h"
#include "tests/faults/fault_layer_state.h"
#include "tests/faults/system_call_table.h"

namespace faults {
namespace {

const detail::WrappedFunction* FindWrapped(const char* name) {
    for (const detail::WrappedFunction& row : detail::WrappedFunctionTable()) {
        if (std::strcmp(row.name, name) == 0) return &row;
    }
    return nullptr;
}

// The module's own kind of image: a 32-bit module's headers and thunks are 32-bit, its
// ordinal flag the top bit of a DWORD; the types without a suffix are this build's.
using ImageHeaders = IMAGE_NT_HEADERS;
using ImportThunk = IMAGE_THUNK_DATA;
static_assert(sizeof(ImportThunk) == sizeof(void*), "one import slot holds one address");

bool Redirect(ULONG_PTR* slot, void* wrapper) {
    DWORD previous = 0;
    if (!VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &previous)) return false;
    *slot = reinterpret_cast<ULONG_PTR>(wrapper);
    VirtualProtect(slot, sizeof(*slot), previous, &previous);
    return true;
}

}  // namespace

std::size_t InstallInto(HMODULE module) {
    auto* base = reinterpret_cast<BYTE*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const ImageHeaders*>(base + dos->e_lfanew);
    detail::SetModuleRange(reinterpret_cast<std::uintptr_t>(base), headers->OptionalHeader.SizeOfImage);

    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0) return 0;
    std::size_t redirected = 0;
    for (auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress); library->Name;
         ++library) {
        const DWORD namesAt = library->OriginalFirstThunk ? library->OriginalFirstThunk : library->FirstThunk;
        auto* names = reinterpret_cast<ImportThunk*>(base + namesAt);
        auto* slots = reinterpret_cast<ImportThunk*>(base + library->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            const auto* byName = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            const detail::WrappedFunction* row = FindWrapped(reinterpret_cast<const char*>(byName->Name));
            if (!row) continue;
            if (reinterpret_cast<void*>(slots->u1.Function) != row->wrapper)
                *row->real = reinterpret_cast<void*>(slots->u1.Function);
            if (Redirect(&slots->u1.Function, row->wrapper)) ++redirected;
        }
    }
    return redirected;
}

std::vector<std::string> WrappedFunctions() {
    std::vector<std::string> names;
    for (const detail::WrappedFunction& row : detail::WrappedFunctionTable()) names.emplace_back(row.name);
    return names;
}

}  // namespace faults
