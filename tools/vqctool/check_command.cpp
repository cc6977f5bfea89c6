// vqctool check: each file written for the client version into a scratch file, read back
// with the reader, and what differs (with what the pages would not offer that client)
// reported as text or JSON. The files themselves are only read.
#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "common/win_handles.h"
#include "connection/argument_vector.h"
#include "connection/vqc_file_info.h"
#include "tools/vqctool/commands.h"
#include "tools/vqctool/file_run.h"
#include "tools/vqctool/record_io.h"
#include "tools/vqctool/rewrite_check.h"

namespace vqctool {

namespace {

// A file of the temp folder for one round trip, deleted with its owner.
class ScratchFile {
public:
    ScratchFile() {
        char folder[MAX_PATH + 1] = {};
        char name[MAX_PATH + 1] = {};
        if (GetTempPathA(sizeof(folder), folder) && GetTempFileNameA(folder, "vqc", 0, name)) path_ = name;
    }
    ~ScratchFile() {
        if (!path_.empty()) DeleteFileA(path_.c_str());
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    const std::string& Path() const noexcept { return path_; }

private:
    std::string path_;
};

// The file's arguments as the reader splits them (program path first); empty when the file
// cannot be read whole.
std::vector<std::string> ArgumentsOfFile(const std::string& path) {
    std::string bytes;
    {
        const UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        LARGE_INTEGER size{};
        if (!file || !GetFileSizeEx(file.Get(), &size) || size.QuadPart > 0x7FFFFFFF) return {};
        bytes.assign(static_cast<std::size_t>(size.QuadPart), '\0');
        DWORD read = 0;
        if (!bytes.empty() && !ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr))
            return {};
        bytes.resize(read);
    }
    int argc = 0;
    char** argv = nullptr;
    BuildArgumentVector(std::string_view(bytes), &argc, &argv, true, nullptr, nullptr, nullptr);
    const UniqueLocalMemory vector(argv);
    std::vector<std::string> arguments;
    for (int i = 0; argv && i < argc; ++i) arguments.emplace_back(argv[i] ? argv[i] : "");
    return arguments;
}

std::string FormatText(const std::optional<IconFormat>& format) {
    if (!format) return "none";
    return std::to_string(format->width) + "x" + std::to_string(format->height) + "x" +
           std::to_string(format->bitsPerPixel);
}

// The findings of one file, or why it could not be checked.
std::string CheckFile(const std::string& path, std::int32_t version, std::vector<CheckFinding>& findings) {
    VQCFileInfo record(path.c_str());
    record.clientVersion = version;
    std::string error = ReadRecord(record, path);
    if (!error.empty()) return error;

    const ScratchFile scratch;
    if (scratch.Path().empty()) return "no scratch file: " + SystemErrorText(GetLastError());
    if (record.Write(scratch.Path().c_str()) != 0) return "the writer failed: " + SystemErrorText(record.lastError);
    VQCFileInfo after(path.c_str());
    after.clientVersion = version;
    error = ReadRecord(after, scratch.Path());
    if (!error.empty()) return "what the writer wrote cannot be read: " + error;

    findings = CompareRewrite(record, after);
    const RecordIcon* icons[2][2] = {{&record.icon, &after.icon}, {&record.smallIcon, &after.smallIcon}};
    const char* names[2] = {"icon", "smallIcon"};
    for (int i = 0; i < 2; ++i) {
        const std::string was = FormatText(IconFormatOf(*icons[i][0]));
        const std::string becomes = FormatText(IconFormatOf(*icons[i][1]));
        if (was != becomes) findings.push_back({names[i], was, becomes, "the icon is not read back as it was"});
    }
    for (CheckFinding& finding : CompareArguments(ArgumentsOfFile(path), ArgumentsOfFile(scratch.Path()))) {
        const bool known = std::any_of(findings.begin(), findings.end(),
                                       [&](const CheckFinding& other) { return other.field == finding.field; });
        if (!known) findings.push_back(std::move(finding));
    }
    for (CheckFinding& finding : UnofferedSettings(record)) findings.push_back(std::move(finding));
    return {};
}

}  // namespace

int RunCheck(const Invocation& invocation) {
    const std::int32_t version = ClientVersionFor(invocation.clientVersion);
    bool anyChange = false;
    bool first = true;
    if (invocation.json) std::fputs("[", stdout);
    const int status = ForEachFile(invocation, [&](const std::string& path) {
        std::vector<CheckFinding> findings;
        const std::string error = CheckFile(path, version, findings);
        anyChange = anyChange || !findings.empty();
        if (invocation.json) {
            nlohmann::ordered_json entry;
            entry["path"] = AnsiToUtf8(path);
            entry["clientVersion"] = version;
            if (!error.empty()) {
                entry["error"] = AnsiToUtf8(error);
            } else {
                entry["findings"] = nlohmann::ordered_json::array();
                for (const CheckFinding& finding : findings)
                    entry["findings"].push_back({{"field", finding.field},
                                                 {"before", AnsiToUtf8(finding.before)},
                                                 {"after", AnsiToUtf8(finding.after)},
                                                 {"reason", finding.reason}});
            }
            std::fputs(first ? "\n" : ",\n", stdout);
            std::fputs(JsonText(entry).c_str(), stdout);
        } else if (error.empty()) {
            std::printf("%s: %s\n", path.c_str(),
                        findings.empty() ? ("unchanged for client " + std::to_string(version)).c_str()
                                         : ("changes for client " + std::to_string(version)).c_str());
            for (const CheckFinding& finding : findings) std::printf("  %s\n", FindingText(finding).c_str());
        }
        first = false;
        if (!error.empty()) ReportFailure("cannot check", path, error);
        return FileOutcome{!findings.empty(), !error.empty()};
    });
    if (invocation.json) std::fputs(first ? "]\n" : "\n]\n", stdout);
    std::fflush(stdout);
    return status != kExitOk || anyChange ? kExitFailed : kExitOk;
}

}  // namespace vqctool
