// How vqctool shows a record's texts: in double quotes, with quote, backslash, CR, LF
// and tab escaped as \" \\ \r \n \t and every other byte below 0x20 as \xHH. Portable.
#pragma once

#include <string>
#include <string_view>

std::string QuotedForDump(std::string_view text);
