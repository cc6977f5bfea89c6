#include "tests/connection/argument_vector_fixture.h"

#include <sstream>

#include "common/win_handles.h"

namespace {

constexpr const char* kSandboxPath = "SOFTWARE\\Marrowby\\setup\\sandbox";

std::string FolderOfThisProgram() {
    char path[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, path, sizeof(path));
    std::string folder = path;
    return folder.substr(0, folder.find_last_of('\\'));
}

std::string TempFolder() {
    char path[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathA(sizeof(path), path);
    std::string folder(path, length);
    if (!folder.empty() && folder.back() == '\\') folder.pop_back();
    return folder;
}

DebuggerWaitTest::World* g_world = nullptr;

bool CountingDebuggerPresent() {
    ++g_world->polls;
    return g_world->attachedAfterPolls >= 0 && g_world->polls > g_world->attachedAfterPolls;
}
void CountingBreak() { ++g_world->breaks; }
void CountingSleep(DWORD milliseconds) {
    ++g_world->sleeps;
    g_world->sleptMilliseconds += milliseconds;
}
void RecordingAnnounce(const char* message) { g_world->announcements.emplace_back(message); }

}  // namespace

std::vector<std::string> SplitOptionText(const char* text, bool withProgramName) {
    int argc = 0;
    char** argv = nullptr;
    BuildArgumentVector(text, &argc, &argv, withProgramName, nullptr, nullptr, nullptr);
    const UniqueLocalMemory block(reinterpret_cast<HLOCAL>(argv));
    std::vector<std::string> arguments;
    for (int i = 0; argv && i < argc; ++i) arguments.emplace_back(argv[i]);
    return arguments;
}

std::vector<std::string> WithoutProgram(const std::vector<std::string>& arguments) {
    if (arguments.empty()) return {};
    return std::vector<std::string>(arguments.begin() + 1, arguments.end());
}

ProbeRun RunArgvProbeFromFolder(const std::string& folderName, const std::string& optionText) {
    ProbeRun run;
    run.folder = TempFolder() + "\\" + folderName;
    CreateDirectoryA(run.folder.c_str(), nullptr);
    const std::string probe = run.folder + "\\argv_probe.exe";
    if (!CopyFileA((FolderOfThisProgram() + "\\argv_probe.exe").c_str(), probe.c_str(), FALSE)) {
        run.output = "cannot copy the probe, error " + std::to_string(GetLastError());
        return run;
    }

    SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
    UniqueKernelHandle readEnd, writeEnd;
    CreatePipe(readEnd.Put(), writeEnd.Put(), &inherit, 0);
    SetHandleInformation(readEnd.Get(), HANDLE_FLAG_INHERIT, 0);

    SetEnvironmentVariableA("VQC_PROBE_TEXT", optionText.c_str());
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd.Get();
    startup.hStdError = writeEnd.Get();
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    PROCESS_INFORMATION process{};
    std::string commandLine = "\"" + probe + "\"";
    const BOOL started = CreateProcessA(probe.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        run.folder.c_str(), &startup, &process);
    SetEnvironmentVariableA("VQC_PROBE_TEXT", nullptr);
    writeEnd.Reset();
    if (!started) {
        run.output = "cannot start the probe, error " + std::to_string(GetLastError());
        return run;
    }
    const UniqueKernelHandle processHandle(process.hProcess), threadHandle(process.hThread);

    char buffer[4096];
    DWORD got = 0;
    while (ReadFile(readEnd.Get(), buffer, sizeof(buffer), &got, nullptr) && got > 0) run.output.append(buffer, got);
    WaitForSingleObject(processHandle.Get(), 30000);
    GetExitCodeProcess(processHandle.Get(), &run.exitCode);

    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        run.arguments.push_back(line);
    }
    DeleteFileA(probe.c_str());
    RemoveDirectoryA(run.folder.c_str());
    return run;
}

void DebuggerWaitTest::SetUp() {
    g_world = &world;
    saved = SetDebuggerWaitHooks({CountingDebuggerPresent, CountingBreak, CountingSleep, RecordingAnnounce});
}

void DebuggerWaitTest::TearDown() {
    SetDebuggerWaitHooks(saved);
    g_world = nullptr;
}

void RestoreRegistryRoots() {
    for (HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_CONFIG, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE,
                      HKEY_PERFORMANCE_DATA, HKEY_USERS})
        RegOverridePredefKey(root, nullptr);
}

bool KeyExists(HKEY root, const std::string& path) {
    UniqueRegKey key;
    return RegOpenKeyExA(root, path.c_str(), 0, KEY_READ, key.Put()) == ERROR_SUCCESS;
}

bool SandboxKeyExists(const std::string& pathBelowSandbox) {
    return KeyExists(HKEY_CURRENT_USER, std::string(kSandboxPath) + "\\" + pathBelowSandbox);
}

void SandboxTest::TearDown() {
    RestoreRegistryRoots();
    for (const std::string& path : written_)
        RegDeleteTreeA(HKEY_CURRENT_USER, (std::string(kSandboxPath) + "\\" + path).c_str());
}

void SandboxTest::WriteProbeThroughEveryRoot(const std::string& name) {
    const HKEY roots[] = {HKEY_CLASSES_ROOT, HKEY_CURRENT_CONFIG, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS};
    for (std::size_t i = 0; i < std::size(roots); ++i) {
        UniqueRegKey key;
        EXPECT_EQ(RegCreateKeyExA(roots[i], name.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.Put(), nullptr),
                  ERROR_SUCCESS)
            << kRootsThatHoldKeys[i];
    }
}

std::int32_t RegistrationCallbackTest::Callback(RegistrationState* state, void* context) {
    auto* test = static_cast<RegistrationCallbackTest*>(context);
    ++test->calls;
    test->seen = *state;
    test->seenContext = context;
    if (!test->sandboxProbeKey.empty()) {
        UniqueRegKey key;
        test->probeWriteResult = RegCreateKeyExA(HKEY_CLASSES_ROOT, test->sandboxProbeKey.c_str(), 0, nullptr, 0,
                                                 KEY_WRITE, nullptr, key.Put(), nullptr);
        test->written_.push_back("HKEY_CLASSES_ROOT\\" + test->sandboxProbeKey);
    }
    return 42;
}

std::int32_t RegistrationCallbackTest::Build(const char* text, std::int32_t* callbackResult) {
    int argc = 0;
    char** argv = nullptr;
    const std::int32_t found = BuildArgumentVector(text, &argc, &argv, true, this, Callback, callbackResult);
    const UniqueLocalMemory block(reinterpret_cast<HLOCAL>(argv));
    return found;
}
