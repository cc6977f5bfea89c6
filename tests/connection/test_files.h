// Real files for the connection file tests: each test gets its own path in the temp
// folder, removed again at the end of the test.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>

class TempFile {
public:
    explicit TempFile(const std::string& tag) {
        static std::atomic<unsigned> counter{0};
        char folder[MAX_PATH + 1] = {};
        GetTempPathA(sizeof(folder), folder);
        path_ = std::string(folder) + "vqc-" + tag + "-" + std::to_string(GetCurrentProcessId()) +
                "-" + std::to_string(counter++) + ".vqc";
        DeleteFileA(path_.c_str());
    }
    TempFile(const std::string& tag, const std::string& content) : TempFile(tag) { Write(content); }
    ~TempFile() {
        SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(path_.c_str());
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const char* path() const { return path_.c_str(); }

    void Write(const std::string& content) const {
        HANDLE file = CreateFileA(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return;
        DWORD written = 0;
        WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
        CloseHandle(file);
    }

    // The file's bytes; "<missing>" when it cannot be opened.
    std::string Content() const {
        HANDLE file = CreateFileA(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return "<missing>";
        std::string content(GetFileSize(file, nullptr), '\0');
        DWORD read = 0;
        if (!content.empty()) ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
        CloseHandle(file);
        content.resize(read);
        return content;
    }

    // Whether nobody else holds the file open: it opens with share mode 0.
    bool OpensExclusively() const {
        HANDLE file = CreateFileA(path_.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return false;
        CloseHandle(file);
        return true;
    }

private:
    std::string path_;
};
