// Leak soaks with the books: many icon-handler cycles on three kinds of file, and many
// sheets opened, edited, applied and closed, in one load of the built DLL. What the first
// hundred cycles make for the life of the process is set aside; after that every object
// made is destroyed again, by kind, and the C runtime heap's bytes in use do not grow.
// The test command runs few cycles; scripts/soak-leaks.sh runs 100,000 and 200
// (VQC_SOAK_ICON_CYCLES, VQC_SOAK_SHEET_CYCLES).
#include <windows.h>
#include <malloc.h>
#include <objbase.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "tests/faults/fault_layer.h"
#include "tests/pages/page_test_support.h"
#include "tests/shellext/shell_scenarios.h"
#include "tests/shellext/shellext_test_support.h"

using namespace page_test;
using namespace shell_scenarios;

namespace {

constexpr std::size_t kSettlingCycles = 100;

std::size_t CountFromEnvironment(const char* name, std::size_t fallback) {
    const char* text = std::getenv(name);
    return text && *text ? static_cast<std::size_t>(std::strtoull(text, nullptr, 10)) : fallback;
}

// The bytes in use in the C runtime's heap, which the DLL and this program share.
std::size_t HeapBytesInUse() {
    _HEAPINFO entry{};
    std::size_t inUse = 0;
    while (_heapwalk(&entry) == _HEAPOK) {
        if (entry._useflag == _USEDENTRY) inUse += entry._size;
    }
    return inUse;
}

std::string Made(const faults::Balance& made) {
    const std::string text = faults::DescribeLive(made);
    return text.empty() ? "none" : text;
}

// The built DLL loaded once with the books kept, unloaded at the end.
class BookedDll {
public:
    explicit BookedDll(const std::string& tag) : folder_(tag), module_(LoadLibraryA(folder_.Dll().c_str())) {
        if (module_) faults::InstallInto(module_);
        faults::RememberDestroyed(false);
    }
    ~BookedDll() {
        if (module_) FreeLibrary(module_);
    }
    BookedDll(const BookedDll&) = delete;
    BookedDll& operator=(const BookedDll&) = delete;
    HMODULE Module() const { return module_; }
    std::string File(const std::string& name) const { return folder_.File(name); }

private:
    DllCopyFolder folder_;
    HMODULE module_;
};

struct SoakResult {
    std::size_t heapAfterSettling = 0;
    std::size_t heapAtEnd = 0;
    faults::Balance made{};
    std::string live;
    std::vector<std::string> problems;
};

// Runs `cycle` settling-plus-`cycles` times; what the settling cycles leave is the
// process's, the rest is counted.
template <typename Cycle>
SoakResult Soak(std::size_t cycles, Cycle&& cycle) {
    SoakResult result;
    faults::RunChecks checks;
    for (std::size_t i = 0; i < kSettlingCycles; ++i) cycle(checks);
    faults::ForgetLiveObjects();
    const faults::Balance madeBefore = faults::MadeObjects();
    result.heapAfterSettling = HeapBytesInUse();
    for (std::size_t i = 0; i < cycles; ++i) cycle(checks);
    result.heapAtEnd = HeapBytesInUse();
    const faults::Balance madeAfter = faults::MadeObjects();
    for (std::size_t kind = 0; kind < faults::kObjectKindCount; ++kind)
        result.made[kind] = madeAfter[kind] - madeBefore[kind];
    result.live = faults::DescribeLive(faults::LiveObjects());
    result.problems = checks.Problems();
    for (const std::string& problem : faults::BookProblems()) result.problems.push_back(problem);
    return result;
}

void ExpectBalancedAndFlat(const SoakResult& result, const std::string& name, std::size_t cycles) {
    std::printf(
        "soak %s: %zu cycles after %zu settling; made %s; left alive: %s; heap in use %zu bytes after "
        "settling, %zu at the end\n",
        name.c_str(), cycles, kSettlingCycles, Made(result.made).c_str(),
        result.live.empty() ? "nothing" : result.live.c_str(), result.heapAfterSettling, result.heapAtEnd);
    EXPECT_EQ(result.live, "");
    EXPECT_LE(result.heapAtEnd, result.heapAfterSettling);
    for (std::size_t i = 0; i < result.problems.size() && i < 10; ++i) ADD_FAILURE() << result.problems[i];
}

TEST(LeakSoak, IconHandlerCyclesOnThreeKindsOfFileLeaveNothingAndTheHeapFlat) {
    const std::size_t cycles = CountFromEnvironment("VQC_SOAK_ICON_CYCLES", 300);
    const BookedDll dll("soak-icons");
    ASSERT_NE(dll.Module(), nullptr);
    const std::vector<std::string> contents = {test_support::ConnectionLineWithIcon({32, 16}), kPropertiesLine,
                                               "-h server.example -I \"0000010002002020\" -u"};
    std::vector<std::wstring> files;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        const std::string file = dll.File("file" + std::to_string(i) + ".vqc");
        WriteFileBytes(file, contents[i]);
        files.push_back(test_support::Wide(file));
    }
    // The shell's thread keeps its apartment; each cycle's own initialisation then only
    // counts up and down.
    const ComApartment apartment;
    const SoakResult result = Soak(cycles, [&](faults::RunChecks& checks) {
        for (const std::wstring& file : files) IconHandlerCycle(dll.Module(), file, checks);
    });
    ExpectBalancedAndFlat(result, "icon handler (three files a cycle)", cycles);
    EXPECT_GT(result.made[static_cast<std::size_t>(faults::ObjectKind::Icon)], 0);
}

TEST(LeakSoak, SheetsOpenedEditedAppliedAndClosedLeaveNothingAndTheHeapFlat) {
    const std::size_t cycles = CountFromEnvironment("VQC_SOAK_SHEET_CYCLES", 40);
    const BookedDll dll("soak-sheets");
    ASSERT_NE(dll.Module(), nullptr);
    const std::string file = dll.File("connection.vqc");
    const ComApartment apartment;
    const SoakResult result = Soak(cycles, [&](faults::RunChecks& checks) {
        WriteFileBytes(file, kPropertiesLine);
        ShellPropertySheet shell(Export<GetClassObjectFunction>(dll.Module(), "DllGetClassObject"), file);
        checks.Expect(shell.Open(), "the sheet did not open");
        if (!shell.Sheet()) return;
        checks.Expect(EditEveryPage(shell.Sheet()) == (kConnectionPage | kProxyPage | kOptionsPage),
                      "a page is missing");
        checks.Expect(Press(shell.Sheet(), kApplyButtonId).empty(), "Apply failed");
        checks.Expect(ReadFileBytes(file).find("-u changed") != std::string::npos, "Apply did not write the edit");
        shell.Destroy();
    });
    ExpectBalancedAndFlat(result, "sheets (open, edit every page, Apply, close)", cycles);
    EXPECT_GT(result.made[static_cast<std::size_t>(faults::ObjectKind::File)], 0);
}

}  // namespace
