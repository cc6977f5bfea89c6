#include "pages/message_format.h"

#include <cstddef>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Widths and precisions beyond this are not taken (they would only pad with blanks).
constexpr std::size_t kLargestWidth = 9999;

// Reads a run of digits at format[i], moving i past it; false when the number is too large.
bool ReadNumber(std::string_view format, std::size_t& i, std::size_t& number) {
    number = 0;
    for (; i < format.size() && IsDigit(format[i]); ++i) {
        number = number * 10 + static_cast<std::size_t>(format[i] - '0');
        if (number > kLargestWidth) return false;
    }
    return true;
}

// A string format "[-][width][.precision][h]s" applied to the insert; false when the
// format is something else or asks for more than 9999 characters.
bool AppendFormatted(std::string& out, std::string_view format, std::string_view insert) {
    std::size_t i = 0;
    bool leftJustify = false;
    if (i < format.size() && format[i] == '-') {
        leftJustify = true;
        ++i;
    }
    std::size_t width = 0;
    if (!ReadNumber(format, i, width)) return false;
    bool limited = false;
    std::size_t precision = 0;
    if (i < format.size() && format[i] == '.') {
        limited = true;
        ++i;
        if (!ReadNumber(format, i, precision)) return false;
    }
    if (i < format.size() && format[i] == 'h') ++i;
    if (i + 1 != format.size() || format[i] != 's') return false;

    const std::string_view shown = limited ? insert.substr(0, precision) : insert;
    const std::size_t padding = width > shown.size() ? width - shown.size() : 0;
    if (!leftJustify) out.append(padding, ' ');
    out.append(shown);
    if (leftJustify) out.append(padding, ' ');
    return true;
}

}  // namespace

std::optional<std::string> FormatMessageText(std::string_view pattern, std::string_view argument) {
    std::string out;
    std::size_t i = 0;
    while (i < pattern.size()) {
        const char c = pattern[i];
        if (c == '\r' || c == '\n') {
            out += "\r\n";
            i += (c == '\r' && i + 1 < pattern.size() && pattern[i + 1] == '\n') ? 2 : 1;
            continue;
        }
        if (c != '%') {
            out += c;
            ++i;
            continue;
        }
        if (++i >= pattern.size()) return std::nullopt;  // a lone % at the end
        const char escaped = pattern[i];
        if (escaped == '0') break;
        if (escaped >= '1' && escaped <= '9') {
            int number = escaped - '0';
            ++i;
            if (i < pattern.size() && IsDigit(pattern[i])) number = number * 10 + (pattern[i++] - '0');
            const std::string_view insert = number == 1 ? argument : std::string_view();
            if (i < pattern.size() && pattern[i] == '!') {
                const std::size_t close = pattern.find('!', i + 1);
                if (close == std::string_view::npos) return std::nullopt;
                if (!AppendFormatted(out, pattern.substr(i + 1, close - i - 1), insert)) return std::nullopt;
                i = close + 1;
            } else {
                out.append(insert);
            }
            continue;
        }
        switch (escaped) {
            case 'n': out += "\r\n"; break;
            case 'r': out += '\r'; break;
            case 't': out += '\t'; break;
            default: out += escaped; break;
        }
        ++i;
    }
    if (out.empty()) return std::nullopt;
    return out;
}
