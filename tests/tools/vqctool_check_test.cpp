// vqctool check on files made for each client version that changes what the writer
// writes or the pages offer: 619/620 (routes, -l), 640 (-l), 665 (discovery), 689/690
// (broker, NT logins), 726 (-T, quotes in -C).
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/tools/vqctool_run.h"

using namespace vqctool_test;

namespace {

struct Checked {
    DWORD exitCode;
    std::vector<std::string> findings;  // "field: before -> after (reason)" lines
};

Checked Check(const std::string& line, int version) {
    TempFolder folder("tool-check");
    const std::string file = folder.File("a.vqc");
    WriteFileBytes(file, line);
    const ToolRun run = RunTool("check --client-version " + std::to_string(version) + " " + Quoted(file));
    EXPECT_EQ(ReadFileBytes(file), line) << "check never writes the file";
    Checked checked{run.exitCode, {}};
    const std::vector<std::string> lines = Lines(run.out);
    EXPECT_FALSE(lines.empty());
    if (lines.empty()) return checked;
    EXPECT_EQ(lines[0], file + (lines.size() == 1 ? ": unchanged for client " : ": changes for client ") +
                            std::to_string(version));
    for (std::size_t i = 1; i < lines.size(); ++i) checked.findings.push_back(lines[i].substr(2));
    return checked;
}

using Lines_ = std::vector<std::string>;

}  // namespace

TEST(VqctoolCheck, Client619LosesTheProxyAndEncryption) {
    const Checked checked = Check("-h server -l -c proxy:3128 -u bob", 619);
    EXPECT_EQ(checked.exitCode, 1u);
    EXPECT_EQ(checked.findings, (Lines_{"proxyHost: proxy ->  (client 619 takes no proxy or broker (-c, -f))",
                                        "proxyPort: 3128 -> 8080 (client 619 takes no proxy or broker (-c, -f))",
                                        "encrypt: true -> false (client 619 cannot take -l)",
                                        "route: 1 -> 0 (client 619 takes no proxy or broker (-c, -f))"}));
}

TEST(VqctoolCheck, Client620KeepsTheProxyAndEncryption) {
    const Checked checked = Check("-h server -l -c proxy:3128 -u bob", 620);
    EXPECT_EQ(checked.exitCode, 0u);
    EXPECT_EQ(checked.findings, Lines_{});
}

TEST(VqctoolCheck, Client640LosesEncryptionOnly) {
    const Checked checked = Check("-h server -l -c proxy:3128 -u bob", 640);
    EXPECT_EQ(checked.exitCode, 1u);
    EXPECT_EQ(checked.findings, Lines_{"encrypt: true -> false (client 640 cannot take -l)"});
}

TEST(VqctoolCheck, DiscoveryIsOfferedFrom665) {
    const Checked before = Check("-K -u bob", 664);
    EXPECT_EQ(before.exitCode, 1u);
    EXPECT_EQ(before.findings,
              Lines_{"connection-type: Discover service (client 664 is not offered this connection type)"});
    const Checked from = Check("-K -u bob", 665);
    EXPECT_EQ(from.exitCode, 0u);
    EXPECT_EQ(from.findings, Lines_{});
}

TEST(VqctoolCheck, TheBrokerEndsWith689AndNtLoginsWith690) {
    const Checked broker689 = Check("-h server -N -f broker:1500", 689);
    EXPECT_EQ(broker689.exitCode, 0u);
    EXPECT_EQ(broker689.findings, Lines_{});
    const Checked broker690 = Check("-h server -N -f broker:1500", 690);
    EXPECT_EQ(broker690.exitCode, 1u);
    EXPECT_EQ(broker690.findings,
              (Lines_{"login-type: NT domain authentication (client 690 is not offered this login type)",
                      "routeName: Connect via a connection broker (client 690 is not offered this route)"}));
}

TEST(VqctoolCheck, Client726NeverReadsBackTAndQuotesInC) {
    const Checked checked = Check("-h server -T -C run \"a b\"", 726);
    EXPECT_EQ(checked.exitCode, 1u);
    EXPECT_EQ(checked.findings, (Lines_{"option -T: -T (-T is never read back, so a rewrite drops it)",
                                        "commandLine: run \"a b\" -> run a b (quotes in -C are lost)"}));
}

TEST(VqctoolCheck, JsonOfAFolderWithRecursiveListsEachFilesFindings) {
    TempFolder folder("tool-check-json");
    WriteFileBytes(folder.File("a.vqc"), "-h server -l");
    CreateDirectoryA(folder.File("sub").c_str(), nullptr);
    WriteFileBytes(folder.File("sub\\b.vqc"), "-h server -u bob");
    const ToolRun run = RunTool("check --json -r --client-version 640 " + Quoted(folder.Path()));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.err, "2 files, 1 changed, 0 failed\n");
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    ASSERT_EQ(parsed.size(), 2u);
    EXPECT_EQ(parsed[0]["path"], folder.File("a.vqc"));
    EXPECT_EQ(parsed[0]["clientVersion"], 640);
    EXPECT_EQ(parsed[0]["findings"], (nlohmann::json::array({{{"field", "encrypt"},
                                                              {"before", "true"},
                                                              {"after", "false"},
                                                              {"reason", "client 640 cannot take -l"}}})));
    EXPECT_EQ(parsed[1]["path"], folder.File("sub\\b.vqc"));
    EXPECT_EQ(parsed[1]["findings"], nlohmann::json::array());
}

TEST(VqctoolCheck, AWildcardOverFilesThatKeepTheirMeaningIsStatusZero) {
    TempFolder folder("tool-check-wild");
    WriteFileBytes(folder.File("a.vqc"), "-h alpha");
    WriteFileBytes(folder.File("b.vqc"), "-h bravo -u bob");
    const ToolRun run = RunTool("check --client-version 726 " + Quoted(folder.File("*.vqc")));
    EXPECT_EQ(run.exitCode, 0u) << run.out << run.err;
    EXPECT_EQ(run.out, folder.File("a.vqc") + ": unchanged for client 726\n" + folder.File("b.vqc") +
                           ": unchanged for client 726\n");
    EXPECT_EQ(run.err, "2 files, 0 changed, 0 failed\n");
}

TEST(VqctoolCheck, AnUnreadableFileFailsAndTheOthersAreChecked) {
    TempFolder folder("tool-check-missing");
    WriteFileBytes(folder.File("b.vqc"), "-h bravo");
    const ToolRun run = RunTool("check --json " + Quoted(folder.File("a.vqc")) + " " + Quoted(folder.File("b.vqc")));
    EXPECT_EQ(run.exitCode, 1u);
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    ASSERT_EQ(parsed.size(), 2u);
    EXPECT_EQ(parsed[0]["error"], SystemText(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(parsed[1]["findings"], nlohmann::json::array());
}
