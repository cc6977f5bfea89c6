#include "tools/vqctool/file_run.h"

#include <cstdio>

#include "tools/vqctool/commands.h"
#include "tools/vqctool/file_list.h"
#include "tools/vqctool/progress_report.h"

namespace vqctool {

int ForEachFile(const Invocation& invocation, const std::function<FileOutcome(const std::string& path)>& step) {
    const FileList list = ExpandFileArguments(invocation.files, invocation.recursive);
    for (const std::string& pattern : list.unmatched)
        std::fprintf(stderr, "vqctool: no file matches %s\n", pattern.c_str());
    ProgressReport progress(list.paths.size() + list.unmatched.size());
    for (std::size_t i = 0; i < list.unmatched.size(); ++i) progress.FileDone(false, true);
    for (const std::string& path : list.paths) {
        const FileOutcome outcome = step(path);
        progress.FileDone(outcome.changed, outcome.failed);
    }
    progress.Finish();
    return progress.Counts().failed ? kExitFailed : kExitOk;
}

}  // namespace vqctool
