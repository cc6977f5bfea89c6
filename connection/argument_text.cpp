#include "connection/argument_text.h"

namespace argument_text {

std::string_view UpToFirstNul(std::string_view text) noexcept {
    const std::size_t nul = text.find('\0');
    return nul == std::string_view::npos ? text : text.substr(0, nul);
}

std::string JoinLines(std::string_view text) {
    std::string joined;
    joined.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool hasNext = i + 1 < text.size();
        if (c == '\r' && hasNext && text[i + 1] == '\n') continue;
        if (c == '\r' || c == '\n') {
            if (hasNext && text[i + 1] == '-') joined.push_back(' ');
            continue;
        }
        joined.push_back(c);
    }
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
    std::string line;
    if (withProgramName) {
        line.append(programPath);
        line.push_back(' ');
    }
    line += JoinLines(UpToFirstNul(text));
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
