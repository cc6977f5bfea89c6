// The chain record -> writer -> reader -> writer on the portable core, shared by the fuzz
// target and by the tests that keep each of its findings.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "connection/connection_settings.h"

namespace record_chain {

// A fresh record read from a file holding these bytes, as VQCFileInfo::Read makes it: the
// text up to its first zero byte, the program path in front, the joining and quote rules,
// the system's splitting (command_line_split.h), the option walk. The icon is the Windows
// side's: the -I text the walk hands back is dropped, as for an icon that does not decode.
ConnectionSettings ReadBytes(std::string_view bytes, std::int32_t clientVersion);

// The first byte picks the client version (600 + byte % 130: every version the writer tells
// apart and versions between them), the rest is the file. Reads it, writes the record, reads
// that text into a fresh record and writes again. Empty when the second text is the first,
// as amended by the losses the writer and the reader mean (record_chain.cpp); otherwise a
// description of both texts.
std::string CheckChain(std::string_view input);

}  // namespace record_chain
