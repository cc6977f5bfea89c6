// No handle outlives Read or Write. Wine reports no handle counts, so the proof is by
// effect: the file opens with share mode 0 afterwards, and reading a file with an icon
// far more often than the window manager has icon handles still gives icons.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "connection/vqc_file_info.h"
#include "test_files.h"
#include "tests/support/test_icons.h"

namespace {

std::string FileWithIcon() {
    const IconImage images[] = {MakeTestIconImage(32, 4), MakeTestIconImage(16, 4)};
    return "-h server -u bob \r\n-I \"" + HexTextOf(BuildIconStream(images, 2)) + "\" -C run";
}

}  // namespace

TEST(FileLeaks, FileOpensExclusivelyAfterRead) {
    TempFile file("leak-read", FileWithIcon());
    VQCFileInfo record("x");
    ASSERT_EQ(record.Read(file.Path()), 0);
    EXPECT_TRUE(file.OpensExclusively());
}

TEST(FileLeaks, FileOpensExclusivelyAfterAFailedRead) {
    TempFile file("leak-empty", "");
    VQCFileInfo record("x");
    ASSERT_EQ(record.Read(file.Path()), 1);
    EXPECT_TRUE(file.OpensExclusively());
}

TEST(FileLeaks, FileOpensExclusivelyAfterWrite) {
    TempFile file("leak-write");
    VQCFileInfo record("x");
    record.host = "server";
    record.SetIcons(MakeTestIcon(32, 8), MakeTestIcon(16, 8));
    ASSERT_EQ(record.Write(file.Path()), 0);
    EXPECT_TRUE(file.OpensExclusively());
}

TEST(FileLeaks, HundredThousandReadsWithAnIconStillGiveIcons) {
    TempFile file("leak-icons", FileWithIcon());
    constexpr int kReads = 100000;
    int withIcons = 0;
    for (int i = 0; i < kReads; ++i) {
        auto record = std::make_unique<VQCFileInfo>("x");
        if (record->Read(file.Path()) == 0 && record->icon && record->smallIcon)
            ++withIcons;
        else
            break;
    }
    EXPECT_EQ(withIcons, kReads);
    EXPECT_TRUE(file.OpensExclusively());
}
