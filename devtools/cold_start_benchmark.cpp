// What the first ".vqc" file of a folder costs in a process that has never touched the
// extension, against the first shortcut's icon in a process of the same kind:
//   ours:     LoadLibrary of the built DLL, DllGetClassObject, CreateInstance, Load,
//             GetIconLocation, Extract, everything released (the DLL stays loaded, as the
//             shell keeps it);
//   shortcut: shell32's DllGetClassObject for the shell link, CreateInstance, Load of a .lnk
//             whose icon is an .ico with the same images, GetIconLocation, ExtractIconExA.
// Each side runs in a fresh process of this program (started by the parent, the two sides
// taking turns to go first); the system DLLs the extension imports are loaded in both
// children before the clock starts, as the shell has them loaded.
//   vqc_cold_start_benchmark [ROUNDS]        (default 7)
#include <windows.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "common/win_handles.h"
#include "shellext/vqcprop_ids.h"
#include "tests/support/temp_folder.h"
#include "tests/support/wide_text.h"
#include "devtools/benchmark_files.h"
#include "devtools/built_server.h"
#include "devtools/side_by_side.h"

namespace {

using side_by_side::Now;

std::vector<std::uint8_t> FileContents(const std::string& path) {
    std::vector<std::uint8_t> bytes;
    const UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) return bytes;
    bytes.resize(GetFileSize(file.Get(), nullptr));
    DWORD read = 0;
    if (!ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr)) bytes.clear();
    bytes.resize(read);
    return bytes;
}

// The names of the DLLs a PE file imports, read from the file itself (loading it would
// spoil the cold start being measured).
std::vector<std::string> ImportedDlls(const std::string& path) {
    const std::vector<std::uint8_t> file = FileContents(path);
    std::vector<std::string> names;
    auto at = [&](std::size_t offset, std::size_t size) { return offset + size <= file.size(); };
    if (!at(0, sizeof(IMAGE_DOS_HEADER))) return names;
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(file.data());
    if (!at(static_cast<std::size_t>(dos->e_lfanew), sizeof(IMAGE_NT_HEADERS))) return names;
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(file.data() + dos->e_lfanew);
    const IMAGE_SECTION_HEADER* sections = IMAGE_FIRST_SECTION(nt);
    auto offsetOf = [&](DWORD rva) -> std::size_t {
        for (WORD i = 0; i < nt->FileHeader.NumberOfSections; ++i) {
            const IMAGE_SECTION_HEADER& s = sections[i];
            if (rva >= s.VirtualAddress && rva < s.VirtualAddress + s.SizeOfRawData)
                return rva - s.VirtualAddress + s.PointerToRawData;
        }
        return file.size();
    };
    const DWORD importRva = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (std::size_t entry = offsetOf(importRva); at(entry, sizeof(IMAGE_IMPORT_DESCRIPTOR));
         entry += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
        const auto* descriptor = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(file.data() + entry);
        if (!descriptor->Name) break;
        const std::size_t name = offsetOf(descriptor->Name);
        if (!at(name, 1)) break;
        names.emplace_back(reinterpret_cast<const char*>(file.data() + name),
                           strnlen(reinterpret_cast<const char*>(file.data() + name), file.size() - name));
    }
    return names;
}

bool OurFirstFile(const std::string& dllPath, const std::wstring& file) {
    HICON large = nullptr, small = nullptr;
    {
        const HMODULE module = LoadLibraryA(dllPath.c_str());  // kept, as the shell keeps it
        if (!module) return false;
        const auto getClassObject = reinterpret_cast<benchmark_server::GetClassObjectFunction>(
            reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
        ComPtr<IClassFactory> factory;
        if (!getClassObject || FAILED(getClassObject(CLSID_VQCProp, IID_IClassFactory, factory.PutVoid())))
            return false;
        ComPtr<IPersistFile> persist;
        if (FAILED(factory->CreateInstance(nullptr, IID_IPersistFile, persist.PutVoid()))) return false;
        if (FAILED(persist->Load(file.c_str(), STGM_READ))) return false;
        ComPtr<IExtractIconA> extract;
        if (FAILED(persist->QueryInterface(IID_IExtractIconA, extract.PutVoid()))) return false;
        char location[MAX_PATH] = {};
        int index = -1;
        UINT flags = 0;
        if (extract->GetIconLocation(GIL_FORSHELL, location, MAX_PATH, &index, &flags) != S_OK) return false;
        if (!(flags & GIL_NOTFILENAME)) return false;
        if (extract->Extract(location, static_cast<UINT>(index), &large, &small,
                             MAKELONG(GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CXSMICON))) != S_OK)
            return false;
    }
    return benchmark_server::DestroyBoth(large, small);
}

bool ShortcutFirstFile(const std::wstring& file) {
    HICON large = nullptr, small = nullptr;
    {
        const auto getClassObject = reinterpret_cast<benchmark_server::GetClassObjectFunction>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("shell32.dll"), "DllGetClassObject")));
        ComPtr<IClassFactory> factory;
        if (!getClassObject || FAILED(getClassObject(CLSID_ShellLink, IID_IClassFactory, factory.PutVoid())))
            return false;
        ComPtr<IShellLinkA> link;
        if (FAILED(factory->CreateInstance(nullptr, IID_IShellLinkA, link.PutVoid()))) return false;
        ComPtr<IPersistFile> persist;
        if (FAILED(link->QueryInterface(IID_IPersistFile, persist.PutVoid()))) return false;
        if (FAILED(persist->Load(file.c_str(), STGM_READ))) return false;
        char location[MAX_PATH] = {};
        int index = -1;
        if (FAILED(link->GetIconLocation(location, MAX_PATH, &index))) return false;
        ExtractIconExA(location, index, &large, &small, 1);
    }
    return benchmark_server::DestroyBoth(large, small);
}

// A child: one side's first file, its time in microseconds on stdout.
int RunChild(const std::string& side, const std::string& file) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    const std::string dllPath = benchmark_files::BuiltDllPath();
    std::vector<UniqueModule> kept;
    for (const std::string& name : ImportedDlls(dllPath)) kept.emplace_back(LoadLibraryA(name.c_str()));
    kept.emplace_back(LoadLibraryA("shell32.dll"));
    const std::wstring wide = test_support::Wide(file);
    const double start = Now();
    const bool done = side == "ours" ? OurFirstFile(dllPath, wide) : ShortcutFirstFile(wide);
    const double elapsed = Now() - start;
    if (!done) {
        std::fprintf(stderr, "%s: the first icon could not be extracted\n", side.c_str());
        return 1;
    }
    std::printf("%.1f\n", elapsed * 1e6);
    std::fflush(stdout);
    CoUninitialize();
    return 0;
}

// Starts this program as a child for one side and reads the time it reports, in seconds.
double ChildTime(const std::string& side, const std::string& file) {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    std::string command = "\"" + std::string(program) + "\" child " + side + " \"" + file + "\"";
    SECURITY_ATTRIBUTES inherit = {sizeof(inherit), nullptr, TRUE};
    HANDLE readEnd = nullptr, writeEnd = nullptr;
    if (!CreatePipe(&readEnd, &writeEnd, &inherit, 0)) return -1;
    const UniqueKernelHandle reader(readEnd);
    UniqueKernelHandle writer(writeEnd);
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writer.Get();
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(program, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process))
        return -1;
    const UniqueKernelHandle processHandle(process.hProcess), thread(process.hThread);
    writer.Reset();
    std::string output;
    char buffer[256];
    DWORD read = 0;
    while (ReadFile(reader.Get(), buffer, sizeof(buffer), &read, nullptr) && read > 0) output.append(buffer, read);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 1;
    GetExitCodeProcess(process.hProcess, &code);
    if (code != 0 || output.empty()) return -1;
    return std::atof(output.c_str()) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 3 && std::string(argv[1]) == "child") return RunChild(argv[2], argv[3]);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;

    side_by_side::Comparison result;
    {
        if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
        const test_support::TempFolder folder("cold-start");
        const std::vector<IconImage> images = {MakeTestIconImage(32, 4), MakeTestIconImage(16, 4)};
        const std::string vqc = folder.File("typical.vqc");
        const std::string ico = folder.File("typical.ico");
        const std::string lnk = folder.File("typical.lnk");
        const std::size_t written = benchmark_files::WriteConnectionFile(vqc, images, 0);
        benchmark_files::WriteIconFile(ico, images);
        benchmark_files::WriteShortcut(lnk, ico, 0);
        for (int round = 0; round < rounds; ++round) {
            for (int turn = 0; turn < 2; ++turn) {
                const bool ours = (turn == 0) == (round % 2 == 0);
                const double seconds = ChildTime(ours ? "ours" : "shortcut", ours ? vqc : lnk);
                if (seconds < 0) {
                    std::fprintf(stderr, "a child of the %s side failed\n", ours ? "extension" : "shortcut");
                    return 1;
                }
                (ours ? result.ours : result.floor).perCycle.push_back(seconds);
            }
        }
        side_by_side::Report("First file in a fresh process (" + std::to_string(written) +
                                 "-byte file with a 32x32 and a 16x16 icon), DLL load included",
                             "extension (.vqc)", "shortcut (.lnk -> .ico)", result, rounds, 1, "cold-start");
        CoUninitialize();
    }
    return 0;
}
