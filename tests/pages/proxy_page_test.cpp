// The Proxy page on real sheets under Wine: a connection file read into a record as the
// shell extension reads it, the page made around that record in a modeless sheet, driven
// by the messages a user's clicks and keystrokes send, then Apply and the file's bytes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "connection/vqc_file_info.h"
#include "pages/proxy_page.h"
#include "tests/pages/page_test_support.h"
#include "tests/pages/user_actions.h"

using namespace page_test;

namespace {

constexpr char kDirect[] = "Connect directly";
constexpr char kViaProxy[] = "Connect via a proxy server";
constexpr char kViaBroker[] = "Connect via a connection broker";

const std::vector<int> kGroupControls = {1025, 1026, 1027, 1028, 1029, 1030, 1031, 1032, 1033, 1034, 1035};
const std::vector<int> kProxyGroup = {1025, 1026, 1027, 1028, 1029, 1030};
const std::vector<int> kBrokerGroup = {1031, 1032, 1033, 1034, 1035};

// A connection file holding `line`, read for a client of `clientVersion` (the version is
// known before the file is read, as in the shell extension), and the Proxy page made
// around that record, shown in a modeless sheet of its own.
class ProxyPageOnFile {
public:
    ProxyPageOnFile(const std::string& tag, const std::string& line, std::int32_t clientVersion)
        : folder_(tag), file_(folder_.File("connection.vqc")) {
        WriteFileBytes(file_, line);
        record_ = ComPtr<VQCFileInfo>(new VQCFileInfo(file_.c_str()));
        record_->clientVersion = clientVersion;
        readResult_ = record_->Read(file_.c_str());
        page_ = sheet_.Add<CVQCProxyPage>(record_.Get(), "Proxy");
        if (page_ && sheet_.Show()) window_ = PageWindow(sheet_.Sheet(), 0);
    }
    ~ProxyPageOnFile() { sheet_.Destroy(); }
    ProxyPageOnFile(const ProxyPageOnFile&) = delete;
    ProxyPageOnFile& operator=(const ProxyPageOnFile&) = delete;

    bool Ready() const { return readResult_ == 0 && window_ != nullptr; }
    HWND Window() const { return window_; }
    HWND Sheet() const { return sheet_.Sheet(); }
    VQCFileInfo& Record() const { return *record_.Get(); }
    CVQCProxyPage* Page() const { return page_; }

    // Apply as the sheet's Apply button does; the file's bytes afterwards.
    std::string ApplyAndRead() {
        WriteFileBytes(file_, "<not written>");
        EXPECT_TRUE(Apply(sheet_.Sheet()));
        return ReadFileBytes(file_);
    }

private:
    TempFolder folder_;
    std::string file_;
    ComPtr<VQCFileInfo> record_;
    std::int32_t readResult_ = -1;
    DirectSheet sheet_;
    CVQCProxyPage* page_ = nullptr;
    HWND window_ = nullptr;
};

// The Proxy page made without a record, alone in a modeless sheet.
class ProxyPageWithoutRecord {
public:
    ProxyPageWithoutRecord() {
        page_ = sheet_.Add<CVQCProxyPage>(nullptr, "Proxy");
        if (page_ && sheet_.Show()) window_ = PageWindow(sheet_.Sheet(), 0);
    }
    ~ProxyPageWithoutRecord() { sheet_.Destroy(); }
    ProxyPageWithoutRecord(const ProxyPageWithoutRecord&) = delete;
    ProxyPageWithoutRecord& operator=(const ProxyPageWithoutRecord&) = delete;

    HWND Window() const { return window_; }
    HWND Sheet() const { return sheet_.Sheet(); }
    CVQCProxyPage* Page() const { return page_; }

    // Whether the page's message chain handles a control's notification; a handled one
    // answers 0.
    bool Handles(int controlId, int code) {
        LRESULT result = 0x0BADF00D;
        const bool handled =
            page_->ProcessWindowMessage(window_, WM_COMMAND, MAKEWPARAM(controlId, code),
                                        reinterpret_cast<LPARAM>(GetDlgItem(window_, controlId)), result);
        if (handled) {
            EXPECT_EQ(result, 0) << controlId;
        }
        return handled;
    }

private:
    DirectSheet sheet_;
    CVQCProxyPage* page_ = nullptr;
    HWND window_ = nullptr;
};

std::vector<std::string> Entries(std::initializer_list<const char*> texts) {
    return std::vector<std::string>(texts.begin(), texts.end());
}

}  // namespace

// --- The route list by client version ---------------------------------------------------

TEST(ProxyPageRouteList, Client620OffersTheBroker) {
    ProxyPageOnFile open("routes-620", "-h server", 620);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Window(), 1002), Entries({kDirect, kViaProxy, kViaBroker}));
}

TEST(ProxyPageRouteList, Client664OffersTheBroker) {
    ProxyPageOnFile open("routes-664", "-h server", 664);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Window(), 1002), Entries({kDirect, kViaProxy, kViaBroker}));
}

TEST(ProxyPageRouteList, Client665OffersTheBroker) {
    ProxyPageOnFile open("routes-665", "-h server", 665);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Window(), 1002), Entries({kDirect, kViaProxy, kViaBroker}));
}

TEST(ProxyPageRouteList, Client689OffersTheBroker) {
    ProxyPageOnFile open("routes-689", "-h server", 689);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Window(), 1002), Entries({kDirect, kViaProxy, kViaBroker}));
}

TEST(ProxyPageRouteList, Client690HasNoBroker) {
    ProxyPageOnFile open("routes-690", "-h server", 690);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Window(), 1002), Entries({kDirect, kViaProxy}));
}

TEST(ProxyPageRouteList, Client619MadeDirectlyHasNoBroker) {
    // The sheet offers no Proxy page to this client; the page made directly still works.
    ProxyPageOnFile open("routes-619", "-h server", 619);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Window(), 1002), Entries({kDirect, kViaProxy}));
}

// --- What the page opens with ----------------------------------------------------------

TEST(ProxyPageOpening, NoRouteOpensDirectWithBothGroupsHidden) {
    ProxyPageOnFile open("open-direct", "-h server", 665);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListSelection(open.Window(), 1002), 0);
    EXPECT_TRUE(IsShown(open.Window(), 1002));
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), std::vector<int>{});
}

TEST(ProxyPageOpening, ProxyWithPortShowsHostPortAndUser) {
    ProxyPageOnFile open("open-proxy", "-c admin@proxy.example:3128", 665);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListSelection(open.Window(), 1002), 1);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), kProxyGroup);
    EXPECT_EQ(ControlTextOf(open.Window(), 1026), "proxy.example");
    EXPECT_EQ(ControlTextOf(open.Window(), 1028), "3128");
    EXPECT_EQ(ControlTextOf(open.Window(), 1030), "admin");
}

TEST(ProxyPageOpening, BrokerWithPortShowsHostPortAndBox) {
    ProxyPageOnFile open("open-broker", "-f xFoo:3000", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(open.Record().brokerUpperF, 1);
    EXPECT_EQ(ListSelection(open.Window(), 1002), 2);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), kBrokerGroup);
    EXPECT_EQ(ControlTextOf(open.Window(), 1032), "xFoo");
    EXPECT_EQ(ControlTextOf(open.Window(), 1034), "3000");
    EXPECT_TRUE(IsChecked(open.Window(), 1035));
}

TEST(ProxyPageOpening, BrokerWithPortAndClearFlagLeavesBoxUnchecked) {
    // -F itself does not set the flag: the reader looks at the address text.
    ProxyPageOnFile open("open-broker-F", "-F broker:3128", 665);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ControlTextOf(open.Window(), 1034), "3128");
    EXPECT_FALSE(IsChecked(open.Window(), 1035));
}

TEST(ProxyPageOpening, BothHostsSelectTheProxyEntry) {
    ProxyPageOnFile open("open-both", "-c proxy -f broker", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(open.Record().route, 2);  // the later option wins on reading
    EXPECT_EQ(ListSelection(open.Window(), 1002), 1);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), kProxyGroup);
    EXPECT_EQ(ControlTextOf(open.Window(), 1026), "proxy");
    EXPECT_EQ(ControlTextOf(open.Window(), 1032), "broker");
}

TEST(ProxyPageOpening, SelectionFollowsTheHostsNotTheRoute) {
    // -c with no argument sets the proxy route but names no host.
    ProxyPageOnFile open("open-route-only", "-h server -c", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(open.Record().route, 1);
    EXPECT_EQ(ListSelection(open.Window(), 1002), 0);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), std::vector<int>{});
}

TEST(ProxyPageOpening, BrokerAt690OpensWithNoSelectionAndTheBrokerControls) {
    ProxyPageOnFile open("open-broker-690", "-f broker", 690);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListSelection(open.Window(), 1002), CB_ERR);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), kBrokerGroup);
    EXPECT_EQ(ControlTextOf(open.Window(), 1032), "broker");
}

TEST(ProxyPageOpening, BrokerAt619OpensWithNoSelectionAndTheBrokerControls) {
    ProxyPageOnFile open("open-broker-619", "-f broker", 619);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListSelection(open.Window(), 1002), CB_ERR);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), kBrokerGroup);
}

TEST(ProxyPageOpening, OpeningChangesNothing) {
    // Filling the edits is not an edit: the record keeps the untrimmed host, modified
    // stays clear and Apply stays disabled.
    ProxyPageOnFile open("open-untouched", "-c \" proxy \":3128", 665);
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ControlTextOf(open.Window(), 1026), " proxy ");
    EXPECT_EQ(open.Record().proxyHost, " proxy ");
    EXPECT_EQ(open.Record().modified, 0);
    EXPECT_FALSE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.ApplyAndRead(), "-c \" proxy :3128\" ");
}

// --- The coupled fields ---------------------------------------------------------------

TEST(ProxyPageCoupling, DefaultProxyPortOpensWithPortAndUserEmpty) {
    ProxyPageOnFile open("couple-user", "-c admin@proxy", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(open.Record().proxyUser, "admin");
    EXPECT_EQ(ControlTextOf(open.Window(), 1026), "proxy");
    EXPECT_EQ(ControlTextOf(open.Window(), 1028), "");
    EXPECT_EQ(ControlTextOf(open.Window(), 1030), "");
}

TEST(ProxyPageCoupling, UserHiddenByDefaultPortIsStillWrittenAfterAnotherEdit) {
    ProxyPageOnFile open("couple-user-apply", "-h server -c admin@proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1026, "proxy2");
    EXPECT_EQ(open.Record().proxyUser, "admin");
    EXPECT_EQ(open.ApplyAndRead(), "-h server -c admin@proxy2 ");
}

TEST(ProxyPageCoupling, UserHiddenByDefaultPortSurvivesAnEditOfTheBroker) {
    ProxyPageOnFile open("couple-user-broker", "-c admin@proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1032, "broker");
    EXPECT_EQ(open.ApplyAndRead(), "-c admin@proxy ");
}

TEST(ProxyPageCoupling, TypingIntoTheEmptyUserEditReplacesTheUser) {
    ProxyPageOnFile open("couple-user-typed", "-c admin@proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1030, "bob");
    EXPECT_EQ(open.ApplyAndRead(), "-c bob@proxy ");
}

TEST(ProxyPageCoupling, DefaultBrokerPortOpensWithPortEmptyAndBoxUnchecked) {
    ProxyPageOnFile open("couple-box", "-f xFoo", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(open.Record().brokerUpperF, 1);
    EXPECT_EQ(ControlTextOf(open.Window(), 1032), "xFoo");
    EXPECT_EQ(ControlTextOf(open.Window(), 1034), "");
    EXPECT_FALSE(IsChecked(open.Window(), 1035));
}

TEST(ProxyPageCoupling, FlagHiddenByDefaultBrokerPortIsStillWrittenAfterAnotherEdit) {
    ProxyPageOnFile open("couple-box-apply", "-h server -f xFoo", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1026, "proxy");
    EXPECT_EQ(open.Record().brokerUpperF, 1);
    EXPECT_EQ(open.ApplyAndRead(), "-h server -F xFoo ");
}

TEST(ProxyPageCoupling, ClickingTheUncheckedBoxChecksItAndKeepsTheFlag) {
    ProxyPageOnFile open("couple-box-click", "-f xFoo", 665);
    ASSERT_TRUE(open.Ready());
    ClickControl(open.Window(), 1035);
    EXPECT_TRUE(IsChecked(open.Window(), 1035));
    EXPECT_EQ(open.Record().brokerUpperF, 1);
    EXPECT_EQ(open.ApplyAndRead(), "-F xFoo ");
}

// --- The route list -------------------------------------------------------------------

TEST(ProxyPageRoute, EachRouteShowsItsGroup) {
    ProxyPageOnFile open("route-groups", "-h server", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(ChooseListEntry(open.Window(), 1002, kViaProxy), 1);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), kProxyGroup);
    ASSERT_EQ(ChooseListEntry(open.Window(), 1002, kViaBroker), 2);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), kBrokerGroup);
    ASSERT_EQ(ChooseListEntry(open.Window(), 1002, kDirect), 0);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), std::vector<int>{});
    EXPECT_TRUE(IsShown(open.Window(), 1002));
}

TEST(ProxyPageRoute, ChangingOnlyTheRouteEnablesApplyAndLeavesModified) {
    ProxyPageOnFile open("route-modified", "-c proxy -f broker", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_FALSE(ApplyEnabled(open.Sheet()));
    ASSERT_EQ(open.Record().modified, 0);
    ChooseListEntry(open.Window(), 1002, kViaBroker);
    EXPECT_TRUE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.Record().modified, 0);
    EXPECT_EQ(open.Record().route, 2);
}

TEST(ProxyPageRoute, RouteChangeLeavesASetModifiedSet) {
    ProxyPageOnFile open("route-modified-set", "-c proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1032, "broker");
    ASSERT_EQ(open.Record().modified, 1);
    ChooseListEntry(open.Window(), 1002, kViaBroker);
    EXPECT_EQ(open.Record().modified, 1);
}

TEST(ProxyPageRoute, ChoosingTheBrokerWritesTheBrokerOption) {
    ProxyPageOnFile open("route-broker", "-c proxy:3128 -f broker:3000", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(open.Record().route, 2);
    ChooseListEntry(open.Window(), 1002, kViaProxy);
    EXPECT_EQ(open.ApplyAndRead(), "-c proxy:3128 ");
    ChooseListEntry(open.Window(), 1002, kViaBroker);
    EXPECT_EQ(open.ApplyAndRead(), "-f broker:3000 ");
}

TEST(ProxyPageRoute, ChoosingDirectWritesNoRoute) {
    ProxyPageOnFile open("route-direct", "-h server -c proxy", 665);
    ASSERT_TRUE(open.Ready());
    ChooseListEntry(open.Window(), 1002, kDirect);
    EXPECT_EQ(open.Record().route, 0);
    EXPECT_EQ(open.ApplyAndRead(), "-h server ");
}

TEST(ProxyPageRoute, ProxyChosenWithoutHostWritesNoRoute) {
    ProxyPageOnFile open("route-no-host", "-h server", 665);
    ASSERT_TRUE(open.Ready());
    ChooseListEntry(open.Window(), 1002, kViaProxy);
    EXPECT_EQ(open.Record().route, 1);
    EXPECT_EQ(open.ApplyAndRead(), "-h server ");
}

TEST(ProxyPageRoute, Client619WritesNoRouteWhateverIsChosen) {
    ProxyPageOnFile open("route-619", "-h server -c proxy:3128", 619);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1026, "proxy2");
    EXPECT_EQ(open.Record().proxyHost, "proxy2");
    EXPECT_EQ(open.ApplyAndRead(), "-h server ");
}

TEST(ProxyPageRoute, Client690WritesTheProxyRoute) {
    ProxyPageOnFile open("route-690", "-h server", 690);
    ASSERT_TRUE(open.Ready());
    ChooseListEntry(open.Window(), 1002, kViaProxy);
    TypeText(open.Window(), 1026, "proxy");
    EXPECT_EQ(open.ApplyAndRead(), "-h server -c proxy ");
}

// --- The edits ------------------------------------------------------------------------

TEST(ProxyPageEdits, ProxyHostIsTrimmedAndMarksModified) {
    ProxyPageOnFile open("edit-proxy-host", "-c proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1026, "  proxy.example\t ");
    EXPECT_EQ(open.Record().proxyHost, "proxy.example");
    EXPECT_EQ(open.Record().modified, 1);
    EXPECT_TRUE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.ApplyAndRead(), "-c proxy.example ");
}

TEST(ProxyPageEdits, ProxyUserIsTrimmed) {
    ProxyPageOnFile open("edit-proxy-user", "-c proxy:3128", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1030, " bob ");
    EXPECT_EQ(open.Record().proxyUser, "bob");
    EXPECT_EQ(open.Record().modified, 1);
    EXPECT_EQ(open.ApplyAndRead(), "-c bob@proxy:3128 ");
}

TEST(ProxyPageEdits, EmptiedUserIsLeftOut) {
    ProxyPageOnFile open("edit-user-empty", "-c admin@proxy:3128", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1030, "");
    EXPECT_EQ(open.Record().proxyUser, "");
    EXPECT_EQ(open.ApplyAndRead(), "-c proxy:3128 ");
}

TEST(ProxyPageEdits, BrokerHostIsTrimmed) {
    ProxyPageOnFile open("edit-broker-host", "-f broker", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1032, " broker.example  ");
    EXPECT_EQ(open.Record().brokerHost, "broker.example");
    EXPECT_EQ(open.Record().modified, 1);
    EXPECT_TRUE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.ApplyAndRead(), "-f broker.example ");
}

TEST(ProxyPageEdits, HostWithABlankIsWrittenInQuotes) {
    ProxyPageOnFile open("edit-host-blank", "-c proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1026, "my proxy");
    EXPECT_EQ(open.ApplyAndRead(), "-c \"my proxy\" ");
}

TEST(ProxyPageEdits, ProxyPortIsReadAsADecimal) {
    ProxyPageOnFile open("edit-proxy-port", "-c proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1028, "9000");
    EXPECT_EQ(open.Record().proxyPort, 9000);
    EXPECT_EQ(open.Record().modified, 1);
    EXPECT_TRUE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.ApplyAndRead(), "-c proxy:9000 ");
}

TEST(ProxyPageEdits, ProxyPortTakesLeadingDigitsOnly) {
    ProxyPageOnFile open("edit-proxy-port-atoi", "-c proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1028, "0081x");
    EXPECT_EQ(open.Record().proxyPort, 81);
    EXPECT_EQ(open.ApplyAndRead(), "-c proxy:81 ");
}

TEST(ProxyPageEdits, ClearedProxyPortStores8080) {
    ProxyPageOnFile open("edit-proxy-port-clear", "-c admin@proxy:3128", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(ControlTextOf(open.Window(), 1028), "3128");
    TypeText(open.Window(), 1028, "");
    EXPECT_EQ(open.Record().proxyPort, 8080);
    EXPECT_EQ(open.Record().modified, 1);
    EXPECT_EQ(open.ApplyAndRead(), "-c admin@proxy ");
}

TEST(ProxyPageEdits, TypedDefaultProxyPortIsLeftOut) {
    ProxyPageOnFile open("edit-proxy-port-8080", "-c proxy:3128", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1028, "8080");
    EXPECT_EQ(open.ApplyAndRead(), "-c proxy ");
}

TEST(ProxyPageEdits, BrokerPortIsReadAsADecimal) {
    ProxyPageOnFile open("edit-broker-port", "-f broker", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1034, "3000");
    EXPECT_EQ(open.Record().brokerPort, 3000);
    EXPECT_EQ(open.Record().modified, 1);
    EXPECT_TRUE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.ApplyAndRead(), "-f broker:3000 ");
}

TEST(ProxyPageEdits, ClearedBrokerPortStores14600) {
    ProxyPageOnFile open("edit-broker-port-clear", "-f broker:3000", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_EQ(ControlTextOf(open.Window(), 1034), "3000");
    TypeText(open.Window(), 1034, "");
    EXPECT_EQ(open.Record().brokerPort, 14600);
    EXPECT_EQ(open.ApplyAndRead(), "-f broker ");
}

TEST(ProxyPageEdits, DialUpBoxSetsAndClearsTheUpperF) {
    ProxyPageOnFile open("edit-dial-up", "-f broker:3000", 665);
    ASSERT_TRUE(open.Ready());
    ASSERT_FALSE(IsChecked(open.Window(), 1035));
    ClickControl(open.Window(), 1035);
    EXPECT_EQ(open.Record().brokerUpperF, 1);
    EXPECT_EQ(open.Record().modified, 1);
    EXPECT_TRUE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.ApplyAndRead(), "-F broker:3000 ");
    ClickControl(open.Window(), 1035);
    EXPECT_EQ(open.Record().brokerUpperF, 0);
    EXPECT_EQ(open.ApplyAndRead(), "-f broker:3000 ");
}

TEST(ProxyPageEdits, EditsOfTheHiddenGroupStillReachTheRecord) {
    // The broker's fields are edited while the proxy route is chosen; only the route decides
    // what is written.
    ProxyPageOnFile open("edit-hidden", "-c proxy", 665);
    ASSERT_TRUE(open.Ready());
    TypeText(open.Window(), 1032, "broker");
    TypeText(open.Window(), 1034, "3000");
    EXPECT_EQ(open.Record().brokerHost, "broker");
    EXPECT_EQ(open.Record().brokerPort, 3000);
    EXPECT_EQ(open.ApplyAndRead(), "-c proxy ");
    ChooseListEntry(open.Window(), 1002, kViaBroker);
    EXPECT_EQ(open.ApplyAndRead(), "-f broker:3000 ");
}

TEST(ProxyPageEdits, OtherNotificationsOfTheControlsAreNotHandled) {
    ProxyPageOnFile open("edit-other-codes", "-c proxy", 665);
    ASSERT_TRUE(open.Ready());
    LRESULT result = 0;
    for (const auto& [id, code] : std::vector<std::pair<int, int>>{{1026, EN_SETFOCUS},
                                                                   {1028, EN_KILLFOCUS},
                                                                   {1002, CBN_DROPDOWN},
                                                                   {1035, BN_SETFOCUS},
                                                                   {1025, STN_CLICKED},
                                                                   {1018, EN_CHANGE}}) {
        EXPECT_FALSE(open.Page()->ProcessWindowMessage(open.Window(), WM_COMMAND, MAKEWPARAM(id, code),
                                                       reinterpret_cast<LPARAM>(GetDlgItem(open.Window(), id)), result))
            << id << " " << code;
    }
    EXPECT_EQ(open.Record().modified, 0);
    EXPECT_FALSE(ApplyEnabled(open.Sheet()));
}

// --- Without a record -----------------------------------------------------------------

TEST(ProxyPageWithoutRecord, ListHasDirectAndProxyWithDirectSelected) {
    ProxyPageWithoutRecord open;
    ASSERT_NE(open.Window(), nullptr);
    EXPECT_EQ(ListEntries(open.Window(), 1002), Entries({kDirect, kViaProxy}));
    EXPECT_EQ(ListSelection(open.Window(), 1002), 0);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), std::vector<int>{});
}

TEST(ProxyPageWithoutRecord, EditsStayEmpty) {
    ProxyPageWithoutRecord open;
    ASSERT_NE(open.Window(), nullptr);
    for (int id : {1026, 1028, 1030, 1032, 1034}) EXPECT_EQ(ControlTextOf(open.Window(), id), "") << id;
    EXPECT_FALSE(IsChecked(open.Window(), 1035));
}

TEST(ProxyPageWithoutRecord, EveryHandlerReportsHandled) {
    ProxyPageWithoutRecord open;
    ASSERT_NE(open.Window(), nullptr);
    EXPECT_TRUE(open.Handles(1002, CBN_SELCHANGE));
    EXPECT_TRUE(open.Handles(1026, EN_CHANGE));
    EXPECT_TRUE(open.Handles(1030, EN_CHANGE));
    EXPECT_TRUE(open.Handles(1032, EN_CHANGE));
    EXPECT_TRUE(open.Handles(1028, EN_CHANGE));
    EXPECT_TRUE(open.Handles(1034, EN_CHANGE));
    EXPECT_TRUE(open.Handles(1035, BN_CLICKED));
    EXPECT_FALSE(ApplyEnabled(open.Sheet()));
}

TEST(ProxyPageWithoutRecord, ChoosingARouteChangesNothing) {
    ProxyPageWithoutRecord open;
    ASSERT_NE(open.Window(), nullptr);
    ASSERT_EQ(ChooseListEntry(open.Window(), 1002, kViaProxy), 1);
    EXPECT_EQ(ShownAmong(open.Window(), kGroupControls), std::vector<int>{});
    EXPECT_FALSE(ApplyEnabled(open.Sheet()));
}

TEST(ProxyPageWithoutRecord, TypingAndClickingChangeNothing) {
    ProxyPageWithoutRecord open;
    ASSERT_NE(open.Window(), nullptr);
    TypeText(open.Window(), 1026, "proxy");
    TypeText(open.Window(), 1030, "user");
    TypeText(open.Window(), 1032, "broker");
    TypeText(open.Window(), 1028, "3128");
    TypeText(open.Window(), 1034, "");
    ClickControl(open.Window(), 1035);
    EXPECT_FALSE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.Page()->Record(), nullptr);
}

TEST(ProxyPageWithoutRecord, ApplyKeepsTheSheetOpen) {
    ProxyPageWithoutRecord open;
    ASSERT_NE(open.Window(), nullptr);
    TypeText(open.Window(), 1026, "proxy");
    EXPECT_FALSE(Apply(open.Sheet()));
    EXPECT_FALSE(SheetClosed(open.Sheet()));
}
