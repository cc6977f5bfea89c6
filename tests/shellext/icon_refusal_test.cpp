// The system refusing a good icon several times in a row, as Wine 8 does now and then while
// another thread of the process makes windows: the icon handler offers each image again until
// it is made, eight times at most, and only then answers as for an icon the system cannot make.
#include <windows.h>
#include <shlobj.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/faults/fault_layer.h"
#include "tests/pages/page_test_support.h"
#include "tests/shellext/icon_cycle.h"
#include "tests/shellext/shellext_test_support.h"

using namespace page_test;

namespace {

constexpr const char* kIconMaker = "CreateIconFromResourceEx";

// A loaded copy of the built DLL with the fault layer installed, and a connection file with
// a large and a small icon of its own.
class IconRefusal : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_NE(extension_.Module(), nullptr);
        ASSERT_GT(faults::InstallInto(extension_.Module()), 0u);
        WriteFileBytes(file_, test_support::ConnectionLineWithIcon({32, 16}));
        // The first cycle makes what the module keeps for its life; the books start after it.
        unrefused_ = AskForTheIcon();
        ASSERT_TRUE(unrefused_.large && unrefused_.small) << icon_cycle::Describe(unrefused_);
        faults::ForgetLiveObjects();
        faults::BeginCounting(0, false);
    }
    void TearDown() override { faults::FailFirstCallsOf(nullptr, 0); }

    icon_cycle::IconAnswer AskForTheIcon() {
        return icon_cycle::AskANewObject(extension_.GetClassObject(), kVQCPropClassId, test_support::Wide(file_));
    }

    ExtensionCopy extension_{"icon-refusal"};
    std::string file_ = extension_.File("refused.vqc");
    icon_cycle::IconAnswer unrefused_;
};

}  // namespace

TEST_F(IconRefusal, SevenRefusalsInARowStillGiveTheFilesOwnIcons) {
    faults::FailFirstCallsOf(kIconMaker, 7);
    const icon_cycle::IconAnswer answer = AskForTheIcon();
    EXPECT_EQ(answer.load, S_OK);
    EXPECT_EQ(answer.file, file_);
    EXPECT_EQ(answer.flags, 26u);
    EXPECT_EQ(answer.extract, S_OK);
    EXPECT_TRUE(icon_cycle::SameAnswer(answer, unrefused_))
        << icon_cycle::Describe(answer) << "\nunrefused: " << icon_cycle::Describe(unrefused_);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "");
    EXPECT_TRUE(faults::BookProblems().empty());
}

// The large image, refused eight times, is no icon: the DLL's own icon is answered, and the
// small image (made at the first offer) is still handed to the shell beside S_FALSE.
TEST_F(IconRefusal, EightRefusalsInARowOfTheLargeImageAnswerTheDllsIcon) {
    faults::FailFirstCallsOf(kIconMaker, 8);
    const icon_cycle::IconAnswer answer = AskForTheIcon();
    EXPECT_EQ(answer.load, S_OK);
    EXPECT_EQ(_stricmp(answer.file.c_str(), extension_.DllPath().c_str()), 0) << answer.file;
    EXPECT_EQ(answer.index, 0);
    EXPECT_EQ(answer.flags, static_cast<UINT>(GIL_PERINSTANCE));
    EXPECT_EQ(answer.extract, S_FALSE);
    EXPECT_FALSE(answer.large);
    ASSERT_TRUE(answer.small);
    EXPECT_EQ(answer.smallPixels.size.cx, GetSystemMetrics(SM_CXSMICON));
    EXPECT_EQ(answer.smallPixels.colour, unrefused_.smallPixels.colour);
    EXPECT_EQ(faults::DescribeLive(faults::LiveObjects()), "");
}
