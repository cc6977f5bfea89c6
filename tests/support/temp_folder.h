// A temporary folder of its own for a test or a benchmark, removed with everything in it at
// the end; its name is unique among the processes that run in parallel in one prefix.
#pragma once

#include <windows.h>

#include <atomic>
#include <string>

namespace test_support {

// tag, made unique by the process, a counter and the time.
inline std::string UniqueTag(const std::string& tag) {
    static std::atomic<unsigned> counter{0};
    return tag + "-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(counter++) + "-" +
           std::to_string(GetTickCount());
}

class TempFolder {
public:
    explicit TempFolder(const std::string& tag) {
        char base[MAX_PATH + 1] = {};
        GetTempPathA(sizeof(base), base);
        path_ = std::string(base) + UniqueTag("vqc-" + tag);
        CreateDirectoryA(path_.c_str(), nullptr);
    }
    ~TempFolder() { RemoveFolder(path_); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "\\" + name; }

private:
    static void RemoveFolder(const std::string& folder) {
        WIN32_FIND_DATAA found;
        HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &found);
        if (search != INVALID_HANDLE_VALUE) {
            do {
                const std::string name = found.cFileName;
                if (name == "." || name == "..") continue;
                const std::string full = folder + "\\" + name;
                if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
                    RemoveFolder(full);
                } else {
                    SetFileAttributesA(full.c_str(), FILE_ATTRIBUTE_NORMAL);
                    DeleteFileA(full.c_str());
                }
            } while (FindNextFileA(search, &found));
            FindClose(search);
        }
        RemoveDirectoryA(folder.c_str());
    }

    std::string path_;
};

}  // namespace test_support
