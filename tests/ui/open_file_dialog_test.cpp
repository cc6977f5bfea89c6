// The open-file dialog wrapper: what it hands the system (seen through the replaceable show
// function), and the real dialog once under Wine, found and cancelled as a user would.
#include "ui/open_file_dialog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "resources/local_string_cache.h"
#include "runtime/module_runtime.h"
#include "tests/window_assertions.h"
#include "tests/support/system_structure_sizes.h"

namespace {

// What the dialog was given, copied while the call lasts.
struct Recorded {
    int calls = 0;
    OPENFILENAMEA settings{};
    std::string file;
    std::vector<std::string> filter;  // the pieces between the NULs, up to the double NUL
    const char* answer = nullptr;     // copied into the file buffer when not null
    BOOL result = FALSE;
};
Recorded* g_recorded = nullptr;

BOOL WINAPI RecordingShow(LPOPENFILENAMEA settings) {
    Recorded& r = *g_recorded;
    ++r.calls;
    std::memcpy(&r.settings, settings,
                sizeof(r.settings) < settings->lStructSize ? sizeof(r.settings) : settings->lStructSize);
    r.file = settings->lpstrFile ? settings->lpstrFile : "<null>";
    for (const char* piece = settings->lpstrFilter; piece && *piece; piece += std::strlen(piece) + 1) {
        r.filter.push_back(piece);
    }
    if (r.answer) lstrcpynA(settings->lpstrFile, r.answer, static_cast<int>(settings->nMaxFile));
    return r.result;
}

class RecordingDialog : public ::testing::Test {
protected:
    void SetUp() override {
        g_recorded = &recorded;
        previous = OpenFileDialog::SetShowFunctionForTesting(RecordingShow);
    }
    void TearDown() override {
        OpenFileDialog::SetShowFunctionForTesting(previous);
        g_recorded = nullptr;
    }
    Recorded recorded;
    OpenFileDialog::ShowFunction previous = nullptr;
};

class OwnerWindow {
public:
    OwnerWindow()
        : window_(CreateWindowExA(0, "static", "owner", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr)) {}
    ~OwnerWindow() { DestroyWindow(window_); }
    HWND Get() const { return window_; }

private:
    HWND window_;
};

constexpr DWORD kAddedFlags = OFN_EXPLORER | OFN_ENABLEHOOK | OFN_ENABLESIZING;

}  // namespace

TEST(OpenFileDialogSize, FullStructureFromVersion490On) {
    // Every Windows that runs a 64-bit shell, and Wine, is past 4.90.
    EXPECT_EQ(OpenFileDialog::StructureSize(), system_sizes::kFullOpenFileName);
    EXPECT_EQ(sizeof(OPENFILENAMEA), system_sizes::kFullOpenFileName);
    EXPECT_EQ(OPENFILENAME_SIZE_VERSION_400A, system_sizes::kOpenFileNameVersion400);
}

TEST_F(RecordingDialog, HandsOverTheCallersFlagsPlusExplorerHookAndSizing) {
    OwnerWindow owner;
    OpenFileDialog dialog("C:\\icons\\client.dll", OFN_FILEMUSTEXIST | OFN_HIDEREADONLY, GetLocalString(40),
                          owner.Get());
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    ASSERT_EQ(recorded.calls, 1);
    const OPENFILENAMEA& s = recorded.settings;
    EXPECT_EQ(s.lStructSize, system_sizes::kFullOpenFileName);
    EXPECT_EQ(s.Flags, static_cast<DWORD>(0x1004 | kAddedFlags));
    EXPECT_EQ(s.Flags, 0x00881024u);
    EXPECT_TRUE(IsSameWindow(s.hwndOwner, owner.Get()));
    EXPECT_EQ(s.lpstrDefExt, nullptr);
    EXPECT_NE(s.lpfnHook, nullptr);
    EXPECT_EQ(s.nMaxFile, 260u);
    EXPECT_EQ(s.lpstrCustomFilter, nullptr);
    EXPECT_EQ(s.lpTemplateName, nullptr);
    EXPECT_EQ(recorded.file, "C:\\icons\\client.dll");
    EXPECT_EQ(s.hInstance, TheModuleRuntime().Instance());
}

TEST_F(RecordingDialog, FilterListArrivesWholeWithItsEmbeddedNuls) {
    OpenFileDialog dialog(nullptr, 0, GetLocalString(40), nullptr);
    dialog.DoModal();
    const std::vector<std::string> want = {"Executable and icon files", "*.exe;*.dll;*.ico", "All files", "*.*"};
    EXPECT_EQ(recorded.filter, want);
    EXPECT_EQ(recorded.settings.lpstrFilter, GetLocalString(40));
}

TEST_F(RecordingDialog, NoFlagsOfTheCallersStillGetTheThreeAdded) {
    OpenFileDialog dialog(nullptr, 0, nullptr, nullptr);
    dialog.DoModal();
    EXPECT_EQ(recorded.settings.Flags, kAddedFlags);
    EXPECT_EQ(recorded.file, "");
    EXPECT_EQ(recorded.settings.lpstrFilter, nullptr);
}

TEST_F(RecordingDialog, LongInitialNameIsCutToTheFileBuffer) {
    const std::string longName = "C:\\" + std::string(300, 'a') + ".dll";
    OpenFileDialog dialog(longName.c_str(), 0, nullptr, nullptr);
    dialog.DoModal();
    EXPECT_EQ(recorded.file, longName.substr(0, 259));
    EXPECT_EQ(std::strlen(dialog.FilePath()), 259u);
}

TEST_F(RecordingDialog, ConfirmedFileIsAnsweredWithIdOk) {
    recorded.answer = "C:\\chosen\\icons.ico";
    recorded.result = TRUE;
    OpenFileDialog dialog("C:\\first.dll", OFN_FILEMUSTEXIST, nullptr, nullptr);
    EXPECT_EQ(dialog.DoModal(), IDOK);
    EXPECT_STREQ(dialog.FilePath(), "C:\\chosen\\icons.ico");
}

TEST_F(RecordingDialog, CancelIsAnsweredWithIdCancel) {
    recorded.answer = nullptr;
    recorded.result = FALSE;
    OpenFileDialog dialog("C:\\first.dll", 0, nullptr, nullptr);
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_STREQ(dialog.FilePath(), "C:\\first.dll");
}

TEST(OpenFileDialogShowFunction, NullRestoresTheSystemDialog) {
    EXPECT_EQ(OpenFileDialog::SetShowFunctionForTesting(RecordingShow), nullptr);  // the system's
    EXPECT_EQ(OpenFileDialog::SetShowFunctionForTesting(nullptr), &RecordingShow);
    EXPECT_EQ(OpenFileDialog::SetShowFunctionForTesting(nullptr), nullptr);
}

// --- The real dialog ------------------------------------------------------------------------

namespace {

struct Found {
    HWND owner = nullptr;
    HWND dialog = nullptr;
    bool hookChild = false;
    char title[64] = {};
    int ticks = 0;
};
Found* g_found = nullptr;

BOOL CALLBACK FindOwnedDialog(HWND window, LPARAM) {
    char className[16] = {};
    GetClassNameA(window, className, sizeof(className));
    if (std::strcmp(className, "#32770") == 0 && SameWindow(GetWindow(window, GW_OWNER), g_found->owner)) {
        g_found->dialog = window;
        return FALSE;
    }
    return TRUE;
}

BOOL CALLBACK FindHookChild(HWND child, LPARAM) {
    char className[16] = {};
    GetClassNameA(child, className, sizeof(className));
    if (std::strcmp(className, "#32770") == 0) {
        g_found->hookChild = true;
        return FALSE;
    }
    return TRUE;
}

// Runs inside the dialog's own message loop: find the dialog, look at it, cancel it.
void CALLBACK CancelWhenFound(HWND, UINT, UINT_PTR timer, DWORD) {
    Found& f = *g_found;
    if (++f.ticks > 200) {  // give up after about 10 s
        KillTimer(nullptr, timer);
        return;
    }
    EnumThreadWindows(GetCurrentThreadId(), FindOwnedDialog, 0);
    if (!f.dialog) return;
    KillTimer(nullptr, timer);
    GetWindowTextA(f.dialog, f.title, sizeof(f.title));
    EnumChildWindows(f.dialog, FindHookChild, 0);
    PostMessageA(f.dialog, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
}

}  // namespace

TEST(OpenFileDialogReal, OpensOwnedByThePageAndCancelChangesNothing) {
    OwnerWindow owner;
    Found found;
    found.owner = owner.Get();
    g_found = &found;
    const UINT_PTR timer = SetTimer(nullptr, 0, 50, CancelWhenFound);
    ASSERT_NE(timer, 0u);
    OpenFileDialog dialog("C:\\windows\\system32\\shell32.dll", OFN_FILEMUSTEXIST | OFN_HIDEREADONLY,
                          GetLocalString(40), owner.Get());
    EXPECT_EQ(dialog.DoModal(), IDCANCEL);
    KillTimer(nullptr, timer);
    g_found = nullptr;
    ASSERT_NE(found.dialog, nullptr) << "no open dialog appeared";
    EXPECT_TRUE(found.hookChild);  // the hook procedure's child dialog
    EXPECT_EQ(CommDlgExtendedError(), 0u);
    EXPECT_STREQ(dialog.FilePath(), "C:\\windows\\system32\\shell32.dll");
}
