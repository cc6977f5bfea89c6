#include "tools/benchmark_files.h"

#include <windows.h>
#include <objbase.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "common/com_ptr.h"
#include "common/win_handles.h"

namespace benchmark_files {

namespace {

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of("\\/");
    return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

std::string HexOf(const std::vector<std::uint8_t>& stream) {
    std::string text(HexTextLength(stream.size()), '\0');
    WriteHexText(text.data(), stream.data(), stream.size());
    return text;
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
    return FolderOf(program) + "\\..\\shellext\\vqcprop64.dll";
}

std::wstring Wide(const std::string& text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), length);
    wide.resize(static_cast<std::size_t>(length) - 1);
    return wide;
}

Folder::Folder(const std::string& name) {
    char temp[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, temp);
    path_ = std::string(temp) + name + "-" + std::to_string(GetCurrentProcessId());
    if (!CreateDirectoryA(path_.c_str(), nullptr)) Fail("CreateDirectory " + path_);
}

Folder::~Folder() {
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(Path("*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) DeleteFileA(Path(found.cFileName).c_str());
        } while (FindNextFileA(search, &found));
        FindClose(search);
    }
    RemoveDirectoryA(path_.c_str());
}

IconImage PatternImage(int size, int bitsPerPixel) {
    IconImageFormat format;
    format.width = format.height = size;
    format.planes = 1;
    format.bitsPerPixel = static_cast<std::uint16_t>(bitsPerPixel);
    std::vector<std::uint8_t> table(4 * std::size_t{ColourTableEntries(format.bitsPerPixel)});
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<std::uint8_t>(i * 5);
    std::vector<std::uint8_t> xorBits(std::size_t{XorRowBytes(format)} * static_cast<std::size_t>(size));
    for (std::size_t i = 0; i < xorBits.size(); ++i) xorBits[i] = static_cast<std::uint8_t>(i * 13 + i / 7);
    std::vector<std::uint8_t> andBits(std::size_t{AndRowBytes(format)} * static_cast<std::size_t>(size), 0x81);
    return IconImage::Make(format, table, xorBits, andBits);
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
    return PatternImage(size, 32);
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

std::size_t WriteConnectionFile(const std::string& path, const std::vector<IconImage>& images,
                                std::size_t padTo) {
    std::string text = "-h server.example.com -V 5000 -l -c admin@proxy.example.com:3128 -v terminal -u bob \r\n";
    if (!images.empty()) text += "-I \"" + HexOf(BuildIconStream(images.data(), images.size())) + "\" ";
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
    char windows[MAX_PATH] = {};
    GetWindowsDirectoryA(windows, MAX_PATH);
    link->SetPath((std::string(windows) + "\\notepad.exe").c_str());
    link->SetIconLocation(iconPath.c_str(), index);
    ComPtr<IPersistFile> file;
    if (FAILED(link->QueryInterface(IID_IPersistFile, file.PutVoid())) ||
        FAILED(file->Save(Wide(path).c_str(), TRUE)))
        Fail("saving the shortcut " + path);
}

}  // namespace benchmark_files
