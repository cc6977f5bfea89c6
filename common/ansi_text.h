// Helpers for the 8-bit (ANSI code page) text that files, paths, the registry and
// windows use: trimming as the C library's isspace judges it, printf-style append, and
// comparing keywords without regard to case.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ansi_text {

// True for the bytes the C library's isspace accepts in the "C" locale. In the
// double-byte code pages no trail byte falls in this set, so byte-wise trimming
// never cuts a character in half.
constexpr bool IsWhiteSpace(char c) noexcept {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// Equal but for the case of the letters A to Z. Other bytes compare as they are, whatever the
// code page: keywords and names are ASCII, and no lead or trail byte changes its meaning.
constexpr bool EqualsIgnoringCase(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
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
