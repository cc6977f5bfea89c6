// What a run over many files tells on stderr: a progress line, rewritten in place, once the
// run has taken more than a second and only when stderr is a console; and the summary line
// at the end of a run over more than one file.
#pragma once

#include <windows.h>

#include <cstddef>

#include "tools/vqctool/run_summary.h"

namespace vqctool {

class ProgressReport {
public:
    explicit ProgressReport(std::size_t total);
    ProgressReport(const ProgressReport&) = delete;
    ProgressReport& operator=(const ProgressReport&) = delete;

    // One more file done: changed or failed as the run's counts say.
    void FileDone(bool changed, bool failed);
    // Clears the progress line and writes the summary (for more than one file).
    void Finish();

    const RunCounts& Counts() const noexcept { return counts_; }

private:
    std::size_t total_;
    RunCounts counts_;
    bool console_;
    ULONGLONG start_;
    ULONGLONG lastShown_ = 0;
    std::size_t shownLength_ = 0;
};

}  // namespace vqctool
