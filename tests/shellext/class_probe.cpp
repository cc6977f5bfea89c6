// A program of this build's bitness that creates the extension's class through COM, as the
// shell of that bitness does, and asks it for a connection file's icon. The tests of the two
// registry views run the 64-bit one from a 32-bit test.
//   class_probe.exe FILE.vqc OUT
// OUT receives the file of the DLL that served the class and the icon location it gave, one
// "name<TAB>value" a line. Exit status: 0 served, 2 the class is not registered in this
// bitness's view, 1 any other failure.
#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <cstdio>
#include <string>

#include "common/com_ptr.h"
#include "common/win_handles.h"

namespace {

// {5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}
const CLSID kClassId = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x21}};

// The module whose code the object's first interface points into.
std::string ServingModule(IUnknown* object) {
    HMODULE module = nullptr;
    const void* code = *reinterpret_cast<void* const*>(object);
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<const char*>(code), &module))
        return "";
    char path[MAX_PATH + 1] = {};
    GetModuleFileNameA(module, path, MAX_PATH);
    return path;
}

int Probe(const std::string& file, const std::string& out) {
    ComPtr<IUnknown> object;
    const HRESULT created = CoCreateInstance(kClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.PutVoid());
    if (created == REGDB_E_CLASSNOTREG) return 2;
    if (FAILED(created)) {
        std::fprintf(stderr, "CoCreateInstance failed: 0x%08lx\n", static_cast<unsigned long>(created));
        return 1;
    }
    ComPtr<IPersistFile> persist;
    ComPtr<IExtractIconA> icon;
    if (FAILED(object->QueryInterface(IID_IPersistFile, persist.PutVoid())) ||
        FAILED(object->QueryInterface(IID_IExtractIconA, icon.PutVoid())))
        return 1;
    std::wstring wide(file.size() + 1, L'\0');
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, file.c_str(), -1, wide.data(), static_cast<int>(wide.size())) - 1));
    if (FAILED(persist->Load(wide.c_str(), STGM_READ))) return 1;
    char location[MAX_PATH + 1] = {};
    int index = -1;
    UINT flags = 0;
    if (FAILED(icon->GetIconLocation(GIL_FORSHELL, location, sizeof(location), &index, &flags))) return 1;

    const std::string text = "served-by\t" + ServingModule(object.Get()) + "\nicon\t" + location + "\t" +
                             std::to_string(index) + "\t" + std::to_string(flags) + "\n";
    const UniqueKernelHandle written(
        CreateFileA(out.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD count = 0;
    if (!written || !WriteFile(written.Get(), text.data(), static_cast<DWORD>(text.size()), &count, nullptr)) return 1;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: class_probe FILE.vqc OUT\n");
        return 1;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const int status = Probe(argv[1], argv[2]);
    CoUninitialize();
    return status;
}
