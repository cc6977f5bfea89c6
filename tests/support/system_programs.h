// The system's folders and its programs (regsvr32, regedit) run as a user would run them.
#pragma once

#include <windows.h>

#include <string>

#include "common/win_handles.h"

namespace test_support {

inline std::string SystemFolder() {
    char folder[MAX_PATH + 1] = {};
    GetSystemDirectoryA(folder, sizeof(folder));
    return folder;
}

inline std::string WindowsFolder() {
    char folder[MAX_PATH + 1] = {};
    GetWindowsDirectoryA(folder, sizeof(folder));
    return folder;
}

// The registry editor of this program's own bitness, which writes the registry view this
// program reads: C:\Windows\regedit.exe is the 64-bit one, a 32-bit program's is in the
// 32-bit system folder (SysWOW64). Windows shares a file type's keys between the two views;
// Wine 8 keeps all of HKEY_CLASSES_ROOT but AppID apart, so a test writes them in its own.
inline std::string RegistryEditor() {
    if (sizeof(void*) == 8) return WindowsFolder() + "\\regedit.exe";
    char folder[MAX_PATH + 1] = {};
    GetSystemWow64DirectoryA(folder, sizeof(folder));
    return std::string(folder) + "\\regedit.exe";
}

// Runs a program with its arguments and answers its exit code; 0xFFFFFFFF when it could not
// be started.
inline DWORD RunProgram(const std::string& program, const std::string& arguments) {
    std::string command = "\"" + program + "\" " + arguments;
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return 0xFFFFFFFF;
    const UniqueKernelHandle thread(process.hThread);
    const UniqueKernelHandle running(process.hProcess);
    WaitForSingleObject(running.Get(), 60000);
    DWORD code = 0xFFFFFFFF;
    GetExitCodeProcess(running.Get(), &code);
    return code;
}

}  // namespace test_support
