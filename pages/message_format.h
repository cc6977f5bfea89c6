// Message-style insertion as FormatMessage does it for a text with one string argument:
// the Options page's source label puts the icon file's name for "%1" this way.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Reads `pattern` the way FormatMessage reads a message text (no width limit) with
// `argument` as insert 1:
//  - "%1" to "%99" insert (two digits at most: "%100" is insert 10 and a "0"); insert 1 is
//    the argument, every other number has no argument and inserts nothing. An insert may
//    carry a string format between exclamation marks, "!s!", "!hs!", with an optional "-"
//    (left-justify), width and ".precision": "%1!-10.3s!".
//  - "%0" ends the text; "%n" is CR LF, "%r" CR, "%t" a tab; "%" before any other
//    character gives that character ("%%", "% ", "%.", "%!", "%x" give "%", " ", ".",
//    "!", "x").
//  - A line break in the pattern, CR LF, a lone LF or a lone CR, becomes CR LF.
//  - The inserted text is copied as it stands: % sequences and line breaks in it stay.
// No text (FormatMessage fails) for a pattern that ends in a lone "%", an unterminated
// "!format", a format this reading does not take (other conversions, "*" widths, other
// flags, widths above 9999), or an empty result.
std::optional<std::string> FormatMessageText(std::string_view pattern, std::string_view argument);
