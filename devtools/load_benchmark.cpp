// What the shell's first touch of the extension costs: LoadLibrary of the DLL and its first
// class object (DllGetClassObject, the factory released again), then FreeLibrary; against
// the same for a system DLL of similar size that serves a COM class, side by side in one
// process. The DLLs both import are loaded beforehand and kept, so a cycle loads, starts
// and unloads the DLL itself.
//   vqc_load_benchmark [CYCLES [ROUNDS]]      (defaults 200 and 7)
#include <windows.h>
#include <objbase.h>

#include <cstdio>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "common/win_handles.h"
#include "shellext/vqcprop_ids.h"
#include "devtools/benchmark_files.h"
#include "devtools/built_server.h"
#include "devtools/side_by_side.h"

namespace {

struct ServerDll {
    std::string path;
    CLSID classId;
};

// Wine's WMI path parser: about the extension's size, a class factory behind
// DllGetClassObject, imports of the same kind. {cf4cc405-e2c5-4ddd-b3ce-5e7582d8c9fa}
constexpr CLSID kWbemDefPath = {0xcf4cc405, 0xe2c5, 0x4ddd, {0xb3, 0xce, 0x5e, 0x75, 0x82, 0xd8, 0xc9, 0xfa}};

bool LoadCycle(const ServerDll& server) {
    const UniqueModule module(LoadLibraryA(server.path.c_str()));
    if (!module) return false;
    const auto getClassObject = reinterpret_cast<benchmark_server::GetClassObjectFunction>(
        reinterpret_cast<void*>(GetProcAddress(module.Get(), "DllGetClassObject")));
    if (!getClassObject) return false;
    ComPtr<IClassFactory> factory;
    return SUCCEEDED(getClassObject(server.classId, IID_IClassFactory, factory.PutVoid()));
}

// Loads, and keeps loaded for the whole run, every DLL that `path` imports.
std::vector<UniqueModule> LoadImportsOf(const std::string& path) {
    std::vector<UniqueModule> kept;
    const UniqueModule module(LoadLibraryA(path.c_str()));
    if (!module) return kept;
    const auto* base = reinterpret_cast<const BYTE*>(module.Get());
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!imports.VirtualAddress) return kept;
    for (auto* entry = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress); entry->Name;
         ++entry) {
        kept.emplace_back(LoadLibraryA(reinterpret_cast<const char*>(base + entry->Name)));
    }
    return kept;
}

// Where the loader finds a system DLL (wmiutils.dll is not in system32 itself but below it).
std::string SystemDllPath(const char* name) {
    const UniqueModule module(LoadLibraryA(name));
    char path[MAX_PATH] = {};
    if (module) GetModuleFileNameA(module.Get(), path, MAX_PATH);
    return path;
}

std::uint64_t FileSize(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return 0;
    return (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
}

}  // namespace

int main(int argc, char** argv) {
    const side_by_side::Counts counts = side_by_side::CountsFromArguments(argc, argv, {200, 7});
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    {
        const ServerDll ours{benchmark_files::BuiltDllPath(), CLSID_VQCProp};
        const ServerDll system{SystemDllPath("wmiutils.dll"), kWbemDefPath};
        const std::vector<UniqueModule> ourImports = LoadImportsOf(ours.path);
        const std::vector<UniqueModule> systemImports = LoadImportsOf(system.path);

        for (int warm = 0; warm < 5; ++warm) {
            for (const ServerDll* dll : {&ours, &system}) {
                if (!LoadCycle(*dll)) {
                    std::fprintf(stderr, "%s could not be loaded or gave no class object (error %lu)\n",
                                 dll->path.c_str(), GetLastError());
                    return 1;
                }
            }
        }
        // A DLL that stayed loaded would make every cycle after the first a reference count.
        for (const ServerDll* dll : {&ours, &system}) {
            if (GetModuleHandleA(dll->path.c_str())) {
                std::fprintf(stderr, "%s stays loaded after FreeLibrary\n", dll->path.c_str());
                return 1;
            }
        }
        const side_by_side::Comparison result = side_by_side::Compare(
            counts.rounds, counts.cycles, [&] { return LoadCycle(ours); }, [&] { return LoadCycle(system); });
        char title[200];
        std::snprintf(title, sizeof(title),
                      "LoadLibrary + DllGetClassObject + FreeLibrary: vqcprop64.dll (%llu bytes) against "
                      "wmiutils.dll (%llu bytes)",
                      static_cast<unsigned long long>(FileSize(ours.path)),
                      static_cast<unsigned long long>(FileSize(system.path)));
        side_by_side::Report(title, "vqcprop64.dll", "wmiutils.dll", result, counts.rounds, counts.cycles, "load");
    }
    CoUninitialize();
    return 0;
}
