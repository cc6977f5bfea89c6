// Real property sheets for the page tests, built the way the shell builds them.
//
// (a) The shell's road: ExtensionCopy puts a copy of the built vqcprop64.dll in a folder of
//     the test's own (with a stand-in client DLL of a chosen version and "vserver.dll"
//     beside it when asked) and loads it; ShellPropertySheet then plays the shell with any
//     DllGetClassObject (the copy's, or the test program's own when it links the server):
//     class factory -> object -> IShellExtInit::Initialize with the shell's own CF_HDROP
//     data object for a real file -> AddPages into a callback that collects the handles ->
//     a modeless PropertySheetA showing them.
// (b) Pages made directly: DirectSheet shows page objects that the test program creates
//     itself (with a record of the test's choosing, or none) in a modeless sheet, so a
//     test can look inside them.
//
// Sheet helpers drive a sheet with the messages a user's clicks send; WriteWatch counts
// the file writes each page makes on PSN_APPLY.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <prsht.h>
#include <shlobj.h>

#include <set>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "common/same_window.h"
#include "tests/support/file_bytes.h"
#include "tests/pages/sheet_input.h"
#include "tests/registration/registry_test_support.h"
#include "tests/support/build_paths.h"
#include "tests/support/modeless_sheet.h"
#include "tests/support/shell_selection.h"
#include "tests/support/temp_folder.h"

class VQCFileInfo;

namespace page_test {

using test_support::PumpMessages;
using test_support::ShellSelection;
using test_support::TempFolder;

// {5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}
inline constexpr CLSID kVQCPropClassId = {0x5e1d7c40, 0xa3b2, 0x11d0, {0x8e, 0x6f, 0x00, 0xa0, 0xc9, 0xb3, 0x5d, 0x21}};

using GetClassObjectFunction = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
using CanUnloadNowFunction = HRESULT(STDAPICALLTYPE*)();

// COM on this thread, single-threaded apartment, for the object's life.
class ComApartment {
public:
    ComApartment() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~ComApartment() { CoUninitialize(); }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
};

using test_support::BuiltDllPath;
using test_support::ClientFixturePath;

// A folder of the test's own with a loaded copy of the DLL.
class ExtensionCopy {
public:
    // clientFixture: empty for no client, else the fixture copied in as clientName.
    // withVServer puts a file "vserver.dll" beside the DLL.
    explicit ExtensionCopy(const std::string& tag, const std::string& clientFixture = "", bool withVServer = false,
                           const std::string& clientName = "vclient.dll");
    ~ExtensionCopy();
    ExtensionCopy(const ExtensionCopy&) = delete;
    ExtensionCopy& operator=(const ExtensionCopy&) = delete;

    HMODULE Module() const { return module_; }
    const std::string& DllPath() const { return dllPath_; }
    // A path in the folder (for connection files).
    std::string File(const std::string& name) const { return folder_.File(name); }

    GetClassObjectFunction GetClassObject() const;
    HRESULT CanUnloadNow() const;
    // FreeLibrary now (the folder goes with the object).
    void Unload();

private:
    TempFolder folder_;
    std::string dllPath_;
    HMODULE module_ = nullptr;
};

// One file's Properties as the shell assembles them.
class ShellPropertySheet {
public:
    ShellPropertySheet(GetClassObjectFunction getClassObject, const std::string& file);
    // A file named in UTF-16, as the shell names every file.
    ShellPropertySheet(GetClassObjectFunction getClassObject, const std::wstring& file);
    ~ShellPropertySheet();
    ShellPropertySheet(const ShellPropertySheet&) = delete;
    ShellPropertySheet& operator=(const ShellPropertySheet&) = delete;

    // Pages whose addPage call (0-based, in offering order) answers FALSE.
    void RefuseOffer(int offerIndex) { refused_.insert(offerIndex); }

    // The steps, each recording its result.
    HRESULT CreateObject();  // class factory, CreateInstance(IID_IShellPropSheetExt)
    HRESULT Initialize();    // with ShellSelection({file})
    HRESULT AddPages();
    HWND Show();  // modeless PropertySheetA of the accepted pages; null on failure
    // All four; true when each succeeded.
    bool Open();

    // The shell lets go of the extension object after AddPages.
    void ReleaseObject() { object_.Reset(); }
    IShellPropSheetExt* Object() const { return object_.Get(); }

    int Offered() const { return static_cast<int>(offers_.size()); }
    const std::vector<HPROPSHEETPAGE>& Accepted() const { return accepted_; }
    HWND Sheet() const { return sheet_; }
    const std::string& File() const { return file_; }

    // DestroyWindow of the sheet, then the queued messages.
    void Destroy();

private:
    static BOOL CALLBACK CollectPage(HPROPSHEETPAGE page, LPARAM self);

    ComApartment apartment_;
    GetClassObjectFunction getClassObject_;
    std::string file_;
    std::wstring wideFile_;
    ComPtr<IShellPropSheetExt> object_;
    std::set<int> refused_;
    std::vector<HPROPSHEETPAGE> offers_;
    std::vector<HPROPSHEETPAGE> accepted_;
    HWND sheet_ = nullptr;
};

// Page objects the test program makes itself, shown in a modeless sheet. The sheet deletes
// them through their release callback when it is destroyed.
class DirectSheet {
public:
    DirectSheet() = default;
    ~DirectSheet();
    DirectSheet(const DirectSheet&) = delete;
    DirectSheet& operator=(const DirectSheet&) = delete;

    // Creates a page of class Page around record (may be null) and adds it; the object
    // stays valid until the sheet is destroyed. Null when the page handle was refused.
    template <typename Page>
    Page* Add(VQCFileInfo* record, const char* title = "Page") {
        auto* page = new Page(record, title);
        const HPROPSHEETPAGE handle = page->CreatePage();
        if (!handle) {
            delete page;
            return nullptr;
        }
        pages_.push_back(handle);
        return page;
    }

    // Adds a sheet handle made elsewhere.
    void AddHandle(HPROPSHEETPAGE page) { pages_.push_back(page); }

    HWND Show();
    HWND Sheet() const { return sheet_; }
    void Destroy();

private:
    std::vector<HPROPSHEETPAGE> pages_;
    HWND sheet_ = nullptr;
};

// --- Driving a sheet ---------------------------------------------------------------
// The window of page `index`; null until the sheet has created it (when first shown).
HWND PageWindow(HWND sheet, int index);
HWND CurrentPage(HWND sheet);
int PageCount(HWND sheet);
// The text on page index's tab.
std::string PageTitle(HWND sheet, int index);
// The index of the page whose tab reads title; -1 when there is none.
int PageIndex(HWND sheet, const std::string& title);
// Shows page index as a click on its tab would.
void ShowPage(HWND sheet, int index);
// Shows the page whose tab reads title and answers its window; null when there is none.
HWND ShowPageTitled(HWND sheet, const std::string& title);
// PSM_APPLY: TRUE when every created page accepted the apply.
BOOL Apply(HWND sheet);
// A click on one of the sheet's buttons (IDOK, IDCANCEL, kApplyButtonId).
void ClickButton(HWND sheet, int id);
inline void PressOk(HWND sheet) { ClickButton(sheet, IDOK); }
inline void PressCancel(HWND sheet) { ClickButton(sheet, IDCANCEL); }
// A modeless sheet that the user closed (OK, Cancel, close box) has no current page.
bool SheetClosed(HWND sheet);
// A control of a page window.
HWND PageControl(HWND page, int id);
// The ids of the direct children of a window, in z-order.
std::vector<int> ChildIds(HWND window);
// A child's rectangle in its parent's client coordinates.
RECT ChildRect(HWND child);

// A message box that appeared while the watcher lived: its title and its text.
struct SeenBox {
    std::string title;
    std::string text;
};

// Watches for message boxes owned by the sheet while a modal loop runs on this thread (a
// timer fires inside it), reads each one and closes it as a click on OK would.
class MessageBoxWatcher {
public:
    explicit MessageBoxWatcher(HWND sheet) : sheet_(sheet) {
        current_ = this;
        timer_ = SetTimer(nullptr, 0, 50, OnTimer);
    }
    ~MessageBoxWatcher() {
        KillTimer(nullptr, timer_);
        current_ = nullptr;
    }
    MessageBoxWatcher(const MessageBoxWatcher&) = delete;
    MessageBoxWatcher& operator=(const MessageBoxWatcher&) = delete;

    const std::vector<SeenBox>& Boxes() const { return boxes_; }

private:
    static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) {
        if (current_) EnumThreadWindows(GetCurrentThreadId(), CloseBox, 0);
    }

    static BOOL CALLBACK CloseBox(HWND window, LPARAM) {
        if (!SameWindow(GetWindow(window, GW_OWNER), current_->sheet_) || !IsWindowVisible(window)) return TRUE;
        char className[16] = {};
        GetClassNameA(window, className, sizeof(className));
        if (std::string(className) != "#32770") return TRUE;
        // The box's text is its static control 0xFFFF.
        current_->boxes_.push_back({WindowText(window), WindowText(GetDlgItem(window, 0xFFFF))});
        SendMessageA(window, WM_COMMAND, IDOK, 0);
        return TRUE;
    }

    static inline MessageBoxWatcher* current_ = nullptr;
    HWND sheet_;
    UINT_PTR timer_ = 0;
    std::vector<SeenBox> boxes_;
};

// Counts the writes each page makes while it handles PSN_APPLY: before the page sees
// the notification the file is replaced by a marker, afterwards what it holds is read
// back. Watch every created page of a sheet before applying.
class WriteWatch {
public:
    explicit WriteWatch(std::string file);
    ~WriteWatch();
    WriteWatch(const WriteWatch&) = delete;
    WriteWatch& operator=(const WriteWatch&) = delete;

    void Watch(HWND page);
    int Applies() const { return applies_; }
    // The file's bytes after each PSN_APPLY that wrote the file, in order.
    const std::vector<std::string>& Writes() const { return writes_; }

    static constexpr char kMarker[] = "<not written>";

private:
    static LRESULT CALLBACK Subclass(HWND, UINT, WPARAM, LPARAM, UINT_PTR, DWORD_PTR);

    std::string file_;
    std::vector<HWND> watched_;
    int applies_ = 0;
    std::vector<std::string> writes_;
};

}  // namespace page_test
