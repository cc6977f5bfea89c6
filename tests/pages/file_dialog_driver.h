// Plays the user at the system's "Open" dialog a page opens from its message handler:
// a thread waits for the dialog among the windows of the page's thread, notes what it
// shows, then types a path into "File name" and presses "Open", or presses "Cancel".
#pragma once

#include <windows.h>

#include <atomic>
#include <string>
#include <thread>

namespace page_test {

class FileDialogDriver {
public:
    static constexpr int kFileNameId = 0x47C;  // cmb13, the "File name" box
    static constexpr int kFileTypeId = 0x470;  // cmb1, "Files of type"

    // Watches uiThread (the thread that will open the dialog) for up to timeoutMs. An empty
    // path presses Cancel.
    FileDialogDriver(DWORD uiThread, std::string path, DWORD timeoutMs = 10000)
        : uiThread_(uiThread), path_(std::move(path)), worker_([this, timeoutMs] { Run(timeoutMs); }) {}
    ~FileDialogDriver() { Finish(); }
    FileDialogDriver(const FileDialogDriver&) = delete;
    FileDialogDriver& operator=(const FileDialogDriver&) = delete;

    // Gives up waiting for a dialog that will not come (the page could not open it).
    void Stop() { stop_ = true; }

    // Waits until the driver has acted or given up.
    void Finish() {
        if (worker_.joinable()) worker_.join();
    }

    // What was seen (valid after Finish).
    bool SawDialog() const { return dialog_ != nullptr; }
    HWND Owner() const { return owner_; }
    const std::string& Title() const { return title_; }
    const std::string& FileNameShown() const { return fileName_; }
    const std::string& FileTypeShown() const { return fileType_; }

private:
    static std::string TextOf(HWND window) {
        char text[1024] = {};
        SendMessageA(window, WM_GETTEXT, sizeof(text), reinterpret_cast<LPARAM>(text));
        return text;
    }

    // The file dialog is the visible dialog of the thread that has a "File name" box (the
    // property sheet is a dialog of the same thread too).
    static BOOL CALLBACK Find(HWND window, LPARAM self) {
        char className[16] = {};
        GetClassNameA(window, className, sizeof(className));
        if (std::string(className) == "#32770" && IsWindowVisible(window) && GetDlgItem(window, kFileNameId)) {
            reinterpret_cast<FileDialogDriver*>(self)->dialog_ = window;
            return FALSE;
        }
        return TRUE;
    }

    void Run(DWORD timeoutMs) {
        const DWORD start = GetTickCount();
        while (!dialog_ && !stop_ && GetTickCount() - start < timeoutMs) {
            EnumThreadWindows(uiThread_, Find, reinterpret_cast<LPARAM>(this));
            if (!dialog_) Sleep(20);
        }
        if (!dialog_) return;
        owner_ = GetWindow(dialog_, GW_OWNER);
        title_ = TextOf(dialog_);
        const HWND fileName = GetDlgItem(dialog_, kFileNameId);
        fileName_ = TextOf(fileName);
        fileType_ = TextOf(GetDlgItem(dialog_, kFileTypeId));
        if (path_.empty()) {
            SendMessageA(dialog_, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED),
                         reinterpret_cast<LPARAM>(GetDlgItem(dialog_, IDCANCEL)));
        } else {
            SendMessageA(fileName, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path_.c_str()));
            SendMessageA(dialog_, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED),
                         reinterpret_cast<LPARAM>(GetDlgItem(dialog_, IDOK)));
        }
    }

    DWORD uiThread_;
    std::string path_;
    HWND dialog_ = nullptr;
    HWND owner_ = nullptr;
    std::string title_;
    std::string fileName_;
    std::string fileType_;
    std::atomic<bool> stop_{false};
    std::thread worker_;
};

}  // namespace page_test
