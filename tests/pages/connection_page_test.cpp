// The Connection page linked into the test program, on real records in real modeless
// sheets, driven with the messages a user's clicks and keys send; Apply writes the file
// and the tests compare its bytes. Linked in, a test can look at the record itself.
#include "pages/connection_page.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <set>

#include "runtime/module_runtime.h"
#include "tests/pages/connection_page_texts.h"
#include "tests/pages/page_test_support.h"
#include "tests/pages/sheet_input.h"
#include "tests/row_names.h"

using namespace page_test;
using namespace connection_page;
using namespace dialog_ids;
using test_support::PrivateCurrentUser;

namespace {

// The domain check's answers for the records of this process.
int g_domainQuestions = 0;
BOOLEAN WINAPI InDomain(int, LPSTR, PULONG) {
    ++g_domainQuestions;
    return TRUE;
}
BOOLEAN WINAPI NotInDomain(int, LPSTR, PULONG) {
    ++g_domainQuestions;
    return FALSE;
}

// The domain check answers as told while the object lives.
class DomainAnswer {
public:
    explicit DomainAnswer(DomainNameQuery query) : previous_(SetDomainNameQuery(query)) { g_domainQuestions = 0; }
    ~DomainAnswer() { SetDomainNameQuery(previous_); }

private:
    DomainNameQuery previous_;
};

// This module, as the page sees it, is a copy of a stand-in DLL in a folder of its own,
// with "vserver.dll" beside it when asked: the process's module while the object lives.
class ModuleStandIn final : public ModuleRuntime {
public:
    ModuleStandIn(const std::string& tag, bool withVServer) : folder_(tag) {
        const std::string copy = folder_.File(VQC_DLL_FILE_NAME);
        CopyFileA(ClientFixturePath("client_7").c_str(), copy.c_str(), FALSE);
        if (withVServer) WriteFileBytes(folder_.File("vserver.dll"), "");
        module_.Reset(LoadLibraryA(copy.c_str()));
    }
    bool Ready() const { return static_cast<bool>(module_); }

    HINSTANCE Instance() const noexcept override { return module_.Get(); }
    UINT* LockCountAddress() noexcept override { return &lockCount_; }
    WindowCreationList& WindowCreation() noexcept override { return windowCreation_; }

private:
    TempFolder folder_;
    UniqueModule module_;
    UINT lockCount_ = 0;
    WindowCreationList windowCreation_;
};

// A connection file with the given text, read into a record whose client has the given
// version, and the Connection page around it in a modeless sheet.
class ConnectionSheet {
public:
    ConnectionSheet(const std::string& tag, const std::string& text, std::int32_t clientVersion = 726)
        : folder_(tag), file_(folder_.File("connection.vqc")) {
        WriteFileBytes(file_, text);
        record_ = ComPtr<VQCFileInfo>(new VQCFileInfo(file_.c_str()));
        record_->clientVersion = clientVersion;
        record_->Read(file_.c_str());
        Open(record_.Get());
    }
    // A page made without a record.
    explicit ConnectionSheet(const std::string& tag) : folder_(tag), file_(folder_.File("connection.vqc")) {
        Open(nullptr);
    }
    ~ConnectionSheet() { sheet_.Destroy(); }

    bool Ready() const { return page_ != nullptr && window_ != nullptr; }
    HWND Sheet() const { return sheet_.Sheet(); }
    HWND Page() const { return window_; }
    CVQCConnectionPage* Object() const { return page_; }
    VQCFileInfo* Record() const { return record_.Get(); }
    const std::string& File() const { return file_; }
    HWND Control(int id) const { return PageControl(window_, id); }

    // Apply, then the file's bytes.
    std::string Applied() {
        EXPECT_TRUE(Apply(Sheet()));
        return ReadFileBytes(file_);
    }

private:
    void Open(VQCFileInfo* record) {
        page_ = sheet_.Add<CVQCConnectionPage>(record, "Connection");
        if (!page_) return;
        sheet_.Show();
        window_ = PageWindow(Sheet(), 0);
    }

    TempFolder folder_;
    std::string file_;
    ComPtr<VQCFileInfo> record_;
    DirectSheet sheet_;
    CVQCConnectionPage* page_ = nullptr;
    HWND window_ = nullptr;
};

void AddRecentHost(const std::string& name) {
    test_support::CreateKey(HKEY_CURRENT_USER, std::string("SOFTWARE\\Marrowby\\VClient\\RecentHosts\\") + name);
}

std::vector<int> AllControls() {
    std::vector<int> ids;
    for (int id = kFirstControlId; id <= kLastControlId; ++id) ids.push_back(id);
    return ids;
}

std::set<int> ShownControls(const ConnectionSheet& sheet) {
    std::set<int> shown;
    for (int id : AllControls())
        if (Shown(sheet.Control(id))) shown.insert(id);
    return shown;
}

std::set<int> DisabledControls(const ConnectionSheet& sheet) {
    std::set<int> disabled;
    for (int id : AllControls())
        if (!Enabled(sheet.Control(id))) disabled.insert(id);
    return disabled;
}

const std::set<int> kEveryControl = {1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010, 1011, 1012,
                                     1013, 1014, 1015, 1016, 1017, 1018, 1019, 1020, 1021, 1022, 1023, 1024};
const std::set<int> kRemoteLayout = {1001, 1002, 1009, 1010, 1024, 1005, 1006, 1007, 1008,
                                     1023, 1021, 1022, 1017, 1018, 1019, 1020, 1015, 1016};
const std::set<int> kDiscoveryLayout = {1001, 1002, 1003, 1004};
const std::set<int> kLocalLayout = {1001, 1002, 1011, 1012, 1013, 1014, 1019, 1020, 1015, 1016};

std::set<int> Without(std::set<int> set, std::initializer_list<int> ids) {
    for (int id : ids) set.erase(id);
    return set;
}

}  // namespace

// ---- Opening ---------------------------------------------------------------------------

TEST(ConnectionPage, OpeningNeitherMarksTheRecordNorEnablesApply) {
    PrivateCurrentUser user("cp-open-clean");
    ConnectionSheet sheet("cp-open-clean", "-h server.example -u tester -v svc -V 8000 -a answer -C bookmark");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(sheet.Record()->modified, 0);
    EXPECT_FALSE(ApplyEnabled(sheet.Sheet()));
    EXPECT_EQ(sheet.Record()->login, "tester");
    EXPECT_EQ(sheet.Record()->servicePort, 8000);
}

TEST(ConnectionPage, FillsEveryRemoteControlFromTheRecord) {
    PrivateCurrentUser user("cp-fill-remote");
    ConnectionSheet sheet("cp-fill-remote", "-h server.example -u tester -v svc -V 8000 -a answer -C book mark");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(SelectedItem(sheet.Control(kConnectionTypeList)), kRemote);
    EXPECT_EQ(WindowText(sheet.Control(kServerBox)), "server.example");
    EXPECT_EQ(SelectedItem(sheet.Control(kLoginTypeList)), kAlwaysRequirePassword);
    EXPECT_EQ(WindowText(sheet.Control(kLoginEdit)), "tester");
    EXPECT_EQ(WindowText(sheet.Control(kDiscoveryLoginEdit)), "tester");
    EXPECT_EQ(WindowText(sheet.Control(kServiceNameEdit)), "svc");
    EXPECT_EQ(WindowText(sheet.Control(kServicePortEdit)), "8000");
    EXPECT_EQ(WindowText(sheet.Control(kBookmarkEdit)), "book mark");
    EXPECT_EQ(WindowText(sheet.Control(kAnswerBackEdit)), "answer");
    EXPECT_EQ(WindowText(sheet.Control(kCommandLineEdit)), "");
    EXPECT_EQ(WindowText(sheet.Control(kStartDirectoryEdit)), "");
    EXPECT_FALSE(Checked(sheet.Control(kEncryptionCheck)));
    EXPECT_TRUE(Checked(sheet.Control(kLegacyProtocolCheck))) << "a file without -M or -K";
}

TEST(ConnectionPage, FillsTheChecksFromEncryptAndTheLegacyProtocol) {
    PrivateCurrentUser user("cp-fill-checks");
    ConnectionSheet sheet("cp-fill-checks", "-h server.example -l -M");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_TRUE(Checked(sheet.Control(kEncryptionCheck)));
    EXPECT_FALSE(Checked(sheet.Control(kLegacyProtocolCheck)));
}

TEST(ConnectionPage, FillsTheLocalControlsFromTheRecord) {
    PrivateCurrentUser user("cp-fill-local");
    ModuleStandIn module("cp-fill-local-module", true);
    ASSERT_TRUE(module.Ready());
    ConnectionSheet sheet("cp-fill-local", "-d target -S \"C:\\start dir\"");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(SelectedItem(sheet.Control(kConnectionTypeList)), kLocal);
    EXPECT_EQ(WindowText(sheet.Control(kCommandLineEdit)), "target");
    EXPECT_EQ(WindowText(sheet.Control(kStartDirectoryEdit)), "C:\\start dir");
    EXPECT_EQ(ShownControls(sheet), kLocalLayout);
}

TEST(ConnectionPage, OptionKAndLocalConnectTogetherSelectConnectLocally) {
    PrivateCurrentUser user("cp-k-and-d");
    ModuleStandIn module("cp-k-and-d-module", true);
    ASSERT_TRUE(module.Ready());
    ConnectionSheet sheet("cp-k-and-d", "-K -d target", 690);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_EQ(sheet.Record()->optionK, 1);
    ASSERT_EQ(sheet.Record()->localConnect, 1);
    EXPECT_EQ(ListItems(sheet.Control(kConnectionTypeList)), (std::vector<std::string>{kLocal, kRemote, kDiscovery}));
    EXPECT_EQ(SelectedItem(sheet.Control(kConnectionTypeList)), kLocal);
    EXPECT_EQ(ShownControls(sheet), kLocalLayout);
}

TEST(ConnectionPage, KeepsEachEntrysPositionFoundByItsText) {
    PrivateCurrentUser user("cp-indices");
    ModuleStandIn module("cp-indices-module", true);
    ASSERT_TRUE(module.Ready());
    ConnectionSheet sheet("cp-indices", "-h h", 689);
    ASSERT_TRUE(sheet.Ready());
    // The sorted list puts "Connect locally" first.
    EXPECT_EQ(sheet.Object()->ConnectionTypeIndexForTesting(), (ConnectionTypeIndices{1, 0, 2}));
    EXPECT_EQ(sheet.Object()->LoginTypeIndexForTesting(), (LoginTypeIndices{0, 1, 2, 3, 4, -1}));
}

TEST(ConnectionPage, EntriesNotAddedKeepPositionMinusOne) {
    PrivateCurrentUser user("cp-indices-missing");
    DomainAnswer domain(NotInDomain);
    ConnectionSheet sheet("cp-indices-missing", "-h h", 690);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(sheet.Object()->ConnectionTypeIndexForTesting(), (ConnectionTypeIndices{0, -1, 1}));
    EXPECT_EQ(sheet.Object()->LoginTypeIndexForTesting(), (LoginTypeIndices{0, 1, 2, -1, -1, -1}));
}

TEST(ConnectionPage, OptionKSelectsDiscoverServiceFrom665) {
    PrivateCurrentUser user("cp-k");
    ConnectionSheet sheet("cp-k", "-K -u finder", 665);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(SelectedItem(sheet.Control(kConnectionTypeList)), kDiscovery);
    EXPECT_EQ(ShownControls(sheet), kDiscoveryLayout);
    EXPECT_EQ(WindowText(sheet.Control(kDiscoveryLoginEdit)), "finder");
}

TEST(ConnectionPage, LocalFileWithoutVServerOpensWithNoTypeAndTheDiscoveryLayout) {
    PrivateCurrentUser user("cp-local-missing");
    ConnectionSheet sheet("cp-local-missing", "-d target");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(ListItems(sheet.Control(kConnectionTypeList)), (std::vector<std::string>{kRemote, kDiscovery}));
    EXPECT_EQ(ListSelection(sheet.Control(kConnectionTypeList)), CB_ERR);
    // No selection counts as the discovery mask, which also enables the remote login edit.
    EXPECT_EQ(ShownControls(sheet), kDiscoveryLayout);
    EXPECT_TRUE(Enabled(sheet.Control(kLoginEdit)));
}

TEST(ConnectionPage, TheOpeningLoginTypeEnablesNothingUntilItIsChanged) {
    PrivateCurrentUser user("cp-open-login");
    ConnectionSheet sheet("cp-open-login", "-h server.example -L", 689);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(SelectedItem(sheet.Control(kLoginTypeList)), kNtNoLogon);
    EXPECT_EQ(DisabledControls(sheet), std::set<int>{});
    SelectItem(sheet.Control(kLoginTypeList), kNtNoLogon);
    EXPECT_EQ(DisabledControls(sheet), (std::set<int>{1010, 1023, 1024}));
}

TEST(ConnectionPage, LoginTypeSelectedByItsPriority) {
    PrivateCurrentUser user("cp-login-priority");
    {
        ConnectionSheet sheet("cp-login-r", "-h h -L -N -R", 689);
        ASSERT_TRUE(sheet.Ready());
        EXPECT_EQ(SelectedItem(sheet.Control(kLoginTypeList)), kCachePassword);
    }
    {
        ConnectionSheet sheet("cp-login-n", "-h h -L -N", 689);
        ASSERT_TRUE(sheet.Ready());
        EXPECT_EQ(SelectedItem(sheet.Control(kLoginTypeList)), kNtDomain);
    }
    {
        // -N with -M reads as domain credentials, which a client before 690 does not list.
        ConnectionSheet sheet("cp-login-nm", "-h h -N -M -L", 689);
        ASSERT_TRUE(sheet.Ready());
        EXPECT_EQ(ListSelection(sheet.Control(kLoginTypeList)), CB_ERR);
    }
}

// ---- Service port --------------------------------------------------------------------

// ---- Check boxes -----------------------------------------------------------------------

TEST(ConnectionPage, TogglingLegacyProtocolEnablesApplyButLeavesModified) {
    PrivateCurrentUser user("cp-legacy");
    ConnectionSheet sheet("cp-legacy", "-h h -v svc", 665);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(Shown(sheet.Control(kLegacyProtocolCheck)));
    ASSERT_EQ(sheet.Record()->noOptionM, 1);
    ASSERT_FALSE(ApplyEnabled(sheet.Sheet()));
    Click(sheet.Control(kLegacyProtocolCheck));
    EXPECT_EQ(sheet.Record()->noOptionM, 0);
    EXPECT_EQ(sheet.Record()->modified, 0);
    EXPECT_TRUE(ApplyEnabled(sheet.Sheet()));
    EXPECT_EQ(sheet.Applied(), "-h h -M -v svc ");
    Click(sheet.Control(kLegacyProtocolCheck));
    EXPECT_EQ(sheet.Record()->noOptionM, 1);
    EXPECT_EQ(sheet.Record()->modified, 0);
    EXPECT_EQ(sheet.Applied(), "-h h -v svc ");
}

TEST(ConnectionPage, LegacyProtocolClickLeavesASetModifiedSet) {
    PrivateCurrentUser user("cp-legacy-set");
    ConnectionSheet sheet("cp-legacy-set", "-h h -v svc", 665);
    ASSERT_TRUE(sheet.Ready());
    sheet.Record()->modified = 1;
    Click(sheet.Control(kLegacyProtocolCheck));
    EXPECT_EQ(sheet.Record()->modified, 1);
}

TEST(ConnectionPage, EncryptionClickSetsEncryptAndModified) {
    PrivateCurrentUser user("cp-encrypt");
    ConnectionSheet sheet("cp-encrypt", "-h h");
    ASSERT_TRUE(sheet.Ready());
    Click(sheet.Control(kEncryptionCheck));
    EXPECT_EQ(sheet.Record()->encrypt, 1);
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_TRUE(ApplyEnabled(sheet.Sheet()));
    EXPECT_EQ(sheet.Applied(), "-h h -l ");
    Click(sheet.Control(kEncryptionCheck));
    EXPECT_EQ(sheet.Record()->encrypt, 0);
    EXPECT_EQ(sheet.Applied(), "-h h ");
}

// ---- Texts -----------------------------------------------------------------------------

TEST(ConnectionPage, RemoteLoginEditStoresTheTrimmedLogin) {
    PrivateCurrentUser user("cp-login");
    ConnectionSheet sheet("cp-login", "-h h -u tester");
    ASSERT_TRUE(sheet.Ready());
    TypeText(sheet.Control(kLoginEdit), "  new user \t");
    EXPECT_EQ(sheet.Record()->login, "new user");
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_TRUE(ApplyEnabled(sheet.Sheet()));
    EXPECT_EQ(WindowText(sheet.Control(kDiscoveryLoginEdit)), "tester") << "the other edit follows later";
    EXPECT_EQ(sheet.Applied(), "-h h -u \"new user\" ");
}

TEST(ConnectionPage, DiscoveryLoginEditStoresTheTrimmedLogin) {
    PrivateCurrentUser user("cp-login-k");
    ConnectionSheet sheet("cp-login-k", "-K -u finder", 665);
    ASSERT_TRUE(sheet.Ready());
    TypeText(sheet.Control(kDiscoveryLoginEdit), " seeker ");
    EXPECT_EQ(sheet.Record()->login, "seeker");
    EXPECT_EQ(sheet.Applied(), "-K -u seeker ");
}

TEST(ConnectionPage, ServiceNameBookmarkAndAnswerBackAreTrimmedIntoTheRecord) {
    PrivateCurrentUser user("cp-texts");
    ConnectionSheet sheet("cp-texts", "-h h");
    ASSERT_TRUE(sheet.Ready());
    TypeText(sheet.Control(kServiceNameEdit), " svc ");
    TypeText(sheet.Control(kBookmarkEdit), "  run  this  ");
    ReplaceText(sheet.Control(kAnswerBackEdit), "\r\nback\r\n");
    EXPECT_EQ(sheet.Record()->serviceName, "svc");
    EXPECT_EQ(sheet.Record()->commandLine, "run  this");
    EXPECT_EQ(sheet.Record()->answerBack, "back");
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_EQ(sheet.Applied(), "-h h -v svc -a back -C run  this");
}

TEST(ConnectionPage, LocalCommandLineAndStartDirectoryAreTrimmedIntoTheRecord) {
    PrivateCurrentUser user("cp-local-texts");
    ModuleStandIn module("cp-local-texts-module", true);
    ASSERT_TRUE(module.Ready());
    ConnectionSheet sheet("cp-local-texts", "-d old");
    ASSERT_TRUE(sheet.Ready());
    TypeText(sheet.Control(kCommandLineEdit), " app.exe ");
    TypeText(sheet.Control(kStartDirectoryEdit), "  C:\\work dir ");
    EXPECT_EQ(sheet.Record()->localTarget, "app.exe");
    EXPECT_EQ(sheet.Record()->startDirectory, "C:\\work dir");
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_EQ(sheet.Applied(), "-d app.exe -S \"C:\\work dir\" ");
}

TEST(ConnectionPage, EmptiedTextsAreStoredEmpty) {
    PrivateCurrentUser user("cp-empty-texts");
    ConnectionSheet sheet("cp-empty-texts", "-h h -u tester -v svc -a back -C mark");
    ASSERT_TRUE(sheet.Ready());
    for (int id : {kLoginEdit, kServiceNameEdit, kBookmarkEdit}) TypeText(sheet.Control(id), "");
    ReplaceText(sheet.Control(kAnswerBackEdit), "");
    EXPECT_EQ(sheet.Applied(), "-h h ");
}

// ---- Server --------------------------------------------------------------------------

TEST(ConnectionPage, TypingAServerStoresTheTrimmedHost) {
    PrivateCurrentUser user("cp-server-type");
    ConnectionSheet sheet("cp-server-type", "-h old.example");
    ASSERT_TRUE(sheet.Ready());
    TypeIntoCombo(sheet.Control(kServerBox), "  typed.example ");
    EXPECT_EQ(sheet.Record()->host, "typed.example");
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_TRUE(ApplyEnabled(sheet.Sheet()));
    EXPECT_EQ(sheet.Applied(), "-h typed.example ");
}

TEST(ConnectionPage, PickingARecentServerStoresItsName) {
    PrivateCurrentUser user("cp-server-pick");
    AddRecentHost("alpha.example");
    AddRecentHost("beta.example");
    ConnectionSheet sheet("cp-server-pick", "-h old.example");
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(SelectItem(sheet.Control(kServerBox), "beta.example"));
    EXPECT_EQ(sheet.Record()->host, "beta.example");
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_EQ(sheet.Applied(), "-h beta.example ");
}

TEST(ConnectionPage, RecentServerNamesAreTrimmedWhenPicked) {
    PrivateCurrentUser user("cp-server-pick-trim");
    AddRecentHost(" spaced.example ");
    ConnectionSheet sheet("cp-server-pick-trim", "-h old.example");
    ASSERT_TRUE(sheet.Ready());
    SelectItem(sheet.Control(kServerBox), 0);
    EXPECT_EQ(sheet.Record()->host, "spaced.example");
}

TEST(ConnectionPage, HostTypedByHandIsListedLastWhenThePageOpensAgain) {
    PrivateCurrentUser user("cp-recent-again");
    AddRecentHost("beta.example");
    AddRecentHost("alpha.example");
    std::string file;
    {
        ConnectionSheet sheet("cp-recent-again", "-h alpha.example -u tester");
        ASSERT_TRUE(sheet.Ready());
        TypeIntoCombo(sheet.Control(kServerBox), "typed.example");
        EXPECT_EQ(sheet.Applied(), "-h typed.example -u tester ");
        file = ReadFileBytes(sheet.File());
    }
    ConnectionSheet again("cp-recent-again-2", file);
    ASSERT_TRUE(again.Ready());
    EXPECT_EQ(ListItems(again.Control(kServerBox)),
              (std::vector<std::string>{"alpha.example", "beta.example", "typed.example"}));
    EXPECT_EQ(WindowText(again.Control(kServerBox)), "typed.example");
}

// ---- Connection type -----------------------------------------------------------------

TEST(ConnectionPage, ChangingTheConnectionTypeStoresItAndCopiesTheLoginIntoBothEdits) {
    PrivateCurrentUser user("cp-type-change");
    ConnectionSheet sheet("cp-type-change", "-h h -u tester");
    ASSERT_TRUE(sheet.Ready());
    TypeText(sheet.Control(kLoginEdit), "changed");
    sheet.Record()->modified = 0;
    ASSERT_EQ(WindowText(sheet.Control(kDiscoveryLoginEdit)), "tester");
    ASSERT_TRUE(SelectItem(sheet.Control(kConnectionTypeList), kDiscovery));
    EXPECT_EQ(sheet.Record()->optionK, 1);
    EXPECT_EQ(sheet.Record()->localConnect, 0);
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_EQ(WindowText(sheet.Control(kDiscoveryLoginEdit)), "changed");
    EXPECT_EQ(WindowText(sheet.Control(kLoginEdit)), "changed");
    EXPECT_EQ(sheet.Record()->login, "changed");
    EXPECT_EQ(ShownControls(sheet), kDiscoveryLayout);
    EXPECT_EQ(sheet.Applied(), "-K -u changed ");
}

TEST(ConnectionPage, ChangingToLocalAndBackSetsBothFlags) {
    PrivateCurrentUser user("cp-type-local");
    ModuleStandIn module("cp-type-local-module", true);
    ASSERT_TRUE(module.Ready());
    ConnectionSheet sheet("cp-type-local", "-K -u tester", 690);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(SelectItem(sheet.Control(kConnectionTypeList), kLocal));
    EXPECT_EQ(sheet.Record()->localConnect, 1);
    EXPECT_EQ(sheet.Record()->optionK, 0);
    EXPECT_EQ(ShownControls(sheet), kLocalLayout);
    EXPECT_EQ(sheet.Applied(), "-d  -u tester ");
    ASSERT_TRUE(SelectItem(sheet.Control(kConnectionTypeList), kRemote));
    EXPECT_EQ(sheet.Record()->localConnect, 0);
    EXPECT_EQ(sheet.Record()->optionK, 0);
    EXPECT_EQ(ShownControls(sheet), Without(kRemoteLayout, {1024}));
    EXPECT_EQ(sheet.Applied(), "-u tester ");
}

TEST(ConnectionPage, ConnectionTypeChangeAppliesTheLoginTypeRuleFirst) {
    PrivateCurrentUser user("cp-type-rule");
    ConnectionSheet sheet("cp-type-rule", "-h h -L", 689);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_EQ(DisabledControls(sheet), std::set<int>{});
    ASSERT_TRUE(SelectItem(sheet.Control(kConnectionTypeList), kDiscovery));
    // NT no logon disables 1010, 1023 and 1024; the discovery layout enables 1010 again.
    EXPECT_EQ(DisabledControls(sheet), (std::set<int>{1023, 1024}));
    ASSERT_TRUE(SelectItem(sheet.Control(kConnectionTypeList), kRemote));
    EXPECT_EQ(DisabledControls(sheet), (std::set<int>{1010, 1023, 1024}));
}

TEST(ConnectionPage, ConnectionTypeChangeToNoSelectionStoresDiscovery) {
    PrivateCurrentUser user("cp-type-none");
    ConnectionSheet sheet("cp-type-none", "-h h -u tester", 640);
    ASSERT_TRUE(sheet.Ready());
    SelectItem(sheet.Control(kConnectionTypeList), -1);
    EXPECT_EQ(sheet.Record()->optionK, 1);
    EXPECT_EQ(sheet.Record()->localConnect, 0);
    EXPECT_EQ(ShownControls(sheet), kDiscoveryLayout);
}

// ---- Login type ------------------------------------------------------------------------

struct LoginCase {
    const char* text;
    std::int32_t version;
    const char* bytes;
};

TEST(ConnectionPage, EachLoginTypeSetsItsOwnFlagOnly) {
    // clang-format off
    const LoginCase cases[] = {
        {kCachePassword, 689, "-h h -R "},  {kTextWindow, 689, "-h h -T "}, {kNtDomain, 689, "-h h -N "},
        {kNtNoLogon, 689, "-h h -L "},      {kWindowsDomain, 690, "-h h -N -M "},
        {kAlwaysRequirePassword, 690, "-h h "},
    };
    // clang-format on
    PrivateCurrentUser user("cp-login-types");
    DomainAnswer domain(InDomain);
    for (const LoginCase& c : cases) {
        // Every other flag set first: the pick clears them.
        ConnectionSheet sheet(std::string("cp-login-type-") + std::to_string(c.version), "-h h -R", c.version);
        ASSERT_TRUE(sheet.Ready());
        sheet.Record()->optionT = sheet.Record()->optionN = sheet.Record()->optionL = sheet.Record()->optionNM = 1;
        ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), c.text)) << c.text;
        EXPECT_EQ(sheet.Record()->modified, 1) << c.text;
        EXPECT_TRUE(ApplyEnabled(sheet.Sheet())) << c.text;
        EXPECT_EQ(sheet.Applied(), c.bytes) << c.text;
    }
}

TEST(ConnectionPage, NtDomainChecksLegacyProtocolWithoutTouchingTheRecord) {
    PrivateCurrentUser user("cp-login-check");
    ConnectionSheet sheet("cp-login-check", "-h h -M", 689);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_FALSE(Checked(sheet.Control(kLegacyProtocolCheck)));
    ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), kNtDomain));
    EXPECT_TRUE(Checked(sheet.Control(kLegacyProtocolCheck)));
    EXPECT_EQ(sheet.Record()->noOptionM, 0);
    EXPECT_EQ(DisabledControls(sheet), (std::set<int>{1010, 1016, 1024}));
}

TEST(ConnectionPage, WindowsDomainCredentialsUnchecksLegacyProtocolWithoutTouchingTheRecord) {
    PrivateCurrentUser user("cp-login-uncheck");
    DomainAnswer domain(InDomain);
    ConnectionSheet sheet("cp-login-uncheck", "-h h", 690);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(Checked(sheet.Control(kLegacyProtocolCheck)));
    ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), kWindowsDomain));
    EXPECT_FALSE(Checked(sheet.Control(kLegacyProtocolCheck)));
    EXPECT_EQ(sheet.Record()->noOptionM, 1);
    EXPECT_EQ(DisabledControls(sheet), (std::set<int>{1010, 1024}));
}

TEST(ConnectionPage, OtherLoginTypesLeaveTheLegacyCheckAlone) {
    PrivateCurrentUser user("cp-login-leave");
    ConnectionSheet sheet("cp-login-leave", "-h h -M", 689);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), kNtDomain));
    ASSERT_TRUE(Checked(sheet.Control(kLegacyProtocolCheck)));
    for (const char* text : {kAlwaysRequirePassword, kCachePassword, kTextWindow, kNtNoLogon}) {
        ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), text));
        EXPECT_TRUE(Checked(sheet.Control(kLegacyProtocolCheck))) << text;
    }
}

TEST(ConnectionPage, LoginTypeListWithNoSelectionChangesNoFlag) {
    PrivateCurrentUser user("cp-login-none");
    ConnectionSheet sheet("cp-login-none", "-h h -R", 689);
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), kTextWindow));
    sheet.Record()->modified = 0;
    Apply(sheet.Sheet());
    ASSERT_FALSE(ApplyEnabled(sheet.Sheet()));
    SelectItem(sheet.Control(kLoginTypeList), -1);
    EXPECT_EQ(sheet.Record()->optionT, 1);
    EXPECT_EQ(sheet.Record()->modified, 0);
    EXPECT_FALSE(ApplyEnabled(sheet.Sheet()));
    // The rule still runs, as for "Always require password".
    EXPECT_EQ(DisabledControls(sheet), std::set<int>{});
}

TEST(ConnectionPage, DomainIsNotAskedBelow690) {
    PrivateCurrentUser user("cp-domain-689");
    DomainAnswer domain(InDomain);
    ConnectionSheet sheet("cp-domain-689", "-h h", 689);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(g_domainQuestions, 0);
    EXPECT_EQ(sheet.Record()->inDomainKnown, 0);
}

TEST(ConnectionPage, WindowsDomainCredentialsFileSelectsItsEntryIn690) {
    PrivateCurrentUser user("cp-domain-nm");
    DomainAnswer domain(InDomain);
    ConnectionSheet sheet("cp-domain-nm", "-h h -N -M", 690);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(SelectedItem(sheet.Control(kLoginTypeList)), kWindowsDomain);
}

// ---- Without a record ----------------------------------------------------------------

TEST(ConnectionPageWithoutRecord, ListsOnlyWhatNeedsNoRecord) {
    PrivateCurrentUser user("cp-null-lists");
    DomainAnswer domain(InDomain);
    ConnectionSheet sheet("cp-null-lists");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(ListItems(sheet.Control(kConnectionTypeList)), (std::vector<std::string>{kRemote}));
    EXPECT_EQ(ListItems(sheet.Control(kLoginTypeList)),
              (std::vector<std::string>{kAlwaysRequirePassword, kCachePassword, kTextWindow}));
    EXPECT_EQ(g_domainQuestions, 0);
    EXPECT_EQ(ListSelection(sheet.Control(kConnectionTypeList)), CB_ERR);
    EXPECT_EQ(ListSelection(sheet.Control(kLoginTypeList)), CB_ERR);
    EXPECT_EQ(ListItems(sheet.Control(kServerBox)), (std::vector<std::string>{}));
}

TEST(ConnectionPageWithoutRecord, ConnectLocallyStillNeedsOnlyVServer) {
    PrivateCurrentUser user("cp-null-local");
    ModuleStandIn module("cp-null-local-module", true);
    ASSERT_TRUE(module.Ready());
    ConnectionSheet sheet("cp-null-local");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(ListItems(sheet.Control(kConnectionTypeList)), (std::vector<std::string>{kLocal, kRemote}));
}

TEST(ConnectionPageWithoutRecord, OpensWithEveryControlShownEnabledAndEmpty) {
    PrivateCurrentUser user("cp-null-open");
    AddRecentHost("recent.example");
    ConnectionSheet sheet("cp-null-open");
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(ShownControls(sheet), kEveryControl);
    EXPECT_EQ(DisabledControls(sheet), std::set<int>{});
    for (int id : {kLoginEdit, kDiscoveryLoginEdit, kServiceNameEdit, kServicePortEdit, kBookmarkEdit})
        EXPECT_EQ(WindowText(sheet.Control(id)), "") << id;
    EXPECT_FALSE(Checked(sheet.Control(kEncryptionCheck)));
    EXPECT_FALSE(Checked(sheet.Control(kLegacyProtocolCheck)));
    EXPECT_FALSE(ApplyEnabled(sheet.Sheet()));
    EXPECT_EQ(ListItems(sheet.Control(kServerBox)), (std::vector<std::string>{})) << "no recent hosts either";
}

TEST(ConnectionPageWithoutRecord, ConnectionTypeChangeStillShowsAndHides) {
    PrivateCurrentUser user("cp-null-type");
    ConnectionSheet sheet("cp-null-type");
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(SelectItem(sheet.Control(kConnectionTypeList), kRemote));
    // No record, no client version: neither check box is hidden for a version.
    EXPECT_EQ(ShownControls(sheet), kRemoteLayout);
    SelectItem(sheet.Control(kConnectionTypeList), -1);
    EXPECT_EQ(ShownControls(sheet), kDiscoveryLayout);
    EXPECT_FALSE(ApplyEnabled(sheet.Sheet()));
}

TEST(ConnectionPageWithoutRecord, ConnectionTypeChangeStillAppliesTheLoginTypeRule) {
    PrivateCurrentUser user("cp-null-type-rule");
    ConnectionSheet sheet("cp-null-type-rule");
    ASSERT_TRUE(sheet.Ready());
    SendMessageA(sheet.Control(kLoginTypeList), CB_SETCURSEL, 2, 0);  // text window, unannounced
    ASSERT_TRUE(SelectItem(sheet.Control(kConnectionTypeList), kRemote));
    EXPECT_EQ(DisabledControls(sheet), (std::set<int>{1010, 1016, 1020, 1023, 1024}));
}

TEST(ConnectionPageWithoutRecord, DiscoveryMaskStillEnablesTheRemoteLoginEdit) {
    PrivateCurrentUser user("cp-null-enable");
    ConnectionSheet sheet("cp-null-enable");
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), kTextWindow));
    ASSERT_FALSE(Enabled(sheet.Control(kLoginEdit)));
    // The login-type rule disables the edit again, then the discovery mask enables it.
    SelectItem(sheet.Control(kConnectionTypeList), -1);
    EXPECT_TRUE(Enabled(sheet.Control(kLoginEdit)));
    EXPECT_FALSE(Enabled(sheet.Control(kServiceNameEdit)));
}

TEST(ConnectionPageWithoutRecord, LoginTypeChangeStillEnablesAndDisables) {
    PrivateCurrentUser user("cp-null-login");
    ConnectionSheet sheet("cp-null-login");
    ASSERT_TRUE(sheet.Ready());
    ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), kTextWindow));
    EXPECT_EQ(DisabledControls(sheet), (std::set<int>{1010, 1016, 1020, 1023, 1024}));
    ASSERT_TRUE(SelectItem(sheet.Control(kLoginTypeList), kCachePassword));
    EXPECT_EQ(DisabledControls(sheet), std::set<int>{});
    EXPECT_FALSE(ApplyEnabled(sheet.Sheet()));
}

TEST(ConnectionPageWithoutRecord, EditsAndClicksChangeNothingAndApplyWritesNothing) {
    PrivateCurrentUser user("cp-null-edits");
    AddRecentHost("recent.example");
    ConnectionSheet sheet("cp-null-edits");
    ASSERT_TRUE(sheet.Ready());
    for (int id : {kLoginEdit, kDiscoveryLoginEdit, kCommandLineEdit, kStartDirectoryEdit, kServiceNameEdit,
                   kBookmarkEdit, kServicePortEdit})
        TypeText(sheet.Control(id), "123");
    ReplaceText(sheet.Control(kAnswerBackEdit), "123");
    TypeIntoCombo(sheet.Control(kServerBox), "typed.example");
    SelectItem(sheet.Control(kServerBox), 0);
    Click(sheet.Control(kEncryptionCheck));
    Click(sheet.Control(kLegacyProtocolCheck));
    EXPECT_TRUE(Checked(sheet.Control(kEncryptionCheck)));
    EXPECT_EQ(sheet.Object()->Record(), nullptr);
    EXPECT_FALSE(ApplyEnabled(sheet.Sheet()));
    EXPECT_FALSE(Apply(sheet.Sheet()));
    EXPECT_EQ(GetFileAttributesA(sheet.File().c_str()), INVALID_FILE_ATTRIBUTES);
}

TEST(ConnectionPageWithoutRecord, EveryCommandOfTheMapIsAnsweredAsHandled) {
    PrivateCurrentUser user("cp-null-handled");
    ConnectionSheet sheet("cp-null-handled");
    ASSERT_TRUE(sheet.Ready());
    // clang-format off
    const std::pair<int, int> commands[] = {
        {kConnectionTypeList, CBN_SELCHANGE}, {kServerBox, CBN_SELCHANGE}, {kServerBox, CBN_EDITCHANGE},
        {kLoginEdit, EN_CHANGE},        {kDiscoveryLoginEdit, EN_CHANGE}, {kLoginTypeList, CBN_SELCHANGE},
        {kCommandLineEdit, EN_CHANGE},  {kStartDirectoryEdit, EN_CHANGE}, {kServiceNameEdit, EN_CHANGE},
        {kBookmarkEdit, EN_CHANGE},     {kAnswerBackEdit, EN_CHANGE},     {kServicePortEdit, EN_CHANGE},
        {kEncryptionCheck, BN_CLICKED}, {kLegacyProtocolCheck, BN_CLICKED},
    };
    // clang-format on
    auto* dialogProc = reinterpret_cast<DLGPROC>(GetWindowLongPtrA(sheet.Page(), DWLP_DLGPROC));
    ASSERT_NE(dialogProc, nullptr);
    for (const auto& [id, code] : commands) {
        const WPARAM wParam = MAKEWPARAM(id, code);
        EXPECT_EQ(dialogProc(sheet.Page(), WM_COMMAND, wParam, reinterpret_cast<LPARAM>(sheet.Control(id))), TRUE)
            << id << " " << code;
    }
    // Commands outside the map are passed on.
    EXPECT_EQ(dialogProc(sheet.Page(), WM_COMMAND, MAKEWPARAM(kServicePortEdit, EN_UPDATE),
                         reinterpret_cast<LPARAM>(sheet.Control(kServicePortEdit))),
              FALSE);
    EXPECT_EQ(dialogProc(sheet.Page(), WM_COMMAND, MAKEWPARAM(kEncryptionCheck, BN_SETFOCUS),
                         reinterpret_cast<LPARAM>(sheet.Control(kEncryptionCheck))),
              FALSE);
}

// ---- Tables: one row per behaviour ----------------------------------------------------

namespace {

// The service port edit as the page opens on a file (client 7.26).
struct PortOpenedCase {
    const char* name;
    const char* tag;
    const char* file;
    std::int32_t servicePort;  // what the record read
    const char* edit;          // what the edit shows
};
// Each row shows in ctest's list as its name ("# GetParam() = <name>"), not as its bytes.
void PrintTo(const PortOpenedCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const PortOpenedCase kPortOpenedCases[] = {
    {"Port790WithoutEncryptionShowsEmpty", "cp-port-790",        "-h h -V 790",     790,  ""},
    {"Port4790WithEncryptionShowsEmpty",   "cp-port-4790",       "-h h -l -V 4790", 4790, ""},
    {"Port790WithEncryptionIsShown",       "cp-port-790-l",      "-h h -l -V 790",  790,  "790"},
    {"Port4790WithoutEncryptionIsShown",   "cp-port-4790-plain", "-h h -V 4790",    4790, "4790"},
};
// clang-format on

class PortOnOpening : public ::testing::TestWithParam<PortOpenedCase> {};

TEST_P(PortOnOpening, ShowsTheRowsText) {
    const PortOpenedCase& c = GetParam();
    PrivateCurrentUser user(c.tag);
    ConnectionSheet sheet(c.tag, c.file);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(sheet.Record()->servicePort, c.servicePort);
    EXPECT_EQ(WindowText(sheet.Control(kServicePortEdit)), c.edit);
}

INSTANTIATE_TEST_SUITE_P(ConnectionPage, PortOnOpening, ::testing::ValuesIn(kPortOpenedCases), RowName());

// A text set into the service port edit: what the record stores, and what Apply writes.
// The edit admits digits only from the keyboard; text set otherwise still arrives.
struct PortTypedCase {
    const char* name;
    const char* tag;
    const char* file;
    const char* typed;
    std::int32_t servicePort;
    const char* applied;
};
void PrintTo(const PortTypedCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const PortTypedCase kPortTypedCases[] = {
    {"ClearingThePortEditStoresNotGiven",    "cp-port-clear", "-h h -v svc -V 8000", "",     -1,   "-h h -v svc "},
    {"PortEditIsReadAsDecimal",              "cp-port-type",  "-h h -v svc",         "4321", 4321, "-h h -V 4321 -v svc "},
    {"PortEditTakesLeadingDigitsAsAtoiDoes", "cp-port-atoi",  "-h h -v svc",         "81x9", 81,   "-h h -V 81 -v svc "},
};
// clang-format on

class PortTyped : public ::testing::TestWithParam<PortTypedCase> {};

TEST_P(PortTyped, StoresAndWritesTheRowsPort) {
    const PortTypedCase& c = GetParam();
    PrivateCurrentUser user(c.tag);
    ConnectionSheet sheet(c.tag, c.file);
    ASSERT_TRUE(sheet.Ready());
    TypeText(sheet.Control(kServicePortEdit), c.typed);
    EXPECT_EQ(sheet.Record()->servicePort, c.servicePort);
    EXPECT_EQ(sheet.Record()->modified, 1);
    EXPECT_TRUE(ApplyEnabled(sheet.Sheet()));
    EXPECT_EQ(sheet.Applied(), c.applied);
}

INSTANTIATE_TEST_SUITE_P(ConnectionPage, PortTyped, ::testing::ValuesIn(kPortTypedCases), RowName());

// The server list as the page opens: the recent hosts under the user's key (none: no key at
// all), then the file's host; the box shows the file's host.
struct ServersOpenedCase {
    const char* name;
    const char* tag;
    std::vector<std::string> recentHosts;  // created in this order
    const char* file;
    std::vector<std::string> listed;
    const char* shown;
};
void PrintTo(const ServersOpenedCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const ServersOpenedCase kServersOpenedCases[] = {
    {"ServerListHoldsRecentHostsInEnumerationOrderThenTheFilesHost", "cp-recent-order",   {"zeta.example", "alpha.example"}, "-h file.example",
     {"alpha.example", "zeta.example", "file.example"}, "file.example"},
    {"FilesHostAlreadyRecentIsListedOnce",                            "cp-recent-once",    {"zeta.example", "alpha.example"}, "-h zeta.example",
     {"alpha.example", "zeta.example"},                 "zeta.example"},
    {"MissingRecentHostsKeyListsOnlyTheFilesHost",                    "cp-recent-missing", {},                                "-h only.example",
     {"only.example"},                                  "only.example"},
    {"NoHostAndNoRecentHostsLeaveTheServerListEmpty",                 "cp-recent-none",    {},                                "-u tester",
     {},                                                ""},
};
// clang-format on

class ServersOnOpening : public ::testing::TestWithParam<ServersOpenedCase> {};

TEST_P(ServersOnOpening, ListTheRowsServers) {
    const ServersOpenedCase& c = GetParam();
    PrivateCurrentUser user(c.tag);
    for (const std::string& host : c.recentHosts) AddRecentHost(host);
    ConnectionSheet sheet(c.tag, c.file);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(ListItems(sheet.Control(kServerBox)), c.listed);
    EXPECT_EQ(WindowText(sheet.Control(kServerBox)), c.shown);
}

INSTANTIATE_TEST_SUITE_P(ConnectionPage, ServersOnOpening, ::testing::ValuesIn(kServersOpenedCases), RowName());

// Client 6.90's login types, with the domain check answering as the row says (asked once).
struct DomainLoginCase {
    const char* name;
    const char* tag;
    DomainNameQuery domain;
    std::vector<std::string> listed;
};
void PrintTo(const DomainLoginCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const DomainLoginCase kDomainLoginCases[] = {
    {"Client690InADomainListsWindowsDomainCredentialsLast", "cp-domain-yes", InDomain,
     {kAlwaysRequirePassword, kCachePassword, kTextWindow, kWindowsDomain}},
    {"Client690OutsideADomainListsExactlyThreeLoginTypes",  "cp-domain-no",  NotInDomain,
     {kAlwaysRequirePassword, kCachePassword, kTextWindow}},
};
// clang-format on

class LoginTypesInDomain : public ::testing::TestWithParam<DomainLoginCase> {};

TEST_P(LoginTypesInDomain, ListTheRowsEntries) {
    const DomainLoginCase& c = GetParam();
    PrivateCurrentUser user(c.tag);
    DomainAnswer domain(c.domain);
    ConnectionSheet sheet(c.tag, "-h h", 690);
    ASSERT_TRUE(sheet.Ready());
    EXPECT_EQ(ListItems(sheet.Control(kLoginTypeList)), c.listed);
    EXPECT_EQ(g_domainQuestions, 1);
}

INSTANTIATE_TEST_SUITE_P(ConnectionPage, LoginTypesInDomain, ::testing::ValuesIn(kDomainLoginCases), RowName());

}  // namespace
