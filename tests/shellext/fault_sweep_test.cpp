// Every system call the built DLL makes in a user's scenario, failed one at a time: the icon
// handler on three kinds of file, a file's Properties with an edit on every page and Apply,
// browsing for an icon on the Options page, registering and unregistering. Each test prints
// which calls it failed; VQC_SWEEP_ALL=1 fails every one instead of a sample.
#include <windows.h>
#include <objbase.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "pages/connection_page_rules.h"
#include "pages/option_page.h"
#include "pages/proxy_page_rules.h"
#include "resources/dialog_ids.h"
#include "pages/save_failure_text.h"
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
    int putBack = 0;   // of those, the write failed once the file was emptied: its old content is back
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

// The one thing no failure may do to the file: leave less of it than both what it held and
// what Apply was writing.
bool ShorterThanBoth(const std::string& file, const std::string& old, const std::string& wanted) {
    return file.size() < old.size() && file.size() < wanted.size();
}

bool FailedCallWas(const char* function) {
    return faults::Fired() && std::strcmp(faults::FiredCall().function, function) == 0;
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
        checks.Expect(!ShorterThanBoth(written, kPropertiesLine, wanted),
                      "the failed save left " + std::to_string(written.size()) + " bytes, less than the " +
                          std::to_string(std::strlen(kPropertiesLine)) + " it held and the " +
                          std::to_string(wanted.size()) + " it was given");
        // The file was created anew (emptied) and the write failed: what it held is back,
        // the file as it was or as an earlier page of the same Apply wrote it.
        if (FailedCallWas("WriteFile") && (written == kPropertiesLine || written == wanted)) ++outcomes.putBack;
        if (written != kPropertiesLine && written != wanted) {
            // The file's rule empties it before it writes: a write that failed and could
            // not put the old content back leaves a hole.
            ++outcomes.holes;
        }
        // Nothing of the user's edits is lost: an Apply once the fault is gone writes them.
        faults::ArmAt(0);
        checks.Expect(Press(sheet, kApplyButtonId).empty(), "the second Apply failed too");
        checks.Expect(ReadFileBytes(file) == wanted, "the second Apply did not write the whole file");
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
        "properties: %d runs told the user of a failed save, %d of them after the write had emptied the file, "
        "its old content put back, %d left the file to a second Apply; "
        "%d runs' pages could not read the file and Apply wrote what they showed; %d runs wrote the file "
        "without (part of) an icon the system could not encode or load; %d runs wrote the edits of fewer "
        "pages than the user edited, one page having failed to fill its controls or take its edit\n",
        outcomes.told, outcomes.putBack, outcomes.holes, outcomes.unread, outcomes.iconless, outcomes.fewerPages);
    ExpectClean(report, "properties");
}

// --- A save whose write fails, and the putting back --------------------------------------

// How the runs of the save whose write failed ended.
struct PutBackOutcomes {
    int putBack = 0;  // the old content is back, the box says what failed
    int lost = 0;     // putting it back failed too, and the box says so
    int unread = 0;   // the old content could not be read first: the file is as the write left it
    int unseen = 0;   // the box itself could not be shown (its own call or its text's memory failed)
};

// The sheet opened and every page edited without faults; then Apply, whose write fails in
// every run (the sweep's standing fault). The calls swept are those of Apply: the text, the
// old content read, the create, the failed write, putting the old content back, the box.
void FailedSaveCycle(HMODULE module, const std::string& file, CleanApplies& clean, PutBackOutcomes& outcomes,
                     faults::RunChecks& checks) {
    WriteFileBytes(file, kPropertiesLine);
    ShellPropertySheet shell(Export<GetClassObjectFunction>(module, "DllGetClassObject"), file);
    unsigned pages = 0;
    {
        const faults::PausedCounting setUp;
        checks.Expect(shell.Open(), "the sheet did not open without a fault");
        if (shell.Sheet()) pages = EditEveryPage(shell.Sheet());
    }
    const HWND sheet = shell.Sheet();
    if (!sheet) return;
    checks.Expect(pages == (kConnectionPage | kProxyPage | kOptionsPage), "a page was missing without a fault");
    const std::vector<SeenBox> boxes = Press(sheet, kApplyButtonId);
    const faults::PausedCounting afterwards;
    const std::string written = ReadFileBytes(file);
    const std::string& wanted = clean.Written(module, pages, true);
    checks.Expect(!SheetClosed(sheet), "the sheet closed after a failed save");
    checks.Expect(boxes.size() <= 1, "more than one message box for one Apply");
    // The failed write took nothing; the old content is back unless a call of putting it
    // back failed, or one of reading it before the file was emptied (then, as before there
    // was anything to put back, the box tells the failed save only).
    const bool lost = written != kPropertiesLine;
    const bool putBackFailed = FailedCallWas("SetFilePointerEx") || FailedCallWas("WriteFile");
    const bool unread = lost && (FailedCallWas("CreateFileA") || FailedCallWas("GetFileSize") ||
                                 FailedCallWas("ReadFile") || FailedCallWas("malloc"));
    // The counting run (no armed call) is no run of the sweep's.
    const int counted = faults::Fired() ? 1 : 0;
    if (!lost) {
        outcomes.putBack += counted;
    } else if (unread) {
        outcomes.unread += counted;
    } else {
        outcomes.lost += counted;
        checks.Expect(putBackFailed, "the old content is gone, and no call of reading or putting it back failed");
    }
    if (boxes.empty()) {
        outcomes.unseen += counted;
        checks.Expect(FailedCallWas("MessageBoxA") || FailedCallWas("malloc"),
                      "no box, and neither its own call nor an allocation failed");
        checks.Expect(!lost, "the old content is gone, and the user was not told");
    } else {
        const std::string& text = boxes[0].text;
        checks.Expect(text.rfind(file + "\r\n\r\n", 0) == 0, "the box does not start with the file: " + text);
        const std::size_t sentence = std::strlen(kOldContentLostSentence);
        const bool saysLost =
            text.size() > sentence && text.compare(text.size() - sentence, sentence, kOldContentLostSentence) == 0;
        checks.Expect(saysLost == (lost && !unread),
                      saysLost ? "the box says the old content is gone: " + text
                               : "the old content is gone, and the box does not say so: " + text);
    }
    // The edits are still the sheet's: an Apply without a fault writes them whole.
    checks.Expect(Press(sheet, kApplyButtonId).empty(), "the second Apply failed too");
    checks.Expect(ReadFileBytes(file) == wanted, "the second Apply did not write the whole file");
    shell.Destroy();
}

TEST(FaultSweep, PropertiesApplyWhoseWriteFailsPutsTheOldContentBackOrSaysItCouldNot) {
    const DllCopyFolder folder("sweep-put-back");
    const std::string file = folder.File("connection.vqc");
    CleanApplies clean(folder.File("clean.vqc"), kPropertiesLine);
    PutBackOutcomes outcomes;
    faults::SweepOptions options = ServerSweepOptions();
    options.standingFault = "WriteFile";
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(),
        [&](HMODULE module, faults::RunChecks& checks) { FailedSaveCycle(module, file, clean, outcomes, checks); },
        options);
    std::printf(
        "failed save: %d runs put the old content back, %d could not and said so, %d could not read it before "
        "the write (told of the failed save only, as before); in %d the box itself could not be shown, the old "
        "content back\n",
        outcomes.putBack, outcomes.lost, outcomes.unread, outcomes.unseen);
    ExpectClean(report, "properties, a failed write put back");
    EXPECT_GT(outcomes.lost, 0) << "no run failed a call of putting the old content back";
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
