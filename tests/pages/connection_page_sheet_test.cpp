// The Connection page as the shell gets it: a copy of the built DLL in a folder of its own,
// with a stand-in client DLL of each version the page cares about (or none) and with or
// without "vserver.dll" beside it. For every connection type and login type the lists
// offer, the user's picks are sent as clicks would send them, and every control's shown
// and enabled state is compared with what the page must show at that client version.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "pages/connection_page_rules.h"
#include "tests/pages/connection_page_texts.h"
#include "tests/pages/page_test_support.h"
#include "tests/pages/sheet_input.h"

using namespace page_test;

namespace {

using dialog_ids::kConnectionTypeList;
using dialog_ids::kEncryptionCheck;
using dialog_ids::kLoginTypeList;
using dialog_ids::kServerBox;

// What the page must offer and show for one installed client.
struct ClientCase {
    const char* name;
    const char* fixture;  // empty: no client, version 726
    bool encryptionShown;
    bool legacyProtocolShown;
    bool discoveryOffered;
    bool ntLoginsOffered;  // below 690; from 690 Wine's user is in no domain
};

// clang-format off
const ClientCase kClients[] = {
    {"619", "client_6_19_5", false, false, false, true},
    {"620", "client_6_20", true, false, false, true},
    {"640", "client_6_40_0_12", false, false, false, true},
    {"664", "client_6_64", true, false, false, true},
    {"665", "client_6_65", true, true, true, true},
    {"689", "client_6_89", true, true, true, true},
    {"690", "client_6_90", true, false, true, false},
    {"726", "", true, false, true, false},
};
// clang-format on

const std::set<int> kRemoteLayout = {1001, 1002, 1009, 1010, 1024, 1005, 1006, 1007, 1008,
                                     1023, 1021, 1022, 1017, 1018, 1019, 1020, 1015, 1016};
const std::set<int> kLocalLayout = {1001, 1002, 1011, 1012, 1013, 1014, 1019, 1020, 1015, 1016};
const std::set<int> kDiscoveryLayout = {1001, 1002, 1003, 1004};

// Disabled by each login type (every other control stays enabled).
const std::map<std::string, std::set<int>> kDisabledByLoginType = {
    {kAlwaysRequirePassword, {}},
    {kCachePassword, {}},
    {kTextWindow, {1010, 1016, 1020, 1023, 1024}},
    {kNtDomain, {1010, 1016, 1024}},
    {kNtNoLogon, {1010, 1023, 1024}},
};

std::set<int> ShownControls(HWND page) {
    std::set<int> shown;
    for (int id = 1001; id <= 1024; ++id)
        if (Shown(PageControl(page, id))) shown.insert(id);
    return shown;
}

std::set<int> DisabledControls(HWND page) {
    std::set<int> disabled;
    for (int id = 1001; id <= 1024; ++id)
        if (!Enabled(PageControl(page, id))) disabled.insert(id);
    return disabled;
}

struct SheetCase {
    ClientCase client;
    bool withVServer;
};

void PrintTo(const SheetCase& c, std::ostream* out) {
    *out << "client " << c.client.name << (c.withVServer ? " with" : " without") << " vserver.dll";
}

std::string CaseName(const testing::TestParamInfo<SheetCase>& info) {
    return std::string("Client") + info.param.client.name + (info.param.withVServer ? "WithVServer" : "WithoutVServer");
}

std::vector<SheetCase> AllCases() {
    std::vector<SheetCase> cases;
    for (const ClientCase& client : kClients)
        for (bool withVServer : {false, true}) cases.push_back({client, withVServer});
    return cases;
}

class ConnectionPageAtClientVersion : public testing::TestWithParam<SheetCase> {
protected:
    void SetUp() override {
        const SheetCase& c = GetParam();
        copy_ =
            std::make_unique<ExtensionCopy>(std::string("cp-sheet-") + c.client.name, c.client.fixture, c.withVServer);
        ASSERT_NE(copy_->Module(), nullptr);
        file_ = copy_->File("connection.vqc");
        WriteFileBytes(file_, "-h server.example -u tester");
        sheet_ = std::make_unique<ShellPropertySheet>(copy_->GetClassObject(), file_);
        ASSERT_TRUE(sheet_->Open());
        page_ = PageWindow(sheet_->Sheet(), 0);
        ASSERT_NE(page_, nullptr);
    }
    void TearDown() override {
        if (sheet_) sheet_->Destroy();
        sheet_.reset();
        copy_.reset();
    }

    std::vector<std::string> ExpectedConnectionTypes() const {
        std::vector<std::string> types;
        if (GetParam().withVServer) types.push_back(kLocal);  // the list is sorted
        types.push_back(kRemote);
        if (GetParam().client.discoveryOffered) types.push_back(kDiscovery);
        return types;
    }
    std::vector<std::string> ExpectedLoginTypes() const {
        std::vector<std::string> types = {kAlwaysRequirePassword, kCachePassword, kTextWindow};
        if (GetParam().client.ntLoginsOffered) {
            types.push_back(kNtDomain);
            types.push_back(kNtNoLogon);
        }
        return types;
    }
    std::set<int> ExpectedShown(const std::string& connectionType) const {
        if (connectionType == kLocal) return kLocalLayout;
        if (connectionType == kDiscovery) return kDiscoveryLayout;
        std::set<int> shown = kRemoteLayout;
        if (!GetParam().client.encryptionShown) shown.erase(1023);
        if (!GetParam().client.legacyProtocolShown) shown.erase(1024);
        return shown;
    }
    static std::set<int> ExpectedDisabled(const std::string& loginType, const std::string& connectionType) {
        std::set<int> disabled = kDisabledByLoginType.at(loginType);
        if (connectionType == kDiscovery) disabled.erase(1010);
        return disabled;
    }
    HWND Control(int id) const { return PageControl(page_, id); }

    std::unique_ptr<ExtensionCopy> copy_;
    std::unique_ptr<ShellPropertySheet> sheet_;
    std::string file_;
    HWND page_ = nullptr;
    test_support::PrivateCurrentUser user_{"cp-sheet-user"};
};

}  // namespace

TEST_P(ConnectionPageAtClientVersion, ListsTheConnectionTypesInSortedOrder) {
    EXPECT_EQ(ListItems(Control(kConnectionTypeList)), ExpectedConnectionTypes());
}

TEST_P(ConnectionPageAtClientVersion, ListsTheLoginTypesInTableOrder) {
    EXPECT_EQ(ListItems(Control(kLoginTypeList)), ExpectedLoginTypes());
}

TEST_P(ConnectionPageAtClientVersion, OpensARemoteFileWithTheRemoteLayoutAndEverythingEnabled) {
    EXPECT_EQ(SelectedItem(Control(kConnectionTypeList)), kRemote);
    EXPECT_EQ(SelectedItem(Control(kLoginTypeList)), kAlwaysRequirePassword);
    EXPECT_EQ(ListItems(Control(kServerBox)), (std::vector<std::string>{"server.example"}));
    EXPECT_EQ(ShownControls(page_), ExpectedShown(kRemote));
    EXPECT_EQ(DisabledControls(page_), std::set<int>{});
}

TEST_P(ConnectionPageAtClientVersion, EveryConnectionTypeAndLoginTypeShowsAndEnablesItsControls) {
    for (const std::string& loginType : ExpectedLoginTypes()) {
        for (const std::string& connectionType : ExpectedConnectionTypes()) {
            ASSERT_TRUE(SelectItem(Control(kLoginTypeList), loginType));
            ASSERT_TRUE(SelectItem(Control(kConnectionTypeList), connectionType));
            EXPECT_EQ(ShownControls(page_), ExpectedShown(connectionType)) << loginType << " / " << connectionType;
            EXPECT_EQ(DisabledControls(page_), ExpectedDisabled(loginType, connectionType))
                << loginType << " / " << connectionType;
        }
    }
}

TEST_P(ConnectionPageAtClientVersion, ApplyWritesWhatTheClientUnderstands) {
    ASSERT_TRUE(SelectItem(Control(kConnectionTypeList), kRemote));
    if (GetParam().client.encryptionShown) Click(Control(kEncryptionCheck));
    EXPECT_TRUE(Apply(sheet_->Sheet()));
    EXPECT_EQ(ReadFileBytes(file_),
              GetParam().client.encryptionShown ? "-h server.example -l -u tester " : "-h server.example -u tester ");
}

INSTANTIATE_TEST_SUITE_P(Clients, ConnectionPageAtClientVersion, testing::ValuesIn(AllCases()), CaseName);
