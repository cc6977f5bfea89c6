// Registering and unregistering the built DLL with each of their system calls failed in
// turn, in a classes root of the test's own: a failed registration takes away what it
// wrote (the parents every system has aside) and logs the failure; unregistration answers,
// and a second run without the fault removes everything.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/faults/fault_layer.h"
#include "tests/faults/fault_sweep.h"
#include "tests/shellext/clean_sweep.h"
#include "tests/shellext/shell_scenarios.h"
#include "tests/shellext/shellext_test_support.h"

using namespace shell_scenarios;

namespace {

constexpr char kClassKey[] = "CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}";
constexpr char kLogVariable[] = "VOXA_REGISTRATE_LOG_FILE";
using ServerFunction = HRESULT(STDAPICALLTYPE*)();

// Every key and value below a root, one line each, in a stable order.
void DumpTree(HKEY key, const std::string& path, std::string& text) {
    char name[512];
    BYTE data[2048];
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof(name);
        DWORD dataSize = sizeof(data);
        DWORD type = 0;
        if (RegEnumValueA(key, index, name, &nameSize, nullptr, &type, data, &dataSize) != ERROR_SUCCESS) break;
        text += path + " [" + name + "] = " + std::string(reinterpret_cast<char*>(data), dataSize) + "\n";
    }
    for (DWORD index = 0;; ++index) {
        DWORD nameSize = sizeof(name);
        if (RegEnumKeyExA(key, index, name, &nameSize, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        HKEY child = nullptr;
        if (RegOpenKeyExA(key, name, 0, KEY_READ, &child) != ERROR_SUCCESS) continue;
        text += path + "\\" + name + "\n";
        DumpTree(child, path + "\\" + name, text);
        RegCloseKey(child);
    }
}

std::string TreeText(HKEY root) {
    std::string text;
    DumpTree(root, "", text);
    return text;
}

void EmptyRoot(HKEY root) {
    char name[512];
    for (;;) {
        DWORD size = sizeof(name);
        if (RegEnumKeyExA(root, 0, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
        if (RegDeleteTreeA(root, name) != ERROR_SUCCESS) break;
    }
}

// The tree's lines without the bare "AppID" and "CLSID" keys, which registration makes in
// an empty root and removal leaves, as every system has them.
std::string WithoutSharedParents(const std::string& tree) {
    std::string rest;
    std::size_t start = 0;
    while (start < tree.size()) {
        const std::size_t end = tree.find('\n', start);
        const std::string line = tree.substr(start, end - start);
        if (line != "\\AppID" && line != "\\CLSID") rest += line + "\n";
        start = end == std::string::npos ? tree.size() : end + 1;
    }
    return rest;
}

std::size_t Lines(const std::string& text) {
    std::size_t lines = 0;
    for (char c : text) lines += c == '\n';
    return lines;
}

TEST(FaultSweep, RegisteringRollsBackOrLogsEveryFailure) {
    const DllCopyFolder folder("sweep-register");
    const test_support::PrivateClassesRoot root("sweep-register");
    const std::string log = folder.File("registration.log");
    const test_support::ScopedEnvironment variable(kLogVariable, log.c_str());
    std::string registered;  // the tree a registration without a fault leaves
    HRESULT result = S_OK;
    faults::SweepOptions options = ServerSweepOptions();
    options.afterUnload = [&](faults::RunChecks& checks) {
        const std::string tree = TreeText(root.Get());
        const std::string written = test_support::FileExists(log) ? ReadFileBytes(log) : "";
        const std::string fired = faults::Fired() ? faults::FiredCall().function : "";
        if (registered.empty()) {
            checks.Expect(result == S_OK && !tree.empty() && written.empty(), "registration without a fault failed");
            registered = tree;
        } else if (FAILED(result)) {
            // Rolled back: only the parents every system has are left.
            checks.Expect(WithoutSharedParents(tree).empty(), "a failed registration left keys behind:\n" + tree);
            if (fired == "RegCreateKeyExA")
                checks.Expect(written.rfind("Failed to create registry key ", 0) == 0, "the failure was not logged");
        } else if (tree != registered) {
            // A value that could not be set does not fail registration; it is logged.
            checks.Expect(fired == "RegSetValueExA" && Lines(registered) - Lines(tree) == 1,
                          "registration answered S_OK with this tree:\n" + tree);
            checks.Expect(written.rfind("Failed to set registry value ", 0) == 0, "the failed value was not logged");
        }
        DeleteFileA(log.c_str());
        EmptyRoot(root.Get());
    };
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(),
        [&](HMODULE module, faults::RunChecks&) { result = Export<ServerFunction>(module, "DllRegisterServer")(); },
        options);
    ExpectClean(report, "registering");
    EXPECT_NE(registered.find(kClassKey), std::string::npos) << registered;
}

TEST(FaultSweep, UnregisteringAnswersAndASecondRunRemovesEverything) {
    const DllCopyFolder folder("sweep-unregister");
    const test_support::PrivateClassesRoot root("sweep-unregister");
    HRESULT result = S_OK;
    faults::SweepOptions options = ServerSweepOptions();
    options.afterUnload = [&](faults::RunChecks& checks) {
        const std::string tree = TreeText(root.Get());
        checks.Expect(tree.find(kClassKey) == std::string::npos, "a second unregistration left the class registered");
        EmptyRoot(root.Get());
    };
    const faults::SweepReport report = faults::Sweep(
        folder.Dll(),
        [&](HMODULE module, faults::RunChecks& checks) {
            {
                const faults::PausedCounting setUp;
                checks.Expect(Export<ServerFunction>(module, "DllRegisterServer")() == S_OK,
                              "set-up registration failed");
            }
            // Deletions that fail are not reported: S_OK, with the entries that could not go.
            result = Export<ServerFunction>(module, "DllUnregisterServer")();
            checks.Expect(result == S_OK || FAILED(result), "DllUnregisterServer answered " + std::to_string(result));
            // Run again without the fault, it finishes the job.
            const faults::PausedCounting again;
            checks.Expect(Export<ServerFunction>(module, "DllUnregisterServer")() == S_OK,
                          "a second unregistration failed");
        },
        options);
    ExpectClean(report, "unregistering");
}

}  // namespace
