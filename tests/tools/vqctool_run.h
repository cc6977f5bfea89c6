// vqctool run as a process under Wine, as a script runs it: arguments on a command line,
// stdout and stderr into files of their own, the exit status; and the folders of
// connection files the tests give it.
#pragma once

#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "common/win_handles.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"

namespace vqctool_test {

using test_support::TempFolder;

// The built tool's Unix path as Windows sees it through drive Z:.
inline std::string BuiltToolPath() {
    std::string path = "Z:" VQCTOOL_EXE;
    for (char& c : path)
        if (c == '/') c = '\\';
    return path;
}

struct ToolRun {
    DWORD exitCode = 0xdeadbeef;
    std::string out;
    std::string err;
};

inline std::string WithoutCarriageReturns(const std::string& text) {
    std::string plain;
    for (char c : text)
        if (c != '\r') plain.push_back(c);
    return plain;
}

inline std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

// Runs the tool (the built one unless named) with the arguments in the working folder
// (the test's own unless named).
inline ToolRun RunTool(const std::string& arguments, const std::string& workingFolder = "",
                       const std::string& tool = BuiltToolPath()) {
    TempFolder outputs("tool-output");
    const std::string outPath = outputs.File("out.txt");
    const std::string errPath = outputs.File("err.txt");
    SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
    ToolRun run;
    {
        const UniqueKernelHandle out(CreateFileA(outPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit,
                                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        const UniqueKernelHandle err(CreateFileA(errPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit,
                                                 CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        STARTUPINFOA startup{};
        startup.cb = sizeof(startup);
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
        startup.hStdOutput = out.Get();
        startup.hStdError = err.Get();
        std::string commandLine = Quoted(tool) + " " + arguments;
        PROCESS_INFORMATION process{};
        if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                            workingFolder.empty() ? nullptr : workingFolder.c_str(), &startup, &process)) {
            run.err = "CreateProcess failed with " + std::to_string(GetLastError()) + " for " + commandLine;
            return run;
        }
        const UniqueKernelHandle processHandle(process.hProcess);
        const UniqueKernelHandle threadHandle(process.hThread);
        WaitForSingleObject(process.hProcess, 120000);
        GetExitCodeProcess(process.hProcess, &run.exitCode);
    }
    run.out = WithoutCarriageReturns(ReadFileBytes(outPath));
    run.err = WithoutCarriageReturns(ReadFileBytes(errPath));
    return run;
}

inline std::string SystemText(DWORD error) {
    char text[512] = {};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text, sizeof(text),
                   nullptr);
    std::string message = WithoutCarriageReturns(text);
    while (!message.empty() && message.back() == '\n') message.pop_back();
    return message;
}

// Every file below the folder (relative path -> bytes), to compare a whole tree before and after.
inline void CollectFiles(const std::string& folder, const std::string& prefix,
                         std::vector<std::pair<std::string, std::string>>& files) {
    WIN32_FIND_DATAA found;
    const UniqueFileSearch search(FindFirstFileA((folder + "\\*").c_str(), &found));
    if (!search) return;
    do {
        const std::string name = found.cFileName;
        if (name == "." || name == "..") continue;
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
            CollectFiles(folder + "\\" + name, prefix + name + "\\", files);
        else
            files.emplace_back(prefix + name, ReadFileBytes(folder + "\\" + name));
    } while (FindNextFileA(search.Get(), &found));
}

inline std::vector<std::pair<std::string, std::string>> FolderContent(const std::string& folder) {
    std::vector<std::pair<std::string, std::string>> files;
    CollectFiles(folder, "", files);
    std::sort(files.begin(), files.end());
    return files;
}

inline std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start);
        lines.push_back(text.substr(start, end == std::string::npos ? std::string::npos : end - start));
        if (end == std::string::npos) break;
        start = end + 1;
    }
    return lines;
}

}  // namespace vqctool_test
