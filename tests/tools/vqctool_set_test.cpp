// vqctool set, new and rewrite: the writer's bytes in each file's place, every bad argument
// refused before a file is touched, a failing file reported while the others are written,
// and a failed replacement that leaves the old file as it was.
#include <gtest/gtest.h>

#include "tests/support/test_icons.h"
#include "tests/tools/vqctool_run.h"

using namespace vqctool_test;

namespace {

// Three connection files at the top, one in a subfolder.
struct Files {
    TempFolder folder{"tool-set"};
    Files() {
        WriteFileBytes(folder.File("a.vqc"), "-h alpha -u ann");
        WriteFileBytes(folder.File("b.vqc"), "-h bravo -u bob -l");
        WriteFileBytes(folder.File("c.vqc"), "-h charlie");
        CreateDirectoryA(folder.File("sub").c_str(), nullptr);
        WriteFileBytes(folder.File("sub\\d.vqc"), "-h delta -u dan");
    }
    std::string Bytes(const char* name) const { return ReadFileBytes(folder.File(name)); }
};

// A copy of the built tool in a folder of its own, beside a stand-in client DLL.
struct ToolBesideClient {
    TempFolder folder{"tool-client"};
    std::string tool = folder.File("vqctool.exe");
    explicit ToolBesideClient(const std::string& fixture) {
        CopyFileA(BuiltToolPath().c_str(), tool.c_str(), FALSE);
        CopyFileA((std::string(VQC_FIXTURE_DIR) + "\\" + fixture + ".dll").c_str(), folder.File("vclient.dll").c_str(),
                  FALSE);
    }
};

}  // namespace

TEST(VqctoolSet, ChangesTheFieldsOfOneFile) {
    Files files;
    const ToolRun run =
        RunTool("set host=new.example servicePort=5000 serviceName=svc " + Quoted(files.folder.File("a.vqc")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(files.Bytes("a.vqc"), "-h new.example -V 5000 -v svc -u ann ");
    EXPECT_EQ(files.Bytes("b.vqc"), "-h bravo -u bob -l");
}

TEST(VqctoolSet, ChangesEveryFileOfAFolderAndItsSubfoldersWithRecursive) {
    Files files;
    const ToolRun run = RunTool("set login=admin -r " + Quoted(files.folder.Path()));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(files.Bytes("a.vqc"), "-h alpha -u admin ");
    EXPECT_EQ(files.Bytes("b.vqc"), "-h bravo -l -u admin ");
    EXPECT_EQ(files.Bytes("c.vqc"), "-h charlie -u admin ");
    EXPECT_EQ(files.Bytes("sub\\d.vqc"), "-h delta -u admin ");
    EXPECT_EQ(run.err, "4 files, 4 changed, 0 failed\n");
}

TEST(VqctoolSet, AFolderWithoutRecursiveLeavesItsSubfolders) {
    Files files;
    const ToolRun run = RunTool("set login=admin " + Quoted(files.folder.Path()));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(files.Bytes("sub\\d.vqc"), "-h delta -u dan");
    EXPECT_EQ(run.err, "3 files, 3 changed, 0 failed\n");
}

TEST(VqctoolSet, ChangesTheFilesAWildcardMatches) {
    Files files;
    const ToolRun run = RunTool("set encrypt=true " + Quoted(files.folder.File("?.vqc")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(files.Bytes("a.vqc"), "-h alpha -l -u ann ");
    EXPECT_EQ(files.Bytes("b.vqc"), "-h bravo -l -u bob ");
    EXPECT_EQ(files.Bytes("c.vqc"), "-h charlie -l ");
    EXPECT_EQ(files.Bytes("sub\\d.vqc"), "-h delta -u dan");
    const ToolRun recursive = RunTool("set encrypt=true -r " + Quoted(files.folder.File("d*")));
    EXPECT_EQ(recursive.exitCode, 0u) << recursive.err;
    EXPECT_EQ(files.Bytes("sub\\d.vqc"), "-h delta -l -u dan ");
}

TEST(VqctoolSet, AFileThatWouldNotChangeIsLeftAsItIs) {
    TempFolder folder("tool-same");
    WriteFileBytes(folder.File("a.vqc"), "-h alpha -u ann ");
    WriteFileBytes(folder.File("b.vqc"), "-h bravo -u ann ");
    const ToolRun run = RunTool("set login=ann " + Quoted(folder.Path()));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(run.err, "2 files, 0 changed, 0 failed\n");
}

TEST(VqctoolSet, TypesByThePagesNamesKeepOneConnectionAndOneLoginType) {
    Files files;
    const ToolRun run = RunTool("set \"login-type=NT no logon\" encrypt=false " + Quoted(files.folder.File("b.vqc")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(files.Bytes("b.vqc"), "-h bravo -L -u bob ");
    const ToolRun local =
        RunTool("set \"connection-type=Connect locally\" localTarget=host.exe " + Quoted(files.folder.File("b.vqc")));
    EXPECT_EQ(local.exitCode, 0u) << local.err;
    EXPECT_EQ(files.Bytes("b.vqc"), "-d host.exe -u bob ");
    // The local file holds no host: back to a remote server, the host is set again.
    const ToolRun cached =
        RunTool("set optionR=true connection-type=remote host=bravo " + Quoted(files.folder.File("b.vqc")));
    EXPECT_EQ(cached.exitCode, 0u) << cached.err;
    EXPECT_EQ(files.Bytes("b.vqc"), "-h bravo -R -u bob ");
}

TEST(VqctoolSet, RouteAndProxyByName) {
    Files files;
    const ToolRun run =
        RunTool("set route=proxy proxyHost=gate proxyPort=3128 proxyUser=me " + Quoted(files.folder.File("c.vqc")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(files.Bytes("c.vqc"), "-h charlie -c me@gate:3128 ");
}

TEST(VqctoolSet, DryRunTellsTheChangesAndTouchesNothing) {
    Files files;
    const auto before = FolderContent(files.folder.Path());
    const ToolRun run = RunTool("set host=new --dry-run " + Quoted(files.folder.File("a.vqc")) + " " +
                                Quoted(files.folder.File("c.vqc")));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(run.out, files.folder.File("a.vqc") + ": would change\n  host: alpha -> new\n" +
                           files.folder.File("c.vqc") + ": would change\n  host: charlie -> new\n");
    EXPECT_EQ(run.err, "2 files, 2 changed, 0 failed\n");
    EXPECT_EQ(FolderContent(files.folder.Path()), before);
}

TEST(VqctoolSet, EveryBadArgumentIsStatusTwoAndNoFileChanges) {
    Files files;
    const auto before = FolderContent(files.folder.Path());
    const std::string all = " -r " + Quoted(files.folder.Path());
    const struct {
        std::string arguments;
        std::string named;
        // clang-format off
    } cases[] = {
        {"set hots=x" + all, "unknown field \"hots\""},
        // clang-format on
        {"set host=x servicePort=12x" + all, "servicePort"},
        {"set proxyPort=99999999999" + all, "proxyPort"},
        {"set encrypt=perhaps" + all, "encrypt"},
        {"set route=tunnel" + all, "unknown route \"tunnel\""},
        {"set connection-type=teleport" + all, "unknown connection type \"teleport\""},
        {"set \"login-type=Always\"" + all, "unknown login type \"Always\""},
        {"set lastError=0" + all, "lastError"},
        {"set host=x --client-version six" + all, "six"},
        {"set host=x --frobnicate" + all, "--frobnicate"},
        {"set" + all, "FIELD=VALUE"},
        {"icon set" + all + " --from " + Quoted(files.folder.File("none.ico")), "none.ico"},
        {"icon set" + all, "--from"},
        {"new " + Quoted(files.folder.File("a.vqc")) + " colour=blue --force", "colour"},
        {"frobnicate" + all, "frobnicate"},
    };
    for (const auto& c : cases) {
        const ToolRun run = RunTool(c.arguments);
        EXPECT_EQ(run.exitCode, 2u) << c.arguments;
        EXPECT_NE(run.err.find(c.named), std::string::npos) << c.arguments << "\n" << run.err;
        EXPECT_EQ(run.out, "") << c.arguments;
        EXPECT_EQ(FolderContent(files.folder.Path()), before) << c.arguments;
    }
}

TEST(VqctoolSet, AReadOnlyFileIsReportedAndTheOthersAreWritten) {
    Files files;
    SetFileAttributesA(files.folder.File("b.vqc").c_str(), FILE_ATTRIBUTE_READONLY);
    const ToolRun run = RunTool("set login=admin " + Quoted(files.folder.Path()));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(files.Bytes("a.vqc"), "-h alpha -u admin ");
    EXPECT_EQ(files.Bytes("b.vqc"), "-h bravo -u bob -l");
    EXPECT_EQ(files.Bytes("c.vqc"), "-h charlie -u admin ");
    EXPECT_EQ(run.err, "vqctool: cannot write " + files.folder.File("b.vqc") + ": " + SystemText(ERROR_ACCESS_DENIED) +
                           "\n3 files, 2 changed, 1 failed\n");
}

TEST(VqctoolSet, AFileAnotherProgramHoldsIsReportedAndTheOthersAreWritten) {
    Files files;
    // Held without any sharing: it cannot even be read.
    const UniqueKernelHandle lock(CreateFileA(files.folder.File("a.vqc").c_str(), GENERIC_READ, 0, nullptr,
                                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(lock);
    const ToolRun run = RunTool("set login=admin " + Quoted(files.folder.Path()));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.err, "vqctool: cannot read " + files.folder.File("a.vqc") + ": " +
                           SystemText(ERROR_SHARING_VIOLATION) + "\n3 files, 2 changed, 1 failed\n");
    EXPECT_EQ(files.Bytes("b.vqc"), "-h bravo -l -u admin ");
    EXPECT_EQ(files.Bytes("c.vqc"), "-h charlie -u admin ");
}

TEST(VqctoolSet, AFailedReplacementLeavesTheOldFileAndNoNewFileBehind) {
    Files files;
    // Held for reading with reading shared: the tool reads it and writes the new file
    // beside it, but cannot put that in its place.
    const UniqueKernelHandle lock(CreateFileA(files.folder.File("a.vqc").c_str(), GENERIC_READ, FILE_SHARE_READ,
                                              nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(lock);
    const ToolRun run =
        RunTool("set login=admin " + Quoted(files.folder.File("a.vqc")) + " " + Quoted(files.folder.File("c.vqc")));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_NE(run.err.find("vqctool: cannot write " + files.folder.File("a.vqc") + ": "), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("2 files, 1 changed, 1 failed\n"), std::string::npos) << run.err;
    EXPECT_EQ(files.Bytes("a.vqc"), "-h alpha -u ann");
    EXPECT_EQ(files.Bytes("c.vqc"), "-h charlie -u admin ");
    std::vector<std::string> names;
    for (const auto& [name, bytes] : FolderContent(files.folder.Path())) names.push_back(name);
    EXPECT_EQ(names, (std::vector<std::string>{"a.vqc", "b.vqc", "c.vqc", "sub\\d.vqc"}));
}

TEST(VqctoolSet, WritesForTheClientInstalledBesideTheTool) {
    Files files;
    const ToolBesideClient client640("client_6_40_0_12");
    const ToolRun run = RunTool("set encrypt=true " + Quoted(files.folder.File("a.vqc")), "", client640.tool);
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(files.Bytes("a.vqc"), "-h alpha -u ann ");  // client 6.40 never gets -l
    const ToolRun given =
        RunTool("set encrypt=true --client-version 690 " + Quoted(files.folder.File("a.vqc")), "", client640.tool);
    EXPECT_EQ(given.exitCode, 0u) << given.err;
    EXPECT_EQ(files.Bytes("a.vqc"), "-h alpha -l -u ann ");
}

TEST(VqctoolNew, WritesAFileFromItsFields) {
    TempFolder folder("tool-new");
    const std::string file = folder.File("new.vqc");
    const ToolRun run = RunTool("new " + Quoted(file) + " host=server login=bob route=proxy proxyHost=gate");
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(ReadFileBytes(file), "-h server -c gate -u bob ");
}

TEST(VqctoolNew, RefusesAnExistingFileWithoutForce) {
    TempFolder folder("tool-new-exists");
    const std::string file = folder.File("old.vqc");
    WriteFileBytes(file, "-h old");
    const ToolRun run = RunTool("new " + Quoted(file) + " host=new");
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_NE(run.err.find("--force"), std::string::npos) << run.err;
    EXPECT_EQ(ReadFileBytes(file), "-h old");
    const ToolRun forced = RunTool("new " + Quoted(file) + " host=new --force");
    EXPECT_EQ(forced.exitCode, 0u) << forced.err;
    EXPECT_EQ(ReadFileBytes(file), "-h new ");
}

TEST(VqctoolRewrite, WritesTheFileForClientVersion726) {
    TempFolder folder("tool-rewrite");
    WriteFileBytes(folder.File("in.vqc"), "-u bob -h server -V 790 -v svc -l -c proxy:3128 -T -C  run  me");
    const ToolRun run = RunTool("rewrite " + Quoted(folder.File("in.vqc")) + " " + Quoted(folder.File("out.vqc")));
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(ReadFileBytes(folder.File("out.vqc")), "-h server -V 790 -l -c proxy:3128 -v svc -u bob -C run me");
}

TEST(VqctoolRewrite, AnOldClientVersionLeavesOutWhatItCannotRead) {
    TempFolder folder("tool-rewrite-old");
    WriteFileBytes(folder.File("in.vqc"), "-h server -l -c proxy:3128 -u bob");
    for (const auto& [version, expected] : {std::pair<const char*, const char*>{"619", "-h server -u bob "},
                                            {"640", "-h server -c proxy:3128 -u bob "}}) {
        const ToolRun run = RunTool("rewrite " + Quoted(folder.File("in.vqc")) + " " + Quoted(folder.File("out.vqc")) +
                                    " --client-version " + version);
        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_EQ(ReadFileBytes(folder.File("out.vqc")), expected) << version;
    }
}

TEST(VqctoolRewrite, AMissingFileExitsOne) {
    TempFolder folder("tool-rewrite-missing");
    const ToolRun run = RunTool("rewrite " + Quoted(folder.File("in.vqc")) + " " + Quoted(folder.File("out.vqc")));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.err,
              "vqctool: cannot read " + folder.File("in.vqc") + ": " + SystemText(ERROR_FILE_NOT_FOUND) + "\n");
    EXPECT_EQ(ReadFileBytes(folder.File("out.vqc")), "<missing>");
}

TEST(VqctoolUsage, HelpListsEveryCommandAndEachCommandHasItsOwn) {
    const ToolRun help = RunTool("--help");
    EXPECT_EQ(help.exitCode, 0u);
    for (const char* command : {"show", "set", "check", "icon set", "icon export", "icon remove", "new", "rewrite"})
        EXPECT_NE(help.out.find("  " + std::string(command) + " "), std::string::npos) << command;
    for (const char* command : {"show", "set", "check", "icon", "new", "rewrite"}) {
        const ToolRun own = RunTool(std::string(command) + " --help");
        EXPECT_EQ(own.exitCode, 0u) << command;
        EXPECT_EQ(own.out.rfind("usage: vqctool " + std::string(command), 0), 0u) << own.out;
    }
}

TEST(VqctoolUsage, NoArgumentsAndUnknownCommandsExitTwoWithTheUsage) {
    for (const char* arguments : {"", "list x", "show", "rewrite a.vqc"}) {
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.exitCode, 2u) << arguments;
        EXPECT_EQ(run.out, "") << arguments;
        EXPECT_NE(run.err.find("usage: vqctool"), std::string::npos) << arguments;
    }
}
