// Apply writes the connection file in place: the create empties it, then one write fills it.
// With that write failed (through the fault layer, on a copy of the built DLL), the user is
// told, the old content is written back in place, and the next Apply writes the edits whole.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/win_handles.h"
#include "tests/faults/fault_layer.h"
#include "tests/pages/page_test_support.h"
#include "tests/shellext/shell_scenarios.h"

using namespace page_test;
using namespace shell_scenarios;

namespace {

// The number of the first WriteFile among the module's calls since counting began; 0 when none.
std::uint64_t FirstWriteFile() {
    const std::vector<faults::CallSite>& trace = faults::Trace();
    for (std::size_t i = 0; i < trace.size(); ++i) {
        if (std::string(trace[i].function) == "WriteFile") return i + 1;
    }
    return 0;
}

}  // namespace

TEST(ApplyInPlace, AWriteThatFailsAfterTheCreatePutsTheOldContentBackUntilTheNextApply) {
    const DllCopyFolder folder("apply-in-place");
    const std::string file = folder.File("connection.vqc");
    WriteFileBytes(file, kPropertiesLine);
    const UniqueModule module(LoadLibraryA(folder.Dll().c_str()));
    ASSERT_TRUE(module);
    ASSERT_GT(faults::InstallInto(module.Get()), 0u);
    {
        ShellPropertySheet shell(Export<GetClassObjectFunction>(module.Get(), "DllGetClassObject"), file);
        ASSERT_TRUE(shell.Open());

        // A clean Apply, counted: where its write comes, and what it writes.
        faults::BeginCounting(0, true);
        ASSERT_TRUE(Press(shell.Sheet(), kApplyButtonId).empty());
        const std::uint64_t write = FirstWriteFile();
        ASSERT_NE(write, 0u);
        const std::string whole = ReadFileBytes(file);
        ASSERT_FALSE(whole.empty());

        // The same Apply with that write failed.
        faults::BeginCounting(write, false);
        const std::vector<SeenBox> boxes = Press(shell.Sheet(), kApplyButtonId);
        ASSERT_TRUE(faults::Fired());
        EXPECT_EQ(std::string(faults::FiredCall().function), "WriteFile");
        EXPECT_EQ(boxes.size(), 1u);
        // The create emptied the file; what it held before is back.
        EXPECT_EQ(ReadFileBytes(file), whole);

        // Once the fault is gone, Apply writes the whole file again.
        faults::ArmAt(0);
        EXPECT_TRUE(Press(shell.Sheet(), kApplyButtonId).empty());
        EXPECT_EQ(ReadFileBytes(file), whole);
        shell.Destroy();
    }
}
