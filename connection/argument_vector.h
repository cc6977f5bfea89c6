// Splits an 8-bit option text into an argument vector by the rules Windows uses for a
// process command line, and the two services of programs started with such a line:
// the "--debug" wait for a debugger and the registration keywords with their optional
// redirection of the registry roots into a sandbox key.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "common/win_handles.h"

#include "connection/argument_text.h"

using RegistrationState = argument_text::RegistrationState;
using RegistrationCallback = std::int32_t (*)(RegistrationState* state, void* context);

// Builds the vector into one LocalAlloc block (argc + 2 pointer slots, then the
// strings; the slot after the last argument is null), which the caller frees with
// LocalFree. Returns 1 when the first argument after the program path was a
// registration keyword and the callback ran, else 0. On an allocation failure it
// returns early and leaves the outputs unset.
std::int32_t BuildArgumentVector(const char* text, int* argcOut, char*** argvOut, bool withProgramName, void* context,
                                 RegistrationCallback registrationCallback, std::int32_t* callbackResultOut);

// The same for a text that need not end in a zero byte, as a mapped file does not: it
// ends at its size or at its first zero byte, whichever comes first.
std::int32_t BuildArgumentVector(std::string_view text, int* argcOut, char*** argvOut, bool withProgramName,
                                 void* context, RegistrationCallback registrationCallback,
                                 std::int32_t* callbackResultOut);

// The split BuildArgumentVector makes of an option text, before its elements go back to 8
// bits: the prepared line widened with the ANSI code page and split by CommandLineToArgvW.
// Each element converts on its own, to the very text the vector holds for it, so a reader
// that needs only some of them converts only those.
class WideArguments {
public:
    WideArguments(std::string_view text, bool withProgramName);
    WideArguments(const WideArguments&) = delete;
    WideArguments& operator=(const WideArguments&) = delete;

    // False when the conversions could not be had or the line could not be split; Count()
    // is 0 then.
    bool Ok() const noexcept { return static_cast<bool>(block_); }
    int Count() const noexcept { return argc_; }

    // The 8-bit size of element index with its terminating zero, 1 at least.
    int NarrowSize(int index) const noexcept;
    // Converts element index into out (room bytes) and terminates it; the bytes written,
    // terminator included, 1 at least (a text that does not convert stays empty).
    int NarrowInto(int index, char* out, int room) const noexcept;
    // Element index in 8 bits.
    std::string Narrow(int index) const;
    // Whether the vector's element index starts the debugger wait. An element whose first
    // seven characters are plain ASCII is decided without converting it, since every ANSI
    // code page writes ASCII as itself.
    bool StartsDebuggerWait(int index) const;

private:
    UniqueModule kernel32_;
    decltype(&WideCharToMultiByte) toAnsi_ = nullptr;
    UniqueLocalMemory block_;
    wchar_t** argv_ = nullptr;
    int argc_ = 0;
};

// Breaks into an attached debugger, or announces the process id and polls for one for
// about two minutes (1,200 x 100 ms) before going on silently.
void WaitForDebugger();

// Points HKEY_CLASSES_ROOT, HKEY_CURRENT_CONFIG, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE,
// HKEY_PERFORMANCE_DATA and HKEY_USERS at subkeys of HKCU\SOFTWARE\Marrowby\setup\sandbox
// (below "<prefix>\" when a prefix is given). 1 when every root was redirected.
std::int32_t RedirectRegistryToSandbox(const char* prefix);

// What WaitForDebugger does to the world, replaceable so tests need not wait two minutes.
struct DebuggerWaitHooks {
    bool (*debuggerPresent)();
    void (*breakIntoDebugger)();
    void (*sleep)(DWORD milliseconds);
    void (*announce)(const char* message);  // OutputDebugStringA and MessageBeep(0)
};
DebuggerWaitHooks SetDebuggerWaitHooks(const DebuggerWaitHooks& hooks) noexcept;
DebuggerWaitHooks RealDebuggerWaitHooks() noexcept;

constexpr int kDebuggerPolls = 1200;
constexpr DWORD kDebuggerPollMilliseconds = 100;
