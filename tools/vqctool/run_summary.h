// The lines vqctool writes on stderr about a run over many files. Portable.
#pragma once

#include <cstddef>
#include <string>

namespace vqctool {

struct RunCounts {
    std::size_t files = 0;
    std::size_t changed = 0;
    std::size_t failed = 0;
};

// "412 files, 37 changed, 2 failed"
std::string SummaryLine(const RunCounts& counts);
// "1200/10000 files" (no line break: the console line is rewritten in place).
std::string ProgressLine(std::size_t done, std::size_t total);

}  // namespace vqctool
