#include "devtools/benchmark_files.h"

#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "common/com_ptr.h"
#include "common/win_handles.h"
#include "tests/support/system_programs.h"
#include "tests/support/wide_text.h"

namespace benchmark_files {

namespace {

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of("\\/");
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

[[noreturn]] void Fail(const std::string& what) {
    std::fprintf(stderr, "%s failed (error %lu)\n", what.c_str(), GetLastError());
    std::exit(1);
}

}  // namespace

std::string BuiltDllPath() {
    char configured[MAX_PATH] = {};
    if (GetEnvironmentVariableA("VQC_BENCHMARK_DLL", configured, MAX_PATH) > 0) return configured;
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    return FolderOf(program) + "\\..\\shellext\\" VQC_DLL_FILE_NAME;
}

IconImage LargestAcceptedImage() {
    int size = 1;
    for (;;) {
        IconImageFormat next;
        next.width = next.height = size + 1;
        next.bitsPerPixel = 32;
        if (IconImageBytes(next) > kMaxIconImageBytes) break;
        ++size;
    }
    return MakeTestIconImage(size, 32);
}

void WriteWholeFile(const std::string& path, const std::string& content) {
    const UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) Fail("CreateFile " + path);
    DWORD written = 0;
    if (!WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, nullptr) ||
        written != content.size())
        Fail("WriteFile " + path);
}

std::size_t WriteConnectionFile(const std::string& path, const std::vector<IconImage>& images, std::size_t padTo) {
    std::string text = "-h server.example.com -V 5000 -l -c admin@proxy.example.com:3128 -v terminal -u bob \r\n";
    if (!images.empty()) text += "-I \"" + HexTextOf(BuildIconStream(images.data(), images.size())) + "\" ";
    text += "-C bookmarks/main";
    while (text.size() < padTo) text += " word" + std::to_string(text.size() % 997);
    WriteWholeFile(path, text);
    return text.size();
}

void WriteIconFile(const std::string& path, const std::vector<IconImage>& images) {
    const std::vector<std::uint8_t> stream = BuildIconStream(images.data(), images.size());
    WriteWholeFile(path, std::string(stream.begin(), stream.end()));
}

void WriteShortcut(const std::string& path, const std::string& iconPath, int index) {
    ComPtr<IShellLinkA> link;
    if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, link.PutVoid())))
        Fail("CoCreateInstance(ShellLink)");
    link->SetPath((test_support::WindowsFolder() + "\\notepad.exe").c_str());
    link->SetIconLocation(iconPath.c_str(), index);
    ComPtr<IPersistFile> file;
    if (FAILED(link->QueryInterface(IID_IPersistFile, file.PutVoid())) ||
        FAILED(file->Save(test_support::Wide(path).c_str(), TRUE)))
        Fail("saving the shortcut " + path);
}

}  // namespace benchmark_files
