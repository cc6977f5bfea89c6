// OpenFileDialog: the system's "Open" dialog for one existing file, set up the way the
// Options page browses for an icon source: Explorer style with a hook procedure of ours and
// a sizing border, no default extension, a filter list of "name\0pattern\0...\0\0", the
// initial file name cut to the 260-character file buffer, and an owner window.
#pragma once

#include <windows.h>
#include <commdlg.h>

#include <cstddef>

class OpenFileDialog {
public:
    // The function that shows the dialog: GetOpenFileNameA unless a test replaced it.
    using ShowFunction = BOOL(WINAPI*)(LPOPENFILENAMEA);
    // A test seam: replaces the function for the whole process (null: GetOpenFileNameA
    // again); answers the previous one, null for GetOpenFileNameA.
    static ShowFunction SetShowFunctionForTesting(ShowFunction show) noexcept;

    // OPENFILENAMEA's size for this system: the whole structure (152 bytes) from version
    // 4.90 on, as VerifyVersionInfoW judges it, else the older 136-byte form.
    static DWORD StructureSize() noexcept;

    // flags are the caller's OFN_* flags; OFN_EXPLORER, OFN_ENABLEHOOK and OFN_ENABLESIZING
    // are always added. filter and initialFile may be null; the filter must outlive the
    // dialog.
    OpenFileDialog(const char* initialFile, DWORD flags, const char* filter, HWND owner) noexcept;
    OpenFileDialog(const OpenFileDialog&) = delete;
    OpenFileDialog& operator=(const OpenFileDialog&) = delete;

    // Shows the dialog: IDOK when the user chose a file, IDCANCEL otherwise.
    INT_PTR DoModal() noexcept;

    // The chosen file's full path (after IDOK), or the initial name.
    const char* FilePath() const noexcept { return file_; }

    static constexpr std::size_t kFileBufferSize = 260;       // characters, NUL included
    static constexpr std::size_t kFileTitleBufferSize = 256;  // characters, NUL included

private:
    // Our hook: leaves every message to the dialog's own handling.
    static UINT_PTR CALLBACK HookProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

    OPENFILENAMEA settings_{};
    char file_[kFileBufferSize] = {};
    char fileTitle_[kFileTitleBufferSize] = {};
};
