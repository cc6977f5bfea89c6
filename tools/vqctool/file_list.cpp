#include "tools/vqctool/file_list.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

#include "common/win_handles.h"

namespace vqctool {

namespace {

char Folded(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SamePath(const std::string& a, const std::string& b) noexcept {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return Folded(x) == Folded(y); });
}

bool EndsWithVqc(const char* name) noexcept {
    const std::string text = name;
    return text.size() > 4 && SamePath(text.substr(text.size() - 4), ".vqc");
}

std::string Joined(const std::string& folder, const std::string& name) {
    if (folder.empty()) return name;
    const char last = folder.back();
    return last == '\\' || last == '/' || last == ':' ? folder + name : folder + "\\" + name;
}

// The folder part of a name with its separator ("" for a bare name).
std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of("\\/:");
    if (slash == std::string::npos) return {};
    return path.substr(0, slash + 1);
}

// One FindFirstFile search and the entry it stands on.
class FindSearch {
public:
    explicit FindSearch(const std::string& pattern) : handle_(FindFirstFileA(pattern.c_str(), &found_)) {}

    bool Valid() const noexcept { return static_cast<bool>(handle_); }
    const WIN32_FIND_DATAA& Found() const noexcept { return found_; }
    bool Next() noexcept { return FindNextFileA(handle_.Get(), &found_) != FALSE; }

private:
    WIN32_FIND_DATAA found_{};
    UniqueFileSearch handle_;
};

bool IsDots(const char* name) noexcept { return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0; }

// Files of `folder` matching `name` (a pattern); with `onlyVqc` those ending in ".vqc" only,
// which the short 8.3 names would otherwise widen ("*.vqc" also matching "a.vqcx").
void AddMatches(const std::string& folder, const std::string& name, bool onlyVqc, bool recursive,
                std::vector<std::string>& paths) {
    FindSearch files(Joined(folder, name));
    if (files.Valid()) {
        do {
            const WIN32_FIND_DATAA& found = files.Found();
            if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) continue;
            if (onlyVqc && !EndsWithVqc(found.cFileName)) continue;
            paths.push_back(Joined(folder, found.cFileName));
        } while (files.Next());
    }
    if (!recursive) return;
    FindSearch folders(Joined(folder, "*"));
    if (!folders.Valid()) return;
    do {
        const WIN32_FIND_DATAA& found = folders.Found();
        if (!(found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) || IsDots(found.cFileName)) continue;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) continue;  // no walking in circles
        AddMatches(Joined(folder, found.cFileName), name, onlyVqc, true, paths);
    } while (folders.Next());
}

}  // namespace

bool PathLess(const std::string& a, const std::string& b) noexcept {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char x, char y) { return Folded(x) < Folded(y); });
}

FileList ExpandFileArguments(const std::vector<std::string>& arguments, bool recursive) {
    FileList list;
    for (const std::string& argument : arguments) {
        if (argument.find_first_of("*?") != std::string::npos) {
            const std::size_t before = list.paths.size();
            const std::string folder = FolderOf(argument);
            AddMatches(folder, argument.substr(folder.size()), false, recursive, list.paths);
            if (list.paths.size() == before) list.unmatched.push_back(argument);
            continue;
        }
        const DWORD attributes = GetFileAttributesA(argument.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
            AddMatches(argument, "*.vqc", true, recursive, list.paths);
            continue;
        }
        list.paths.push_back(argument);  // read as named; a missing file fails there
    }
    std::sort(list.paths.begin(), list.paths.end(), PathLess);
    list.paths.erase(std::unique(list.paths.begin(), list.paths.end(), SamePath), list.paths.end());
    return list;
}

}  // namespace vqctool
