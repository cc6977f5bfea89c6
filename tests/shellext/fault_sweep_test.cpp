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
#include "resources/dialog_ids.h"
#include "tests/faults/fault_layer.h"
#include "tests/faults/fault_sweep.h"
#include "tests/pages/file_dialog_driver.h"
#include "tests/pages/page_test_support.h"
#include "tests/pages/user_actions.h"
#include "tests/shellext/clean_sweep.h"
#include "tests/shellext/shell_scenarios.h"
#include "tests/shellext/shellext_test_support.h"

using namespace page_test;
using namespace shell_scenarios;

namespace {

// --- The icon handler ---------------------------------------------------------------------

faults::SweepReport SweepIconHandler(const std::string& tag, const std::string& content) {
    const DllCopyFolder folder(tag);
    const std::string file = folder.File("connection.vqc");
    WriteFileBytes(file, content);
    const std::wstring wide = test_support::Wide(file);
    return faults::Sweep(
        folder.Dll(), [&](HMODULE module, faults::RunChecks& checks) { IconHandlerCycle(module, wide, checks); },
        ServerSweepOptions());
}

TEST(FaultSweep, IconHandlerOnAFileWithAnIcon) {
    ExpectClean(SweepIconHandler("sweep-icon", test_support::ConnectionLineWithIcon({32, 16})),
                "icon handler, file with an icon");
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
        checks.Expect(
            iconDiffers || showedAnEmptyRecord || fewerPages,
            "the file is not what the user's edits give, and nobody was told:\n" + written + "\nwanted:\n" + wanted);
    }
    shell.Destroy();
}

TEST(FaultSweep, PropertiesWithAnEditOnEveryPageAndApply) {
    const DllCopyFolder folder("sweep-properties");
    const std::string file = folder.File("connection.vqc");
    CleanApplies clean(folder.File("clean.vqc"), kPropertiesLine);
    ApplyOutcomes outcomes;
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(),
        [&](HMODULE module, faults::RunChecks& checks) { PropertiesCycle(module, file, clean, outcomes, checks); },
        ServerSweepOptions());
    std::printf(
        "properties: %d runs told the user of a failed save, %d of them left the file to a second Apply; "
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
        if (shell.Sheet()) page = PageWith(shell.Sheet(), dialog_ids::kBrowseButton);
    }
    const HWND sheet = shell.Sheet();
    if (!page) return;
    {
        FileDialogDriver driver(GetCurrentThreadId(), iconFile, 5000);
        ClickControl(page, dialog_ids::kBrowseButton);
        PumpMessages();
        driver.Stop();
        driver.Finish();
        if (!faults::Fired()) checks.Expect(driver.SawDialog(), "no file dialog without a fault");
    }
    const HWND list = GetDlgItem(page, dialog_ids::kIconList);
    if (!faults::Fired())
        checks.Expect(SendMessageA(list, LB_GETCOUNT, 0, 0) == 1, "the chosen file's one icon is not listed");
    if (SendMessageA(list, LB_GETCOUNT, 0, 0) > 0) {
        SendMessageA(list, LB_SETCURSEL, 0, 0);
        SendMessageA(page, WM_COMMAND, MAKEWPARAM(dialog_ids::kIconList, LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(list));
        PumpMessages();
    }
    const std::vector<SeenBox> boxes = Press(sheet, IDCANCEL);
    checks.Expect(boxes.empty(), "a message box on Cancel");
    checks.Expect(ReadFileBytes(file) == kPropertiesLine, "Cancel changed the file");
    shell.Destroy();
}

TEST(FaultSweep, BrowsingForAnIconOnTheOptionsPageAndPickingOne) {
    const DllCopyFolder folder("sweep-browse");
    const std::string file = folder.File("connection.vqc");
    const std::string iconFile = folder.File("two sizes.ico");
    const std::vector<std::uint8_t> icon = test_support::MakeIconFile({32, 16});
    WriteFileBytes(iconFile, std::string(icon.begin(), icon.end()));
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(), [&](HMODULE module, faults::RunChecks& checks) { BrowseCycle(module, file, iconFile, checks); },
        ServerSweepOptions());
    ExpectClean(report, "browsing for an icon");
}

}  // namespace
