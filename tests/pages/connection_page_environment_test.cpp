// The Connection page's reads of the machine, with real keys and real files: the recent
// servers under the user's hive (redirected to a private key per test) and "vserver.dll"
// beside a loaded copy of a module.
#include "pages/connection_page_environment.h"

#include <gtest/gtest.h>

#include "tests/registration/registry_test_support.h"
#include "tests/pages/page_test_support.h"

using namespace test_support;

namespace {

// Created below the opened parent: Wine's 8-bit registry calls take at most 260
// characters of path, and a host name may be 255 long.
void AddRecentHost(const std::string& name) {
    CreateKey(HKEY_CURRENT_USER, kRecentHostsKey);
    UniqueRegKey parent;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kRecentHostsKey, 0, KEY_CREATE_SUB_KEY, parent.Put()), ERROR_SUCCESS);
    CreateKey(parent.Get(), name);
    ASSERT_TRUE(KeyExists(parent.Get(), name)) << name;
}

// A copy of a module loaded from a folder of its own.
class ModuleInFolder {
public:
    explicit ModuleInFolder(const std::string& tag) : folder_(tag) {
        copied_ = CopyFileA(page_test::ClientFixturePath("client_7").c_str(), folder_.File(VQC_DLL_FILE_NAME).c_str(),
                            FALSE) != FALSE;
        module_.Reset(LoadLibraryA(folder_.File(VQC_DLL_FILE_NAME).c_str()));
    }
    bool Ready() const { return copied_ && module_; }
    HMODULE Get() const { return module_.Get(); }
    std::string File(const std::string& name) const { return folder_.File(name); }

private:
    TempFolder folder_;
    bool copied_ = false;
    UniqueModule module_;
};

}  // namespace

TEST(RecentHosts, MissingKeyGivesNone) {
    PrivateCurrentUser user("recent-missing");
    ASSERT_FALSE(KeyExists(HKEY_CURRENT_USER, kRecentHostsKey));
    EXPECT_TRUE(ReadRecentHosts().empty());
}

TEST(RecentHosts, EmptyKeyGivesNone) {
    PrivateCurrentUser user("recent-empty");
    CreateKey(HKEY_CURRENT_USER, kRecentHostsKey);
    ASSERT_TRUE(KeyExists(HKEY_CURRENT_USER, kRecentHostsKey));
    EXPECT_TRUE(ReadRecentHosts().empty());
}

TEST(RecentHosts, SubkeyNamesInTheRegistrysEnumerationOrder) {
    PrivateCurrentUser user("recent-order");
    AddRecentHost("zeta.example");
    AddRecentHost("alpha.example");
    AddRecentHost("Mid.example");
    // The registry enumerates subkeys by name without regard to case, not by creation.
    EXPECT_EQ(ReadRecentHosts(), (std::vector<std::string>{"alpha.example", "Mid.example", "zeta.example"}));
}

TEST(RecentHosts, ValuesOfTheKeyAreNotHosts) {
    PrivateCurrentUser user("recent-values");
    AddRecentHost("only.example");
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kRecentHostsKey, 0, KEY_SET_VALUE, &key), ERROR_SUCCESS);
    const char text[] = "value.example";
    RegSetValueExA(key, "value.example", 0, REG_SZ, reinterpret_cast<const BYTE*>(text), sizeof(text));
    RegCloseKey(key);
    EXPECT_EQ(ReadRecentHosts(), (std::vector<std::string>{"only.example"}));
}

TEST(RecentHosts, NamesKeepTheirBlanksAndLength) {
    PrivateCurrentUser user("recent-names");
    const std::string longName(255, 'h');
    AddRecentHost(" spaced host ");
    AddRecentHost(longName);
    EXPECT_EQ(ReadRecentHosts(), (std::vector<std::string>{" spaced host ", longName}));
}

TEST(RecentHosts, TheRealUserHiveIsNotReadWhileRedirected) {
    // Guards the other tests' isolation: the private root really stands in for the hive.
    PrivateCurrentUser user("recent-isolated");
    AddRecentHost("private.example");
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    const std::vector<std::string> real = ReadRecentHosts();
    RegOverridePredefKey(HKEY_CURRENT_USER, user.Get());
    for (const std::string& host : real) EXPECT_NE(host, "private.example");
    EXPECT_EQ(ReadRecentHosts(), (std::vector<std::string>{"private.example"}));
}

TEST(ServerModule, AbsentBesideTheModule) {
    ModuleInFolder module("vserver-absent");
    ASSERT_TRUE(module.Ready());
    EXPECT_FALSE(IsServerModulePresent(module.Get()));
}

TEST(ServerModule, FileBesideTheModuleIsPresent) {
    ModuleInFolder module("vserver-file");
    ASSERT_TRUE(module.Ready());
    WriteFileBytes(module.File("vserver.dll"), "");
    EXPECT_TRUE(IsServerModulePresent(module.Get()));
}

TEST(ServerModule, DirectoryOfThatNameCountsToo) {
    ModuleInFolder module("vserver-directory");
    ASSERT_TRUE(module.Ready());
    ASSERT_TRUE(CreateDirectoryA(module.File("vserver.dll").c_str(), nullptr));
    EXPECT_TRUE(IsServerModulePresent(module.Get()));
}

TEST(ServerModule, OnlyTheModulesOwnDirectoryIsLookedAt) {
    ModuleInFolder module("vserver-elsewhere");
    ModuleInFolder other("vserver-other");
    ASSERT_TRUE(module.Ready());
    ASSERT_TRUE(other.Ready());
    WriteFileBytes(other.File("vserver.dll"), "");
    EXPECT_FALSE(IsServerModulePresent(module.Get()));
    EXPECT_TRUE(IsServerModulePresent(other.Get()));
}

TEST(ServerModule, UnknownModuleHandleIsAbsent) {
    EXPECT_FALSE(IsServerModulePresent(reinterpret_cast<HMODULE>(static_cast<std::uintptr_t>(0x10))));
}
