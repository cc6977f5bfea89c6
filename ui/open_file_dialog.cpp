#include "ui/open_file_dialog.h"

#include <atomic>

#include "runtime/module_runtime.h"

namespace {

// Null stands for the system's GetOpenFileNameA.
std::atomic<OpenFileDialog::ShowFunction> g_show{nullptr};

// Whether Windows is version 4.90 or later: the full OPENFILENAMEA with its reserved
// fields and FlagsEx is understood from there on.
bool KnowsTheFullStructure() noexcept {
    OSVERSIONINFOEXW wanted{};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = 4;
    wanted.dwMinorVersion = 90;
    DWORDLONG condition = 0;
    condition = VerSetConditionMask(condition, VER_MAJORVERSION, VER_GREATER_EQUAL);
    condition = VerSetConditionMask(condition, VER_MINORVERSION, VER_GREATER_EQUAL);
    return VerifyVersionInfoW(&wanted, VER_MAJORVERSION | VER_MINORVERSION, condition) != FALSE;
}

}  // namespace

OpenFileDialog::ShowFunction OpenFileDialog::SetShowFunctionForTesting(ShowFunction show) noexcept {
    return g_show.exchange(show);
}

DWORD OpenFileDialog::StructureSize() noexcept {
    return KnowsTheFullStructure() ? sizeof(OPENFILENAMEA) : OPENFILENAME_SIZE_VERSION_400A;
}

OpenFileDialog::OpenFileDialog(const char* initialFile, DWORD flags, const char* filter, HWND owner) noexcept {
    if (initialFile) lstrcpynA(file_, initialFile, static_cast<int>(kFileBufferSize));
    settings_.lStructSize = StructureSize();
    settings_.hwndOwner = owner;
    settings_.hInstance = TheModuleRuntime().Instance();
    settings_.lpstrFilter = filter;
    settings_.lpstrFile = file_;
    settings_.nMaxFile = static_cast<DWORD>(kFileBufferSize);
    settings_.lpstrFileTitle = fileTitle_;
    settings_.nMaxFileTitle = static_cast<DWORD>(kFileTitleBufferSize);
    settings_.lpstrDefExt = nullptr;
    settings_.Flags = flags | OFN_EXPLORER | OFN_ENABLEHOOK | OFN_ENABLESIZING;
    settings_.lpfnHook = HookProc;
    settings_.lCustData = reinterpret_cast<LPARAM>(this);
}

INT_PTR OpenFileDialog::DoModal() noexcept {
    const ShowFunction show = g_show.load();
    return (show ? show : GetOpenFileNameA)(&settings_) ? IDOK : IDCANCEL;
}

UINT_PTR CALLBACK OpenFileDialog::HookProc(HWND, UINT, WPARAM, LPARAM) { return 0; }
