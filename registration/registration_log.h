// RegistrationLog: collects a line for every registry write that failed during
// registration and writes them to the file named by VOXA_REGISTRATE_LOG_FILE when it is
// destroyed (at DLL unload). With no file name nothing is collected or written.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

class RegistrationLog {
public:
    RegistrationLog() = default;
    ~RegistrationLog();
    RegistrationLog(const RegistrationLog&) = delete;
    RegistrationLog& operator=(const RegistrationLog&) = delete;

    // Takes the log file's name from VOXA_REGISTRATE_LOG_FILE; unset or empty disables it.
    void SetFileName();
    bool IsEnabled() const noexcept { return !fileName_.empty(); }

    void LogKeyCreateFailure(HKEY parentKey, const char* keyName, DWORD errorCode);
    void LogValueSetFailure(HKEY key, const char* valueName, const char* data, DWORD errorCode);

    // The readable path of an open key: the predefined roots by name, any other key in
    // the kernel's native form; "<unknown>" when it cannot be had.
    static std::string GetRegistryKeyPath(HKEY key);
    // The system's message for an error code, its trailing line break kept; "??" if none.
    static std::string DescribeSystemError(DWORD errorCode);

    // Writes the messages to the file, replacing what it held. Run by the destructor.
    void Flush() noexcept;

    const std::string& FileName() const noexcept { return fileName_; }
    const std::vector<std::string>& Messages() const noexcept { return messages_; }

private:
    std::string fileName_;
    std::vector<std::string> messages_;
};
