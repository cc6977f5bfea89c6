// vqctool icon set, export and remove. `set` takes icon N of a source at both sizes as the
// Options page takes the icon picked in its list; `export` writes the icon stream the
// writer would embed, as an .ico file.
#include <windows.h>
#include <shellapi.h>

#include <cstdio>
#include <string>

#include "common/win_handles.h"
#include "connection/icon_codec.h"
#include "connection/vqc_file_info.h"
#include "pages/option_page_rules.h"
#include "tools/vqctool/commands.h"
#include "tools/vqctool/file_run.h"
#include "tools/vqctool/hex_bytes.h"
#include "tools/vqctool/record_io.h"
#include "tools/vqctool/replace_write.h"

namespace vqctool {

namespace {

// Reads, changes and writes one file as `set` does.
template <typename Change>
FileOutcome ChangeFile(const std::string& path, std::int32_t version, bool dryRun, const char* what, Change change) {
    VQCFileInfo record(path.c_str());
    record.clientVersion = version;
    if (!ReadRecordOrReport(record, path)) return {false, true};
    change(record);
    if (dryRun) {
        std::printf("%s: would %s\n", path.c_str(), what);
        return {true, false};
    }
    const WriteResult written = WriteReplacing(record, path, WriteMode::Replace);
    if (!WriteSucceededOrReport(written.error, path)) return {false, true};
    return {written.changed, false};
}

}  // namespace

int RunIconSet(const Invocation& invocation) {
    HICON large = nullptr;
    HICON small = nullptr;
    const UINT extracted = ExtractIconExA(invocation.iconSource.c_str(), invocation.iconIndex, &large, &small, 1);
    if (!option_page::ExtractionSucceeded(extracted)) large = small = nullptr;  // Wine may leave stale values
    const UniqueIcon ownedLarge(large);
    const UniqueIcon ownedSmall(small);
    if (!option_page::IconIsListed(extracted, ownedSmall.Get() != nullptr) || !ownedLarge) {
        std::fprintf(stderr, "vqctool: %s has no icon %d at both sizes\n", invocation.iconSource.c_str(),
                     invocation.iconIndex);
        return kExitUsage;
    }
    const std::int32_t version = ClientVersionFor(invocation.clientVersion);
    return ForEachFile(invocation, [&](const std::string& path) {
        return ChangeFile(path, version, invocation.dryRun, "get the icon", [&](VQCFileInfo& record) {
            record.icon.Reset(CopyIcon(ownedLarge.Get()));
            record.smallIcon.Reset(CopyIcon(ownedSmall.Get()));
        });
    });
}

int RunIconRemove(const Invocation& invocation) {
    const std::int32_t version = ClientVersionFor(invocation.clientVersion);
    return ForEachFile(invocation, [&](const std::string& path) {
        return ChangeFile(path, version, invocation.dryRun, "lose its icon",
                          [](VQCFileInfo& record) { record.SetIcons(nullptr, nullptr); });
    });
}

int RunIconExport(const Invocation& invocation) {
    const std::string& path = invocation.files[0];
    const std::string& out = invocation.files[1];
    VQCFileInfo record(path.c_str());
    if (!ReadRecordOrReport(record, path)) return kExitFailed;
    if (!record.icon) {
        ReportFailure("cannot export the icon of", path, "the file has no icon");
        return kExitFailed;
    }
    const std::uint64_t size = EncodeIcons(nullptr, record.icon.Get(), record.smallIcon.Get());
    std::string text(static_cast<std::size_t>(size ? size - 1 : 0), '\0');
    char* cursor = text.data();
    if (size == 0 || EncodeIcons(&cursor, record.icon.Get(), record.smallIcon.Get()) != size) {
        ReportFailure("cannot export the icon of", path, "its bitmaps cannot be read");
        return kExitFailed;
    }
    text.resize(static_cast<std::size_t>(cursor - text.data()));
    const std::vector<std::uint8_t> bytes = HexTextBytes(text);
    const DWORD written = WriteBytesReplacing(out, std::string(bytes.begin(), bytes.end()));
    return WriteSucceededOrReport(written, out) ? kExitOk : kExitFailed;
}

}  // namespace vqctool
