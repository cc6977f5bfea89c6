// Write then Read into a fresh record: equal field by field, except where writer and
// reader deliberately differ. Each of those differences is code in ExpectedAfterRoundTrip
// and has an example of its own below.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "common/ansi_text.h"
#include "connection/address_split.h"
#include "connection/vqc_file_info.h"
#include "test_files.h"
#include "tests/support/test_icons.h"

namespace {

using ansi_text::Trimmed;

constexpr const char* kFreshPath = "C:\\fresh.vqc";

// The -C text as the reader gets it back: split into tokens at blanks outside double
// quotes, quotes removed, joined with single blanks. (The generator makes no backslashes,
// so this is all of the splitting rules that apply.)
std::string RejoinedCommandLine(const std::string& text) {
    std::vector<std::string> tokens;
    std::string current;
    bool quoted = false, any = false;
    for (char c : text) {
        if (c == '"') {
            quoted = !quoted;
            any = true;
        } else if (c == ' ' && !quoted) {
            if (any) tokens.push_back(current);
            current.clear();
            any = false;
        } else {
            current.push_back(c);
            any = true;
        }
    }
    if (any) tokens.push_back(current);
    std::string joined;
    for (std::size_t i = 0; i < tokens.size(); ++i) joined += (i ? " " : "") + tokens[i];
    return joined;
}

bool HasAt(const std::string& text) { return text.find('@') != std::string::npos; }

// What a fresh record holds after reading the file that `w` writes.
ConnectionSettings ExpectedAfterRoundTrip(const VQCFileInfo& w) {
    ConnectionSettings e(kFreshPath);
    e.noOptionM = 1;  // every read sets it; -M and -K clear it
    const std::int32_t v = w.clientVersion;

    if (w.optionK) {
        e.optionK = 1;
        e.noOptionM = 0;
    } else {
        if (w.localConnect) {
            e.localConnect = 1;
            // Deviation: a target with '@' comes back as login, host and service port,
            // since the reader tests for '@' before it looks at -d.
            if (HasAt(w.localTarget))
                SplitAddress(w.localTarget.c_str(), &e.login, &e.host, &e.servicePort);
            else
                e.localTarget = Trimmed(w.localTarget);
            e.startDirectory = Trimmed(w.startDirectory);
        } else {
            // Deviation: host (like every text the reader takes) comes back trimmed.
            e.host = Trimmed(w.host);
            if (w.optionL)
                e.optionL = 1;
            else if (w.optionN)
                e.optionN = 1;
            else if (w.optionNM)
                e.optionNM = 1, e.noOptionM = 0;
            // Deviation: values the writer leaves out come back as the defaults.
            const std::int32_t defaultPort = w.encrypt ? 4790 : 790;
            if (!w.serviceName.empty() && w.servicePort != -1 && w.servicePort != defaultPort)
                e.servicePort = w.servicePort;
            e.optionR = w.optionR;
            if (v >= 665 && v <= 689 && !w.noOptionM && !w.serviceName.empty() && !w.optionNM) e.noOptionM = 0;
            if (v >= 620 && v != 640 && w.encrypt) e.encrypt = 1;
            e.option_s = w.option_s;
            if (v >= 620) {
                if (!w.brokerHost.empty() && w.route == 2) {
                    e.route = 2;
                    e.brokerHost = w.brokerHost;
                    e.brokerPort = w.brokerPort;
                    // Deviation: -F is read back from the second character of the
                    // broker text, not from the option letter.
                    e.brokerUpperF = w.brokerHost.size() > 1 && w.brokerHost[1] == 'F';
                }
                if (!w.proxyHost.empty() && w.route == 1) {
                    e.route = 1;
                    e.proxyHost = w.proxyHost;
                    if (!w.proxyUser.empty()) e.proxyUser = w.proxyUser;
                    e.proxyPort = w.proxyPort;
                }
            }
            // Deviation: -T is written but never read, so optionT stays 0.
        }
        if (!w.serviceName.empty()) e.serviceName = Trimmed(w.serviceName);
        if (!w.answerBack.empty()) e.answerBack = Trimmed(w.answerBack);
    }
    if (!w.login.empty()) e.login = Trimmed(w.login);
    // -N next to a -M (or -K) folds into optionNM, also when the -M was the automatic one.
    if (e.optionN && !e.noOptionM) e.optionN = 0, e.optionNM = 1;
    // Deviation: -C comes back re-joined from its tokens.
    e.commandLine = RejoinedCommandLine(w.commandLine);
    return e;
}

#define EXPECT_FIELD(field) EXPECT_EQ(actual.field, expected.field) << #field << " (seed " << seed << ")"

void ExpectSameFields(const ConnectionSettings& actual, const ConnectionSettings& expected, unsigned seed) {
    EXPECT_FIELD(answerBack);
    EXPECT_FIELD(login);
    EXPECT_FIELD(host);
    EXPECT_FIELD(commandLine);
    EXPECT_FIELD(localTarget);
    EXPECT_FIELD(serviceName);
    EXPECT_FIELD(startDirectory);
    EXPECT_FIELD(proxyHost);
    EXPECT_FIELD(proxyUser);
    EXPECT_FIELD(brokerHost);
    EXPECT_FIELD(clientPath);
    EXPECT_FIELD(spareText);
    EXPECT_FIELD(servicePort);
    EXPECT_FIELD(proxyPort);
    EXPECT_FIELD(brokerPort);
    EXPECT_FIELD(lastError);
    EXPECT_FIELD(modified);
    EXPECT_FIELD(encrypt);
    EXPECT_FIELD(disguiseHttp);
    EXPECT_FIELD(optionT);
    EXPECT_FIELD(localConnect);
    EXPECT_FIELD(optionR);
    EXPECT_FIELD(optionN);
    EXPECT_FIELD(optionNM);
    EXPECT_FIELD(optionL);
    EXPECT_FIELD(optionK);
    EXPECT_FIELD(brokerUpperF);
    EXPECT_FIELD(option_s);
    EXPECT_FIELD(noOptionM);
    EXPECT_FIELD(inDomain);
    EXPECT_FIELD(inDomainKnown);
    EXPECT_FIELD(clientVersion);
    EXPECT_FIELD(route);
    EXPECT_FIELD(filePath);
}

// Random records. Texts are drawn without '"' (a quote does not survive, see its own
// example), without backslashes, and values that the reader meets as bare arguments
// never start with '-'.
class RecordGenerator {
public:
    explicit RecordGenerator(unsigned seed) : random_(seed) {}

    int Number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    bool Chance(int percent) { return Number(1, 100) <= percent; }

    std::string Word() {
        static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._";
        std::string word;
        for (int i = Number(1, 8); i > 0; --i) word.push_back(kLetters[Number(0, sizeof(kLetters) - 2)]);
        return word;
    }

    // Empty, one word, words with a blank, sometimes with blanks around.
    std::string Text(bool blanksAround) {
        if (Chance(30)) return std::string();
        std::string text = Word();
        if (Chance(30)) text += " " + Word();
        if (blanksAround && Chance(20)) text = " " + text;
        if (blanksAround && Chance(20)) text += "  ";
        return text;
    }

    std::string CommandLine() {
        if (Chance(30)) return std::string();
        std::string text = Chance(20) ? "  " : "";
        for (int i = Number(1, 5); i > 0; --i) {
            text += Chance(25) ? "\"" + Word() + "  " + Word() + "\"" : (Chance(20) ? "-" : "") + Word();
            text += std::string(static_cast<std::size_t>(Number(1, 3)), ' ');
        }
        return text;
    }

    std::unique_ptr<VQCFileInfo> Record() {
        auto r = std::make_unique<VQCFileInfo>("C:\\written.vqc");
        static constexpr std::int32_t kVersions[] = {600, 619, 620, 640, 641, 664, 665, 677, 689, 690, 726};
        r->clientVersion = kVersions[Number(0, 10)];
        r->answerBack = Text(true);
        r->login = Text(true);
        r->host = Text(true);
        r->commandLine = CommandLine();
        r->localTarget =
            Chance(25) ? Word() + "@" + Word() + (Chance(50) ? ":" + std::to_string(Number(1, 9999)) : "") : Text(true);
        r->serviceName = Text(true);
        r->startDirectory = Text(true);
        r->proxyHost = Chance(70) ? Word() : "";
        r->proxyUser = Chance(50) ? Word() : "";
        r->brokerHost = Chance(70) ? (Chance(20) ? "xF" + Word() : Word()) : "";
        static constexpr std::int32_t kServicePorts[] = {-1, 790, 4790, 0, 5000, 65535};
        r->servicePort = Chance(50) ? kServicePorts[Number(0, 5)] : Number(1, 65535);
        r->proxyPort = Chance(50) ? 8080 : Number(1, 65535);
        r->brokerPort = Chance(50) ? 14600 : Number(1, 65535);
        r->encrypt = Chance(50);
        r->disguiseHttp = Chance(20);
        const int kind = Number(0, 3);  // remote, local, discover
        r->localConnect = kind == 1;
        r->optionK = kind == 2;
        const int login = Number(0, 5);  // one choice of the login-type list
        r->optionR = login == 1;
        r->optionT = login == 2;
        r->optionN = login == 3;
        r->optionNM = login == 4;
        r->optionL = login == 5;
        r->brokerUpperF = Chance(50);
        r->option_s = Chance(50);
        r->noOptionM = Chance(50);
        r->route = Number(0, 2);
        r->modified = Chance(50);
        return r;
    }

private:
    std::mt19937 random_;
};

// Writes w to a real file and reads it into a fresh record.
std::unique_ptr<VQCFileInfo> RoundTrip(VQCFileInfo& w) {
    TempFile file("roundtrip");
    EXPECT_EQ(w.Write(file.Path()), 0);
    auto r = std::make_unique<VQCFileInfo>(kFreshPath);
    EXPECT_EQ(r->Read(file.Path()), 0);
    return r;
}

std::unique_ptr<VQCFileInfo> Remote() {
    auto w = std::make_unique<VQCFileInfo>("C:\\written.vqc");
    w->host = "server";
    return w;
}

}  // namespace

TEST(RoundTrip, SeededRandomRecordsComeBackAsWrittenExceptTheKnownDeviations) {
    const UniqueIcon icon(MakeTestIcon(32, 8));
    for (unsigned seed = 1; seed <= 300; ++seed) {
        RecordGenerator generate(seed);
        auto w = generate.Record();
        const bool withIcon = generate.Chance(20);
        if (withIcon) w->SetIcons(CopyIcon(icon.Get()), generate.Chance(50) ? CopyIcon(icon.Get()) : nullptr);
        auto r = RoundTrip(*w);
        ExpectSameFields(*r, ExpectedAfterRoundTrip(*w), seed);
        EXPECT_EQ(static_cast<bool>(r->icon), withIcon) << seed;
        EXPECT_EQ(static_cast<bool>(r->smallIcon), static_cast<bool>(w->smallIcon) && withIcon) << seed;
        if (withIcon) {
            EXPECT_EQ(IconSize(r->icon.Get()).cx, 32) << seed;
        }
        if (HasFailure()) return;  // one seed's story is enough
    }
}

TEST(RoundTrip, TIsWrittenButNotReadBack) {
    auto w = Remote();
    w->optionT = 1;
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->optionT, 0);
    EXPECT_EQ(r->host, "server");
}

TEST(RoundTrip, UpperFComesBackClearForAnOrdinaryBrokerName) {
    auto w = Remote();
    w->route = 2;
    w->brokerHost = "broker";
    w->brokerUpperF = 1;
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->brokerHost, "broker");
    EXPECT_EQ(r->brokerUpperF, 0);
}

TEST(RoundTrip, LowerFComesBackAsUpperFWhenTheBrokerNameHasFSecond) {
    auto w = Remote();
    w->route = 2;
    w->brokerHost = "xFoo";
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->brokerUpperF, 1);
}

TEST(RoundTrip, LocalTargetWithAtComesBackAsLoginHostAndPort) {
    auto w = std::make_unique<VQCFileInfo>("C:\\written.vqc");
    w->localConnect = 1;
    w->localTarget = "bob@box:42";
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->localConnect, 1);
    EXPECT_EQ(r->localTarget, "");
    EXPECT_EQ(r->login, "bob");
    EXPECT_EQ(r->host, "box");
    EXPECT_EQ(r->servicePort, 42);
}

TEST(RoundTrip, HostAndLoginComeBackTrimmed) {
    auto w = Remote();
    w->host = "  my server ";
    w->login = " bob ";
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->host, "my server");
    EXPECT_EQ(r->login, "bob");
}

TEST(RoundTrip, CommandLineLosesQuotesAndRunsOfBlanks) {
    auto w = Remote();
    w->commandLine = "prog   -x \"a  b\"  end";
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->commandLine, "prog -x a  b end");
}

TEST(RoundTrip, ValueWithAQuoteDoesNotSurvive) {
    auto w = Remote();
    w->login = "say \"hi\" now";
    w->answerBack = "ab";
    auto r = RoundTrip(*w);
    EXPECT_NE(r->login, w->login);
    EXPECT_EQ(r->login, "say hi now");  // "say \"hi\" now" written as "\"say \"hi\" now\""
}

TEST(RoundTrip, DefaultServicePortComesBackAsNotGiven) {
    auto w = Remote();
    w->serviceName = "svc";
    w->servicePort = 790;
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->servicePort, -1);
}

TEST(RoundTrip, RouteOnClient619ComesBackDirect) {
    auto w = Remote();
    w->clientVersion = 619;
    w->route = 1;
    w->proxyHost = "proxy";
    w->proxyPort = 3128;
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->route, 0);
    EXPECT_EQ(r->proxyHost, "");
    EXPECT_EQ(r->proxyPort, 8080);
}

TEST(RoundTrip, EncryptOnClient640ComesBackClear) {
    auto w = Remote();
    w->clientVersion = 640;
    w->encrypt = 1;
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->encrypt, 0);
}

TEST(RoundTrip, NMIsWrittenAsNAndMAndFoldedBack) {
    auto w = Remote();
    w->optionNM = 1;
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->optionNM, 1);
    EXPECT_EQ(r->optionN, 0);
    EXPECT_EQ(r->noOptionM, 0);
}

TEST(RoundTrip, NWithTheAutomaticMComesBackAsNM) {
    auto w = Remote();
    w->clientVersion = 670;
    w->optionN = 1;
    w->serviceName = "svc";
    w->noOptionM = 0;
    auto r = RoundTrip(*w);
    EXPECT_EQ(r->optionN, 0);
    EXPECT_EQ(r->optionNM, 1);
}
