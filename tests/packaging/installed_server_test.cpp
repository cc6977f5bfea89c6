// The DLL as the package installs it: run in a prefix where msiexec /i installed the package
// (installed_shell_check.sh), never in the suite's own prefix. COM finds the class through
// the package's registry rows, loads the installed copy, and the icon handler gives a file's
// own icons, or the installed DLL's icon for a file without one, as the shell asks for them.
#include <windows.h>

#include <gtest/gtest.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

// Where the package puts the DLL; nothing else lies beside it. The shared test headers name
// the DLL and its folder by these.
#define VQC_DLL_PATH "C:\\Program Files\\vqcprop64\\vqcprop64.dll"
#define VQC_FIXTURE_DIR "C:\\Program Files\\vqcprop64"
#include "common/com_ptr.h"
#include "tests/shellext/shellext_test_support.h"

using namespace test_support;

namespace {

// {5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}
const CLSID kClassId = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x21}};

class InstalledServer : public ::testing::Test {
protected:
    void SetUp() override { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    void TearDown() override { CoUninitialize(); }

    ComPtr<IExtractIconA> LoadedIconHandler(const std::string& file) {
        ComPtr<IPersistFile> persist;
        EXPECT_EQ(CoCreateInstance(kClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IPersistFile, persist.PutVoid()), S_OK);
        ComPtr<IExtractIconA> icon;
        if (!persist) return icon;
        EXPECT_EQ(persist->Load(Wide(file).c_str(), STGM_READ), S_OK);
        EXPECT_EQ(persist->QueryInterface(IID_IExtractIconA, icon.PutVoid()), S_OK);
        return icon;
    }

    TempFolder folder_{"installed"};
};

// What the handler tells the shell to draw for the file it loaded.
struct IconLocation {
    HRESULT result = E_FAIL;
    std::string file;
    int index = -1;
    UINT flags = 0;
};

IconLocation LocateIcon(IExtractIconA* handler) {
    IconLocation location;
    char file[MAX_PATH + 1] = "unwritten";
    location.result = handler->GetIconLocation(GIL_FORSHELL, file, sizeof(file), &location.index, &location.flags);
    location.file = file;
    return location;
}

}  // namespace

TEST_F(InstalledServer, CoCreateInstanceLoadsTheInstalledCopy) {
    ComPtr<IUnknown> object;
    ASSERT_EQ(CoCreateInstance(kClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, object.PutVoid()), S_OK);
    EXPECT_NE(GetModuleHandleA(VQC_DLL_PATH), nullptr);
}

TEST_F(InstalledServer, FileWithAnIconGetsItsOwnIcons) {
    const std::string file = folder_.File("with icon.vqc");
    WriteFileBytes(file, ConnectionLineWithIcon({48, 16}));
    ComPtr<IExtractIconA> handler = LoadedIconHandler(file);
    ASSERT_TRUE(handler);
    const IconLocation location = LocateIcon(handler.Get());
    ASSERT_EQ(location.result, S_OK);
    EXPECT_EQ(location.file, file);
    EXPECT_EQ(location.flags, 26u);
    HICON large = nullptr;
    HICON small = nullptr;
    ASSERT_EQ(handler->Extract(location.file.c_str(), location.index, &large, &small, MAKELONG(32, 16)), S_OK);
    UniqueIcon largeOwner(large);
    UniqueIcon smallOwner(small);
    EXPECT_EQ(IconSize(large).cx, 48);
    EXPECT_EQ(IconSize(small).cx, 16);
}

TEST_F(InstalledServer, FileWithoutAnIconGetsTheInstalledDllsIcon) {
    const std::string file = folder_.File("plain.vqc");
    WriteFileBytes(file, "-h server.example -u tester -C bookmark");
    ComPtr<IExtractIconA> handler = LoadedIconHandler(file);
    ASSERT_TRUE(handler);
    const IconLocation location = LocateIcon(handler.Get());
    ASSERT_EQ(location.result, S_OK);
    EXPECT_EQ(_stricmp(location.file.c_str(), VQC_DLL_PATH), 0) << location.file;
    HICON large = nullptr;
    HICON small = nullptr;
    ASSERT_EQ(ExtractIconExA(location.file.c_str(), location.index, &large, &small, 1), 2u);
    UniqueIcon largeOwner(large);
    UniqueIcon smallOwner(small);
    EXPECT_EQ(IconSize(large).cx, 32);
    EXPECT_EQ(IconSize(small).cx, 16);
}
