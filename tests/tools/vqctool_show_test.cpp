// vqctool show: one file in the text format, many files, folders with -r, wildcards, and
// the JSON parsed back and compared field by field with what the reader makes of each file.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "connection/icon_stream.h"
#include "connection/vqc_file_info.h"
#include "tests/support/test_icons.h"
#include "tests/tools/vqctool_run.h"
#include "tools/vqctool/record_fields.h"

using namespace vqctool_test;

namespace {

// vqctool's quoting of a path: backslashes doubled.
std::string Dumped(const std::string& path) {
    std::string out = "\"";
    for (const char c : path) out += c == '\\' ? std::string("\\\\") : std::string(1, c);
    return out + "\"";
}

std::string IconText32() {
    const IconImage images[] = {MakeTestIconImage(32, 32), MakeTestIconImage(16, 32, 2)};
    return HexTextOf(BuildIconStream(images, 2));
}

// A folder with three files at the top (one not a connection file) and two below.
struct Tree {
    TempFolder folder{"tool-tree"};
    Tree() {
        WriteFileBytes(folder.File("b.vqc"), "-h bravo -u bob");
        WriteFileBytes(folder.File("A.vqc"), "-h alpha -l");
        WriteFileBytes(folder.File("notes.txt"), "-h not-a-connection");
        WriteFileBytes(folder.File("c.vqcx"), "-h not-a-connection-either");
        CreateDirectoryA(folder.File("sub").c_str(), nullptr);
        WriteFileBytes(folder.File("sub\\d.vqc"), "-h delta");
        CreateDirectoryA(folder.File("sub\\deeper").c_str(), nullptr);
        WriteFileBytes(folder.File("sub\\deeper\\e.vqc"), "-h echo -c proxy:3128");
    }
};

std::vector<std::string> Paths(const nlohmann::json& array) {
    std::vector<std::string> paths;
    for (const auto& entry : array) paths.push_back(entry["path"]);
    return paths;
}

// Every field of the entry against the reader's record of the same file.
void ExpectSameAsReader(const nlohmann::json& entry, const std::string& path) {
    VQCFileInfo record(path.c_str());
    ASSERT_EQ(record.Read(path.c_str()), 0) << path;
    for (const vqctool::RecordField& field : vqctool::kRecordFields) {
        SCOPED_TRACE(field.name);
        ASSERT_TRUE(entry.contains(field.name));
        const nlohmann::json& value = entry[field.name];
        switch (field.kind) {
        case vqctool::FieldKind::Text: EXPECT_EQ(value.get<std::string>(), record.*field.text); break;
        case vqctool::FieldKind::Number:
            ASSERT_TRUE(value.is_number_integer());
            EXPECT_EQ(value.get<std::int32_t>(), record.*field.number);
            break;
        case vqctool::FieldKind::UnsignedNumber:
            EXPECT_EQ(value.get<std::uint32_t>(), record.*field.unsignedNumber);
            break;
        case vqctool::FieldKind::Flag:
            ASSERT_TRUE(value.is_boolean());
            EXPECT_EQ(value.get<bool>(), record.*field.flag != 0);
            break;
        }
    }
    EXPECT_EQ(entry["filePath"], record.filePath);
    EXPECT_EQ(entry["icon"].is_null(), !record.icon);
    EXPECT_EQ(entry["smallIcon"].is_null(), !record.smallIcon);
}

}  // namespace

TEST(VqctoolShow, PrintsResultAndEveryFieldInOrder) {
    TempFolder folder("tool-show");
    const std::string file = folder.File("show.vqc");
    const IconImage images[] = {MakeTestIconImage(32, 4), MakeTestIconImage(32, 4)};
    WriteFileBytes(file, "-h \"my server\" -N -M -V 5000 -c admin@proxy:3128 -a \"x\ty\" -u bob \r\n-I \"" +
                             HexTextOf(BuildIconStream(images, 2)) + "\" -C run \"a\\\\b\"");
    const ToolRun run = RunTool("show " + Quoted(file));
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.err, "");
    const std::string small =
        std::to_string(GetSystemMetrics(SM_CXSMICON)) + "x" + std::to_string(GetSystemMetrics(SM_CYSMICON));
    EXPECT_EQ(run.out,
              "result=0\n"
              "answerBack=\"x\\ty\"\n"
              "login=\"bob\"\n"
              "host=\"my server\"\n"
              "commandLine=\"run a\\\\\\\\b\"\n"  // two backslashes not before a quote stay two
              "localTarget=\"\"\n"
              "serviceName=\"\"\n"
              "startDirectory=\"\"\n"
              "proxyHost=\"proxy\"\n"
              "proxyUser=\"admin\"\n"
              "brokerHost=\"\"\n"
              "clientPath=\"\"\n"
              "spareText=\"\"\n"
              "servicePort=5000\n"
              "proxyPort=3128\n"
              "brokerPort=14600\n"
              "lastError=0\n"
              "modified=0\n"
              "encrypt=0\n"
              "disguiseHttp=0\n"
              "optionT=0\n"
              "localConnect=0\n"
              "optionR=0\n"
              "optionN=0\n"
              "optionNM=1\n"
              "optionL=0\n"
              "optionK=0\n"
              "brokerUpperF=0\n"
              "option_s=0\n"
              "noOptionM=0\n"
              "inDomain=0\n"
              "inDomainKnown=0\n"
              "clientVersion=726\n"
              "route=1\n"
              "filePath=" +
                  Dumped(file) +
                  "\n"
                  "refCount=0\n"
                  "icon=32x32\n"
                  "smallIcon=" +
                  small + "\n");
}

TEST(VqctoolShow, AFileWithoutIconSaysNone) {
    TempFolder folder("tool-noicon");
    WriteFileBytes(folder.File("a.vqc"), "-h server");
    const ToolRun run = RunTool("show " + Quoted(folder.File("a.vqc")));
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_NE(run.out.find("\nicon=none\nsmallIcon=none\n"), std::string::npos) << run.out;
}

TEST(VqctoolShow, AMissingFileExitsOneWithWindowsText) {
    TempFolder folder("tool-missing");
    const std::string file = folder.File("missing.vqc");
    const ToolRun run = RunTool("show " + Quoted(file));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.out.substr(0, 9), "result=1\n");
    EXPECT_NE(run.out.find("\nlastError=2\n"), std::string::npos);
    EXPECT_EQ(run.err, "vqctool: cannot read " + file + ": " + SystemText(ERROR_FILE_NOT_FOUND) + "\n");
}

TEST(VqctoolShow, AnEmptyFileExitsOne) {
    TempFolder folder("tool-empty");
    WriteFileBytes(folder.File("empty.vqc"), "");
    const ToolRun run = RunTool("show " + Quoted(folder.File("empty.vqc")));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.out.substr(0, 9), "result=1\n");
}

TEST(VqctoolShow, ManyFilesEachAfterItsPathInPathOrderWithASummary) {
    Tree tree;
    const ToolRun run = RunTool("show " + Quoted(tree.folder.File("b.vqc")) + " " + Quoted(tree.folder.File("A.vqc")));
    EXPECT_EQ(run.exitCode, 0u);
    const std::size_t a = run.out.find("file=" + Dumped(tree.folder.File("A.vqc")) + "\nresult=0\n");
    const std::size_t b = run.out.find("\nfile=" + Dumped(tree.folder.File("b.vqc")) + "\nresult=0\n");
    EXPECT_EQ(a, 0u) << run.out;
    ASSERT_NE(b, std::string::npos) << run.out;
    EXPECT_EQ(run.err, "2 files, 0 changed, 0 failed\n");
}

TEST(VqctoolShow, JsonOfOneFileMatchesTheReaderFieldByField) {
    TempFolder folder("tool-json-one");
    const std::string file = folder.File("one.vqc");
    WriteFileBytes(file, "-h server -N -V 5000 -l -c admin@proxy:3128 -a answer -u bob -v svc \r\n-I \"" +
                             IconText32() + "\" -C run me");
    const ToolRun run = RunTool("show --json " + Quoted(file));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(run.err, "");
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    ASSERT_TRUE(parsed.is_array());
    ASSERT_EQ(parsed.size(), 1u);
    const nlohmann::json& entry = parsed[0];
    EXPECT_EQ(entry["path"], file);
    ExpectSameAsReader(entry, file);
    EXPECT_EQ(entry["routeName"], "Connect via a proxy server");
    EXPECT_EQ(entry["connectionType"], "Connect to remote server");
    EXPECT_EQ(entry["loginType"], "NT domain authentication");
    EXPECT_EQ(entry["icon"], (nlohmann::json{{"width", 32}, {"height", 32}, {"bitsPerPixel", 32}}));
    EXPECT_EQ(entry["smallIcon"]["bitsPerPixel"], 32);
    EXPECT_FALSE(entry.contains("error"));
}

TEST(VqctoolShow, JsonOfAFolderHoldsItsConnectionFilesOnly) {
    Tree tree;
    const ToolRun run = RunTool("show --json " + Quoted(tree.folder.Path()));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    EXPECT_EQ(Paths(parsed), (std::vector<std::string>{tree.folder.File("A.vqc"), tree.folder.File("b.vqc")}));
    for (const auto& entry : parsed) ExpectSameAsReader(entry, entry["path"]);
    EXPECT_EQ(run.err, "2 files, 0 changed, 0 failed\n");
}

TEST(VqctoolShow, JsonOfAFolderWithRecursiveWalksEverySubfolderInPathOrder) {
    Tree tree;
    const ToolRun run = RunTool("show --json -r " + Quoted(tree.folder.Path()));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    EXPECT_EQ(Paths(parsed),
              (std::vector<std::string>{tree.folder.File("A.vqc"), tree.folder.File("b.vqc"),
                                        tree.folder.File("sub\\d.vqc"), tree.folder.File("sub\\deeper\\e.vqc")}));
    for (const auto& entry : parsed) ExpectSameAsReader(entry, entry["path"]);
    EXPECT_EQ(run.err, "4 files, 0 changed, 0 failed\n");
}

TEST(VqctoolShow, WildcardsMatchAsFindFirstFileDoes) {
    Tree tree;
    const ToolRun run =
        RunTool("show --json " + Quoted(tree.folder.File("?.vqc")) + " " + Quoted(tree.folder.File("n*")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    // notes.txt is named by its own pattern, so it is read whatever its name.
    EXPECT_EQ(Paths(parsed), (std::vector<std::string>{tree.folder.File("A.vqc"), tree.folder.File("b.vqc"),
                                                       tree.folder.File("notes.txt")}));
}

TEST(VqctoolShow, WildcardsWithRecursiveMatchInEverySubfolder) {
    Tree tree;
    const ToolRun run = RunTool("show --json -r " + Quoted(tree.folder.File("*e*.vqc")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(Paths(nlohmann::json::parse(run.out)), std::vector<std::string>{tree.folder.File("sub\\deeper\\e.vqc")});
}

TEST(VqctoolShow, APatternThatMatchesNothingFailsAndTheOthersAreShown) {
    Tree tree;
    const ToolRun run =
        RunTool("show --json " + Quoted(tree.folder.File("zz*.vqc")) + " " + Quoted(tree.folder.File("b.vqc")));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(Paths(nlohmann::json::parse(run.out)), std::vector<std::string>{tree.folder.File("b.vqc")});
    EXPECT_EQ(run.err, "vqctool: no file matches " + tree.folder.File("zz*.vqc") + "\n2 files, 0 changed, 1 failed\n");
}

TEST(VqctoolShow, JsonOfAnUnreadableFileHasItsErrorAndTheOthersTheirFields) {
    Tree tree;
    const std::string missing = tree.folder.File("gone.vqc");
    const ToolRun run = RunTool("show --json " + Quoted(missing) + " " + Quoted(tree.folder.File("b.vqc")));
    EXPECT_EQ(run.exitCode, 1u);
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    ASSERT_EQ(parsed.size(), 2u);
    EXPECT_EQ(parsed[1], (nlohmann::json{{"path", missing}, {"error", SystemText(ERROR_FILE_NOT_FOUND)}}));
    ExpectSameAsReader(parsed[0], tree.folder.File("b.vqc"));
    EXPECT_NE(run.err.find("vqctool: cannot read " + missing), std::string::npos) << run.err;
}

TEST(VqctoolShow, JsonTextsAreUtf8FromTheAnsiCodePage) {
    if (GetACP() != 1252) GTEST_SKIP() << "the test's bytes are Windows-1252; this code page is " << GetACP();
    TempFolder folder("tool-utf8");
    WriteFileBytes(folder.File("a.vqc"), "-h server -u J\xF6rg -a \x80uro");
    const ToolRun run = RunTool("show --json " + Quoted(folder.File("a.vqc")));
    EXPECT_EQ(run.exitCode, 0u);
    const nlohmann::json parsed = nlohmann::json::parse(run.out);
    EXPECT_EQ(parsed[0]["login"], "J\xC3\xB6rg");
    EXPECT_EQ(parsed[0]["answerBack"], "\xE2\x82\xACuro");
}

TEST(VqctoolShow, JsonOfNoMatchingFileIsAnEmptyArray) {
    TempFolder folder("tool-json-empty");
    const ToolRun run = RunTool("show --json " + Quoted(folder.Path()));
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(nlohmann::json::parse(run.out), nlohmann::json::array());
}
