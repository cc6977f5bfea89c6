// The writer on real files under Wine: byte-exact contents for every version gate, the
// option order, quoting, the icon block and the failures of creating the file.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "connection/icon_codec.h"
#include "connection/option_line.h"
#include "connection/vqc_file_info.h"
#include "test_files.h"
#include "tests/row_names.h"
#include "tests/support/test_icons.h"

namespace {

std::unique_ptr<VQCFileInfo> Fresh() { return std::make_unique<VQCFileInfo>("C:\\w.vqc"); }

// Writes the record to a real file and returns the file's bytes.
std::string Written(VQCFileInfo& record) {
    TempFile file("writer");
    const std::int32_t result = record.Write(file.Path());
    EXPECT_EQ(result, 0);
    return file.Content();
}

std::string IconHex(HICON icon, HICON smallIcon) {
    const std::uint64_t size = EncodeIcons(nullptr, icon, smallIcon);
    std::string text(size - 1, '\0');
    char* cursor = text.data();
    EncodeIcons(&cursor, icon, smallIcon);
    return text;
}

// One write of a record: a row sets fields of a fresh record (client 7.26, no icon), and the
// file holds exactly the row's bytes.
struct WrittenCase {
    const char* name;
    void (*set)(VQCFileInfo& r);
    const char* bytes;
};
// Each row shows in ctest's list as its name ("# GetParam() = <name>"), not as its bytes.
void PrintTo(const WrittenCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const WrittenCase kWrittenCases[] = {
    {"FreshRecordWritesAnEmptyFile",
     [](VQCFileInfo&) {},
     ""},
    {"DefaultServicePortWithoutEncryptIsNotWritten",
     [](VQCFileInfo& r) { r.serviceName = "svc"; r.servicePort = 790; },
     "-v svc "},
    {"Port790WithEncryptIsWritten",
     [](VQCFileInfo& r) { r.serviceName = "svc"; r.servicePort = 790; r.encrypt = 1; },
     "-V 790 -l -v svc "},
    {"DefaultEncryptedPortIsNotWritten",
     [](VQCFileInfo& r) { r.serviceName = "svc"; r.servicePort = 4790; r.encrypt = 1; },
     "-l -v svc "},
    {"ServicePortIsNeverWrittenWithoutServiceName",
     [](VQCFileInfo& r) { r.host = "h"; r.servicePort = 1234; },
     "-h h "},
    {"ServicePortNotGivenIsNotWritten",
     [](VQCFileInfo& r) { r.serviceName = "svc"; r.servicePort = -1; },
     "-v svc "},
    {"BrokerRouteWithEmptyHostWritesNoRouteOption",
     [](VQCFileInfo& r) { r.route = 2; r.proxyHost = "proxy"; },
     ""},
    {"ProxyRouteWithEmptyHostWritesNoRouteOption",
     [](VQCFileInfo& r) { r.route = 1; r.brokerHost = "broker"; },
     ""},
    // The Proxy page offers the broker only to clients 6.20 to 6.89; a file's broker route is
    // written for every client from 6.20 on all the same.
    {"BrokerRouteIsStillWrittenForClient690",
     [](VQCFileInfo& r) { r.clientVersion = 690; r.route = 2; r.brokerHost = "broker"; },
     "-f broker "},
    {"BrokerPortAndUpperF",
     [](VQCFileInfo& r) { r.route = 2; r.brokerHost = "broker"; r.brokerPort = 3128; r.brokerUpperF = 1; },
     "-F broker:3128 "},
    {"HostWithBlankIsQuoted",
     [](VQCFileInfo& r) { r.host = "my server"; },
     "-h \"my server\" "},
    {"AlreadyQuotedValueIsNotQuotedAgain",
     [](VQCFileInfo& r) { r.host = "\"my server\""; },
     "-h \"my server\" "},
    {"QuotesInsideAValueAreNotEscaped",
     [](VQCFileInfo& r) { r.login = "a\"b c"; },
     "-u \"a\"b c\" "},
    {"LocalConnectionWritesTargetAndStartDirectory",
     [](VQCFileInfo& r) { r.localConnect = 1; r.localTarget = "my prog"; r.startDirectory = "C:\\work"; r.host = "ignored";
                          r.serviceName = "svc"; r.answerBack = "ab"; r.login = "bob"; },
     "-d \"my prog\" -S C:\\work -v svc -a ab -u bob "},
    {"EmptyLocalTargetGivesDAndTwoBlanks",
     [](VQCFileInfo& r) { r.localConnect = 1; },
     "-d  "},
    {"TypicalRemoteFileInOrder",
     [](VQCFileInfo& r) { r.host = "server"; r.optionR = 1; r.serviceName = "svc"; r.servicePort = 5000; r.encrypt = 1;
                          r.option_s = 1; r.route = 1; r.proxyHost = "proxy"; r.proxyPort = 3128; r.optionT = 1;
                          r.answerBack = "back"; r.login = "bob"; r.commandLine = "prog  -x \"a b\""; },
     "-h server -V 5000 -R -l -s -c proxy:3128 -T -v svc -a back -u bob -C prog  -x \"a b\""},
    {"SmallIconAloneIsLeftOut",
     [](VQCFileInfo& r) { r.SetIcons(nullptr, MakeTestIcon(16, 4)); r.login = "bob"; },
     "-u bob "},
    {"CommandLineIsLastWithoutTrailingBlank",
     [](VQCFileInfo& r) { r.commandLine = "a b"; r.login = "u"; },
     "-u u -C a b"},
};
// clang-format on

// One option appended to a text: what the text held before, the option, and the text after.
struct EmittedCase {
    const char* name;
    const char* before;
    char letter;
    const char* value;
    bool alwaysQuote;
    const char* after;
};
void PrintTo(const EmittedCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const EmittedCase kEmittedCases[] = {
    {"WithoutValueIsLetterAndBlank",         "x", 'l', nullptr, false, "x-l "},
    {"AlwaysQuoteWrapsEvenWithoutBlank",     "",  'I', "00AB",  true,  "-I \"00AB\" "},
    {"EmptyValueWithAlwaysQuoteIsTwoQuotes", "",  'I', "",      true,  "-I \"\" "},
    {"SingleQuoteCharacterCountsAsEnclosed", "",  'h', "\"",    true,  "-h \" "},
};
// clang-format on

class WrittenLine : public ::testing::TestWithParam<WrittenCase> {};

TEST_P(WrittenLine, HoldsTheRowsBytes) {
    auto r = Fresh();
    GetParam().set(*r);
    EXPECT_EQ(Written(*r), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(Writer, WrittenLine, ::testing::ValuesIn(kWrittenCases), RowName());

class EmittedOption : public ::testing::TestWithParam<EmittedCase> {};

TEST_P(EmittedOption, IsAppendedAsTheRowSays) {
    const EmittedCase& c = GetParam();
    std::string out = c.before;
    EmitOption(out, c.letter, c.value, c.alwaysQuote);
    EXPECT_EQ(out, c.after);
}

INSTANTIATE_TEST_SUITE_P(EmitOption, EmittedOption, ::testing::ValuesIn(kEmittedCases), RowName());

}  // namespace

TEST(Writer, Version640NeverGetsL) {
    auto r = Fresh();
    r->clientVersion = 640;
    r->encrypt = 1;
    EXPECT_EQ(Written(*r), "");
    r->clientVersion = 641;
    EXPECT_EQ(Written(*r), "-l ");
    r->clientVersion = 620;
    EXPECT_EQ(Written(*r), "-l ");
}

TEST(Writer, Version619WritesNeitherLNorRoute) {
    auto r = Fresh();
    r->clientVersion = 619;
    r->encrypt = 1;
    r->route = 1;
    r->proxyHost = "proxy";
    r->brokerHost = "broker";
    EXPECT_EQ(Written(*r), "");
    r->route = 2;
    EXPECT_EQ(Written(*r), "");
}

TEST(Writer, AutomaticMOnlyFrom665To689) {
    auto r = Fresh();
    r->serviceName = "svc";
    r->noOptionM = 0;
    // clang-format off
    const struct { std::int32_t version; const char* expected; } cases[] = {
        {664, "-v svc "}, {665, "-M -v svc "}, {677, "-M -v svc "}, {689, "-M -v svc "}, {690, "-v svc "},
    };
    // clang-format on
    for (const auto& c : cases) {
        r->clientVersion = c.version;
        EXPECT_EQ(Written(*r), c.expected) << c.version;
    }
}

TEST(Writer, AutomaticMNeedsNoOptionMClearServiceNameAndNoNM) {
    auto r = Fresh();
    r->clientVersion = 670;
    r->serviceName = "svc";
    r->noOptionM = 1;
    EXPECT_EQ(Written(*r), "-v svc ");
    r->noOptionM = 0;
    r->serviceName.clear();
    EXPECT_EQ(Written(*r), "");
    r->serviceName = "svc";
    r->optionNM = 1;
    EXPECT_EQ(Written(*r), "-N -M -v svc ");
}

TEST(Writer, OnlyTheRouteNamedIsWritten) {
    auto r = Fresh();
    r->proxyHost = "proxy";
    r->brokerHost = "broker";
    r->route = 2;
    EXPECT_EQ(Written(*r), "-f broker ");
    r->route = 1;
    EXPECT_EQ(Written(*r), "-c proxy ");
    r->route = 0;
    EXPECT_EQ(Written(*r), "");
}

TEST(Writer, ProxyUserAndPort) {
    auto r = Fresh();
    r->route = 1;
    r->proxyHost = "proxy";
    r->proxyUser = "admin";
    r->proxyPort = 3128;
    EXPECT_EQ(Written(*r), "-c admin@proxy:3128 ");
    r->proxyUser.clear();
    r->proxyPort = 8080;
    EXPECT_EQ(Written(*r), "-c proxy ");
}

TEST(Writer, WithOptionKOnlyKUIAndCAppear) {
    auto r = Fresh();
    r->optionK = 1;
    r->host = "h";
    r->localConnect = 1;
    r->localTarget = "t";
    r->serviceName = "svc";
    r->servicePort = 99;
    r->answerBack = "ab";
    r->optionL = 1;
    r->optionR = 1;
    r->optionT = 1;
    r->encrypt = 1;
    r->option_s = 1;
    r->route = 1;
    r->proxyHost = "p";
    r->login = "bob";
    r->commandLine = "run me";
    r->SetIcons(MakeTestIcon(16, 4), nullptr);
    const std::string hex = IconHex(r->icon.Get(), nullptr);
    EXPECT_EQ(Written(*r), "-K -u bob \r\n-I \"" + hex + "\" -C run me");
}

TEST(Writer, LoginModeOrder) {
    auto r = Fresh();
    r->optionL = 1;
    r->optionN = 1;
    r->optionNM = 1;
    EXPECT_EQ(Written(*r), "-L ");
    r->optionL = 0;
    EXPECT_EQ(Written(*r), "-N ");
    r->optionN = 0;
    EXPECT_EQ(Written(*r), "-N -M ");
}

TEST(Writer, IconBlockStandsOnItsOwnLineInQuotes) {
    auto r = Fresh();
    r->host = "h";
    r->SetIcons(MakeTestIcon(32, 4), MakeTestIcon(16, 4));
    const std::string hex = IconHex(r->icon.Get(), r->smallIcon.Get());
    const std::string content = Written(*r);
    EXPECT_EQ(content, "-h h \r\n-I \"" + hex + "\" ");
    EXPECT_NE(hex.find("\r\n"), std::string::npos);
}

TEST(Writer, BlackAndWhiteIconIsWrittenAndReadBackWithItsPixelsAndMask) {
    TempFile file("bw-icon");
    auto w = Fresh();
    w->host = "server";
    w->SetIcons(MakeMonochromeTestIcon(32), MakeMonochromeTestIcon(16));
    ASSERT_EQ(w->Write(file.Path()), 0);
    const std::string content = file.Content();
    // The first directory entry: 32 x 32, 2 colours, 1 plane, 1 bit per pixel.
    EXPECT_EQ(content.substr(16 + 12, 16), "2020020001000100");
    EXPECT_EQ(content, "-h server \r\n-I \"" + IconHex(w->icon.Get(), w->smallIcon.Get()) + "\" ");

    auto r = Fresh();
    ASSERT_EQ(r->Read(file.Path()), 0);
    ASSERT_TRUE(r->icon);
    ASSERT_TRUE(r->smallIcon);
    EXPECT_EQ(IconSize(r->icon.Get()).cx, 32);
    EXPECT_EQ(IconSize(r->icon.Get()).cy, 32);
    EXPECT_EQ(IconSize(r->smallIcon.Get()).cx, GetSystemMetrics(SM_CXSMICON));
    for (COLORREF background : {RGB(0x20, 0xC0, 0x60), RGB(0x90, 0x10, 0xA0)}) {
        EXPECT_EQ(RenderedIcon(r->icon.Get(), 32, background), RenderedIcon(w->icon.Get(), 32, background));
        EXPECT_EQ(RenderedIcon(r->smallIcon.Get(), 16, background), RenderedIcon(w->smallIcon.Get(), 16, background));
    }
    EXPECT_EQ(RenderedIcon(r->icon.Get(), 32, 0, DI_MASK), RenderedIcon(w->icon.Get(), 32, 0, DI_MASK));
}

TEST(Writer, FourBitIconIsWrittenAndReadBackWithItsPixelsAndMask) {
    TempFile file("4bit-icon");
    auto w = Fresh();
    w->host = "server";
    w->SetIcons(MakeTestIcon(32, 4), MakeTestIcon(16, 4, 2));
    ASSERT_EQ(w->Write(file.Path()), 0);
    auto r = Fresh();
    ASSERT_EQ(r->Read(file.Path()), 0);
    ASSERT_TRUE(r->icon);
    ASSERT_TRUE(r->smallIcon);
    EXPECT_EQ(IconSize(r->icon.Get()).cx, 32);
    EXPECT_EQ(IconSize(r->icon.Get()).cy, 32);
    for (COLORREF background : {RGB(0x20, 0xC0, 0x60), RGB(0x90, 0x10, 0xA0)}) {
        EXPECT_EQ(RenderedIcon(r->icon.Get(), 32, background), RenderedIcon(w->icon.Get(), 32, background));
        EXPECT_EQ(RenderedIcon(r->smallIcon.Get(), 16, background), RenderedIcon(w->smallIcon.Get(), 16, background));
    }
    EXPECT_EQ(RenderedIcon(r->icon.Get(), 32, 0, DI_MASK), RenderedIcon(w->icon.Get(), 32, 0, DI_MASK));
    // The drawing uses the whole palette, so equal drawings mean equal icons.
    std::vector<std::uint32_t> drawn = RenderedIcon(r->icon.Get(), 32, RGB(0x20, 0xC0, 0x60));
    std::sort(drawn.begin(), drawn.end());
    EXPECT_GE(std::unique(drawn.begin(), drawn.end()) - drawn.begin(), 16);
}

TEST(Writer, ReplacesLongerContent) {
    TempFile file("replace", std::string(5000, 'x'));
    auto r = Fresh();
    r->host = "h";
    ASSERT_EQ(r->Write(file.Path()), 0);
    EXPECT_EQ(file.Content(), "-h h ");
}

TEST(Writer, DirectoryPathFailsWithTheErrorOfCreateFile) {
    char folder[MAX_PATH + 1] = {};
    GetTempPathA(sizeof(folder), folder);
    const std::string directory = std::string(folder) + "vqc-writer-dir-" + std::to_string(GetCurrentProcessId());
    ASSERT_TRUE(CreateDirectoryA(directory.c_str(), nullptr));
    SetLastError(0);
    HANDLE probe = CreateFileA(directory.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    const DWORD expected = GetLastError();
    EXPECT_EQ(probe, INVALID_HANDLE_VALUE);
    auto r = Fresh();
    r->host = "h";
    r->lastError = 0xdeadbeef;
    EXPECT_EQ(r->Write(directory.c_str()), 1);
    EXPECT_EQ(r->lastError, expected);
    EXPECT_NE(r->lastError, 0u);
    RemoveDirectoryA(directory.c_str());
}

TEST(Writer, ReadOnlyFileFailsWithAccessDeniedAndKeepsItsContent) {
    TempFile file("readonly", "-h old ");
    ASSERT_TRUE(SetFileAttributesA(file.Path(), FILE_ATTRIBUTE_READONLY));
    // Wine keeps the attribute as Unix permissions, which root does not obey.
    HANDLE probe = CreateFileA(file.Path(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                               FILE_ATTRIBUTE_NORMAL, nullptr);
    if (probe != INVALID_HANDLE_VALUE) {
        CloseHandle(probe);
        GTEST_SKIP() << "read-only files are writable for this user (Wine run as root)";
    }
    auto r = Fresh();
    r->host = "new";
    EXPECT_EQ(r->Write(file.Path()), 1);
    EXPECT_EQ(r->lastError, static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(file.Content(), "-h old ");
}

TEST(Writer, FileOpenedWithoutSharingFailsWithSharingViolationAndKeepsItsContent) {
    TempFile file("locked", "-h old ");
    HANDLE lock = CreateFileA(file.Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    auto r = Fresh();
    r->host = "new";
    EXPECT_EQ(r->Write(file.Path()), 1);
    EXPECT_EQ(r->lastError, static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    CloseHandle(lock);
    EXPECT_EQ(file.Content(), "-h old ");
}

TEST(Writer, NullPathFailsWithAnError) {
    auto r = Fresh();
    EXPECT_EQ(r->Write(nullptr), 1);
    EXPECT_NE(r->lastError, 0u);
}

TEST(Writer, SuccessLeavesLastErrorAlone) {
    TempFile file("ok");
    auto r = Fresh();
    r->lastError = 0xdeadbeef;
    EXPECT_EQ(r->Write(file.Path()), 0);
    EXPECT_EQ(r->lastError, 0xdeadbeefu);
}
