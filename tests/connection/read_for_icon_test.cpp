// The icon handler's read against the whole reader on real files under Wine: the same
// icons (or none), the same fields but the -C text, the same failures of opening, and the
// same debugger wait.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "connection/argument_vector.h"
#include "connection/option_line.h"
#include "connection/vqc_file_info.h"
#include "test_files.h"
#include "tests/connection/debugger_wait_stand_ins.h"
#include "tests/connection/icon_pixels.h"
#include "tests/support/test_icons.h"

using namespace debugger_wait_stand_ins;

namespace {

std::string IconText() {
    const IconImage images[] = {MakeTestIconImage(32, 8, 3), MakeTestIconImage(16, 4, 4)};
    return HexTextOf(BuildIconStream(images, 2));
}

std::string OtherIconText() {
    const IconImage images[] = {MakeTestIconImage(48, 32, 7)};
    return HexTextOf(BuildIconStream(images, 1));
}

void ExpectSameIcon(const RecordIcon& whole, const RecordIcon& road) {
    ASSERT_EQ(static_cast<bool>(whole), static_cast<bool>(road));
    if (!whole) return;
    const Pixels a = PixelsOf(whole.Get());
    const Pixels b = PixelsOf(road.Get());
    EXPECT_EQ(a.size.cx, b.size.cx);
    EXPECT_EQ(a.size.cy, b.size.cy);
    EXPECT_EQ(a.colour, b.colour);
    EXPECT_EQ(a.mask, b.mask);
}

// Reads content both ways and compares everything but the -C text, which the icon's read
// leaves alone. Returns whether the whole reader found an icon, for the caller to check.
bool ExpectSameReading(const std::string& content) {
    TempFile file("read-for-icon", content);
    auto whole = std::make_unique<VQCFileInfo>("C:\\record.vqc");
    auto road = std::make_unique<VQCFileInfo>("C:\\record.vqc");
    const std::int32_t wholeResult = whole->Read(file.Path());
    const std::int32_t roadResult = road->ReadForIcon(file.Path());
    EXPECT_EQ(wholeResult, roadResult);
    EXPECT_EQ(whole->lastError, road->lastError);
    ExpectSameIcon(whole->icon, road->icon);
    ExpectSameIcon(whole->smallIcon, road->smallIcon);
    EXPECT_TRUE(road->commandLine.empty());
    whole->commandLine.clear();
    EXPECT_EQ(BuildOptionLine(*whole, nullptr), BuildOptionLine(*road, nullptr));
    EXPECT_EQ(whole->noOptionM, road->noOptionM);
    EXPECT_EQ(whole->localTarget, road->localTarget);
    return static_cast<bool>(whole->icon);
}

}  // namespace

TEST(ReadForIcon, TypicalFileGivesTheSameIconsAndFields) {
    EXPECT_TRUE(ExpectSameReading("-h server.example.com -V 5000 -l -c admin@proxy:3128 -v terminal -u bob \r\n-I \"" +
                                  IconText() + "\" -C bookmarks/main"));
}

TEST(ReadForIcon, LongCommandLineAfterTheIconGivesTheSameIcons) {
    std::string text = "-h server -I \"" + IconText() + "\" -C run";
    while (text.size() < 100 * 1024) text += " word" + std::to_string(text.size() % 997);
    EXPECT_TRUE(ExpectSameReading(text));
}

TEST(ReadForIcon, IconAfterTheCommandIsPartOfItsTextInBothReads) {
    EXPECT_FALSE(ExpectSameReading("-h server -C run -I \"" + IconText() + "\""));
}

TEST(ReadForIcon, CommandTakenAsAnOptionsArgumentDoesNotEndTheWalk) {
    EXPECT_TRUE(ExpectSameReading("-h -C -I \"" + IconText() + "\" -C tail words"));
}

TEST(ReadForIcon, LastIconOptionDecidesInBothReads) {
    EXPECT_FALSE(ExpectSameReading("-I \"" + IconText() + "\" -i -C x"));
    EXPECT_TRUE(ExpectSameReading("-i -I \"" + IconText() + "\" -I \"" + OtherIconText() + "\" -C x"));
    EXPECT_FALSE(ExpectSameReading("-h server -I"));
}

TEST(ReadForIcon, EightBitTextsBeforeTheCommandComeOutAlike) {
    EXPECT_TRUE(ExpectSameReading("-h caf\xE9.example -u \x80\x81\x8D\x9F\xFF -a \"\xC0 b\" -I \"" + IconText() +
                                  "\" -C \xE9t\xE9"));
}

TEST(ReadForIcon, QuotesLineBreaksAndAZeroByteAreTakenAsReadTakesThem) {
    EXPECT_TRUE(ExpectSameReading("-h \"a -C b\"\n-I \"" + IconText() + "\"\r\n-C x\ny"));
    EXPECT_TRUE(ExpectSameReading("-w 'x y' -I '" + IconText() + "' -C 'z'"));
    EXPECT_FALSE(ExpectSameReading(std::string("-h a\0-I ", 8) + IconText()));
}

TEST(ReadForIcon, DamagedIconCountsAsNoneInBothReads) {
    std::string text = IconText();
    text[13] = 'g';
    EXPECT_FALSE(ExpectSameReading("-I \"" + text + "\" -C x"));
}

TEST(ReadForIcon, MissingFileFailsAsReadFails) {
    TempFile file("read-for-icon-missing");
    VQCFileInfo whole("C:\\a.vqc"), road("C:\\a.vqc");
    EXPECT_EQ(whole.Read(file.Path()), 1);
    EXPECT_EQ(road.ReadForIcon(file.Path()), 1);
    EXPECT_EQ(road.lastError, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(road.lastError, whole.lastError);
}

TEST(ReadForIcon, FileHeldWithoutSharingFailsWithSharingViolation) {
    TempFile file("read-for-icon-locked", "-h server -I \"" + IconText() + "\"");
    const UniqueKernelHandle lock(CreateFileA(file.Path(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(lock);
    VQCFileInfo road("C:\\a.vqc");
    EXPECT_EQ(road.ReadForIcon(file.Path()), 1);
    EXPECT_EQ(road.lastError, static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_FALSE(road.icon);
}

TEST(ReadForIcon, FileAnotherProgramWritesToFailsAsReadFails) {
    // A writer that shares reading and writing: the reader asks for reading only and shares
    // only reading, so neither read may open the file.
    TempFile file("read-for-icon-writer", "-h server -I \"" + IconText() + "\"");
    const UniqueKernelHandle writer(CreateFileA(file.Path(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(writer);
    VQCFileInfo whole("C:\\a.vqc"), road("C:\\a.vqc");
    EXPECT_EQ(whole.Read(file.Path()), 1);
    EXPECT_EQ(road.ReadForIcon(file.Path()), 1);
    EXPECT_EQ(road.lastError, static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(road.lastError, whole.lastError);
}

TEST(ReadForIcon, WhileItReadsOthersCanReadButNotWrite) {
    // The file is held as Read holds it for as long as the read runs: the debugger wait of a
    // --debug element comes while it is open, and there another program tries both.
    TempFile file("read-for-icon-held", "-h server --debug -I \"" + IconText() + "\"");
    static std::string path;
    static bool readerOpened = false, writerOpened = true;
    path = file.Path();
    const DebuggerWaitHooks previous = SetDebuggerWaitHooks(
        {[] { return true; },
         [] {
             const UniqueKernelHandle reader(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
             readerOpened = static_cast<bool>(reader);
             const UniqueKernelHandle writer(CreateFileA(path.c_str(), GENERIC_WRITE,
                                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                                         FILE_ATTRIBUTE_NORMAL, nullptr));
             writerOpened = static_cast<bool>(writer);
         },
         NoSleep, NoAnnounce});
    VQCFileInfo road("C:\\a.vqc");
    const std::int32_t result = road.ReadForIcon(file.Path());
    SetDebuggerWaitHooks(previous);
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(readerOpened);
    EXPECT_FALSE(writerOpened);
    EXPECT_TRUE(road.icon);
}

TEST(ReadForIcon, DebugElementsAfterTheCommandStartTheWaitAsInRead) {
    const std::string text = "-h server --debugger -C run --debug \"--debug x\" -- --deb \xE9--debug";
    TempFile file("read-for-icon-debug", text);
    const DebuggerWaitHooks previous = SetDebuggerWaitHooks({AlwaysPresent, CountBreak, NoSleep, NoAnnounce});
    g_breaks = 0;
    VQCFileInfo whole("C:\\a.vqc");
    whole.Read(file.Path());
    const int wholeBreaks = g_breaks;
    g_breaks = 0;
    VQCFileInfo road("C:\\a.vqc");
    road.ReadForIcon(file.Path());
    const int roadBreaks = g_breaks;
    SetDebuggerWaitHooks(previous);
    EXPECT_EQ(wholeBreaks, 3);
    EXPECT_EQ(roadBreaks, wholeBreaks);
}
