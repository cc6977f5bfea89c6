#include "connection/argument_text.h"

#include <cstring>

namespace argument_text {

std::string_view UpToFirstNul(std::string_view text) noexcept {
    const std::size_t nul = text.find('\0');
    return nul == std::string_view::npos ? text : text.substr(0, nul);
}

namespace {

// Position of the first CR or LF at or after `from`, or text.size(). Eight bytes at a
// time: a connection file is mostly one long line.
std::size_t FindLineBreak(std::string_view text, std::size_t from) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ull;
    constexpr std::uint64_t kHighs = 0x8080808080808080ull;
    std::size_t i = from;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word;
        std::memcpy(&word, text.data() + i, 8);
        const std::uint64_t cr = word ^ (kOnes * '\r');
        const std::uint64_t lf = word ^ (kOnes * '\n');
        if (((cr - kOnes) & ~cr & kHighs) | ((lf - kOnes) & ~lf & kHighs)) break;
    }
    while (i < text.size() && text[i] != '\r' && text[i] != '\n') ++i;
    return i;
}

void AppendJoinedLines(std::string& joined, std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        // Copy the run up to the next line break in one piece.
        const std::size_t end = FindLineBreak(text, i);
        joined.append(text.data() + i, end - i);
        if (end == text.size()) break;
        const char c = text[end];
        const bool hasNext = end + 1 < text.size();
        if (!(c == '\r' && hasNext && text[end + 1] == '\n') && hasNext && text[end + 1] == '-')
            joined.push_back(' ');
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
    const std::size_t start = text.find("-w '");
    if (start == std::string::npos) return;
    for (std::size_t i = start; i < text.size(); ++i)
        if (text[i] == '\'') text[i] = '"';
}

std::string PrepareCommandLine(std::string_view programPath, bool withProgramName,
                               std::string_view text) {
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

bool StartsDebuggerWait(std::string_view argument) noexcept {
    return argument.substr(0, 7) == "--debug";
}

namespace {

char LowerAscii(char c) noexcept {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (LowerAscii(a[i]) != LowerAscii(b[i])) return false;
    return true;
}

}  // namespace

const RegistrationKeyword* FindRegistrationKeyword(std::string_view argument) noexcept {
    if (argument.empty() || (argument[0] != '-' && argument[0] != '/')) return nullptr;
    const std::string_view word = argument.substr(1);
    for (const RegistrationKeyword& keyword : kRegistrationKeywords)
        if (EqualsIgnoringCase(word, keyword.word)) return &keyword;
    return nullptr;
}

}  // namespace argument_text
