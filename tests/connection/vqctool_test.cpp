// vqctool run as a process under Wine: each command, each exit status, its output.
#include <gtest/gtest.h>

#include <windows.h>

#include <string>

#include "test_files.h"
#include "tests/support/test_icons.h"

namespace {

// The tool's Unix path from the build, as Windows sees it through drive Z:.
std::string ToolPath() {
    std::string path = "Z:" VQCTOOL_EXE;
    for (char& c : path)
        if (c == '/') c = '\\';
    return path;
}

struct ToolRun {
    DWORD exitCode = 0xdeadbeef;
    std::string out;
    std::string err;
};

std::string WithoutCarriageReturns(std::string text) {
    std::string plain;
    for (char c : text)
        if (c != '\r') plain.push_back(c);
    return plain;
}

// Runs vqctool with the arguments, stdout and stderr going to files of their own.
ToolRun RunTool(const std::string& arguments) {
    TempFile out("tool-out"), err("tool-err");
    SECURITY_ATTRIBUTES inherit{sizeof(inherit), nullptr, TRUE};
    HANDLE outFile = CreateFileA(out.Path(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
    HANDLE errFile = CreateFileA(err.Path(), GENERIC_WRITE, FILE_SHARE_READ, &inherit, CREATE_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOA startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = outFile;
    startup.hStdError = errFile;
    std::string commandLine = "\"" + ToolPath() + "\" " + arguments;
    PROCESS_INFORMATION process{};
    ToolRun run;
    if (CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
        WaitForSingleObject(process.hProcess, 60000);
        GetExitCodeProcess(process.hProcess, &run.exitCode);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    } else {
        ADD_FAILURE() << "CreateProcess failed with " << GetLastError() << " for " << commandLine;
    }
    CloseHandle(outFile);
    CloseHandle(errFile);
    run.out = WithoutCarriageReturns(out.Content());
    run.err = WithoutCarriageReturns(err.Content());
    return run;
}

std::string Quoted(const char* path) { return std::string("\"") + path + "\""; }

std::string SystemText(DWORD error) {
    char text[512] = {};
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                   sizeof(text), nullptr);
    return WithoutCarriageReturns(text);
}

// vqctool's quoting of a path: backslashes doubled.
std::string Dumped(const char* path) {
    std::string out = "\"";
    for (const char* p = path; *p; ++p) out += *p == '\\' ? std::string("\\\\") : std::string(1, *p);
    return out + "\"";
}

}  // namespace

TEST(Vqctool, ShowPrintsResultAndEveryFieldInOrder) {
    const IconImage images[] = {MakeTestIconImage(32, 4), MakeTestIconImage(32, 4)};
    TempFile file("tool-show", "-h \"my server\" -N -M -V 5000 -c admin@proxy:3128 -a \"x\ty\" -u bob \r\n-I \"" +
                                   HexTextOf(BuildIconStream(images, 2)) + "\" -C run \"a\\\\b\"");
    const ToolRun run = RunTool("show " + Quoted(file.Path()));
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.err, "");
    const std::string small = std::to_string(GetSystemMetrics(SM_CXSMICON)) + "x" +
                              std::to_string(GetSystemMetrics(SM_CYSMICON));
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
              "filePath=" + Dumped(file.Path()) + "\n"
              "refCount=0\n"
              "icon=32x32\n"
              "smallIcon=" + small + "\n");
}

TEST(Vqctool, ShowOfAFileWithoutIconSaysNone) {
    TempFile file("tool-noicon", "-h server");
    const ToolRun run = RunTool("show " + Quoted(file.Path()));
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_NE(run.out.find("\nicon=none\nsmallIcon=none\n"), std::string::npos) << run.out;
}

TEST(Vqctool, ShowOfAMissingFileExitsOneWithWindowsText) {
    TempFile file("tool-missing");
    const ToolRun run = RunTool("show " + Quoted(file.Path()));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.out.substr(0, 9), "result=1\n");
    EXPECT_NE(run.out.find("\nlastError=2\n"), std::string::npos);
    EXPECT_EQ(run.err, std::string("vqctool: cannot read ") + file.Path() + ": " + SystemText(ERROR_FILE_NOT_FOUND));
}

TEST(Vqctool, ShowOfAnEmptyFileExitsOne) {
    TempFile file("tool-empty", "");
    const ToolRun run = RunTool("show " + Quoted(file.Path()));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.out.substr(0, 9), "result=1\n");
}

TEST(Vqctool, RewriteWritesTheFileForClientVersion726) {
    TempFile in("tool-in", "-u bob -h server -V 790 -v svc -l -c proxy:3128 -T -C  run  me");
    TempFile out("tool-out-file");
    const ToolRun run = RunTool("rewrite " + Quoted(in.Path()) + " " + Quoted(out.Path()));
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(out.Content(), "-h server -V 790 -l -c proxy:3128 -v svc -u bob -C run me");
}

TEST(Vqctool, RewriteWithAnOldClientVersionLeavesOutWhatItCannotRead) {
    TempFile in("tool-in-old", "-h server -l -c proxy:3128 -u bob");
    TempFile out("tool-out-old");
    const ToolRun run = RunTool("rewrite " + Quoted(in.Path()) + " " + Quoted(out.Path()) + " --client-version 619");
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(out.Content(), "-h server -u bob ");
}

TEST(Vqctool, RewriteFor640DropsL) {
    TempFile in("tool-in-640", "-h server -l");
    TempFile out("tool-out-640");
    const ToolRun run = RunTool("rewrite " + Quoted(in.Path()) + " " + Quoted(out.Path()) + " --client-version 640");
    EXPECT_EQ(run.exitCode, 0u);
    EXPECT_EQ(out.Content(), "-h server ");
}

TEST(Vqctool, RewriteOfAMissingFileExitsOne) {
    TempFile in("tool-in-missing");
    TempFile out("tool-out-missing");
    const ToolRun run = RunTool("rewrite " + Quoted(in.Path()) + " " + Quoted(out.Path()));
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.err, std::string("vqctool: cannot read ") + in.Path() + ": " + SystemText(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(out.Content(), "<missing>");
}

TEST(Vqctool, RewriteToALockedFileExitsOne) {
    TempFile in("tool-in-ok", "-h server");
    TempFile out("tool-out-locked", "old");
    HANDLE lock = CreateFileA(out.Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    const ToolRun run = RunTool("rewrite " + Quoted(in.Path()) + " " + Quoted(out.Path()));
    CloseHandle(lock);
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.err,
              std::string("vqctool: cannot write ") + out.Path() + ": " + SystemText(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(out.Content(), "old");
}

TEST(Vqctool, UsageErrorsExitTwo) {
    TempFile in("tool-in-usage", "-h server");
    TempFile out("tool-out-usage");
    const std::string files = Quoted(in.Path()) + " " + Quoted(out.Path());
    for (const std::string& arguments :
         {std::string(), std::string("show"), std::string("show a b"), std::string("list x"), "rewrite " + Quoted(in.Path()),
          "rewrite " + files + " --client-version", "rewrite " + files + " --client-version abc",
          "rewrite " + files + " --client-version 6x", "rewrite " + files + " --version 640",
          "rewrite " + files + " --client-version 640 extra"}) {
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.exitCode, 2u) << arguments;
        EXPECT_EQ(run.out, "") << arguments;
        EXPECT_EQ(run.err,
                  "usage: vqctool show FILE\n"
                  "       vqctool rewrite IN OUT [--client-version N]\n")
            << arguments;
    }
    EXPECT_EQ(out.Content(), "<missing>");
}
