// The Proxy page in the sheet the shell builds with the built DLL: a copy of it beside a
// stand-in client of a given version, the version found by the DLL's own probe, the page
// chosen by a click on its tab and driven as a user drives it, then Apply and the bytes.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/pages/page_test_support.h"
#include "tests/pages/user_actions.h"

using namespace page_test;

namespace {

constexpr int kProxyPageIndex = 1;
constexpr char kDirect[] = "Connect directly";
constexpr char kViaProxy[] = "Connect via a proxy server";
constexpr char kViaBroker[] = "Connect via a connection broker";

const std::vector<std::string> kWithBroker = {kDirect, kViaProxy, kViaBroker};
const std::vector<std::string> kWithoutBroker = {kDirect, kViaProxy};

// A DLL copy with the client fixture beside it, a connection file holding `line` in the
// same folder, and the shell's sheet for that file with the Proxy page shown.
class ShellProxyPage {
public:
    ShellProxyPage(const std::string& tag, const std::string& client, const std::string& line)
        : dll_(tag, client), file_(dll_.File("connection.vqc")) {
        WriteFileBytes(file_, line);
        if (!dll_.Module()) return;
        sheet_ = std::make_unique<ShellPropertySheet>(dll_.GetClassObject(), file_);
        if (!sheet_->Open() || PageCount(sheet_->Sheet()) != 3) return;
        page_ = ShowPageTitled(sheet_->Sheet(), "Proxy");
    }
    ~ShellProxyPage() {
        if (sheet_) sheet_->Destroy();
        sheet_.reset();
    }
    ShellProxyPage(const ShellProxyPage&) = delete;
    ShellProxyPage& operator=(const ShellProxyPage&) = delete;

    // The sheet holds three pages, one of them titled "Proxy", and its window exists.
    bool Ready() const { return page_ != nullptr; }
    HWND Page() const { return page_; }
    HWND Sheet() const { return sheet_->Sheet(); }

    // Apply as the sheet's Apply button does; the file's bytes afterwards.
    std::string ApplyAndRead() {
        WriteFileBytes(file_, "<not written>");
        EXPECT_TRUE(Apply(sheet_->Sheet()));
        return ReadFileBytes(file_);
    }

private:
    ExtensionCopy dll_;
    std::string file_;
    std::unique_ptr<ShellPropertySheet> sheet_;
    HWND page_ = nullptr;
};

}  // namespace

TEST(ShellProxyPageRoutes, Client620OffersTheBroker) {
    ShellProxyPage open("shell-routes-620", "client_6_20", "-h server");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(PageIndex(open.Sheet(), "Proxy"), kProxyPageIndex);
    EXPECT_EQ(ListEntries(open.Page(), 1002), kWithBroker);
}

TEST(ShellProxyPageRoutes, Client664OffersTheBroker) {
    ShellProxyPage open("shell-routes-664", "client_6_64", "-h server");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Page(), 1002), kWithBroker);
}

TEST(ShellProxyPageRoutes, Client665OffersTheBroker) {
    ShellProxyPage open("shell-routes-665", "client_6_65", "-h server");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Page(), 1002), kWithBroker);
}

TEST(ShellProxyPageRoutes, Client689OffersTheBroker) {
    ShellProxyPage open("shell-routes-689", "client_6_89", "-h server");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Page(), 1002), kWithBroker);
}

TEST(ShellProxyPageRoutes, Client690HasNoBroker) {
    ShellProxyPage open("shell-routes-690", "client_6_90", "-h server");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Page(), 1002), kWithoutBroker);
}

TEST(ShellProxyPageRoutes, NoClientHasNoBroker) {
    // Without a client the version is 726.
    ShellProxyPage open("shell-routes-none", "", "-h server");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListEntries(open.Page(), 1002), kWithoutBroker);
}

TEST(ShellProxyPageRoutes, Client619SheetHasNoProxyPage) {
    ExtensionCopy dll("shell-routes-619", "client_6_19_5");
    const std::string file = dll.File("connection.vqc");
    WriteFileBytes(file, "-h server -c proxy");
    ASSERT_NE(dll.Module(), nullptr);
    ShellPropertySheet sheet(dll.GetClassObject(), file);
    ASSERT_TRUE(sheet.Open());
    ASSERT_EQ(PageCount(sheet.Sheet()), 2);
    EXPECT_EQ(PageIndex(sheet.Sheet(), "Proxy"), -1);
    sheet.Destroy();
}

TEST(ShellProxyPageRoutes, BrokerAt690OpensWithNoSelectionAndTheBrokerControls) {
    ShellProxyPage open("shell-broker-690", "client_6_90", "-h server -f broker");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ListSelection(open.Page(), 1002), CB_ERR);
    EXPECT_EQ(ShownAmong(open.Page(), {1025, 1026, 1027, 1028, 1029, 1030, 1031, 1032, 1033, 1034, 1035}),
              (std::vector<int>{1031, 1032, 1033, 1034, 1035}));
    // The list no longer offers the broker, but the file's broker route is still written.
    EXPECT_EQ(open.ApplyAndRead(), "-h server -f broker ");
}

TEST(ShellProxyPageEdits, ChoosingTheBrokerAt665WritesIt) {
    ShellProxyPage open("shell-broker-665", "client_6_65", "-h server -c proxy:3128 -f broker:3000");
    ASSERT_TRUE(open.Ready());
    ChooseListEntry(open.Page(), 1002, kViaProxy);
    EXPECT_EQ(open.ApplyAndRead(), "-h server -c proxy:3128 ");
    ChooseListEntry(open.Page(), 1002, kViaBroker);
    EXPECT_TRUE(ApplyEnabled(open.Sheet()));
    EXPECT_EQ(open.ApplyAndRead(), "-h server -f broker:3000 ");
}

TEST(ShellProxyPageEdits, UserKeptBehindTheDefaultPort) {
    ShellProxyPage open("shell-user-8080", "client_6_65", "-h server -c admin@proxy");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ControlTextOf(open.Page(), 1028), "");
    EXPECT_EQ(ControlTextOf(open.Page(), 1030), "");
    TypeText(open.Page(), 1026, "proxy2");
    EXPECT_EQ(open.ApplyAndRead(), "-h server -c admin@proxy2 ");
}

TEST(ShellProxyPageEdits, UpperFKeptBehindTheDefaultBrokerPort) {
    ShellProxyPage open("shell-upper-f", "client_6_65", "-h server -f xFoo");
    ASSERT_TRUE(open.Ready());
    EXPECT_EQ(ControlTextOf(open.Page(), 1034), "");
    EXPECT_FALSE(IsChecked(open.Page(), 1035));
    TypeText(open.Page(), 1032, "xFoo2");
    EXPECT_EQ(open.ApplyAndRead(), "-h server -F xFoo2 ");
}

TEST(ShellProxyPageEdits, ClearedPortsStoreTheirDefaults) {
    ShellProxyPage open("shell-ports", "client_6_65", "-h server -c proxy:3128");
    ASSERT_TRUE(open.Ready());
    TypeText(open.Page(), 1028, "");
    EXPECT_EQ(open.ApplyAndRead(), "-h server -c proxy ");
    TypeText(open.Page(), 1034, "3000");
    TypeText(open.Page(), 1032, "broker");
    ChooseListEntry(open.Page(), 1002, kViaBroker);
    EXPECT_EQ(open.ApplyAndRead(), "-h server -f broker:3000 ");
    TypeText(open.Page(), 1034, "");
    EXPECT_EQ(open.ApplyAndRead(), "-h server -f broker ");
}
