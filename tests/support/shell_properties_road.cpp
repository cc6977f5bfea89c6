#include "tests/support/shell_properties_road.h"

#include <commctrl.h>
#include <prsht.h>
#include <shlobj.h>

#include <utility>

#include "common/com_ptr.h"
#include "tests/support/shell_selection.h"

namespace shell_road {

namespace {

bool HasTabControl(HWND window) { return FindWindowExA(window, nullptr, WC_TABCONTROLA, nullptr) != nullptr; }

BOOL CALLBACK FindSheet(HWND window, LPARAM found) {
    char className[16] = {};
    GetClassNameA(window, className, sizeof(className));
    if (std::string(className) == "#32770" && HasTabControl(window)) {
        *reinterpret_cast<HWND*>(found) = window;
        return FALSE;
    }
    return TRUE;
}

}  // namespace

HRESULT InvokePropertiesVerb(const std::vector<std::string>& files) {
    ComPtr<IContextMenu> menu;
    const HRESULT result = test_support::ShellUiObject(files, IID_IContextMenu, menu.PutVoid());
    if (FAILED(result)) return result;
    CMINVOKECOMMANDINFO invoke{};
    invoke.cbSize = sizeof(invoke);
    invoke.lpVerb = "properties";
    invoke.nShow = SW_SHOWNORMAL;
    return menu->InvokeCommand(&invoke);
}

HWND FindPropertySheet(DWORD threadId) {
    HWND found = nullptr;
    EnumThreadWindows(threadId, FindSheet, reinterpret_cast<LPARAM>(&found));
    return found;
}

std::vector<std::wstring> PageTitles(HWND sheet) {
    std::vector<std::wstring> titles;
    const HWND tabs = FindWindowExA(sheet, nullptr, WC_TABCONTROLA, nullptr);
    if (!tabs) return titles;
    const int count = static_cast<int>(SendMessageW(tabs, TCM_GETITEMCOUNT, 0, 0));
    for (int index = 0; index < count; ++index) {
        wchar_t text[256] = {};
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = text;
        item.cchTextMax = static_cast<int>(sizeof(text) / sizeof(text[0]));
        SendMessageW(tabs, TCM_GETITEMW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
        titles.emplace_back(text);
    }
    return titles;
}

std::string Utf8(const std::wstring& text) {
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, nullptr, 0, nullptr, nullptr);
    if (length <= 0) return {};
    std::string bytes(static_cast<std::size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), -1, bytes.data(), length, nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(length - 1));
    return bytes;
}

// --- PropertiesOnShellThread ------------------------------------------------------------------

PropertiesOnShellThread::PropertiesOnShellThread(std::vector<std::string> files) : files_(std::move(files)) {
    thread_ = CreateThread(nullptr, 0, Run, this, 0, &threadId_);
}

PropertiesOnShellThread::~PropertiesOnShellThread() {
    if (!thread_) return;
    // A sheet still open (a driver that gave up half-way) is cancelled, as a user would.
    while (WaitForSingleObject(thread_, 100) == WAIT_TIMEOUT) {
        if (const HWND sheet = FindPropertySheet(threadId_)) PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    }
    CloseHandle(thread_);
}

DWORD WINAPI PropertiesOnShellThread::Run(void* self) {
    auto* road = static_cast<PropertiesOnShellThread*>(self);
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    road->result_ = InvokePropertiesVerb(road->files_);
    if (SUCCEEDED(apartment)) CoUninitialize();
    return 0;
}

HWND PropertiesOnShellThread::WaitForSheet(DWORD milliseconds) const {
    if (!thread_) return nullptr;
    const ULONGLONG end = GetTickCount64() + milliseconds;
    for (;;) {
        // The sheet's window and tabs exist while it is still building its pages; a user
        // meets it, and can touch it, only once it is shown.
        if (const HWND sheet = FindPropertySheet(threadId_); sheet && IsWindowVisible(sheet)) return sheet;
        if (WaitForSingleObject(thread_, 0) == WAIT_OBJECT_0 || GetTickCount64() >= end) return nullptr;
        Sleep(20);
    }
}

bool PropertiesOnShellThread::WaitUntilReturned(DWORD milliseconds) const {
    return thread_ && WaitForSingleObject(thread_, milliseconds) == WAIT_OBJECT_0;
}

}  // namespace shell_road
