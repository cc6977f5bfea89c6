// The shell's own road to a file's Properties, as a right-click and "Properties" in a folder
// view take it: the files' context menu from their folder (SHParseDisplayName,
// SHBindToParent, GetUIObjectOf for IContextMenu) and InvokeCommand with the verb
// "properties". The call blocks until the user closes the sheet, so whoever wants to look at
// or drive the sheet runs the verb on a thread of its own (PropertiesOnShellThread) and
// finds the sheet among that thread's windows.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace shell_road {

// Runs the verb on the calling thread (COM must be initialised on it) for files that lie in
// one folder. Returns the verb's result, or the first failure on the way to it.
HRESULT InvokePropertiesVerb(const std::vector<std::string>& files);

// The property sheet among the top-level windows of a thread: a dialog with a tab control.
HWND FindPropertySheet(DWORD threadId);

// The text on each of a sheet's tabs in order, as UTF-16 (the page titles).
std::vector<std::wstring> PageTitles(HWND sheet);
std::string Utf8(const std::wstring& text);

// The verb on a thread of its own, with COM in a single-threaded apartment there.
class PropertiesOnShellThread {
public:
    explicit PropertiesOnShellThread(std::vector<std::string> files);
    // Waits for the thread, cancelling a sheet that is still open.
    ~PropertiesOnShellThread();
    PropertiesOnShellThread(const PropertiesOnShellThread&) = delete;
    PropertiesOnShellThread& operator=(const PropertiesOnShellThread&) = delete;

    bool Started() const { return thread_ != nullptr; }
    // The sheet once it is shown (built, with its first page); null when none was shown
    // within the time or the verb returned.
    HWND WaitForSheet(DWORD milliseconds) const;
    // True when the verb has returned within the time.
    bool WaitUntilReturned(DWORD milliseconds) const;
    // The verb's result; valid once it has returned.
    HRESULT Result() const { return result_; }

private:
    static DWORD WINAPI Run(void* self);

    std::vector<std::string> files_;
    HRESULT result_ = E_PENDING;
    DWORD threadId_ = 0;
    HANDLE thread_ = nullptr;
};

}  // namespace shell_road
