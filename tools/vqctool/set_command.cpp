// vqctool set, new and rewrite: the record read (or made), the edits laid over it with the
// pages' rules, and the writer's text put in the file's place as a whole.
#include <cstdio>
#include <string>

#include "connection/vqc_file_info.h"
#include "tools/vqctool/commands.h"
#include "tools/vqctool/file_run.h"
#include "tools/vqctool/record_io.h"
#include "tools/vqctool/replace_write.h"

namespace vqctool {

int RunSet(const Invocation& invocation) {
    const ClientInstallation client = InstalledClient();
    const std::int32_t version = invocation.clientVersion ? *invocation.clientVersion : client.version;
    return ForEachFile(invocation, [&](const std::string& path) {
        VQCFileInfo record(path.c_str());
        record.clientPath = client.path;
        record.clientVersion = version;
        if (!ReadRecordOrReport(record, path)) return FileOutcome{false, true};
        const ConnectionSettings before = record;
        ApplyEdits(record, invocation.edits);
        const std::vector<std::string> changes = DescribeChanges(before, record);
        if (invocation.dryRun) {
            std::printf("%s: %s\n", path.c_str(), changes.empty() ? "no field changes" : "would change");
            for (const std::string& change : changes) std::printf("  %s\n", change.c_str());
            return FileOutcome{!changes.empty(), false};
        }
        const WriteResult written = WriteReplacing(record, path, WriteMode::Replace, !changes.empty());
        if (!WriteSucceededOrReport(written.error, path)) return FileOutcome{false, true};
        return FileOutcome{written.changed, false};
    });
}

int RunNew(const Invocation& invocation) {
    const std::string& path = invocation.files.front();
    VQCFileInfo record(path.c_str());
    const ClientInstallation client = InstalledClient();
    record.clientPath = client.path;
    record.clientVersion = invocation.clientVersion ? *invocation.clientVersion : client.version;
    ApplyEdits(record, invocation.edits);
    const WriteResult written =
        WriteReplacing(record, path, invocation.force ? WriteMode::CreateOrReplace : WriteMode::CreateNew);
    if (written.error == ERROR_FILE_EXISTS) {
        ReportFailure("will not overwrite", path, "the file exists (--force replaces it)");
        return kExitFailed;
    }
    return WriteSucceededOrReport(written.error, path) ? kExitOk : kExitFailed;
}

int RunRewrite(const Invocation& invocation) {
    const std::string& in = invocation.files[0];
    const std::string& out = invocation.files[1];
    VQCFileInfo record(in.c_str());
    if (!ReadRecordOrReport(record, in)) return kExitFailed;
    record.clientVersion = invocation.clientVersion ? *invocation.clientVersion : kUnknownClientVersion;
    const WriteResult written = WriteReplacing(record, out, WriteMode::CreateOrReplace);
    return WriteSucceededOrReport(written.error, out) ? kExitOk : kExitFailed;
}

}  // namespace vqctool
