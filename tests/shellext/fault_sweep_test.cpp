// Every system call the built DLL makes in a user's scenario, failed one at a time: the icon
// handler on three kinds of file, a file's Properties with an edit on every page and Apply,
// browsing for an icon on the Options page, registering and unregistering. Each test prints
// which calls it failed; VQC_SWEEP_ALL=1 fails every one instead of a sample.
#include <windows.h>
#include <objbase.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "pages/connection_page_rules.h"
#include "pages/option_page.h"
#include "pages/proxy_page_rules.h"
#include "tests/faults/fault_layer.h"
#include "tests/faults/fault_sweep.h"
#include "tests/pages/file_dialog_driver.h"
#include "tests/pages/page_test_support.h"
#include "tests/pages/user_actions.h"
#include "tests/shellext/shellext_test_support.h"

using namespace page_test;

namespace {

template <typename Function>
Function Export(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// A copy of the built DLL in a folder of the sweep's own, beside the files it works on.
class SweepFolder {
public:
    explicit SweepFolder(const std::string& tag) : folder_(tag), dll_(folder_.File("vqcprop64.dll")) {
        test_support::CopyInto(test_support::BuiltDllPath(), dll_);
    }
    const std::string& Dll() const { return dll_; }
    std::string File(const std::string& name) const { return folder_.File(name); }

private:
    test_support::TempFolder folder_;
    std::string dll_;
};

// The C++ runtime linked into the DLL makes its state for a thread's first exception (and
// for the first in the module) on demand and keeps it for the life of the thread and
// beyond the module: a first allocation that fails in DllGetClassObject throws once.
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

void ExpectClean(const faults::SweepReport& report, const std::string& name) {
    std::printf("%s\n", report.Summary(name).c_str());
    EXPECT_GT(report.calls, 0u);
    EXPECT_EQ(report.injected, report.swept.size()) << "runs whose armed call never came";
    EXPECT_EQ(report.objectsLeaked, 0u);
    for (const std::string& problem : report.problems) ADD_FAILURE() << problem;
}

// --- The icon handler ---------------------------------------------------------------------

// What the shell does for one file of a folder: class object, object, Load, the icon's
// location, Extract when the location is no file, release. Every answer is a failure code
// or the documented result with its output.
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

faults::SweepReport SweepIconHandler(const std::string& tag, const std::string& content) {
    const SweepFolder folder(tag);
    const std::string file = folder.File("connection.vqc");
    WriteFileBytes(file, content);
    const std::wstring wide = test_support::Wide(file);
    return faults::Sweep(
        folder.Dll(), [&](HMODULE module, faults::RunChecks& checks) { IconHandlerCycle(module, wide, checks); },
        ServerSweepOptions());
}

TEST(FaultSweep, IconHandlerOnAFileWithAnIcon) {
    ExpectClean(SweepIconHandler("sweep-icon", test_support::ConnectionLineWithIcon({32, 16})), "icon handler, file with an icon");
}

TEST(FaultSweep, IconHandlerOnAFileWithoutAnIcon) {
    ExpectClean(SweepIconHandler("sweep-no-icon", "-h server.example -u tester -C bookmark"),
                "icon handler, file without an icon");
}

TEST(FaultSweep, IconHandlerOnABrokenFile) {
    // An icon stream whose directory promises more than the text holds.
    ExpectClean(SweepIconHandler("sweep-broken", "-h server.example -I \"0000010002002020\" -u"),
                "icon handler, broken file");
}

// --- Properties ---------------------------------------------------------------------------

constexpr char kPropertiesLine[] = "-h server.example -u tester -C bookmark";

// The page of the sheet that has the control; null when no page has it. Pages are found by
// what they hold, not by their tab's title, which may be missing after a failure.
HWND PageWith(HWND sheet, int controlId) {
    for (int index = 0; index < PageCount(sheet); ++index) {
        ShowPage(sheet, index);
        const HWND page = PageWindow(sheet, index);
        if (page && GetDlgItem(page, controlId)) return page;
    }
    return nullptr;
}

// What a user met and did in one visit: the pages there were (each edited once).
enum Visit : unsigned { kConnectionPage = 1, kProxyPage = 2, kOptionsPage = 4 };

// Every page shown, one edit on each page there is; answers the pages there were.
unsigned EditEveryPage(HWND sheet) {
    unsigned pages = 0;
    for (int index = 0; index < PageCount(sheet); ++index) ShowPage(sheet, index);
    if (const HWND page = PageWith(sheet, connection_page::kLoginEdit)) {
        TypeText(page, connection_page::kLoginEdit, "changed");
        pages |= kConnectionPage;
    }
    if (const HWND page = PageWith(sheet, kProxyHostEdit)) {
        TypeText(page, kProxyHostEdit, "proxy.example");
        pages |= kProxyPage;
    }
    if (const HWND page = PageWith(sheet, CVQCOptionPage::kDynamicSizingId)) {
        ClickControl(page, CVQCOptionPage::kDynamicSizingId);
        pages |= kOptionsPage;
    }
    return pages;
}

// Presses Apply (or OK) and closes every message box it raises, answering the boxes.
std::vector<SeenBox> Press(HWND sheet, int button) {
    MessageBoxWatcher watcher(sheet);
    ClickButton(sheet, button);
    PumpMessages();
    return watcher.Boxes();
}

// What Apply writes without a fault for a visit with the same pages and edits, on the file
// as it was or on a file the pages could not read (they then show an empty record). The
// pages there are matter, not only the edits: the Options page puts an icon into every
// file that passes through it. Learnt once per kind of visit.
class CleanApplies {
public:
    CleanApplies(std::string scratchFile, std::string original)
        : scratch_(std::move(scratchFile)), original_(std::move(original)) {}

    const std::string& Written(HMODULE module, unsigned pages, bool readTheFile) {
        const unsigned key = pages | (readTheFile ? 8u : 0u);
        auto found = written_.find(key);
        if (found != written_.end()) return found->second;
        const faults::PausedCounting clean;
        WriteFileBytes(scratch_, readTheFile ? original_ : "");
        {
            ShellPropertySheet shell(Export<GetClassObjectFunction>(module, "DllGetClassObject"), scratch_);
            // Offered in this order: Connection, Proxy, Options.
            if (!(pages & kConnectionPage)) shell.RefuseOffer(0);
            if (!(pages & kProxyPage)) shell.RefuseOffer(1);
            if (!(pages & kOptionsPage)) shell.RefuseOffer(2);
            if (shell.Open()) {
                EditEveryPage(shell.Sheet());
                Press(shell.Sheet(), kApplyButtonId);
            }
        }
        return written_[key] = ReadFileBytes(scratch_);
    }

private:
    std::string scratch_;
    std::string original_;
    std::map<unsigned, std::string> written_;
};

// How the sweep's Applies ended, beyond "as it was" and "as edited".
struct ApplyOutcomes {
    int told = 0;      // Apply failed and the user was shown why
    int holes = 0;     // the old content gone, the user told, a second Apply wrote it all
    int unread = 0;    // the pages could not read the file and Apply wrote what they showed
    int iconless = 0;  // the icon could not be encoded (or loaded) and was left out
    // A page could not fill its controls or take its edit: the file holds the edits of the
    // other pages only.
    int fewerPages = 0;
};

// The file's text without its icon block ("\r\n-I "<hex>" "), which the writer leaves out
// when the icon cannot be encoded.
std::string WithoutIcon(const std::string& text) {
    const std::size_t start = text.find("\r\n-I \"");
    if (start == std::string::npos) return text;
    const std::size_t close = text.find('"', start + 6);
    if (close == std::string::npos) return text;
    std::size_t end = close + 1;
    if (end < text.size() && text[end] == ' ') ++end;
    return text.substr(0, start) + text.substr(end);
}

void PropertiesCycle(HMODULE module, const std::string& file, CleanApplies& clean, ApplyOutcomes& outcomes,
                     faults::RunChecks& checks) {
    WriteFileBytes(file, kPropertiesLine);
    ShellPropertySheet shell(Export<GetClassObjectFunction>(module, "DllGetClassObject"), file);
    if (FAILED(shell.CreateObject())) return;
    const HRESULT initialized = shell.Initialize();
    checks.Expect(initialized == S_OK || FAILED(initialized), "Initialize answered " + std::to_string(initialized));
    if (initialized != S_OK) return;
    const HRESULT added = shell.AddPages();
    checks.Expect(added == S_OK || FAILED(added), "AddPages answered " + std::to_string(added));
    shell.ReleaseObject();
    // Pages handed over before a failure are the shell's, which shows them.
    const HWND sheet = shell.Show();
    if (!sheet) {
        checks.Expect(shell.Accepted().empty(), "the sheet could not be shown");
        return;
    }
    const unsigned pages = EditEveryPage(sheet);
    const std::vector<SeenBox> boxes = Press(sheet, kApplyButtonId);
    const std::string written = ReadFileBytes(file);
    if (pages == 0) {
        checks.Expect(written == kPropertiesLine, "a sheet without pages to edit changed the file");
        return;
    }
    const std::string& wanted = clean.Written(module, pages, true);
    if (!boxes.empty()) {
        ++outcomes.told;
        checks.Expect(boxes.size() == 1, "more than one message box for one Apply");
        checks.Expect(!SheetClosed(sheet), "the sheet closed after a failed save");
        if (written != kPropertiesLine && written != wanted) {
            // The one hole the file's rule leaves: created anew, then the write failed. An
            // Apply once the fault is gone writes the whole file.
            ++outcomes.holes;
            faults::ArmAt(0);
            checks.Expect(Press(sheet, kApplyButtonId).empty(), "the second Apply failed too");
            checks.Expect(ReadFileBytes(file) == wanted, "the second Apply did not write the whole file");
        }
    } else if (written != wanted) {
        // Outcomes the rules give when a system call fails on the way, each counted.
        const bool iconDiffers = WithoutIcon(written) == WithoutIcon(wanted);
        const bool showedAnEmptyRecord = WithoutIcon(written) == WithoutIcon(clean.Written(module, pages, false));
        bool fewerPages = false;
        for (unsigned some = 0; some < pages && !fewerPages; ++some) {
            if ((some & pages) != some) continue;
            fewerPages = WithoutIcon(written) == WithoutIcon(clean.Written(module, some, true));
        }
        if (iconDiffers) {
            ++outcomes.iconless;
        } else if (showedAnEmptyRecord) {
            ++outcomes.unread;
        } else if (fewerPages) {
            ++outcomes.fewerPages;
        }
        checks.Expect(iconDiffers || showedAnEmptyRecord || fewerPages,
                      "the file is not what the user's edits give, and nobody was told:\n" + written + "\nwanted:\n" +
                          wanted);
    }
    shell.Destroy();
}

TEST(FaultSweep, PropertiesWithAnEditOnEveryPageAndApply) {
    const SweepFolder folder("sweep-properties");
    const std::string file = folder.File("connection.vqc");
    CleanApplies clean(folder.File("clean.vqc"), kPropertiesLine);
    ApplyOutcomes outcomes;
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(),
        [&](HMODULE module, faults::RunChecks& checks) { PropertiesCycle(module, file, clean, outcomes, checks); },
        ServerSweepOptions());
    std::printf("properties: %d runs told the user of a failed save, %d of them left the file to a second Apply; "
                "%d runs' pages could not read the file and Apply wrote what they showed; %d runs wrote the file "
                "without (part of) an icon the system could not encode or load; %d runs wrote the edits of fewer "
                "pages than the user edited, one page having failed to fill its controls or take its edit\n",
                outcomes.told, outcomes.holes, outcomes.unread, outcomes.iconless, outcomes.fewerPages);
    ExpectClean(report, "properties");
}

// --- Browsing for an icon -----------------------------------------------------------------

// The Options page open (its set-up is the Properties sweep's), then the calls from the
// click on "Browse..." on: the dialog, the icons of the chosen file, a click on one, Cancel.
void BrowseCycle(HMODULE module, const std::string& file, const std::string& iconFile, faults::RunChecks& checks) {
    WriteFileBytes(file, kPropertiesLine);
    ShellPropertySheet shell(Export<GetClassObjectFunction>(module, "DllGetClassObject"), file);
    HWND page = nullptr;
    {
        const faults::PausedCounting setUp;
        checks.Expect(shell.Open(), "the sheet did not open without a fault");
        if (shell.Sheet()) page = PageWith(shell.Sheet(), CVQCOptionPage::kBrowseButtonId);
    }
    const HWND sheet = shell.Sheet();
    if (!page) return;
    {
        FileDialogDriver driver(GetCurrentThreadId(), iconFile, 5000);
        ClickControl(page, CVQCOptionPage::kBrowseButtonId);
        PumpMessages();
        driver.Stop();
        driver.Finish();
        if (!faults::Fired()) checks.Expect(driver.SawDialog(), "no file dialog without a fault");
    }
    const HWND list = GetDlgItem(page, CVQCOptionPage::kIconListId);
    if (!faults::Fired())
        checks.Expect(SendMessageA(list, LB_GETCOUNT, 0, 0) == 1, "the chosen file's one icon is not listed");
    if (SendMessageA(list, LB_GETCOUNT, 0, 0) > 0) {
        SendMessageA(list, LB_SETCURSEL, 0, 0);
        SendMessageA(page, WM_COMMAND, MAKEWPARAM(CVQCOptionPage::kIconListId, LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(list));
        PumpMessages();
    }
    const std::vector<SeenBox> boxes = Press(sheet, IDCANCEL);
    checks.Expect(boxes.empty(), "a message box on Cancel");
    checks.Expect(ReadFileBytes(file) == kPropertiesLine, "Cancel changed the file");
    shell.Destroy();
}

TEST(FaultSweep, BrowsingForAnIconOnTheOptionsPageAndPickingOne) {
    const SweepFolder folder("sweep-browse");
    const std::string file = folder.File("connection.vqc");
    const std::string iconFile = folder.File("two sizes.ico");
    const std::vector<std::uint8_t> icon = test_support::MakeIconFile({32, 16});
    WriteFileBytes(iconFile, std::string(icon.begin(), icon.end()));
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(), [&](HMODULE module, faults::RunChecks& checks) { BrowseCycle(module, file, iconFile, checks); },
        ServerSweepOptions());
    ExpectClean(report, "browsing for an icon");
}

// --- Registration -------------------------------------------------------------------------

constexpr char kClassKey[] = "CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}";
constexpr char kLogVariable[] = "VOXA_REGISTRATE_LOG_FILE";
using ServerFunction = HRESULT(STDAPICALLTYPE*)();

// Every key and value below a root, one line each, in a stable order.
void DumpTree(HKEY key, const std::string& path, std::string& text) {
    char name[512];
    BYTE data[2048];
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof(name);
        DWORD dataSize = sizeof(data);
        DWORD type = 0;
        if (RegEnumValueA(key, index, name, &nameSize, nullptr, &type, data, &dataSize) != ERROR_SUCCESS) break;
        text += path + " [" + name + "] = " + std::string(reinterpret_cast<char*>(data), dataSize) + "\n";
    }
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof(name);
        if (RegEnumKeyExA(key, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        HKEY child = nullptr;
        if (RegOpenKeyExA(key, name, 0, KEY_READ, &child) != ERROR_SUCCESS) continue;
        text += path + "\\" + name + "\n";
        DumpTree(child, path + "\\" + name, text);
        RegCloseKey(child);
    }
}

std::string TreeText(HKEY root) {
    std::string text;
    DumpTree(root, "", text);
    return text;
}

void EmptyRoot(HKEY root) {
    char name[512];
    for (;;) {
        DWORD size = sizeof(name);
        if (RegEnumKeyExA(root, 0, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        if (RegDeleteTreeA(root, name) != ERROR_SUCCESS) break;
    }
}

// The tree's lines without the bare "AppID" and "CLSID" keys, which registration makes in
// an empty root and removal leaves, as every system has them.
std::string WithoutSharedParents(const std::string& tree) {
    std::string rest;
    std::size_t start = 0;
    while (start < tree.size()) {
        const std::size_t end = tree.find('\n', start);
        const std::string line = tree.substr(start, end - start);
        if (line != "\\AppID" && line != "\\CLSID") rest += line + "\n";
        start = end == std::string::npos ? tree.size() : end + 1;
    }
    return rest;
}

std::size_t Lines(const std::string& text) {
    std::size_t lines = 0;
    for (char c : text) lines += c == '\n';
    return lines;
}

TEST(FaultSweep, RegisteringRollsBackOrLogsEveryFailure) {
    const SweepFolder folder("sweep-register");
    const test_support::PrivateClassesRoot root("sweep-register");
    const std::string log = folder.File("registration.log");
    const test_support::ScopedEnvironment variable(kLogVariable, log.c_str());
    std::string registered;  // the tree a registration without a fault leaves
    HRESULT result = S_OK;
    faults::SweepOptions options = ServerSweepOptions();
    options.afterUnload = [&](faults::RunChecks& checks) {
        const std::string tree = TreeText(root.Get());
        const std::string written = test_support::FileExists(log) ? ReadFileBytes(log) : "";
        const std::string fired = faults::Fired() ? faults::FiredCall().function : "";
        if (registered.empty()) {
            checks.Expect(result == S_OK && !tree.empty() && written.empty(), "registration without a fault failed");
            registered = tree;
        } else if (FAILED(result)) {
            // Rolled back: only the parents every system has are left.
            checks.Expect(WithoutSharedParents(tree).empty(), "a failed registration left keys behind:\n" + tree);
            if (fired == "RegCreateKeyExA")
                checks.Expect(written.rfind("Failed to create registry key ", 0) == 0, "the failure was not logged");
        } else if (tree != registered) {
            // A value that could not be set does not fail registration; it is logged.
            checks.Expect(fired == "RegSetValueExA" && Lines(registered) - Lines(tree) == 1,
                          "registration answered S_OK with this tree:\n" + tree);
            checks.Expect(written.rfind("Failed to set registry value ", 0) == 0, "the failed value was not logged");
        }
        DeleteFileA(log.c_str());
        EmptyRoot(root.Get());
    };
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(),
        [&](HMODULE module, faults::RunChecks&) { result = Export<ServerFunction>(module, "DllRegisterServer")(); },
        options);
    ExpectClean(report, "registering");
    EXPECT_NE(registered.find(kClassKey), std::string::npos) << registered;
}

TEST(FaultSweep, UnregisteringAnswersAndASecondRunRemovesEverything) {
    const SweepFolder folder("sweep-unregister");
    const test_support::PrivateClassesRoot root("sweep-unregister");
    HRESULT result = S_OK;
    faults::SweepOptions options = ServerSweepOptions();
    options.afterUnload = [&](faults::RunChecks& checks) {
        const std::string tree = TreeText(root.Get());
        checks.Expect(tree.find(kClassKey) == std::string::npos, "a second unregistration left the class registered");
        EmptyRoot(root.Get());
    };
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(),
        [&](HMODULE module, faults::RunChecks& checks) {
            {
                const faults::PausedCounting setUp;
                checks.Expect(Export<ServerFunction>(module, "DllRegisterServer")() == S_OK, "set-up registration failed");
            }
            // Deletions that fail are not reported: S_OK, with the entries that could not go.
            result = Export<ServerFunction>(module, "DllUnregisterServer")();
            checks.Expect(result == S_OK || FAILED(result), "DllUnregisterServer answered " + std::to_string(result));
            // Run again without the fault, it finishes the job.
            const faults::PausedCounting again;
            checks.Expect(Export<ServerFunction>(module, "DllUnregisterServer")() == S_OK, "a second unregistration failed");
        },
        options);
    ExpectClean(report, "unregistering");
}

}  // namespace
