// Helpers for the 8-bit (ANSI code page) text that files, paths, the registry and
// windows use: trimming as the C library's isspace judges it, and printf-style append.
#pragma once

#include <string>
#include <string_view>

namespace ansi_text {

// True for the bytes the C library's isspace accepts in the "C" locale. In the
// double-byte code pages no trail byte falls in this set, so byte-wise trimming
// never cuts a character in half.
constexpr bool IsWhiteSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// Removes white space from both ends.
std::string Trimmed(std::string_view text);
inline void Trim(std::string& text) { text = Trimmed(text); }

// Appends printf-style formatted text.
void AppendFormat(std::string& out, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;

// atoi's rules: leading white space, an optional sign, digits up to the first
// non-digit; 0 when there are none; out-of-range values saturate.
int ParseDecimal(std::string_view text) noexcept;

}  // namespace ansi_text
