// The files a command works on, from its arguments as a Windows command line gives them:
// a file as named, a folder as its .vqc files (with -r those of every subfolder too), a
// name with * or ? as the files FindFirstFile matches (with -r in every subfolder too).
// Sorted by path, each once.
#pragma once

#include <string>
#include <vector>

namespace vqctool {

struct FileList {
    std::vector<std::string> paths;
    std::vector<std::string> unmatched;  // patterns that matched no file
};

FileList ExpandFileArguments(const std::vector<std::string>& arguments, bool recursive);

// Path order: byte by byte with ASCII letters folded to lower case.
bool PathLess(const std::string& a, const std::string& b) noexcept;

}  // namespace vqctool
