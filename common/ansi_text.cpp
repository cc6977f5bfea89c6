#include "common/ansi_text.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace ansi_text {

std::string Trimmed(std::string_view text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && IsWhiteSpace(text[begin])) ++begin;
    while (end > begin && IsWhiteSpace(text[end - 1])) --end;
    return std::string(text.substr(begin, end - begin));
}

void AppendFormat(std::string& out, const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length > 0) {
        const std::size_t start = out.size();
        out.resize(start + static_cast<std::size_t>(length) + 1);
        std::vsnprintf(out.data() + start, static_cast<std::size_t>(length) + 1, format, args);
        out.resize(start + static_cast<std::size_t>(length));
    }
    va_end(args);
}

int ParseDecimal(std::string_view text) noexcept {
    std::size_t i = 0;
    while (i < text.size() && IsWhiteSpace(text[i])) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    // Like the C runtime's atoi, an out-of-range value saturates at INT_MAX / INT_MIN.
    constexpr std::int64_t kLimit = 2147483648LL;
    std::int64_t value = 0;
    for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        value = value * 10 + (text[i] - '0');
        if (value > kLimit) value = kLimit;
    }
    if (negative) return static_cast<int>(-value);
    return static_cast<int>(value >= kLimit ? kLimit - 1 : value);
}

}  // namespace ansi_text
