#include "tests/shellext/shell_scenarios.h"

#include <objbase.h>
#include <shlobj.h>

#include "common/com_ptr.h"
#include "pages/connection_page_rules.h"
#include "pages/option_page.h"
#include "resources/dialog_ids.h"
#include "tests/faults/fault_layer.h"
#include "tests/pages/user_actions.h"
#include "tests/shellext/shellext_test_support.h"

using namespace page_test;

namespace shell_scenarios {

DllCopyFolder::DllCopyFolder(const std::string& tag) : folder_(tag), dll_(folder_.File(VQC_DLL_FILE_NAME)) {
    test_support::CopyInto(test_support::BuiltDllPath(), dll_);
}

void ThrowOnceInTheModule(HMODULE module) {
    faults::ArmAt(1);
    ComPtr<IClassFactory> factory;
    Export<GetClassObjectFunction>(module, "DllGetClassObject")(kVQCPropClassId, IID_IClassFactory, factory.PutVoid());
    faults::ArmAt(0);
}

faults::SweepOptions ServerSweepOptions() {
    faults::SweepOptions options = faults::OptionsFromEnvironment();
    options.warmUp = ThrowOnceInTheModule;
    return options;
}

void IconHandlerCycle(HMODULE module, const std::wstring& file, faults::RunChecks& checks) {
    const ComApartment apartment;
    const auto getClassObject = Export<GetClassObjectFunction>(module, "DllGetClassObject");
    ComPtr<IClassFactory> factory;
    HRESULT result = getClassObject(kVQCPropClassId, IID_IClassFactory, factory.PutVoid());
    checks.Expect(SUCCEEDED(result) == static_cast<bool>(factory), "DllGetClassObject: answer and factory disagree");
    if (FAILED(result)) return;
    ComPtr<IPersistFile> persist;
    result = factory->CreateInstance(nullptr, IID_IPersistFile, persist.PutVoid());
    checks.Expect(SUCCEEDED(result) == static_cast<bool>(persist), "CreateInstance: answer and object disagree");
    factory.Reset();
    if (FAILED(result)) return;
    result = persist->Load(file.c_str(), STGM_READ);
    checks.Expect(result == S_OK || FAILED(result), "Load answered " + std::to_string(result));
    if (result != S_OK) return;
    ComPtr<IExtractIconA> extract;
    result = persist->QueryInterface(IID_IExtractIconA, extract.PutVoid());
    checks.Expect(result == S_OK && extract, "no IExtractIconA");
    if (!extract) return;

    char location[MAX_PATH] = "\xde\xad";
    int index = static_cast<int>(0xdeadbeef);
    UINT flags = 0xdeadbeef;
    result = extract->GetIconLocation(GIL_FORSHELL, location, sizeof(location), &index, &flags);
    checks.Expect(result == S_OK || FAILED(result), "GetIconLocation answered " + std::to_string(result));
    if (result != S_OK) return;
    checks.Expect(flags != 0xdeadbeef && index != static_cast<int>(0xdeadbeef), "GetIconLocation: S_OK without flags");
    checks.Expect(location[0] != '\xde', "GetIconLocation: S_OK without a location");
    // The answer is S_OK whatever happens; without its module's name the DLL names none.
    checks.Expect(location[0] != '\0' || std::string(faults::FiredCall().function) == "GetModuleFileNameA",
                  "GetIconLocation: an empty location");
    if (!(flags & GIL_NOTFILENAME)) return;  // the shell takes the icon from the file named

    HICON large = nullptr;
    HICON small = nullptr;
    result = extract->Extract(location, static_cast<UINT>(index), &large, &small, MAKELONG(32, 16));
    checks.Expect(result == S_OK || result == S_FALSE || FAILED(result), "Extract answered " + std::to_string(result));
    // S_OK hands out the large icon (the small one when the file's icon has one); S_FALSE
    // leaves the icon to the shell, with a small icon already handed out left to it too.
    if (result == S_OK) checks.Expect(large != nullptr, "Extract: S_OK without the icon");
    if (result != S_OK) checks.Expect(!large, "Extract: a large icon handed out without S_OK");
    if (FAILED(result)) checks.Expect(!small, "Extract: a small icon handed out with a failure");
    // Whatever was handed out is the shell's now, and the shell destroys it.
    for (HICON icon : {large, small}) {
        if (!icon) continue;
        faults::HandedOut(faults::ObjectKind::Icon, icon);
        DestroyIcon(icon);
    }
}

HWND PageWith(HWND sheet, int controlId) {
    for (int index = 0; index < PageCount(sheet); ++index) {
        ShowPage(sheet, index);
        const HWND page = PageWindow(sheet, index);
        if (page && GetDlgItem(page, controlId)) return page;
    }
    return nullptr;
}

unsigned EditEveryPage(HWND sheet) {
    unsigned pages = 0;
    for (int index = 0; index < PageCount(sheet); ++index) ShowPage(sheet, index);
    if (const HWND page = PageWith(sheet, dialog_ids::kLoginEdit)) {
        TypeText(page, dialog_ids::kLoginEdit, "changed");
        pages |= kConnectionPage;
    }
    if (const HWND page = PageWith(sheet, dialog_ids::kProxyHostEdit)) {
        TypeText(page, dialog_ids::kProxyHostEdit, "proxy.example");
        pages |= kProxyPage;
    }
    if (const HWND page = PageWith(sheet, dialog_ids::kDynamicSizingCheck)) {
        ClickControl(page, dialog_ids::kDynamicSizingCheck);
        pages |= kOptionsPage;
    }
    return pages;
}

std::vector<SeenBox> Press(HWND sheet, int button) {
    MessageBoxWatcher watcher(sheet);
    ClickButton(sheet, button);
    PumpMessages();
    return watcher.Boxes();
}

}  // namespace shell_scenarios
