// Splits an address of the form [user@]host[:port], as the reader meets it in a bare
// argument and in the arguments of -c, -f and -F. Portable.
#pragma once

#include <cstdint>
#include <string>

// Returns false only when text is null (then nothing is changed). userOut is assigned
// only when the user part is non-empty, hostOut always (even with an empty host), portOut
// only when a colon is followed by text, with atoi's rules. Nothing is trimmed. The colon
// is searched in the whole text, so a colon before the '@' leaves an empty host; a colon
// at position 0 lets the host run to the end of the text. Both are kept as they are.
bool SplitAddress(const char* text, std::string* userOut, std::string* hostOut, std::int32_t* portOut);
