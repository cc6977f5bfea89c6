#include "tools/vqctool/run_summary.h"

namespace vqctool {

std::string SummaryLine(const RunCounts& counts) {
    return std::to_string(counts.files) + (counts.files == 1 ? " file, " : " files, ") +
           std::to_string(counts.changed) + " changed, " + std::to_string(counts.failed) + " failed";
}

std::string ProgressLine(std::size_t done, std::size_t total) {
    return std::to_string(done) + "/" + std::to_string(total) + " files";
}

}  // namespace vqctool
