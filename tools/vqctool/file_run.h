// The loop every many-file command shares: the arguments expanded into files, patterns
// that matched nothing reported, each file handed to the command's step with the progress
// and the summary kept, and the exit status from what failed.
#pragma once

#include <functional>
#include <string>

#include "tools/vqctool/command_line.h"

namespace vqctool {

struct FileOutcome {
    bool changed = false;
    bool failed = false;
};

// Calls step for each file in path order; 0 when nothing failed, else 1.
int ForEachFile(const Invocation& invocation, const std::function<FileOutcome(const std::string& path)>& step);

}  // namespace vqctool
