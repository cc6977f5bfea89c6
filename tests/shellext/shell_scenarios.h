// What a user of the shell does with the built DLL, as the fault sweeps and the leak soaks
// play it: the shell's icon cycle for one file, a file's Properties with one edit on every
// page and Apply, and the DLL's own copy in a folder of the test's.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/faults/fault_sweep.h"
#include "tests/pages/page_test_support.h"

namespace shell_scenarios {

template <typename Function>
Function Export(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// A copy of the built DLL in a folder of the test's own, beside the files it works on.
class DllCopyFolder {
public:
    explicit DllCopyFolder(const std::string& tag);
    const std::string& Dll() const { return dll_; }
    std::string File(const std::string& name) const { return folder_.File(name); }

private:
    test_support::TempFolder folder_;
    std::string dll_;
};

// The C++ runtime linked into the DLL makes its state for a thread's first exception (and
// for the first in the module) on demand and keeps it for the life of the thread and
// beyond the module: a first allocation that fails in DllGetClassObject throws once.
void ThrowOnceInTheModule(HMODULE module);

// How the DLL's sweeps run: with that warm-up, every k or a sample (VQC_SWEEP_ALL).
faults::SweepOptions ServerSweepOptions();

// What the shell does for one file of a folder: class object, object, Load, the icon's
// location, Extract when the location is no file, release; every icon handed out is
// destroyed as the shell destroys it. Every answer is checked: a failure code or the
// documented result with its output.
void IconHandlerCycle(HMODULE module, const std::wstring& file, faults::RunChecks& checks);

inline constexpr char kPropertiesLine[] = "-h server.example -u tester -C bookmark";

// The page of the sheet that has the control; null when no page has it. Pages are found by
// what they hold, not by their tab's title, which may be missing after a failure.
HWND PageWith(HWND sheet, int controlId);

// The pages a user met in one visit (each edited once).
enum Visit : unsigned { kConnectionPage = 1, kProxyPage = 2, kOptionsPage = 4 };

// Every page shown, one edit on each page there is; answers the pages there were.
unsigned EditEveryPage(HWND sheet);

// Presses a button of the sheet (Apply, OK) and closes every message box it raises.
std::vector<page_test::SeenBox> Press(HWND sheet, int button);

}  // namespace shell_scenarios
