// vqctool show: every field of each file's record, as text (the old one-file format, a
// file= line ahead of each record when there are several) or as one JSON array.
#include <cstdio>
#include <string>

#include "connection/vqc_file_info.h"
#include "tools/vqctool/dump_text.h"
#include "tools/vqctool/commands.h"
#include "tools/vqctool/file_run.h"
#include "tools/vqctool/record_fields.h"
#include "tools/vqctool/record_io.h"
#include "tools/vqctool/record_json.h"

namespace vqctool {

namespace {

std::string IconText(const RecordIcon& icon) {
    const auto format = IconFormatOf(icon);
    if (!format) return "none";
    return std::to_string(format->width) + "x" + std::to_string(format->height);
}

void PrintRecordText(const VQCFileInfo& record) {
    for (const RecordField& field : kRecordFields) {
        switch (field.kind) {
        case FieldKind::Text: std::printf("%s=%s\n", field.name, QuotedForDump(record.*field.text).c_str()); break;
        case FieldKind::Number: std::printf("%s=%d\n", field.name, record.*field.number); break;
        case FieldKind::UnsignedNumber: std::printf("%s=%u\n", field.name, record.*field.unsignedNumber); break;
        case FieldKind::Flag: std::printf("%s=%d\n", field.name, record.*field.flag); break;
        }
    }
    std::printf("filePath=%s\n", QuotedForDump(record.filePath).c_str());
    std::printf("refCount=%lu\n", record.refCount);
    std::printf("icon=%s\n", IconText(record.icon).c_str());
    std::printf("smallIcon=%s\n", IconText(record.smallIcon).c_str());
}

}  // namespace

int RunShow(const Invocation& invocation) {
    const ClientInstallation client = InstalledClient();
    const bool several = invocation.files.size() > 1 || invocation.recursive ||
                         invocation.files.front().find_first_of("*?") != std::string::npos;
    bool first = true;
    if (invocation.json) std::fputs("[", stdout);
    const int status = ForEachFile(invocation, [&](const std::string& path) {
        VQCFileInfo record(path.c_str());
        record.clientPath = client.path;
        record.clientVersion = client.version;
        const std::string error = ReadRecord(record, path);
        if (invocation.json) {
            const auto entry = error.empty() ? RecordJson(path, record, IconFormatOf(record.icon),
                                                          IconFormatOf(record.smallIcon), AnsiToUtf8)
                                             : ErrorJson(path, error, AnsiToUtf8);
            std::fputs(first ? "\n" : ",\n", stdout);
            std::fputs(JsonText(entry).c_str(), stdout);
        } else {
            if (several) std::printf("%sfile=%s\n", first ? "" : "\n", QuotedForDump(path).c_str());
            std::printf("result=%d\n", error.empty() ? 0 : 1);
            PrintRecordText(record);
        }
        first = false;
        if (!error.empty()) ReportFailure("cannot read", path, error);
        return FileOutcome{false, !error.empty()};
    });
    if (invocation.json) std::fputs(first ? "]\n" : "\n]\n", stdout);
    std::fflush(stdout);
    return status;
}

}  // namespace vqctool
