// The insertion against the system's own FormatMessageA (message text from a string,
// an argument array with the name as insert 1 and empty texts for 2 to 99): the same
// text, or a failure where FormatMessageA fails.
#include <windows.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "pages/message_format.h"

namespace {

std::optional<std::string> SystemFormatted(const std::string& pattern, const std::string& argument) {
    std::vector<DWORD_PTR> arguments(99, reinterpret_cast<DWORD_PTR>(""));
    arguments[0] = reinterpret_cast<DWORD_PTR>(argument.c_str());
    char buffer[1024];
    std::fill(std::begin(buffer), std::end(buffer), '\x7F');
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY, pattern.c_str(),
                                        0, 0, buffer, sizeof(buffer), reinterpret_cast<va_list*>(arguments.data()));
    if (length == 0) return std::nullopt;
    return std::string(buffer, length);
}

struct Case {
    const char* pattern;
    const char* argument;
};

const Case kCases[] = {
    {"Look for icons in: %1", "vclient.dll"},
    {"\xB2\xE9\xD5\xD2\xCD\xBC\xB1\xEA\xD3\xDA: %1", "a.ico"},
    {"Look for icons in: %1", "100%.ico"},
    {"Look for icons in: %1", "a%1b.dll"},
    {"Look for icons in: %1", "x%nq.exe"},
    {"Look for icons in: %1", "e!s!.ico"},
    {"Look for icons in: %1", "x\ny"},
    {"Look for icons in: %1", "x\ry"},
    {"Look for icons in: %1", ""},
    {"a%1b%1c", "n"},
    {"%1%%", "n"},
    {"a%%b %1", "n"},
    {"%%1", "n"},
    {"a%nb", "n"},
    {"a%rb", "n"},
    {"a%tb", "n"},
    {"a% b", "n"},
    {"a%.b", "n"},
    {"a%!b", "n"},
    {"a%xb", "n"},
    {"a%Nb", "n"},
    {"a%Rb", "n"},
    {"a%Tb", "n"},
    {"a%bb", "n"},
    {"a%\nb", "n"},
    {"a%\r\nb", "n"},
    {"a%0b", "n"},
    {"ab%0%1", "n"},
    {"a %n", "n"},
    {"a\r\nb", "n"},
    {"a\nb", "n"},
    {"a\rb", "n"},
    {"a\n\nb", "n"},
    {"a\r\rb", "n"},
    {"a\n\rb", "n"},
    {"a\tb", "n"},
    {"  lead", "n"},
    {"trail  ", "n"},
    {"%2x%1", "file.ico"},
    {"%10x", "file.ico"},
    {"%100x", "file.ico"},
    {"%11|%1", "file.ico"},
    {"%1!s!x", "file.ico"},
    {"%1!hs!|", "file.ico"},
    {"%1!10s!|", "file.ico"},
    {"%1!-10s!|", "file.ico"},
    {"%1!.3s!|", "file.ico"},
    {"%1!5.2s!|", "file.ico"},
    {"%1!12.5s!|", "file.ico"},
    {"%1!-s!|", "file.ico"},
    {"%1!4s!|", "file.ico"},
    {"ab%", "x"},
    {"%1!s", "x"},
    {"%1!", "x"},
    {"x%1!%1", "x"},
    {"%1!*s!|", "x"},
    {"", "x"},
    {"%0", "x"},
    {"%1", ""},
    {"%99", "x"},
    {"%01x", "x"},
};

std::string Shown(const std::optional<std::string>& text) { return text ? "[" + *text + "]" : "<fails>"; }

}  // namespace

TEST(MessageFormatOnWindows, EveryCaseReadsAsFormatMessageAReadsIt) {
    for (const Case& c : kCases) {
        EXPECT_EQ(Shown(FormatMessageText(c.pattern, c.argument)), Shown(SystemFormatted(c.pattern, c.argument)))
            << "pattern \"" << c.pattern << "\", argument \"" << c.argument << "\"";
    }
}
