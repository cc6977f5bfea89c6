// The text rules applied to an option text before Windows splits it into arguments:
// line joining, the "-w '" quote rule, and the recognition of the "--debug" prefix and
// of the registration keywords. Portable: no Windows calls.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace argument_text {

// The text up to its first zero byte.
std::string_view UpToFirstNul(std::string_view text) noexcept;

// CR LF is dropped; any other CR or LF becomes one blank when the next byte is '-' and
// is dropped otherwise. A break before an option separates it; a break anywhere else
// (inside the icon's hex text) glues the two lines together.
std::string JoinLines(std::string_view text);

// When text contains "-w '", every single quote from that match to the end of the text
// becomes a double quote: all of them, not only those of the -w argument.
void ApplyQuoteRule(std::string& text);

// The command line handed to the splitter: the program path unquoted and one blank
// when a path is given, then the joined text, then the quote rule over the whole.
std::string PrepareCommandLine(std::string_view programPath, bool withProgramName, std::string_view text);

// Every argument that begins with "--debug" (so "--debugger" too) starts the debugger wait.
bool StartsDebuggerWait(std::string_view argument) noexcept;

struct RegistrationState {
    std::int32_t install;  // 1 register, 0 unregister
    std::int32_t perUser;
    std::int32_t sandbox;
};

struct RegistrationKeyword {
    const char* word;
    RegistrationState state;
};

// clang-format off
inline constexpr RegistrationKeyword kRegistrationKeywords[] = {
    // word                 install perUser sandbox
    {"register",            {1, 0, 0}},
    {"regserver",           {1, 0, 0}},
    {"registeruser",        {1, 1, 0}},
    {"regserveruser",       {1, 1, 0}},
    {"registersandbox",     {1, 0, 1}},
    {"regserversandbox",    {1, 0, 1}},
    {"unregister",          {0, 0, 0}},
    {"unregserver",         {0, 0, 0}},
    {"unregisteruser",      {0, 1, 0}},
    {"unregserveruser",     {0, 1, 0}},
};
// clang-format on

// The keyword named by an argument such as "/RegServer" or "-unregister": a leading
// '-' or '/', then a whole keyword in any letter case. Null when there is none.
const RegistrationKeyword* FindRegistrationKeyword(std::string_view argument) noexcept;

}  // namespace argument_text
