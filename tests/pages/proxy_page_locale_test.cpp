// The Proxy page in a process whose user locale is Korean, a language with its own route
// texts: the list shows them, and the entries are still found by their texts, so the
// route the file names opens selected and a choice reaches the file.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "connection/vqc_file_info.h"
#include "pages/proxy_page.h"
#include "resources/local_string_cache.h"
#include "tests/pages/page_test_support.h"
#include "tests/pages/user_actions.h"

using namespace page_test;

namespace {

class KoreanProxyPage : public ::testing::Test {
protected:
    void Open(const std::string& line) {
        WriteFileBytes(file_, line);
        record_ = ComPtr<VQCFileInfo>(new VQCFileInfo(file_.c_str()));
        record_->clientVersion = 665;
        ASSERT_EQ(record_->Read(file_.c_str()), 0);
        ASSERT_NE(sheet_.Add<CVQCProxyPage>(record_.Get(), "Proxy"), nullptr);
        ASSERT_NE(sheet_.Show(), nullptr);
        window_ = PageWindow(sheet_.Sheet(), 0);
        ASSERT_NE(window_, nullptr);
    }
    void TearDown() override { sheet_.Destroy(); }

    std::string ApplyAndRead() {
        WriteFileBytes(file_, "<not written>");
        EXPECT_TRUE(Apply(sheet_.Sheet()));
        return ReadFileBytes(file_);
    }

    TempFolder folder_{"korean"};
    std::string file_ = folder_.File("connection.vqc");
    ComPtr<VQCFileInfo> record_;
    DirectSheet sheet_;
    HWND window_ = nullptr;
};

}  // namespace

TEST_F(KoreanProxyPage, ListShowsTheKoreanRouteTexts) {
    ASSERT_EQ(GetUserDefaultLCID(), 0x0412u);
    Open("-h server");
    const std::vector<std::string> expected = {GetLocalString(37), GetLocalString(38), GetLocalString(39)};
    EXPECT_EQ(ListEntries(window_, 1002), expected);
    EXPECT_NE(expected[0], "Connect directly");
    EXPECT_NE(expected[1], "Connect via a proxy server");
    EXPECT_NE(expected[2], "Connect via a connection broker");
}

TEST_F(KoreanProxyPage, BrokerFileOpensOnTheBrokerEntry) {
    Open("-h server -f broker:3000");
    EXPECT_EQ(ListSelection(window_, 1002), 2);
    EXPECT_EQ(ShownAmong(window_, {1026, 1032}), std::vector<int>{1032});
}

TEST_F(KoreanProxyPage, ChosenEntriesSetTheirRoutes) {
    Open("-h server -c proxy -f broker");
    EXPECT_EQ(ListSelection(window_, 1002), 1);
    ChooseListEntry(window_, 1002, GetLocalString(39));
    EXPECT_EQ(ApplyAndRead(), "-h server -f broker ");
    ChooseListEntry(window_, 1002, GetLocalString(37));
    EXPECT_EQ(ApplyAndRead(), "-h server ");
}
