// vqctool over many typical connection files against the reader (and the writer) alone on
// the same files: what the tool's own work (walking the folder, JSON, writing beside and
// replacing) adds. Run by hand:
//   vqctool_benchmark [FILES [ROUNDS [PER_FOLDER]]]
// 10000 files, 3 rounds, all in one folder by default; with PER_FOLDER the files are spread
// over subfolders of that many files each and the tool walks them with -r.
// Each side is a process of its own, started the same way: show --json over the folder (its
// output into a file) against this program reading each file of a list into a fresh record
// with the reader; set over the folder against this program reading each file, changing its
// host and writing it in place as the pages' Apply does. Rounds alternate the sides; the
// medians are compared.
// VQC_BENCHMARK_TOOL names the tool (default: the build's tools\vqctool\vqctool.exe, beside
// this program's devtools folder).
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "common/win_handles.h"
#include "connection/vqc_file_info.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_icons.h"
#include "devtools/benchmark_files.h"
#include "devtools/side_by_side.h"

namespace {

using side_by_side::Now;

std::string ProgramPath() {
    char program[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    return program;
}

std::string ToolPath() {
    char configured[MAX_PATH] = {};
    if (GetEnvironmentVariableA("VQC_BENCHMARK_TOOL", configured, MAX_PATH) > 0) return configured;
    std::string folder = ProgramPath();
    folder.resize(folder.find_last_of('\\') + 1);
    return folder + "..\\tools\\vqctool\\vqctool.exe";
}

// Runs a program with stdout into `out` and stderr discarded; its exit status.
DWORD RunProgram(const std::string& program, const std::string& arguments, const std::string& out) {
    SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
    const UniqueKernelHandle output(CreateFileA(out.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                                                FILE_ATTRIBUTE_NORMAL, nullptr));
    const UniqueKernelHandle discard(
        CreateFileA("NUL", GENERIC_WRITE, FILE_SHARE_WRITE, &inherit, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.Get();
    startup.hStdError = discard.Get();
    std::string commandLine = "\"" + program + "\" " + arguments;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        std::fprintf(stderr, "could not start %s (error %lu)\n", commandLine.c_str(), GetLastError());
        std::exit(1);
    }
    const UniqueKernelHandle processHandle(process.hProcess);
    const UniqueKernelHandle threadHandle(process.hThread);
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 1;
    GetExitCodeProcess(process.hProcess, &status);
    return status;
}

DWORD RunTool(const std::string& arguments, const std::string& out) { return RunProgram(ToolPath(), arguments, out); }

std::vector<std::string> ListedPaths(const char* listFile) {
    std::vector<std::string> paths;
    std::string line;
    for (const char c : ReadFileBytes(listFile)) {
        if (c == '\n') {
            paths.push_back(line);
            line.clear();
        } else {
            line.push_back(c);
        }
    }
    return paths;
}

// The reader alone (and with a host, the writer after it) over the listed files.
int ReadListed(const char* listFile, const char* host) {
    for (const std::string& path : ListedPaths(listFile)) {
        VQCFileInfo record(path.c_str());
        if (record.Read(path.c_str()) != 0) {
            std::fprintf(stderr, "reading %s failed\n", path.c_str());
            return 1;
        }
        if (!host) continue;
        record.host = host;
        if (record.Write(path.c_str()) != 0) {
            std::fprintf(stderr, "writing %s failed\n", path.c_str());
            return 1;
        }
    }
    return 0;
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t n = values.size();
    return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

void Report(const char* what, std::size_t files, double tool, const char* baseline, double alone) {
    std::printf("%-12s %zu files: tool %.0f files/s, %s alone %.0f files/s, ratio %.2f\n", what, files,
                static_cast<double>(files) / tool, baseline, static_cast<double>(files) / alone, tool / alone);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--read") == 0) return ReadListed(argv[2], nullptr);
    if (argc == 4 && std::strcmp(argv[1], "--read-write") == 0) return ReadListed(argv[2], argv[3]);
    const std::size_t count = argc > 1 ? static_cast<std::size_t>(std::strtoul(argv[1], nullptr, 10)) : 10000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 3;
    const std::size_t perFolder = argc > 3 ? static_cast<std::size_t>(std::strtoul(argv[3], nullptr, 10)) : 0;
    if (count == 0 || rounds <= 0 || (argc > 3 && perFolder == 0)) {
        std::fputs("usage: vqctool_benchmark [FILES [ROUNDS [PER_FOLDER]]]\n", stderr);
        return 2;
    }
    test_support::TempFolder work("tool-benchmark");
    const std::string folder = work.File("files");
    CreateDirectoryA(folder.c_str(), nullptr);
    const std::vector<IconImage> images = {MakeTestIconImage(32, 32), MakeTestIconImage(16, 32, 2)};
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < count; ++i) {
        std::string sub = folder;
        if (perFolder) {
            char part[32];
            std::snprintf(part, sizeof(part), "\\part%03zu", i / perFolder);
            sub += part;
            if (i % perFolder == 0) CreateDirectoryA(sub.c_str(), nullptr);
        }
        char name[32];
        std::snprintf(name, sizeof(name), "\\file%05zu.vqc", i);
        paths.push_back(sub + name);
        benchmark_files::WriteConnectionFile(paths.back(), images, 0);
    }
    const std::string output = work.File("show.json");
    const std::string list = work.File("files.txt");
    std::string listed;
    for (const std::string& path : paths) listed += path + "\n";
    WriteFileBytes(list, listed);

    std::vector<double> showTimes, readTimes, setTimes, readWriteTimes;
    for (int round = 0; round < rounds; ++round) {
        double start = Now();
        const std::string walk = (perFolder ? "-r \"" : "\"") + folder + "\"";
        if (RunTool("show --json " + walk, output) != 0) {
            std::fputs("vqctool show --json failed\n", stderr);
            return 1;
        }
        showTimes.push_back(Now() - start);

        start = Now();
        if (RunProgram(ProgramPath(), "--read \"" + list + "\"", work.File("read.txt")) != 0) {
            std::fputs("reading the files failed\n", stderr);
            return 1;
        }
        readTimes.push_back(Now() - start);

        // A new host each round, so every file changes on both sides.
        const std::string host = "host" + std::to_string(round) + ".example.com";
        start = Now();
        if (RunTool("set host=tool-" + host + " " + walk, work.File("set.txt")) != 0) {
            std::fputs("vqctool set failed\n", stderr);
            return 1;
        }
        setTimes.push_back(Now() - start);

        start = Now();
        if (RunProgram(ProgramPath(), "--read-write \"" + list + "\" " + host, work.File("write.txt")) != 0) {
            std::fputs("writing the files failed\n", stderr);
            return 1;
        }
        readWriteTimes.push_back(Now() - start);
    }
    if (perFolder) std::printf("in folders of %zu files\n", perFolder);
    Report("show --json", count, Median(showTimes), "reader", Median(readTimes));
    Report("set", count, Median(setTimes), "reader+writer", Median(readWriteTimes));
    return 0;
}
