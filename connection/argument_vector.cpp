#include "connection/argument_vector.h"

#include <shellapi.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "common/win_handles.h"

namespace {

bool RealDebuggerPresent() { return IsDebuggerPresent() != FALSE; }
void RealBreak() { DebugBreak(); }
void RealSleep(DWORD milliseconds) { Sleep(milliseconds); }
void RealAnnounce(const char* message) {
    OutputDebugStringA(message);
    MessageBeep(0);
}

DebuggerWaitHooks g_debuggerWait = RealDebuggerWaitHooks();

using MultiByteToWideCharFn = decltype(&MultiByteToWideChar);
using WideCharToMultiByteFn = decltype(&WideCharToMultiByte);

std::string ProgramPath() {
    char path[261] = {};
    const DWORD length = GetModuleFileNameA(GetModuleHandleA(nullptr), path, sizeof(path));
    return std::string(path, length < sizeof(path) ? length : sizeof(path) - 1);
}

}  // namespace

DebuggerWaitHooks RealDebuggerWaitHooks() noexcept { return {RealDebuggerPresent, RealBreak, RealSleep, RealAnnounce}; }

DebuggerWaitHooks SetDebuggerWaitHooks(const DebuggerWaitHooks& hooks) noexcept {
    const DebuggerWaitHooks previous = g_debuggerWait;
    g_debuggerWait = hooks;
    return previous;
}

void WaitForDebugger() {
    if (g_debuggerWait.debuggerPresent()) {
        g_debuggerWait.breakIntoDebugger();
        return;
    }
    char message[64];
    std::snprintf(message, sizeof(message), "Process %d waiting to be debugged...",
                  static_cast<int>(GetCurrentProcessId()));
    g_debuggerWait.announce(message);
    for (int poll = 0; poll < kDebuggerPolls; ++poll) {
        if (g_debuggerWait.debuggerPresent()) {
            g_debuggerWait.breakIntoDebugger();
            return;
        }
        g_debuggerWait.sleep(kDebuggerPollMilliseconds);
    }
}

std::int32_t RedirectRegistryToSandbox(const char* prefix) {
    UniqueRegKey sandbox;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "SOFTWARE\\Marrowby\\setup\\sandbox", 0, nullptr, 0, KEY_READ | KEY_WRITE,
                        nullptr, sandbox.Put(), nullptr) != ERROR_SUCCESS)
        return 0;

    static const struct {
        HKEY root;
        const char* name;
        // clang-format off
    } kRoots[] = {
        {HKEY_CLASSES_ROOT, "HKEY_CLASSES_ROOT"},
        // clang-format on
        {HKEY_CURRENT_CONFIG, "HKEY_CURRENT_CONFIG"},
        {HKEY_CURRENT_USER, "HKEY_CURRENT_USER"},
        {HKEY_LOCAL_MACHINE, "HKEY_LOCAL_MACHINE"},
        {HKEY_PERFORMANCE_DATA, "HKEY_PERFORMANCE_DATA"},
        {HKEY_USERS, "HKEY_USERS"},
    };

    std::int32_t result = 1;
    for (const auto& root : kRoots) {
        char name[261];
        if (prefix)
            std::snprintf(name, sizeof(name), "%s\\%s", prefix, root.name);
        else
            std::snprintf(name, sizeof(name), "%s", root.name);
        UniqueRegKey redirected;
        if (RegCreateKeyExA(sandbox.Get(), name, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, redirected.Put(),
                            nullptr) != ERROR_SUCCESS ||
            RegOverridePredefKey(root.root, redirected.Get()) != ERROR_SUCCESS)
            result = 0;
    }
    return result;
}

std::int32_t BuildArgumentVector(const char* text, int* argcOut, char*** argvOut, bool withProgramName, void* context,
                                 RegistrationCallback registrationCallback, std::int32_t* callbackResultOut) {
    return BuildArgumentVector(text ? std::string_view(text) : std::string_view(), argcOut, argvOut, withProgramName,
                               context, registrationCallback, callbackResultOut);
}

WideArguments::WideArguments(std::string_view text, bool withProgramName)
    : kernel32_(LoadLibraryExA("kernel32.dll", nullptr, 0)) {
    const std::string line =
        argument_text::PrepareCommandLine(withProgramName ? ProgramPath() : std::string(), withProgramName, text);

    // The two code-page conversions, looked up in kernel32.dll at run time.
    if (!kernel32_) return;
    const auto toWide = reinterpret_cast<MultiByteToWideCharFn>(
        reinterpret_cast<void*>(GetProcAddress(kernel32_.Get(), "MultiByteToWideChar")));
    toAnsi_ = reinterpret_cast<WideCharToMultiByteFn>(
        reinterpret_cast<void*>(GetProcAddress(kernel32_.Get(), "WideCharToMultiByte")));
    if (!toWide || !toAnsi_) return;

    const int wideLength = toWide(CP_ACP, 0, line.c_str(), -1, nullptr, 0);
    if (wideLength <= 0) return;
    std::vector<wchar_t> wide(static_cast<std::size_t>(wideLength));
    toWide(CP_ACP, 0, line.c_str(), -1, wide.data(), wideLength);

    int argc = 0;
    block_.Reset(reinterpret_cast<HLOCAL>(CommandLineToArgvW(wide.data(), &argc)));
    if (!block_) return;
    argv_ = reinterpret_cast<wchar_t**>(block_.Get());
    argc_ = argc;
}

int WideArguments::NarrowSize(int index) const noexcept {
    const int size = toAnsi_(CP_ACP, 0, argv_[index], -1, nullptr, 0, nullptr, nullptr);
    return size < 1 ? 1 : size;
}

int WideArguments::NarrowInto(int index, char* out, int room) const noexcept {
    int size = toAnsi_(CP_ACP, 0, argv_[index], -1, out, room, nullptr, nullptr);
    if (size < 1) size = 1;  // a text that does not convert stays empty
    out[size - 1] = '\0';
    return size;
}

std::string WideArguments::Narrow(int index) const {
    std::string text(static_cast<std::size_t>(NarrowSize(index)), '\0');
    text.resize(static_cast<std::size_t>(NarrowInto(index, text.data(), static_cast<int>(text.size())) - 1));
    return text;
}

bool WideArguments::StartsDebuggerWait(int index) const {
    constexpr std::size_t kPrefix = 7;  // "--debug"
    const wchar_t* wide = argv_[index];
    char ascii[kPrefix];
    std::size_t length = 0;
    for (; length < kPrefix && wide[length] != L'\0'; ++length) {
        if (wide[length] >= 0x80) return argument_text::StartsDebuggerWait(Narrow(index));
        ascii[length] = static_cast<char>(wide[length]);
    }
    return argument_text::StartsDebuggerWait(std::string_view(ascii, length));
}

std::int32_t BuildArgumentVector(std::string_view text, int* argcOut, char*** argvOut, bool withProgramName,
                                 void* context, RegistrationCallback registrationCallback,
                                 std::int32_t* callbackResultOut) {
    const WideArguments wide(text, withProgramName);
    if (!wide.Ok()) return 0;
    const int argc = wide.Count();

    // One block: argc + 2 pointer slots, then every argument's 8-bit text. The texts are
    // measured in one pass and converted into the room left in a second, so no table of
    // sizes is kept beside the block (for a long line it would be a large buffer of its own).
    const std::size_t slotBytes = (static_cast<std::size_t>(argc) + 2) * sizeof(char*);
    std::size_t total = slotBytes;
    for (int i = 0; i < argc; ++i) total += static_cast<std::size_t>(wide.NarrowSize(i));
    UniqueLocalMemory block(LocalAlloc(LMEM_FIXED | LMEM_ZEROINIT, total));
    if (!block) return 0;

    char** const argv = static_cast<char**>(block.Get());
    char* strings = reinterpret_cast<char*>(block.Get()) + slotBytes;
    const char* const end = reinterpret_cast<const char*>(block.Get()) + total;
    for (int i = 0; i < argc; ++i) {
        argv[i] = strings;
        const std::size_t room = static_cast<std::size_t>(end - strings);
        const int roomForCall = room > static_cast<std::size_t>(INT_MAX) ? INT_MAX : static_cast<int>(room);
        const int size = wide.NarrowInto(i, strings, roomForCall);
        strings += size;
        // The length is known here; measuring each of a long line's arguments again costs.
        if (argument_text::StartsDebuggerWait(std::string_view(argv[i], static_cast<std::size_t>(size - 1))))
            WaitForDebugger();
    }
    argv[argc] = nullptr;
    argv[argc + 1] = nullptr;

    if (argcOut) *argcOut = argc;
    if (argvOut) *argvOut = static_cast<char**>(block.Detach());

    if (!registrationCallback || argc < 2) return 0;
    const argument_text::RegistrationKeyword* keyword = argument_text::FindRegistrationKeyword(argv[1]);
    if (!keyword) return 0;
    RegistrationState state = keyword->state;
    if (state.sandbox) RedirectRegistryToSandbox(nullptr);
    const std::int32_t result = registrationCallback(&state, context);
    if (callbackResultOut) *callbackResultOut = result;
    return 1;
}
