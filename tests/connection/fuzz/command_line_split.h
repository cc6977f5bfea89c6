// The splitting rules of CommandLineToArgvW, for the fuzz targets that run the reader's
// portable core natively, where the system's splitter is not at hand. The reader's own
// splitting is the system's; this copy of its rules only stands in for it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "not_fuzzed.h"

namespace fuzz_split {

inline bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// Element 0 is the program path: up to the first blank, or from a leading quote to the next
// quote, with no escapes. After it, blanks outside quotes separate elements; 2n backslashes
// before a quote give n backslashes and the quote opens or closes a quoted run; 2n+1 give n
// backslashes and a literal quote; other backslashes are literal. In a run of quotes every
// third one is literal and ends the quoted run (so "a""b" is a"b); trailing blanks make no
// element, while a quote alone does (an empty one).
VQC_NOT_FUZZED inline std::vector<std::string> SplitCommandLine(std::string_view line) {
    std::vector<std::string> elements;
    std::size_t i = 0;
    std::string program;
    if (i < line.size() && line[i] == '"') {
        ++i;
        while (i < line.size() && line[i] != '"') program.push_back(line[i++]);
        if (i < line.size()) ++i;
    } else {
        while (i < line.size() && !IsBlank(line[i])) program.push_back(line[i++]);
    }
    elements.push_back(std::move(program));

    while (i < line.size() && IsBlank(line[i])) ++i;
    if (i == line.size()) return elements;
    std::string current;
    std::size_t backslashes = 0;
    int quotes = 0;  // 1 inside a quoted run
    while (i < line.size()) {
        const char c = line[i];
        if (IsBlank(c) && quotes == 0) {
            elements.push_back(std::move(current));
            current.clear();
            while (i < line.size() && IsBlank(line[i])) ++i;
            if (i == line.size()) return elements;
            backslashes = 0;
        } else if (c == '\\') {
            current.push_back(c);
            ++backslashes;
            ++i;
        } else if (c == '"') {
            current.resize(current.size() - (backslashes + 1) / 2);
            if (backslashes % 2 == 0)
                ++quotes;
            else
                current.push_back('"');
            backslashes = 0;
            ++i;
            while (i < line.size() && line[i] == '"') {
                if (++quotes == 3) {
                    current.push_back('"');
                    quotes = 0;
                }
                ++i;
            }
            if (quotes == 2) quotes = 0;
        } else {
            current.push_back(c);
            backslashes = 0;
            ++i;
        }
    }
    elements.push_back(std::move(current));
    return elements;
}

}  // namespace fuzz_split
