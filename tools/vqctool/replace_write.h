// Writes a record so that the file is replaced as a whole: the writer writes a new file
// beside it, which then takes the old one's place (ReplaceFile keeps the old file's
// attributes and security). A failure at any step leaves the old file as it was and no
// new file behind.
#pragma once

#include <windows.h>

#include <string>

#include "connection/vqc_file_info.h"

namespace vqctool {

enum class WriteMode : std::uint8_t {
    Replace,          // the file exists and is replaced
    CreateNew,        // the file must not exist yet
    CreateOrReplace,  // new --force
};

struct WriteResult {
    DWORD error = ERROR_SUCCESS;
    bool changed = false;  // the file's bytes differ from before (always for a new file)
};

// recordChanged: the caller knows the record differs from the file's, so the new bytes are
// put in place without comparing them with the old ones first. Otherwise a file whose bytes
// would stay the same is left alone (its time too) and not counted as changed.
WriteResult WriteReplacing(VQCFileInfo& record, const std::string& path, WriteMode mode, bool recordChanged = false);

// Any other file (an exported icon) the same way: written beside, then in the old one's
// place; 0 or the Windows error.
DWORD WriteBytesReplacing(const std::string& path, const std::string& bytes);

}  // namespace vqctool
