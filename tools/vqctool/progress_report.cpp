#include "tools/vqctool/progress_report.h"

#include <cstdio>
#include <string>

namespace vqctool {

namespace {

constexpr ULONGLONG kQuietMilliseconds = 1000;
constexpr ULONGLONG kRedrawMilliseconds = 200;

bool IsConsole(HANDLE handle) noexcept {
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) != FALSE;
}

}  // namespace

ProgressReport::ProgressReport(std::size_t total)
    : total_(total), console_(IsConsole(GetStdHandle(STD_ERROR_HANDLE))), start_(GetTickCount64()) {}

void ProgressReport::FileDone(bool changed, bool failed) {
    ++counts_.files;
    if (changed) ++counts_.changed;
    if (failed) ++counts_.failed;
    if (!console_) return;
    const ULONGLONG now = GetTickCount64();
    if (now - start_ < kQuietMilliseconds || now - lastShown_ < kRedrawMilliseconds) return;
    lastShown_ = now;
    const std::string line = ProgressLine(counts_.files, total_);
    std::fprintf(stderr, "\r%s", line.c_str());
    std::fflush(stderr);
    shownLength_ = line.size();
}

void ProgressReport::Finish() {
    if (shownLength_) std::fprintf(stderr, "\r%s\r", std::string(shownLength_, ' ').c_str());
    shownLength_ = 0;
    if (total_ > 1) std::fprintf(stderr, "%s\n", SummaryLine(counts_).c_str());
}

}  // namespace vqctool
