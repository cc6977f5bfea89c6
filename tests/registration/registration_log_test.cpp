// The registration log with real keys: paths as the kernel names them, the system's
// error texts, and the file written when the log is destroyed.
#include "registration/registration_log.h"

#include <gtest/gtest.h>

#include "tests/registration/registry_test_support.h"

using namespace test_support;

namespace {
constexpr char kVariable[] = "VOXA_REGISTRATE_LOG_FILE";
}

TEST(RegistrationLog, PredefinedRootsAreNamedDirectly) {
    EXPECT_EQ(RegistrationLog::GetRegistryKeyPath(HKEY_CLASSES_ROOT), "HKEY_CLASSES_ROOT");
    EXPECT_EQ(RegistrationLog::GetRegistryKeyPath(HKEY_CURRENT_USER), "HKEY_CURRENT_USER");
    EXPECT_EQ(RegistrationLog::GetRegistryKeyPath(HKEY_LOCAL_MACHINE), "HKEY_LOCAL_MACHINE");
}

TEST(RegistrationLog, OtherKeysAreNamedInTheirNativeForm) {
    PrivateKey key("native-name");
    const std::string path = RegistrationLog::GetRegistryKeyPath(key.Get());
    EXPECT_EQ(path, NativeKeyName(key.Get()));
    EXPECT_EQ(path.rfind("\\REGISTRY\\User\\", 0), 0u) << path;
    const std::string tail = key.Path().substr(key.Path().rfind('\\'));
    EXPECT_EQ(path.substr(path.size() - tail.size()), tail);
}

TEST(RegistrationLog, AnInvalidHandleIsUnknown) {
    EXPECT_EQ(RegistrationLog::GetRegistryKeyPath(reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x1230))), "<unknown>");
}

TEST(RegistrationLog, ErrorTextIsTheSystemMessageWithItsLineBreak) {
    const std::string text = RegistrationLog::DescribeSystemError(5);
    EXPECT_EQ(text, SystemErrorText(5));
    ASSERT_GE(text.size(), 2u);
    EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
}

TEST(RegistrationLog, AnErrorWithoutMessageIsQuestionMarks) {
    EXPECT_EQ(RegistrationLog::DescribeSystemError(0x2FFFFFFF), "??");
}

TEST(RegistrationLog, UnsetVariableLeavesTheLogDisabled) {
    SetEnvironmentVariableA(kVariable, nullptr);
    RegistrationLog log;
    log.SetFileName();
    EXPECT_FALSE(log.IsEnabled());
    EXPECT_EQ(log.FileName(), "");
}

TEST(RegistrationLog, EmptyVariableLeavesTheLogDisabled) {
    ScopedEnvironment variable(kVariable, "");
    RegistrationLog log;
    log.SetFileName();
    EXPECT_FALSE(log.IsEnabled());
}

TEST(RegistrationLog, VariableNamesTheLogFile) {
    ScopedEnvironment variable(kVariable, "C:\\some folder\\registration.log");
    RegistrationLog log;
    log.SetFileName();
    EXPECT_TRUE(log.IsEnabled());
    EXPECT_EQ(log.FileName(), "C:\\some folder\\registration.log");
}

TEST(RegistrationLog, FailedDefaultValueBelowAppIdIsLoggedWithItsNativePath) {
    PrivateKey root("value-failure");
    CreateKey(root.Get(), "AppID\\{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}");
    HKEY readOnly = nullptr;
    ASSERT_EQ(RegOpenKeyExA(root.Get(), "AppID\\{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}", 0, KEY_READ, &readOnly),
              ERROR_SUCCESS);
    UniqueRegKey key(readOnly);
    // A real write that the registry refuses: the key is open for reading only.
    const LONG code = RegSetValueExA(key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>("vqcprop"), 8);
    ASSERT_NE(code, ERROR_SUCCESS);

    RegistrationLog log;
    log.LogValueSetFailure(key.Get(), nullptr, "vqcprop", static_cast<DWORD>(code));
    ASSERT_EQ(log.Messages().size(), 1u);
    const std::string native = NativeKeyName(key.Get());
    EXPECT_EQ(log.Messages()[0], "Failed to set registry value " + native + "\\(Default) to \"vqcprop\" Error " +
                                     std::to_string(code) + " " + SystemErrorText(static_cast<DWORD>(code)));
    EXPECT_NE(native.find("\\AppID\\{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}"), std::string::npos) << native;
}

TEST(RegistrationLog, KeyFailureDirectlyBelowTheRootNamesTheRoot) {
    RegistrationLog log;
    log.LogKeyCreateFailure(HKEY_CLASSES_ROOT, "AppID", 1021);
    ASSERT_EQ(log.Messages().size(), 1u);
    EXPECT_EQ(log.Messages()[0],
              "Failed to create registry key HKEY_CLASSES_ROOT\\AppID Error 1021 " + SystemErrorText(1021));
}

TEST(RegistrationLog, NullKeyNameIsWrittenAsDefault) {
    RegistrationLog log;
    log.LogKeyCreateFailure(HKEY_LOCAL_MACHINE, nullptr, 5);
    ASSERT_EQ(log.Messages().size(), 1u);
    EXPECT_EQ(log.Messages()[0],
              "Failed to create registry key HKEY_LOCAL_MACHINE\\(Default) Error 5 " + SystemErrorText(5));
}

TEST(RegistrationLog, TwoFailuresGiveTwoLinesWithOneLineFeedBetween) {
    TempFolder folder("log-two");
    const std::string file = folder.File("registration.log");
    {
        ScopedEnvironment variable(kVariable, file.c_str());
        RegistrationLog log;
        log.SetFileName();
        log.LogKeyCreateFailure(HKEY_CLASSES_ROOT, "AppID", 1021);
        log.LogValueSetFailure(HKEY_CURRENT_USER, "Name", "data", 5);
        EXPECT_FALSE(FileExists(file));  // nothing is written before the log goes
    }
    EXPECT_EQ(ReadFileBytes(file),
              "Failed to create registry key HKEY_CLASSES_ROOT\\AppID Error 1021 " + SystemErrorText(1021) + "\n" +
                  "Failed to set registry value HKEY_CURRENT_USER\\Name to \"data\" Error 5 " + SystemErrorText(5));
}

TEST(RegistrationLog, AnExistingFileIsReplaced) {
    TempFolder folder("log-replace");
    const std::string file = folder.File("registration.log");
    WriteFileBytes(file, "an older run's messages that are longer than this run's\n");
    {
        ScopedEnvironment variable(kVariable, file.c_str());
        RegistrationLog log;
        log.SetFileName();
        log.LogKeyCreateFailure(HKEY_CLASSES_ROOT, "X", 2);
    }
    EXPECT_EQ(ReadFileBytes(file), "Failed to create registry key HKEY_CLASSES_ROOT\\X Error 2 " + SystemErrorText(2));
}

TEST(RegistrationLog, NoMessagesLeaveAnExistingFileUntouched) {
    TempFolder folder("log-untouched");
    const std::string file = folder.File("registration.log");
    WriteFileBytes(file, "kept");
    {
        ScopedEnvironment variable(kVariable, file.c_str());
        RegistrationLog log;
        log.SetFileName();
    }
    EXPECT_EQ(ReadFileBytes(file), "kept");
}

TEST(RegistrationLog, AFileThatCannotBeOpenedLosesTheMessagesQuietly) {
    TempFolder folder("log-unopenable");
    const std::string file = folder.File("no such folder\\registration.log");
    {
        ScopedEnvironment variable(kVariable, file.c_str());
        RegistrationLog log;
        log.SetFileName();
        log.LogKeyCreateFailure(HKEY_CLASSES_ROOT, "X", 2);
    }
    EXPECT_FALSE(FileExists(file));
}
