// The Windows side of vqctool's reads: the installed client as the DLL's probe finds it,
// a record read through the reader with the reason for a failure, the icons' formats as the
// writer would encode them, and texts from the ANSI code page to UTF-8.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "connection/vqc_file_info.h"
#include "tools/vqctool/record_json.h"

namespace vqctool {

struct ClientInstallation {
    std::int32_t version = kUnknownClientVersion;
    std::string path;  // empty when none is installed
};

// The client beside vqctool.exe, found and read as the DLL finds its own.
ClientInstallation InstalledClient();

// The version to write for: the one given, else the installed client's.
std::int32_t ClientVersionFor(const std::optional<std::int32_t>& given);

// Windows' text for an error, without its line break.
std::string SystemErrorText(DWORD error);

// Reads the file into the record (set up with its client before, as the pages' record is);
// empty on success, else why it failed.
std::string ReadRecord(VQCFileInfo& record, const std::string& path);
// ReadRecord for a command that gives up on the file when it cannot be read: a failure is
// reported ("cannot read") and answered false.
bool ReadRecordOrReport(VQCFileInfo& record, const std::string& path);

// The size and depth of an icon as the writer would encode it; none without an icon.
std::optional<IconFormat> IconFormatOf(HICON icon);
// A record's icon: the image the reader decoded it from (its depth as the file holds it, its
// size as the icon was made), else as IconFormatOf. Asking Windows for an icon's bitmaps
// costs under Wine several times what reading the whole file does.
std::optional<IconFormat> IconFormatOf(const RecordIcon& icon);

std::string AnsiToUtf8(std::string_view text);

// "vqctool: <what> <path>: <reason>" on stderr.
void ReportFailure(const char* what, const std::string& path, const std::string& reason);

// True for ERROR_SUCCESS; any other error of writing the path is reported ("cannot write").
bool WriteSucceededOrReport(DWORD error, const std::string& path);

}  // namespace vqctool
