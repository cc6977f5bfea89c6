// The fault layer on a probe DLL of its own: it counts only the module's calls, fails the
// armed one as the function documents, keeps the books, and a sweep reports a leak.
#include <windows.h>

#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <string>

#include "tests/faults/fault_layer.h"
#include "tests/faults/fault_layer_state.h"
#include "tests/faults/fault_sweep.h"
#include "tests/support/file_bytes.h"
#include "tests/support/temp_folder.h"

namespace {

using OpenFunction = HANDLE (*)(const char*, DWORD*);
using CloseFunction = BOOL (*)(HANDLE);
using AttributesFunction = DWORD (*)(const char*);
using StepsFunction = int (*)(const char*);

template <typename Function>
Function Export(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

// The probe, copied into a folder of the test's own beside a file it can open.
class ProbeCopy {
public:
    explicit ProbeCopy(const std::string& tag) : folder_(tag) {
        path_ = folder_.File("fault_probe.dll");
        CopyFileA(VQC_FAULT_PROBE_PATH, path_.c_str(), FALSE);
        file_ = folder_.File("data.bin");
        WriteFileBytes(file_, "probe");
    }
    const std::string& Path() const { return path_; }
    const std::string& DataFile() const { return file_; }

private:
    test_support::TempFolder folder_;
    std::string path_;
    std::string file_;
};

// The probe is no COM server.
faults::SweepOptions ProbeOptions(std::size_t maxRuns) {
    faults::SweepOptions options;
    options.maxRuns = maxRuns;
    options.comServer = false;
    return options;
}

class LoadedProbe {
public:
    explicit LoadedProbe(const std::string& path) : module_(LoadLibraryA(path.c_str())) {}
    ~LoadedProbe() {
        if (module_) FreeLibrary(module_);
    }
    LoadedProbe(const LoadedProbe&) = delete;
    LoadedProbe& operator=(const LoadedProbe&) = delete;
    HMODULE Get() const { return module_; }

private:
    HMODULE module_;
};

TEST(FaultLayer, RedirectsTheModulesImportsOfWrappedFunctions) {
    const ProbeCopy probe("fault-redirect");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    // CreateFileA, CloseHandle, malloc and free at least.
    EXPECT_GE(faults::InstallInto(module.Get()), 4u);
}

TEST(FaultLayer, CountingRunSeesEachCallOfTheModuleAndItsFunction) {
    const ProbeCopy probe("fault-count");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    faults::RecordTrace(true);
    ASSERT_EQ(Export<StepsFunction>(module.Get(), "ProbeOpenWithBuffer")(probe.DataFile().c_str()), 0);
    ASSERT_EQ(faults::CallCount(), 2u);  // CreateFileA, malloc; the releases are not counted
    EXPECT_STREQ(faults::Trace()[0].function, "CreateFileA");
    EXPECT_STREQ(faults::Trace()[1].function, "malloc");
    EXPECT_NE(faults::Trace()[0].path[0], faults::Trace()[1].path[0]);
    faults::RecordTrace(false);
}

TEST(FaultLayer, TheTestProgramsOwnCallsAreNotCounted) {
    const ProbeCopy probe("fault-own");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    faults::ArmAt(1);
    const HANDLE file =
        CreateFileA(probe.DataFile().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    CloseHandle(file);
    EXPECT_EQ(faults::CallCount(), 0u);
    EXPECT_FALSE(faults::Fired());
    faults::ArmAt(0);
}

TEST(FaultLayer, ArmedCallFailsWithTheDocumentedValueAndLastError) {
    const ProbeCopy probe("fault-armed");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    faults::ArmAt(2);
    DWORD error = 0xdeadbeef;
    const auto open = Export<OpenFunction>(module.Get(), "ProbeOpen");
    const HANDLE first = open(probe.DataFile().c_str(), &error);
    EXPECT_NE(first, INVALID_HANDLE_VALUE);
    EXPECT_FALSE(faults::Fired());
    error = 0xdeadbeef;
    const HANDLE second = open(probe.DataFile().c_str(), &error);
    EXPECT_EQ(second, INVALID_HANDLE_VALUE);
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_ACCESS_DENIED));
    EXPECT_TRUE(faults::Fired());
    EXPECT_STREQ(faults::FiredCall().function, "CreateFileA");
    // Once: the third call succeeds again.
    const HANDLE third = open(probe.DataFile().c_str(), &error);
    EXPECT_NE(third, INVALID_HANDLE_VALUE);
    const auto close = Export<CloseFunction>(module.Get(), "ProbeClose");
    close(first);
    close(third);
    faults::ArmAt(0);
}

TEST(FaultLayer, AStandingFaultFailsTheFirstCallOfItsFunctionInEachCountUncounted) {
    const ProbeCopy probe("fault-standing");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    const auto open = Export<OpenFunction>(module.Get(), "ProbeOpen");
    const auto close = Export<CloseFunction>(module.Get(), "ProbeClose");
    faults::BeginCounting(1, false);
    faults::FailFirstCallOf("CreateFileA");
    for (int count = 0; count < 2; ++count) {
        if (count > 0) faults::BeginCounting(1, false);
        DWORD error = 0;
        EXPECT_EQ(open(probe.DataFile().c_str(), &error), INVALID_HANDLE_VALUE);
        EXPECT_EQ(error, static_cast<DWORD>(ERROR_ACCESS_DENIED));
        EXPECT_EQ(faults::CallCount(), 0u);
        EXPECT_FALSE(faults::Fired());
        // The armed call is the next one, which the standing fault leaves to it.
        EXPECT_EQ(open(probe.DataFile().c_str(), &error), INVALID_HANDLE_VALUE);
        EXPECT_TRUE(faults::Fired());
        const HANDLE third = open(probe.DataFile().c_str(), &error);
        EXPECT_NE(third, INVALID_HANDLE_VALUE);
        close(third);
    }
    faults::FailFirstCallOf(nullptr);
    faults::BeginCounting(0, false);
    DWORD error = 0;
    const HANDLE file = open(probe.DataFile().c_str(), &error);
    EXPECT_NE(file, INVALID_HANDLE_VALUE);
    close(file);
}

TEST(FaultLayer, AStandingFaultOfSeveralCallsFailsThatManyInARowThenLetsThemThrough) {
    const ProbeCopy probe("fault-standing-run");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    const auto open = Export<OpenFunction>(module.Get(), "ProbeOpen");
    const auto close = Export<CloseFunction>(module.Get(), "ProbeClose");
    faults::BeginCounting(0, false);
    faults::FailFirstCallsOf("CreateFileA", 3);
    for (int call = 0; call < 3; ++call) {
        DWORD error = 0;
        EXPECT_EQ(open(probe.DataFile().c_str(), &error), INVALID_HANDLE_VALUE) << "call " << call;
        EXPECT_EQ(error, static_cast<DWORD>(ERROR_ACCESS_DENIED));
    }
    DWORD error = 0;
    const HANDLE fourth = open(probe.DataFile().c_str(), &error);
    EXPECT_NE(fourth, INVALID_HANDLE_VALUE);
    close(fourth);
    EXPECT_EQ(faults::CallCount(), 1u);
    faults::FailFirstCallOf(nullptr);
}

TEST(FaultLayer, BooksCountWhatTheModuleOpensUntilItClosesIt) {
    const ProbeCopy probe("fault-books");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    DWORD error = 0;
    const HANDLE file = Export<OpenFunction>(module.Get(), "ProbeOpen")(probe.DataFile().c_str(), &error);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_EQ(faults::LiveObjects()[static_cast<std::size_t>(faults::ObjectKind::File)], 1);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "File 1");
    Export<CloseFunction>(module.Get(), "ProbeClose")(file);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "");
    EXPECT_TRUE(faults::BookProblems().empty());
}

TEST(FaultLayer, BooksSeeAHandleClosedTwice) {
    const ProbeCopy probe("fault-twice");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    DWORD error = 0;
    const HANDLE file = Export<OpenFunction>(module.Get(), "ProbeOpen")(probe.DataFile().c_str(), &error);
    const auto close = Export<CloseFunction>(module.Get(), "ProbeClose");
    close(file);
    close(file);
    ASSERT_EQ(faults::BookProblems().size(), 1u);
    EXPECT_EQ(faults::BookProblems()[0].rfind("File destroyed twice", 0), 0u) << faults::BookProblems()[0];
}

// An icon handle Wine handed out in an hour of icons on eight threads (reuse count 0x50a in
// its high word), at the address of a heap block alive at the time.
const void* const kIconHandleAtAHeapAddress = reinterpret_cast<const void*>(std::uintptr_t{0x50a04e0});

TEST(FaultLayer, BooksKeepAnIconAndAHeapBlockOfOneValueApart) {
    const ProbeCopy probe("fault-spaces");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    faults::detail::Created(faults::ObjectKind::HeapBlock, kIconHandleAtAHeapAddress);
    faults::detail::Created(faults::ObjectKind::Icon, kIconHandleAtAHeapAddress);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "Icon 1, HeapBlock 1");

    faults::HandedOut(faults::ObjectKind::Icon, kIconHandleAtAHeapAddress);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "HeapBlock 1");
    faults::detail::Destroyed({faults::ObjectKind::HeapBlock}, kIconHandleAtAHeapAddress);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "");
    EXPECT_TRUE(faults::BookProblems().empty()) << faults::BookProblems()[0];
}

TEST(FaultLayer, BooksSeeALiveKernelHandleHandedOutAgainAsAnotherKind) {
    const ProbeCopy probe("fault-reissue");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    const void* const handle = reinterpret_cast<const void*>(std::uintptr_t{0x1a4});
    faults::detail::Created(faults::ObjectKind::File, handle);
    faults::detail::Created(faults::ObjectKind::RegistryKey, handle);
    ASSERT_EQ(faults::BookProblems().size(), 1u);
    EXPECT_EQ(faults::BookProblems()[0], "the system handed out a live File again as a RegistryKey: 0x1a4");
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "RegistryKey 1");
    faults::detail::Destroyed({faults::ObjectKind::RegistryKey}, handle);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "");
}

TEST(FaultLayer, FileOpensCountTheModulesCreateFileOfThatFileHoweverSpelt) {
    const ProbeCopy probe("fault-opens");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    const auto open = Export<OpenFunction>(module.Get(), "ProbeOpen");
    const auto close = Export<CloseFunction>(module.Get(), "ProbeClose");
    DWORD error = 0;
    close(open(probe.DataFile().c_str(), &error));
    std::string otherSpelling = probe.DataFile();
    for (char& c : otherSpelling) c = c == '\\' ? '/' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    close(open(otherSpelling.c_str(), &error));
    // A file that is not there is counted too: the call was made.
    open((probe.DataFile() + ".missing").c_str(), &error);
    // The test program's own open is not the module's.
    CloseHandle(
        CreateFileA(probe.DataFile().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(faults::FileOpens(probe.DataFile()), 2u);
    EXPECT_EQ(faults::FileOpens(probe.DataFile() + ".missing"), 1u);
    EXPECT_EQ(faults::FileOpens(probe.Path()), 0u);
}

TEST(FaultLayer, AddedAttributesAreAnsweredBesideTheFilesOwnForThatFileAlone) {
    const ProbeCopy probe("fault-attributes");
    const LoadedProbe module(probe.Path());
    ASSERT_NE(module.Get(), nullptr);
    faults::InstallInto(module.Get());
    const auto attributes = Export<AttributesFunction>(module.Get(), "ProbeAttributes");
    const DWORD own = attributes(probe.DataFile().c_str());
    ASSERT_NE(own, INVALID_FILE_ATTRIBUTES);
    ASSERT_EQ(own & 0x400000u, 0u);
    faults::AddAttributes(probe.DataFile(), 0x400000);  // recall on data access
    EXPECT_EQ(attributes(probe.DataFile().c_str()), own | 0x400000u);
    EXPECT_EQ(GetFileAttributesA(probe.DataFile().c_str()), own);  // the test program's own query
    EXPECT_EQ(attributes(probe.Path().c_str()) & 0x400000u, 0u);
    // A file that is not there stays missing.
    faults::AddAttributes(probe.DataFile() + ".missing", FILE_ATTRIBUTE_OFFLINE);
    EXPECT_EQ(attributes((probe.DataFile() + ".missing").c_str()), INVALID_FILE_ATTRIBUTES);
    faults::AddAttributes(probe.DataFile(), 0);
    EXPECT_EQ(attributes(probe.DataFile().c_str()), own);
}

// A green sweep means something: the probe's deliberate leak is found, at the allocation.
TEST(FaultSweep, ReportsTheLeakOfTheRunWhoseAllocationFailed) {
    const ProbeCopy probe("fault-sweep-leak");
    const std::string data = probe.DataFile();
    const faults::SweepReport report = faults::Sweep(
        probe.Path(),
        [&](HMODULE module, faults::RunChecks& checks) {
            const int result = Export<StepsFunction>(module, "ProbeOpenWithBuffer")(data.c_str());
            checks.Expect(result >= 0 && result <= 2, "an answer the probe does not give");
        },
        ProbeOptions(0));
    std::printf("%s\n", report.Summary("probe with a leak").c_str());
    EXPECT_EQ(report.calls, 2u);
    EXPECT_EQ(report.sites, 2u);
    EXPECT_EQ(report.swept, (std::vector<std::uint64_t>{1, 2}));
    EXPECT_EQ(report.injected, 2u);
    EXPECT_EQ(report.objectsLeaked, 1u);
    ASSERT_EQ(report.problems.size(), 1u);
    EXPECT_EQ(report.problems[0].rfind("k=2 (malloc at +0x", 0), 0u) << report.problems[0];
    EXPECT_NE(report.problems[0].find("left alive: File 1"), std::string::npos) << report.problems[0];
}

TEST(FaultSweep, CarefulCodeSweepsClean) {
    const ProbeCopy probe("fault-sweep-clean");
    const std::string data = probe.DataFile();
    const faults::SweepReport report = faults::Sweep(
        probe.Path(),
        [&](HMODULE module, faults::RunChecks&) {
            Export<StepsFunction>(module, "ProbeOpenWithBufferCarefully")(data.c_str());
        },
        ProbeOptions(0));
    EXPECT_EQ(report.calls, 2u);
    EXPECT_EQ(report.injected, 2u);
    EXPECT_EQ(report.objectsLeaked, 0u);
    EXPECT_TRUE(report.problems.empty()) << report.problems[0];
}

TEST(FaultSweep, SamplesEveryCallSiteWhenThereAreMoreCallsThanRuns) {
    const ProbeCopy probe("fault-sweep-sample");
    const std::string data = probe.DataFile();
    const faults::SweepReport report = faults::Sweep(
        probe.Path(),
        [&](HMODULE module, faults::RunChecks&) {
            const auto steps = Export<StepsFunction>(module, "ProbeOpenWithBufferCarefully");
            for (int i = 0; i < 10; ++i) steps(data.c_str());
        },
        ProbeOptions(3));
    EXPECT_EQ(report.calls, 20u);
    // The first call of each of the two sites, then one spread over the rest.
    ASSERT_EQ(report.swept.size(), 3u);
    EXPECT_EQ(report.swept[0], 1u);
    EXPECT_EQ(report.swept[1], 2u);
    EXPECT_EQ(faults::DescribeRuns({1, 2, 3, 7, 9, 10}), "1-3, 7, 9-10");
}

}  // namespace
