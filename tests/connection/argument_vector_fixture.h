// Shared set-up for the argument vector tests: splitting helpers, a probe program run
// from a chosen folder, a counting stand-in for the debugger wait, and registry helpers
// for the sandbox redirection.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "connection/argument_vector.h"

// Splits text the way the reader does (program path in front unless told otherwise).
std::vector<std::string> SplitOptionText(const char* text, bool withProgramName = true);
std::vector<std::string> WithoutProgram(const std::vector<std::string>& arguments);

struct ProbeRun {
    std::string folder;                  // where the probe was copied
    std::vector<std::string> arguments;  // what the probe's BuildArgumentVector gave
    std::string output;
    DWORD exitCode = 0xdeadbeef;
};
// Copies argv_probe.exe into <temp>\<folderName> and runs it there with the option text.
ProbeRun RunArgvProbeFromFolder(const std::string& folderName, const std::string& optionText);

class DebuggerWaitTest : public ::testing::Test {
public:
    struct World {
        int attachedAfterPolls = -1;  // -1: no debugger ever attaches
        int polls = 0;
        int breaks = 0;
        int sleeps = 0;
        std::uint64_t sleptMilliseconds = 0;
        std::vector<std::string> announcements;
    };

protected:
    void SetUp() override;
    void TearDown() override;

    World world;
    DebuggerWaitHooks saved{};
};

// clang-format off
inline constexpr const char* kAllRootNames[] = {
    "HKEY_CLASSES_ROOT", "HKEY_CURRENT_CONFIG",   "HKEY_CURRENT_USER",
    "HKEY_LOCAL_MACHINE", "HKEY_PERFORMANCE_DATA", "HKEY_USERS",
};
inline constexpr const char* kRootsThatHoldKeys[] = {
    "HKEY_CLASSES_ROOT", "HKEY_CURRENT_CONFIG", "HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE",
    "HKEY_USERS",
};
// clang-format on

void RestoreRegistryRoots();
bool KeyExists(HKEY root, const std::string& path);
bool SandboxKeyExists(const std::string& pathBelowSandbox);

// Undoes every root override and removes what the test wrote below the sandbox.
class SandboxTest : public ::testing::Test {
protected:
    void TearDown() override;
    // Creates a key of this name through each redirected root that can hold keys.
    void WriteProbeThroughEveryRoot(const std::string& name);

    std::vector<std::string> written_;  // paths below the sandbox key
};

class RegistrationCallbackTest : public SandboxTest {
protected:
    static std::int32_t Callback(RegistrationState* state, void* context);
    std::int32_t Build(const char* text, std::int32_t* callbackResult);

    int calls = 0;
    RegistrationState seen{-1, -1, -1};
    void* seenContext = nullptr;
    std::string sandboxProbeKey;  // written through HKEY_CLASSES_ROOT by the callback
    LONG probeWriteResult = -1;
};
