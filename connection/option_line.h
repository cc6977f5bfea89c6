// Builds the one option line of a connection file from a ConnectionSettings: which
// options appear, in which order, for which client version. Portable; the icon's hex text
// is made by the Windows side and handed in ready-made.
#pragma once

#include <string>

#include "connection/connection_settings.h"

// Appends "-x " without a value (value null) or "-x value " with one. The value is put in
// double quotes when it is not already enclosed in them and it holds a blank (a space or
// a tab) or alwaysQuote is set; quotes inside it are not escaped.
void EmitOption(std::string& out, char letter, const char* value, bool alwaysQuote);

// The whole file text. iconHexText is the encoded icon pair (null when the record has
// no icon to write); it goes on a line of its own as the value of -I.
std::string BuildOptionLine(const ConnectionSettings& settings, const char* iconHexText);

// The service port the client uses when -V is not given.
constexpr std::int32_t kDefaultServicePort = 790;
constexpr std::int32_t kDefaultEncryptedServicePort = 4790;
