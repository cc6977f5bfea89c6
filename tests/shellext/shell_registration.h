// The built DLL registered in the prefix's real class registry as an installer would (its own
// regsvr32 and the file type's rows that scripts/associate.sh writes), so that Wine's shell
// serves a connection file's Properties through it. Tests that use it share the real
// HKEY_CLASSES_ROOT and run one at a time (RESOURCE_LOCK wine_classes_root).
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/shellext/shellext_test_support.h"
#include "tests/support/system_programs.h"

namespace test_support {

inline std::string DefaultValue(const std::string& key) { return ReadValue(HKEY_CLASSES_ROOT, key, nullptr).Text(); }

// The built DLL in the Windows form of its path, as the registry holds it. It is registered
// where it was built (no client beside it), not as a copy: the shell keeps the DLL loaded
// until the process ends, so a copy could not be deleted afterwards.
inline std::string BuiltDll() {
    char full[MAX_PATH + 1] = {};
    GetFullPathNameA(BuiltDllPath().c_str(), sizeof(full), full, nullptr);
    return full;
}

// The built DLL registered with regsvr32 and the file type written from the same rows that
// scripts/associate.sh writes; unregistering deletes both again.
class ShellRegistration : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(RunProgram(SystemFolder() + "\\regsvr32.exe", "/s \"" + dll_ + "\""), 0u);
        ASSERT_EQ(RunProgram(RegistryEditor(), "/S \"" VQC_ASSOCIATION_REG "\""), 0u);
        ASSERT_EQ(DefaultValue(".vqc"), "VCLIENT");
        ASSERT_EQ(DefaultValue("CLSID\\{5e1d7c40-a3b2-11d0-8e6f-00a0c9b35d21}\\InProcServer32"), dll_);
    }
    void TearDown() override { RunProgram(SystemFolder() + "\\regsvr32.exe", "/u /s \"" + dll_ + "\""); }

    // A connection file of the test's own with the given content.
    std::string Connection(const std::string& name, const std::string& content) {
        const std::string path = folder_.File(name);
        WriteFileBytes(path, content);
        return path;
    }

    TempFolder folder_{"shell-properties"};
    std::string dll_ = BuiltDll();
};

}  // namespace test_support
