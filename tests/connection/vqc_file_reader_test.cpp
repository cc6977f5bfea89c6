// The reader on real files under Wine: every option of the table, bare arguments, the
// failures of opening, and the few behaviours kept on purpose.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "connection/argument_vector.h"
#include "connection/vqc_file_info.h"
#include "test_files.h"
#include "tests/connection/debugger_wait_stand_ins.h"
#include "tests/support/test_icons.h"

using namespace debugger_wait_stand_ins;

namespace {

struct Record {
    std::unique_ptr<VQCFileInfo> info = std::make_unique<VQCFileInfo>("C:\\record.vqc");
    VQCFileInfo* operator->() const { return info.get(); }
    VQCFileInfo& operator*() const { return *info; }
};

// Reads content from a real file into a fresh record.
Record ReadText(const std::string& content, std::int32_t* result = nullptr) {
    TempFile file("reader", content);
    Record record;
    const std::int32_t r = record->Read(file.Path());
    if (result) *result = r;
    return record;
}

void ExpectDefaults(const VQCFileInfo& r) {
    EXPECT_EQ(r.servicePort, -1);
    EXPECT_EQ(r.proxyPort, 8080);
    EXPECT_EQ(r.brokerPort, 14600);
    EXPECT_EQ(r.route, 0);
    EXPECT_EQ(r.noOptionM, 0);
    EXPECT_TRUE(r.host.empty());
    EXPECT_TRUE(r.login.empty());
    EXPECT_TRUE(r.commandLine.empty());
}

}  // namespace

TEST(Reader, EmptyFileFailsWithErrorAndKeepsDefaults) {
    std::int32_t result = 0;
    Record r = ReadText("", &result);
    EXPECT_EQ(result, 1);
    EXPECT_NE(r->lastError, 0u);
    ExpectDefaults(*r);
}

TEST(Reader, EmptyFileLeavesTheErrorOfCreateFileMapping) {
    TempFile file("empty", "");
    HANDLE handle =
        CreateFileA(file.Path(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    SetLastError(0xdeadbeef);
    EXPECT_EQ(CreateFileMappingA(handle, nullptr, PAGE_READONLY, 0, 0, nullptr), nullptr);
    const DWORD expected = GetLastError();
    CloseHandle(handle);
    Record r;
    r->lastError = 0xdeadbeef;
    EXPECT_EQ(r->Read(file.Path()), 1);
    EXPECT_EQ(r->lastError, expected);
}

TEST(Reader, MissingFileFailsWithFileNotFound) {
    TempFile file("missing");
    Record r;
    EXPECT_EQ(r->Read(file.Path()), 1);
    EXPECT_EQ(r->lastError, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    ExpectDefaults(*r);
}

TEST(Reader, LockedFileFailsWithSharingViolation) {
    TempFile file("locked", "-h server ");
    HANDLE lock = CreateFileA(file.Path(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    Record r;
    EXPECT_EQ(r->Read(file.Path()), 1);
    EXPECT_EQ(r->lastError, static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_TRUE(r->host.empty());
    CloseHandle(lock);
}

TEST(Reader, NullPathFailsWithAnError) {
    Record r;
    EXPECT_EQ(r->Read(nullptr), 1);
    EXPECT_NE(r->lastError, 0u);
    ExpectDefaults(*r);
}

TEST(Reader, DirectoryFailsWithTheErrorOfOpeningIt) {
    char folder[MAX_PATH + 1] = {};
    GetTempPathA(sizeof(folder), folder);
    const std::string directory = std::string(folder) + "vqc-reader-dir-" + std::to_string(GetCurrentProcessId());
    ASSERT_TRUE(CreateDirectoryA(directory.c_str(), nullptr));
    SetLastError(0);
    HANDLE probe = CreateFileA(directory.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    const DWORD expected = GetLastError();
    EXPECT_EQ(probe, INVALID_HANDLE_VALUE);
    Record r;
    EXPECT_EQ(r->Read(directory.c_str()), 1);
    EXPECT_EQ(r->lastError, expected);
    EXPECT_NE(r->lastError, 0u);
    RemoveDirectoryA(directory.c_str());
}

TEST(Reader, SuccessReturnsZeroAndLeavesLastErrorAlone) {
    TempFile file("ok", "-h server ");
    Record r;
    r->lastError = 0xdeadbeef;
    EXPECT_EQ(r->Read(file.Path()), 0);
    EXPECT_EQ(r->lastError, 0xdeadbeefu);
    EXPECT_EQ(r->host, "server");
}

TEST(Reader, QuotedHostKeepsItsBlankAndLoginIsTrimmed) {
    Record r = ReadText("-h \"my server\" -u \"  bob  \" ");
    EXPECT_EQ(r->host, "my server");
    EXPECT_EQ(r->login, "bob");
}

TEST(Reader, BareUserAtHostPortFillsLoginHostAndPort) {
    Record r = ReadText("bob@server:4790");
    EXPECT_EQ(r->login, "bob");
    EXPECT_EQ(r->host, "server");
    EXPECT_EQ(r->servicePort, 4790);
}

TEST(Reader, BareHostPortWithoutAtIsIgnored) {
    // Without '@' a bare argument is not an address: only -d makes it the local target.
    Record r = ReadText("-u keep server:99");
    EXPECT_EQ(r->login, "keep");
    EXPECT_TRUE(r->host.empty());
    EXPECT_EQ(r->servicePort, -1);
}

TEST(Reader, BareAtHostPortLeavesLoginUntouched) {
    Record r = ReadText("-u keep @server:99");
    EXPECT_EQ(r->host, "server");
    EXPECT_EQ(r->servicePort, 99);
    EXPECT_EQ(r->login, "keep");
}

TEST(Reader, BareHostAloneIsIgnored) {
    Record r = ReadText("server");
    EXPECT_TRUE(r->host.empty());
    EXPECT_TRUE(r->localTarget.empty());
}

TEST(Reader, BareArgumentAfterDBecomesTrimmedLocalTarget) {
    Record r = ReadText("-d \" server \"");
    EXPECT_EQ(r->localConnect, 1);
    EXPECT_EQ(r->localTarget, "server");
}

TEST(Reader, BareArgumentBeforeDIsIgnored) {
    Record r = ReadText("server -d");
    EXPECT_EQ(r->localConnect, 1);
    EXPECT_TRUE(r->localTarget.empty());
}

TEST(Reader, ProxyWithUserKeepsDefaultPortAndSetsRoute1) {
    Record r = ReadText("-c admin@proxy");
    EXPECT_EQ(r->proxyUser, "admin");
    EXPECT_EQ(r->proxyHost, "proxy");
    EXPECT_EQ(r->proxyPort, 8080);
    EXPECT_EQ(r->route, 1);
}

TEST(Reader, ProxyWithPortLeavesProxyUserUntouched) {
    Record r;
    r->proxyUser = "earlier";
    TempFile file("proxy", "-c proxy:9000");
    ASSERT_EQ(r->Read(file.Path()), 0);
    EXPECT_EQ(r->proxyUser, "earlier");
    EXPECT_EQ(r->proxyHost, "proxy");
    EXPECT_EQ(r->proxyPort, 9000);
}

TEST(Reader, ProxyAsLastElementOnlySetsRoute) {
    Record r = ReadText("-c");
    EXPECT_EQ(r->route, 1);
    EXPECT_TRUE(r->proxyHost.empty());
    EXPECT_EQ(r->proxyPort, 8080);
}

TEST(Reader, LaterRouteOptionWinsAndBothHostsAreKept) {
    Record r = ReadText("-f broker:3128 -c proxy");
    EXPECT_EQ(r->route, 1);
    EXPECT_EQ(r->brokerHost, "broker");
    EXPECT_EQ(r->brokerPort, 3128);
    EXPECT_EQ(r->proxyHost, "proxy");
}

TEST(Reader, UpperFWithArgumentLeavesBrokerUpperFClear) {
    Record r = ReadText("-F broker:3128");
    EXPECT_EQ(r->route, 2);
    EXPECT_EQ(r->brokerHost, "broker");
    EXPECT_EQ(r->brokerUpperF, 0);
}

TEST(Reader, BrokerLetterIsTakenFromTheSecondCharacterOfTheArgument) {
    Record r = ReadText("-f xFoo");
    EXPECT_EQ(r->brokerHost, "xFoo");
    EXPECT_EQ(r->brokerUpperF, 1);
}

TEST(Reader, UpperFAsLastElementSetsBrokerUpperF) {
    Record r = ReadText("-F");
    EXPECT_EQ(r->route, 2);
    EXPECT_EQ(r->brokerUpperF, 1);
    EXPECT_TRUE(r->brokerHost.empty());
}

TEST(Reader, LowerFAsLastElementLeavesBrokerUpperFClear) {
    Record r = ReadText("-f");
    EXPECT_EQ(r->route, 2);
    EXPECT_EQ(r->brokerUpperF, 0);
}

TEST(Reader, BrokerLetterIsOnlyEverSetNeverCleared) {
    Record r;
    r->brokerUpperF = 1;
    TempFile file("broker", "-f broker");
    ASSERT_EQ(r->Read(file.Path()), 0);
    EXPECT_EQ(r->brokerUpperF, 1);
}

TEST(Reader, ServicePortAsLastElementIsZero) {
    Record r = ReadText("-V");
    EXPECT_EQ(r->servicePort, 0);
}

TEST(Reader, NonNumericServicePortIsZero) {
    Record r = ReadText("-V abc");
    EXPECT_EQ(r->servicePort, 0);
}

TEST(Reader, ServicePortFollowsAtoi) {
    Record r = ReadText("-V \" 4790x\"");
    EXPECT_EQ(r->servicePort, 4790);
}

TEST(Reader, DisguiseHttpIsSwitchedOffByALaterDoubleDashAndDebugStartsTheWait) {
    g_breaks = 0;
    const DebuggerWaitHooks previous = SetDebuggerWaitHooks({AlwaysPresent, CountBreak, NoSleep, NoAnnounce});
    Record r = ReadText("--disguise-http --debug");
    SetDebuggerWaitHooks(previous);
    EXPECT_EQ(r->disguiseHttp, 0);
    EXPECT_EQ(g_breaks, 1);
}

TEST(Reader, DisguiseHttpAloneSetsTheFlag) {
    Record r = ReadText("--disguise-http");
    EXPECT_EQ(r->disguiseHttp, 1);
}

TEST(Reader, DisguiseHttpMustMatchTheWholeWord) {
    Record r = ReadText("--disguise-httpx");
    EXPECT_EQ(r->disguiseHttp, 0);
}

TEST(Reader, NWithMFoldsIntoOptionNM) {
    Record r = ReadText("-N -M");
    EXPECT_EQ(r->optionNM, 1);
    EXPECT_EQ(r->optionN, 0);
    EXPECT_EQ(r->noOptionM, 0);
}

TEST(Reader, NWithKFoldsIntoOptionNM) {
    Record r = ReadText("-K -N");
    EXPECT_EQ(r->optionNM, 1);
    EXPECT_EQ(r->optionN, 0);
    EXPECT_EQ(r->optionK, 1);
}

TEST(Reader, NAloneIsOptionN) {
    Record r = ReadText("-N");
    EXPECT_EQ(r->optionN, 1);
    EXPECT_EQ(r->optionNM, 0);
    EXPECT_EQ(r->noOptionM, 1);
}

TEST(Reader, CommandLineIsRejoinedFromTokens) {
    Record r = ReadText("-h s -C prog -x \"a b\"");
    EXPECT_EQ(r->commandLine, "prog -x a b");
}

TEST(Reader, CommandLineRunsOfBlanksBecomeOne) {
    Record r = ReadText("-C  one    two   ");
    EXPECT_EQ(r->commandLine, "one two");
}

TEST(Reader, CommandLineEndsTheWalk) {
    Record r = ReadText("-C -h server");
    EXPECT_EQ(r->commandLine, "-h server");
    EXPECT_TRUE(r->host.empty());
}

TEST(Reader, TInAFileIsIgnored) {
    Record r = ReadText("-T -h server");
    EXPECT_EQ(r->optionT, 0);
    EXPECT_EQ(r->host, "server");
}

TEST(Reader, UnknownOptionTakesNoArgumentSoItsArgumentIsBare) {
    Record r = ReadText("-A bob@server:5 -x");
    EXPECT_EQ(r->login, "bob");
    EXPECT_EQ(r->host, "server");
    EXPECT_EQ(r->servicePort, 5);
}

TEST(Reader, OptionTakesTheNextElementEvenWhenItIsAnOption) {
    Record r = ReadText("-h -l");
    EXPECT_EQ(r->host, "-l");
    EXPECT_EQ(r->encrypt, 0);
}

TEST(Reader, OptionIsKnownByItsSecondCharacterOnly) {
    Record r = ReadText("-hostname server -later");
    EXPECT_EQ(r->host, "server");
    EXPECT_EQ(r->encrypt, 1);
}

TEST(Reader, FlagOptionsSetTheirFields) {
    Record r = ReadText("-L -R -s -l -d -K");
    EXPECT_EQ(r->optionL, 1);
    EXPECT_EQ(r->optionR, 1);
    EXPECT_EQ(r->option_s, 1);
    EXPECT_EQ(r->encrypt, 1);
    EXPECT_EQ(r->localConnect, 1);
    EXPECT_EQ(r->optionK, 1);
    EXPECT_EQ(r->noOptionM, 0);
}

TEST(Reader, TextOptionsAreTrimmed) {
    Record r = ReadText("-a \" back \" -v \" svc \" -S \" C:\\dir \"");
    EXPECT_EQ(r->answerBack, "back");
    EXPECT_EQ(r->serviceName, "svc");
    EXPECT_EQ(r->startDirectory, "C:\\dir");
}

TEST(Reader, StartDirectoryAsLastElementIsEmpty) {
    Record r;
    r->startDirectory = "before";
    TempFile file("start", "-S");
    ASSERT_EQ(r->Read(file.Path()), 0);
    EXPECT_TRUE(r->startDirectory.empty());
}

TEST(Reader, NoOptionMIsSetByEveryRead) {
    Record r = ReadText("-h server");
    EXPECT_EQ(r->noOptionM, 1);
}

TEST(Reader, LineBreakBeforeAnOptionSeparatesIt) {
    Record r = ReadText("-h server\r\n-u bob\r\n-C run");
    EXPECT_EQ(r->host, "server");
    EXPECT_EQ(r->login, "bob");
    EXPECT_EQ(r->commandLine, "run");
}

TEST(Reader, SecondFileKeepsUnnamedFieldsAndAppendsCommandLine) {
    TempFile first("first", "-h server -u bob -C one");
    TempFile second("second", "-u alice -C two");
    Record r;
    ASSERT_EQ(r->Read(first.Path()), 0);
    ASSERT_EQ(r->Read(second.Path()), 0);
    EXPECT_EQ(r->host, "server");
    EXPECT_EQ(r->login, "alice");
    EXPECT_EQ(r->commandLine, "onetwo");
}

TEST(Reader, IconOptionDecodesBothIcons) {
    const IconImage image = MakeTestIconImage(32, 4);
    const IconImage images[] = {image, image};
    const std::string hex = HexTextOf(BuildIconStream(images, 2));
    Record r = ReadText("-h s\r\n-I \"" + hex + "\" -C x");
    ASSERT_TRUE(r->icon);
    ASSERT_TRUE(r->smallIcon);
    EXPECT_EQ(IconSize(r->icon.Get()).cx, 32);
    EXPECT_EQ(IconSize(r->smallIcon.Get()).cx, GetSystemMetrics(SM_CXSMICON));
    EXPECT_EQ(IconSize(r->smallIcon.Get()).cy, GetSystemMetrics(SM_CYSMICON));
    EXPECT_EQ(r->commandLine, "x");
}

TEST(Reader, LowerIOptionRemovesTheIcons) {
    Record r;
    r->SetIcons(MakeTestIcon(16, 8), MakeTestIcon(16, 8));
    TempFile file("noicon", "-i");
    ASSERT_EQ(r->Read(file.Path()), 0);
    EXPECT_FALSE(r->icon);
    EXPECT_FALSE(r->smallIcon);
}

TEST(Reader, IconOptionAsLastElementLeavesNoIcons) {
    Record r;
    r->SetIcons(MakeTestIcon(16, 8), nullptr);
    TempFile file("lastI", "-I");
    ASSERT_EQ(r->Read(file.Path()), 0);
    EXPECT_FALSE(r->icon);
}

TEST(Reader, FileWithoutIconOptionKeepsTheIcons) {
    Record r;
    r->SetIcons(MakeTestIcon(16, 8), nullptr);
    TempFile file("keepI", "-h server");
    ASSERT_EQ(r->Read(file.Path()), 0);
    EXPECT_TRUE(r->icon);
}

TEST(Reader, ZeroByteInTheFileEndsTheText) {
    Record r = ReadText(std::string("-h server\0-u bob", 16));
    EXPECT_EQ(r->host, "server");
    EXPECT_TRUE(r->login.empty());
}

// A view of a whole page has nothing mapped behind it, and no zero byte ends the text: the
// line is taken from the view by its size, up to the file's last byte.
TEST(Reader, FileOfExactlyOnePageIsReadToItsLastByte) {
    std::string content = "-h server -C ";
    while (content.size() < 4096 - 4) content += "w ";
    content.resize(4096 - 4, 'w');
    content += " end";
    ASSERT_EQ(content.size(), 4096u);
    Record r = ReadText(content);
    EXPECT_EQ(r->host, "server");
    ASSERT_GE(r->commandLine.size(), 4u);
    EXPECT_EQ(r->commandLine.substr(r->commandLine.size() - 4), " end");
    EXPECT_EQ(r->commandLine.size(), content.size() - std::string("-h server -C ").size());
}
