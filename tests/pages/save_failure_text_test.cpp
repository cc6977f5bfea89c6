// The text of the box that tells a failed save: the file, a blank line, the system's reason.
#include "pages/save_failure_text.h"

#include <gtest/gtest.h>

TEST(SaveFailureText, NamesTheFileThenTheSystemsText) {
    EXPECT_EQ(SaveFailureText("C:\\files\\office.vqc", "Access denied.", 5),
              "C:\\files\\office.vqc\r\n\r\nAccess denied.");
}

TEST(SaveFailureText, TheSystemsTrailingLineBreakIsDropped) {
    EXPECT_EQ(SaveFailureText("C:\\a.vqc", "There is not enough space on the disk.\r\n", 112),
              "C:\\a.vqc\r\n\r\nThere is not enough space on the disk.");
}

TEST(SaveFailureText, WithoutASystemTextTheErrorIsGivenByNumber) {
    EXPECT_EQ(SaveFailureText("C:\\a.vqc", "", 31), "C:\\a.vqc\r\n\r\nError 31 (0x0000001F).");
    EXPECT_EQ(SaveFailureText("C:\\a.vqc", " \r\n", 0), "C:\\a.vqc\r\n\r\nError 0 (0x00000000).");
}

TEST(SaveFailureText, WhenTheOldContentIsBackNothingMoreIsSaid) {
    EXPECT_EQ(SaveFailureText("C:\\a.vqc", "Access denied.", 5, false), "C:\\a.vqc\r\n\r\nAccess denied.");
}

TEST(SaveFailureText, WhenTheOldContentIsLostTooTheTextEndsSayingSo) {
    EXPECT_EQ(SaveFailureText("C:\\a.vqc", "There is not enough space on the disk.\r\n", 112, true),
              "C:\\a.vqc\r\n\r\nThere is not enough space on the disk.\r\n\r\n"
              "The file's previous content could not be put back either, so the file is now incomplete.");
    EXPECT_EQ(SaveFailureText("C:\\a.vqc", "", 31, true),
              std::string("C:\\a.vqc\r\n\r\nError 31 (0x0000001F).\r\n\r\n") + kOldContentLostSentence);
}
