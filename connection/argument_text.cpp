#include "connection/argument_text.h"

#include <cstdint>
#include <cstring>

#include "common/ansi_text.h"

namespace argument_text {

namespace {

// Position of the first byte equal to a or b at or after `from`, or text.size(). Eight
// bytes at a time: a connection file can be one line of megabytes, scanned several times.
std::size_t FindEither(std::string_view text, std::size_t from, char a, char b) noexcept {
    constexpr std::uint64_t kOnes = 0x0101010101010101ull;
    constexpr std::uint64_t kHighs = 0x8080808080808080ull;
    const std::uint64_t aa = kOnes * static_cast<unsigned char>(a);
    const std::uint64_t bb = kOnes * static_cast<unsigned char>(b);
    std::size_t i = from;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, 8);
        const std::uint64_t x = word ^ aa;
        const std::uint64_t y = word ^ bb;
        if (((x - kOnes) & ~x & kHighs) | ((y - kOnes) & ~y & kHighs)) break;
    }
    while (i < text.size() && text[i] != a && text[i] != b) ++i;
    return i;
}

std::size_t FindLineBreak(std::string_view text, std::size_t from) noexcept {
    return FindEither(text, from, '\r', '\n');
}

}  // namespace

std::string_view UpToFirstNul(std::string_view text) noexcept {
    return text.substr(0, FindEither(text, 0, '\0', '\0'));
}

namespace {

void AppendJoinedLines(std::string& joined, std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        // Copy the run up to the next line break in one piece.
        const std::size_t end = FindLineBreak(text, i);
        joined.append(text.data() + i, end - i);
        if (end == text.size()) break;
        const char c = text[end];
        const bool hasNext = end + 1 < text.size();
        if (!(c == '\r' && hasNext && text[end + 1] == '\n') && hasNext && text[end + 1] == '-') joined.push_back(' ');
        i = end + 1;
    }
}

}  // namespace

std::string JoinLines(std::string_view text) {
    std::string joined;
    joined.reserve(text.size());
    AppendJoinedLines(joined, text);
    return joined;
}

void ApplyQuoteRule(std::string& text) {
    // The match is found by its quote, the rarest of its four bytes.
    constexpr std::string_view kMatch = "-w '";
    const std::string_view view(text);
    std::size_t quote = FindEither(view, kMatch.size() - 1, '\'', '\'');
    while (quote < view.size() && view.substr(quote - (kMatch.size() - 1), kMatch.size()) != kMatch)
        quote = FindEither(view, quote + 1, '\'', '\'');
    for (; quote < text.size(); quote = FindEither(view, quote + 1, '\'', '\'')) text[quote] = '"';
}

std::string PrepareCommandLine(std::string_view programPath, bool withProgramName, std::string_view text) {
    const std::string_view content = UpToFirstNul(text);
    std::string line;
    line.reserve(programPath.size() + 1 + content.size());
    if (withProgramName) {
        line.append(programPath);
        line.push_back(' ');
    }
    AppendJoinedLines(line, content);
    ApplyQuoteRule(line);
    return line;
}

bool StartsDebuggerWait(std::string_view argument) noexcept { return argument.substr(0, 7) == "--debug"; }

const RegistrationKeyword* FindRegistrationKeyword(std::string_view argument) noexcept {
    if (argument.empty() || (argument[0] != '-' && argument[0] != '/')) return nullptr;
    const std::string_view word = argument.substr(1);
    for (const RegistrationKeyword& keyword : kRegistrationKeywords)
        if (ansi_text::EqualsIgnoringCase(word, keyword.word)) return &keyword;
    return nullptr;
}

}  // namespace argument_text
