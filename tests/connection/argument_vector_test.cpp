#include "connection/argument_vector.h"

#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "common/win_handles.h"
#include "tests/connection/argument_vector_fixture.h"
#include "tests/connection/fuzz/command_line_split.h"

namespace {

std::string OwnProgramPath() {
    char path[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, path, sizeof(path));
    return path;
}

}  // namespace

TEST(ArgumentVector, ElementZeroIsTheProgramPath) {
    const auto args = SplitOptionText("-h a");
    ASSERT_EQ(args.size(), 3u);
    EXPECT_EQ(args[0], OwnProgramPath());
    EXPECT_EQ(args[1], "-h");
    EXPECT_EQ(args[2], "a");
}

TEST(ArgumentVector, WithoutProgramNameOnlyTheTextIsSplit) {
    const auto args = SplitOptionText("-h a -u \"b c\"", false);
    EXPECT_EQ(args, (std::vector<std::string>{"-h", "a", "-u", "b c"}));
}

TEST(ArgumentVector, IconHexBrokenOverTwoLinesIsOneArgument) {
    const auto args = SplitOptionText("-h a\r\n-I \"00000100\r\n01001010\"");
    EXPECT_EQ(WithoutProgram(args), (std::vector<std::string>{"-h", "a", "-I", "0000010001001010"}));
}

TEST(ArgumentVector, LineBreakBeforeAnythingButDashJoinsWithoutBlank) {
    const auto args = SplitOptionText("-h ser\r\nver");
    EXPECT_EQ(WithoutProgram(args), (std::vector<std::string>{"-h", "server"}));
}

TEST(ArgumentVector, SingleQuotesAfterDashWGroupLikeDoubleQuotes) {
    const auto args = SplitOptionText("-w 'a b' -x 'c'");
    EXPECT_EQ(WithoutProgram(args), (std::vector<std::string>{"-w", "a b", "-x", "c"}));
}

TEST(ArgumentVector, BackslashBeforeAQuoteEscapesIt) {
    const auto args = SplitOptionText("-C \\\"x\\\" \"a\\\\\" b");
    EXPECT_EQ(WithoutProgram(args), (std::vector<std::string>{"-C", "\"x\"", "a\\", "b"}));
}

TEST(ArgumentVector, AnsiBytesSurviveTheRoundTripThroughUtf16) {
    // "Müller" in the ANSI code page of this process (1252 under the default locale).
    const auto args = SplitOptionText("-u M\xFCller");
    EXPECT_EQ(WithoutProgram(args), (std::vector<std::string>{"-u", "M\xFCller"}));
}

namespace {

// The arguments after the program path, from a text given with its size.
std::vector<std::string> SplitSizedText(std::string_view text) {
    int argc = 0;
    char** argv = nullptr;
    EXPECT_EQ(BuildArgumentVector(text, &argc, &argv, true, nullptr, nullptr, nullptr), 0);
    const UniqueLocalMemory block(argv);
    std::vector<std::string> arguments;
    for (int i = 1; argv && i < argc; ++i) arguments.emplace_back(argv[i]);
    return arguments;
}

}  // namespace

TEST(ArgumentVector, SizedTextEndsAtItsSizeWithoutAZeroByte) {
    const char bytes[] = {'-', 'h', ' ', 'a', 'b', 'X', 'Y'};
    EXPECT_EQ(SplitSizedText(std::string_view(bytes, 5)), (std::vector<std::string>{"-h", "ab"}));
}

TEST(ArgumentVector, SizedTextStillEndsAtItsFirstZeroByte) {
    EXPECT_EQ(SplitSizedText(std::string_view("-h a\0-u b", 9)), (std::vector<std::string>{"-h", "a"}));
}

TEST(ArgumentVector, SizedTextSplitsAsTheZeroEndedTextDoes) {
    const std::string text = "-h a\r\n-u \"b c\" -I 00\r\nFF -C x";
    EXPECT_EQ(SplitSizedText(text), WithoutProgram(SplitOptionText(text.c_str())));
}

// The fuzz targets run the reader's core natively with a copy of the system's splitting
// rules (tests/connection/fuzz/command_line_split.h); here the copy meets the system on
// chosen texts and on seeded random ones made of the bytes the rules care about.
TEST(ArgumentVector, FuzzTargetsCopyOfTheSplittingRulesAgreesWithTheSystem) {
    std::vector<std::string> texts = {
        "-h a",
        "  -h   a  ",
        "a\tb",
        "\"a b\"",
        "\"a b",
        "a\"b\"c",
        "\"\"",
        "a \"\"",
        "\"",
        "\\\"a",
        "\\\\\"a b\"",
        "a\\b",
        "a\\",
        "\"a\"\"b\"",
        "\"\"\"",
        "\"\"\"\"",
        "\"a\"\"\"b\"",
        "-w 'a b' 'c'",
        "-u \"-w \"'x",
        "-h p\x97\xc5\x98\xdfl\tx",
        "-d \" -N \" -C \"a  b\"",
    };
    std::mt19937 random(7);
    static constexpr char kBytes[] = {'a', 'b', ' ',  '\t', '"', '"', '\\',   '\\',  '\'',
                                      '-', 'w', '\r', '\n', '@', ':', '\xe9', '\x97'};
    for (int i = 0; i < 400; ++i) {
        std::string text;
        for (int n = std::uniform_int_distribution<int>(1, 24)(random); n > 0; --n)
            text.push_back(kBytes[std::uniform_int_distribution<std::size_t>(0, sizeof(kBytes) - 1)(random)]);
        texts.push_back(text);
    }
    for (const std::string& text : texts) {
        std::vector<std::string> copy =
            fuzz_split::SplitCommandLine(argument_text::PrepareCommandLine("C:\\prog.exe", true, text));
        copy.erase(copy.begin());
        EXPECT_EQ(copy, SplitSizedText(text)) << "text [" << text << "]";
    }
}

TEST(ArgumentVector, NullTextGivesOnlyTheProgramPath) {
    const auto args = SplitOptionText(nullptr);
    ASSERT_EQ(args.size(), 1u);
    EXPECT_EQ(args[0], OwnProgramPath());
}

TEST(ArgumentVector, OneBlockHoldsArgcPlusTwoSlotsThenTheStrings) {
    int argc = -1;
    char** argv = reinterpret_cast<char**>(static_cast<uintptr_t>(0xdeadbeef));
    ASSERT_EQ(BuildArgumentVector("-h host -u name", &argc, &argv, true, nullptr, nullptr, nullptr), 0);
    const UniqueLocalMemory block(reinterpret_cast<HLOCAL>(argv));
    ASSERT_EQ(argc, 5);
    EXPECT_EQ(argv[argc], nullptr);
    EXPECT_EQ(argv[argc + 1], nullptr);
    const char* blockStart = reinterpret_cast<const char*>(argv);
    const char* blockEnd = blockStart + LocalSize(block.Get());
    EXPECT_EQ(argv[0], blockStart + (argc + 2) * sizeof(char*));
    for (int i = 1; i < argc; ++i) {
        EXPECT_EQ(argv[i], argv[i - 1] + std::strlen(argv[i - 1]) + 1) << i;
    }
    EXPECT_LE(argv[argc - 1] + std::strlen(argv[argc - 1]) + 1, blockEnd);
}

// Copies a probe program into a folder whose name holds a blank and lets it split "-h a".
TEST(ArgumentVector, ProgramPathWithABlankIsSplitAndItsTailComesFirst) {
    const ProbeRun run = RunArgvProbeFromFolder("vqc probe", "-h a");
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    // argv[0] is the path up to the blank; its tail is the first element after it.
    ASSERT_EQ(run.arguments.size(), 4u) << run.output;
    EXPECT_EQ(run.arguments[0], run.folder.substr(0, run.folder.find(' ')));
    EXPECT_EQ(run.arguments[1], "probe\\argv_probe.exe");
    EXPECT_EQ(run.arguments[2], "-h");
    EXPECT_EQ(run.arguments[3], "a");
}

TEST(ArgumentVector, ProgramPathWithoutABlankStaysOneElement) {
    const ProbeRun run = RunArgvProbeFromFolder("vqc-argv-probe", "-h a");
    ASSERT_EQ(run.exitCode, 0u) << run.output;
    ASSERT_EQ(run.arguments.size(), 3u) << run.output;
    EXPECT_EQ(run.arguments[0], run.folder + "\\argv_probe.exe");
}

// --- the debugger wait, with the world replaced by counters -------------------------------

TEST_F(DebuggerWaitTest, AttachedDebuggerIsBrokenIntoAtOnce) {
    world.attachedAfterPolls = 0;
    WaitForDebugger();
    EXPECT_EQ(world.breaks, 1);
    EXPECT_EQ(world.sleeps, 0);
    EXPECT_TRUE(world.announcements.empty());
}

TEST_F(DebuggerWaitTest, WithoutDebuggerItAnnouncesThenPolls1200TimesEvery100Ms) {
    world.attachedAfterPolls = -1;
    WaitForDebugger();
    ASSERT_EQ(world.announcements.size(), 1u);
    EXPECT_EQ(world.announcements[0],
              "Process " + std::to_string(GetCurrentProcessId()) + " waiting to be debugged...");
    EXPECT_EQ(world.sleeps, 1200);
    EXPECT_EQ(world.sleptMilliseconds, 120000u);
    EXPECT_EQ(world.polls, 1201);  // once before the announcement, then once per attempt
    EXPECT_EQ(world.breaks, 0);
}

TEST_F(DebuggerWaitTest, DebuggerAttachingDuringTheWaitIsBrokenIntoAndEndsIt) {
    world.attachedAfterPolls = 6;  // the seventh look finds it
    WaitForDebugger();
    EXPECT_EQ(world.announcements.size(), 1u);
    EXPECT_EQ(world.breaks, 1);
    EXPECT_EQ(world.sleeps, 5);
    EXPECT_EQ(world.polls, 7);
}

TEST_F(DebuggerWaitTest, RealHooksAreTheDefault) {
    const DebuggerWaitHooks real = RealDebuggerWaitHooks();
    EXPECT_EQ(saved.debuggerPresent, real.debuggerPresent);
    EXPECT_EQ(saved.sleep, real.sleep);
    EXPECT_EQ(saved.breakIntoDebugger, real.breakIntoDebugger);
    EXPECT_EQ(saved.announce, real.announce);
    EXPECT_FALSE(real.debuggerPresent());  // no debugger is attached to the test run
}

TEST_F(DebuggerWaitTest, DebugArgumentStartsTheWait) {
    world.attachedAfterPolls = 0;
    SplitOptionText("-h a --debug");
    EXPECT_EQ(world.breaks, 1);
}

TEST_F(DebuggerWaitTest, DebugXArgumentStartsTheWaitAsDebugDoes) {
    world.attachedAfterPolls = 0;
    SplitOptionText("--debugX");
    EXPECT_EQ(world.breaks, 1);
}

TEST_F(DebuggerWaitTest, EveryDebugArgumentStartsItsOwnWait) {
    world.attachedAfterPolls = 0;
    SplitOptionText("--debug -h a --debugger");
    EXPECT_EQ(world.breaks, 2);
}

TEST_F(DebuggerWaitTest, OtherArgumentsStartNoWait) {
    world.attachedAfterPolls = 0;
    SplitOptionText("-debug --debu --disguise-http x--debug");
    EXPECT_EQ(world.breaks, 0);
    EXPECT_EQ(world.polls, 0);
}

// --- registration keywords -------------------------------------------------------------------

TEST_F(RegistrationCallbackTest, KeywordRunsTheCallbackWithItsStateAndContext) {
    std::int32_t callbackResult = 0x0BADF00D;
    EXPECT_EQ(Build("/RegServer", &callbackResult), 1);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen.install, 1);
    EXPECT_EQ(seen.perUser, 0);
    EXPECT_EQ(seen.sandbox, 0);
    EXPECT_EQ(seenContext, this);
    EXPECT_EQ(callbackResult, 42);
}

TEST_F(RegistrationCallbackTest, PerUserUnregistrationKeyword) {
    EXPECT_EQ(Build("-UnRegServerUser", nullptr), 1);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen.install, 0);
    EXPECT_EQ(seen.perUser, 1);
    EXPECT_EQ(seen.sandbox, 0);
}

TEST_F(RegistrationCallbackTest, NearMissRunsNoCallback) {
    std::int32_t callbackResult = 0x0BADF00D;
    EXPECT_EQ(Build("/regserv", &callbackResult), 0);
    EXPECT_EQ(Build("registerusers", &callbackResult), 0);
    EXPECT_EQ(Build("/registerusers", &callbackResult), 0);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(callbackResult, 0x0BADF00D);
}

TEST_F(RegistrationCallbackTest, OnlyTheFirstArgumentAfterTheProgramCounts) {
    EXPECT_EQ(Build("-h /regserver", nullptr), 0);
    EXPECT_EQ(calls, 0);
}

TEST_F(RegistrationCallbackTest, WithoutCallbackAKeywordIsAPlainArgument) {
    int argc = 0;
    char** argv = nullptr;
    EXPECT_EQ(BuildArgumentVector("/regserver", &argc, &argv, true, this, nullptr, nullptr), 0);
    const UniqueLocalMemory block(reinterpret_cast<HLOCAL>(argv));
    ASSERT_EQ(argc, 2);
    EXPECT_STREQ(argv[1], "/regserver");
}

TEST_F(RegistrationCallbackTest, VectorIsStillBuiltWhenTheCallbackRuns) {
    int argc = 0;
    char** argv = nullptr;
    EXPECT_EQ(BuildArgumentVector("/register extra", &argc, &argv, true, this, Callback, nullptr), 1);
    const UniqueLocalMemory block(reinterpret_cast<HLOCAL>(argv));
    ASSERT_EQ(argc, 3);
    EXPECT_STREQ(argv[1], "/register");
    EXPECT_STREQ(argv[2], "extra");
}

TEST_F(RegistrationCallbackTest, SandboxKeywordRedirectsTheRegistryBeforeTheCallback) {
    sandboxProbeKey = "VqcKeywordSandboxProbe";
    EXPECT_EQ(Build("/RegServerSandbox", nullptr), 1);
    EXPECT_EQ(seen.sandbox, 1);
    EXPECT_EQ(probeWriteResult, ERROR_SUCCESS);
    RestoreRegistryRoots();
    EXPECT_TRUE(SandboxKeyExists("HKEY_CLASSES_ROOT\\VqcKeywordSandboxProbe"));
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, "VqcKeywordSandboxProbe"));
}

// --- the sandbox redirection -----------------------------------------------------------------

TEST_F(SandboxTest, EveryRootThatHoldsKeysLandsBelowTheSandbox) {
    for (const char* root : kRootsThatHoldKeys) written_.push_back(std::string(root) + "\\VqcSandboxNoPrefix");
    EXPECT_EQ(RedirectRegistryToSandbox(nullptr), 1);
    WriteProbeThroughEveryRoot("VqcSandboxNoPrefix");
    RestoreRegistryRoots();
    for (const char* root : kRootsThatHoldKeys) {
        EXPECT_TRUE(SandboxKeyExists(std::string(root) + "\\VqcSandboxNoPrefix")) << root;
    }
    EXPECT_FALSE(KeyExists(HKEY_CLASSES_ROOT, "VqcSandboxNoPrefix"));
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, "VqcSandboxNoPrefix"));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, "VqcSandboxNoPrefix"));
}

TEST_F(SandboxTest, PrefixPutsTheRootsBelowAFolderOfItsOwn) {
    written_.push_back("VqcTestPrefix");
    EXPECT_EQ(RedirectRegistryToSandbox("VqcTestPrefix"), 1);
    WriteProbeThroughEveryRoot("VqcSandboxWithPrefix");
    RestoreRegistryRoots();
    for (const char* root : kRootsThatHoldKeys) {
        EXPECT_TRUE(SandboxKeyExists(std::string("VqcTestPrefix\\") + root + "\\VqcSandboxWithPrefix")) << root;
        EXPECT_FALSE(SandboxKeyExists(std::string(root) + "\\VqcSandboxWithPrefix")) << root;
    }
}

TEST_F(SandboxTest, CreatesOneSubkeyPerRootNamedAfterIt) {
    written_.push_back("VqcRootNames");
    EXPECT_EQ(RedirectRegistryToSandbox("VqcRootNames"), 1);
    RestoreRegistryRoots();
    for (const char* root : kAllRootNames) {
        EXPECT_TRUE(SandboxKeyExists(std::string("VqcRootNames\\") + root)) << root;
    }
}
