// Real files for the connection file tests: each test gets its own path in the temp
// folder, removed again at the end of the test.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>

#include "tests/support/file_bytes.h"

class TempFile {
public:
    explicit TempFile(const std::string& tag) {
        static std::atomic<unsigned> counter{0};
        char folder[MAX_PATH + 1] = {};
        GetTempPathA(sizeof(folder), folder);
        path_ = std::string(folder) + "vqc-" + tag + "-" + std::to_string(GetCurrentProcessId()) + "-" +
                std::to_string(counter++) + ".vqc";
        DeleteFileA(path_.c_str());
    }
    TempFile(const std::string& tag, const std::string& content) : TempFile(tag) { Write(content); }
    ~TempFile() {
        SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
        DeleteFileA(path_.c_str());
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const char* Path() const { return path_.c_str(); }

    void Write(const std::string& content) const { WriteFileBytes(path_, content); }

    // The file's bytes; "<missing>" when it cannot be opened.
    std::string Content() const { return ReadFileBytes(path_); }

    // Whether nobody else holds the file open: it opens with share mode 0.
    bool OpensExclusively() const { return ::OpensExclusively(path_); }

private:
    std::string path_;
};
