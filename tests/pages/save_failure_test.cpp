// A save that fails is told to the user: Apply on a file another program holds locked, or
// one made read-only since the sheet opened, shows one message box owned by the sheet,
// naming the file and the system's text for the error; the sheet stays open on its page
// with the edit, the file keeps its bytes, and an Apply once the file is free writes.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "common/ansi_text.h"
#include "common/same_window.h"
#include "common/win_handles.h"
#include "resources/dialog_ids.h"
#include "pages/connection_page_rules.h"
#include "tests/pages/page_test_support.h"
#include "tests/window_assertions.h"

using namespace page_test;

namespace {

constexpr char kLine[] = "-h server.example -u tester -C bookmark";

// Another program has the file open and shares nothing.
class LockedFile {
public:
    explicit LockedFile(const std::string& path)
        : handle_(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {}
    bool Locked() const { return static_cast<bool>(handle_); }
    void Unlock() { handle_.Reset(); }

private:
    UniqueKernelHandle handle_;
};

// The user (or another program) sets the file's read-only attribute, and clears it again.
class ReadOnlyFile {
public:
    explicit ReadOnlyFile(std::string path) : path_(std::move(path)) {
        made_ = SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_READONLY) != FALSE;
    }
    ~ReadOnlyFile() { Clear(); }
    ReadOnlyFile(const ReadOnlyFile&) = delete;
    ReadOnlyFile& operator=(const ReadOnlyFile&) = delete;
    // Whether the system now refuses to open the file for writing, as Windows does.
    bool Refused() const {
        const UniqueKernelHandle file(CreateFileA(path_.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                                  FILE_ATTRIBUTE_NORMAL, nullptr));
        return made_ && !file && GetLastError() == ERROR_ACCESS_DENIED;
    }
    void Clear() { SetFileAttributesA(path_.c_str(), FILE_ATTRIBUTE_NORMAL); }

private:
    std::string path_;
    bool made_ = false;
};

// Wine keeps the attribute as the host file's permissions, which only a server that obeys
// them enforces (the test command starts its server so, also when run by root).
constexpr char kReadOnlyNotEnforced[] =
    "the read-only file can be opened for writing: this prefix's server ignores file permissions "
    "(root with CAP_DAC_OVERRIDE); start it as scripts/lib/wine-env.sh does";

// A DLL copy, a connection file beside it, the shell's sheet for that file, and a new login
// typed on the Connection page.
struct EditedSheet {
    explicit EditedSheet(const std::string& tag) : dll(tag), file(dll.File("connection.vqc")) {
        WriteFileBytes(file, kLine);
        sheet = std::make_unique<ShellPropertySheet>(dll.GetClassObject(), file);
    }
    bool OpenAndEdit() {
        if (!sheet->Open()) return false;
        page = ShowPageTitled(sheet->Sheet(), "Connection");
        if (!page) return false;
        TypeText(PageControl(page, dialog_ids::kLoginEdit), "changed");
        return ApplyEnabled(sheet->Sheet());
    }
    std::string ExpectedText(DWORD error) const {
        return file + "\r\n\r\n" + ansi_text::Trimmed(test_support::SystemErrorText(error));
    }
    // A click on one of the sheet's buttons; the message boxes it brought up, each closed.
    std::vector<SeenBox> Press(int button) {
        MessageBoxWatcher watcher(sheet->Sheet());
        ClickButton(sheet->Sheet(), button);
        PumpMessages();
        return watcher.Boxes();
    }

    ExtensionCopy dll;
    std::string file;
    std::unique_ptr<ShellPropertySheet> sheet;
    HWND page = nullptr;
};

}  // namespace

TEST(SaveFailure, ApplyOnALockedFileShowsOneBoxNamingTheFileAndTheSystemsText) {
    EditedSheet setup("save-locked-apply");
    ASSERT_TRUE(setup.OpenAndEdit());
    LockedFile lock(setup.file);
    ASSERT_TRUE(lock.Locked());
    const std::vector<SeenBox> boxes = setup.Press(kApplyButtonId);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, setup.ExpectedText(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(boxes[0].title, WindowText(setup.sheet->Sheet()));
}

TEST(SaveFailure, TheSheetStaysOpenOnItsPageWithTheEdit) {
    EditedSheet setup("save-locked-stays");
    ASSERT_TRUE(setup.OpenAndEdit());
    LockedFile lock(setup.file);
    ASSERT_TRUE(lock.Locked());
    ASSERT_EQ(setup.Press(kApplyButtonId).size(), 1u);
    EXPECT_FALSE(SheetClosed(setup.sheet->Sheet()));
    EXPECT_TRUE(IsSameWindow(CurrentPage(setup.sheet->Sheet()), setup.page));
    EXPECT_TRUE(ApplyEnabled(setup.sheet->Sheet()));
    EXPECT_EQ(WindowText(PageControl(setup.page, dialog_ids::kLoginEdit)), "changed");
    lock.Unlock();
    EXPECT_EQ(ReadFileBytes(setup.file), kLine);
}

TEST(SaveFailure, OkOnALockedFileShowsOneBoxForAllThreePagesAndKeepsTheSheet) {
    EditedSheet setup("save-locked-ok");
    ASSERT_TRUE(setup.OpenAndEdit());
    ASSERT_EQ(PageCount(setup.sheet->Sheet()), 3);
    // Every page has a window, so every page would write.
    for (int index = 0; index < 3; ++index) ShowPage(setup.sheet->Sheet(), index);
    ShowPageTitled(setup.sheet->Sheet(), "Connection");
    LockedFile lock(setup.file);
    ASSERT_TRUE(lock.Locked());
    const std::vector<SeenBox> boxes = setup.Press(IDOK);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, setup.ExpectedText(ERROR_SHARING_VIOLATION));
    EXPECT_FALSE(SheetClosed(setup.sheet->Sheet()));
}

TEST(SaveFailure, ApplyOnceTheLockIsGoneWritesTheEditWithoutABox) {
    EditedSheet setup("save-locked-retry");
    ASSERT_TRUE(setup.OpenAndEdit());
    LockedFile lock(setup.file);
    ASSERT_TRUE(lock.Locked());
    ASSERT_EQ(setup.Press(kApplyButtonId).size(), 1u);
    lock.Unlock();
    EXPECT_TRUE(setup.Press(kApplyButtonId).empty());
    EXPECT_FALSE(ApplyEnabled(setup.sheet->Sheet()));
    EXPECT_NE(ReadFileBytes(setup.file).find("-u changed"), std::string::npos) << ReadFileBytes(setup.file);
}

TEST(SaveFailure, ApplyOnAFileMadeReadOnlySinceTheSheetOpenedShowsAccessDeniedAndKeepsTheFile) {
    EditedSheet setup("save-read-only-apply");
    ASSERT_TRUE(setup.OpenAndEdit());
    ReadOnlyFile readOnly(setup.file);
    ASSERT_TRUE(readOnly.Refused()) << kReadOnlyNotEnforced;
    const std::vector<SeenBox> boxes = setup.Press(kApplyButtonId);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, setup.ExpectedText(ERROR_ACCESS_DENIED));
    EXPECT_FALSE(SheetClosed(setup.sheet->Sheet()));
    EXPECT_TRUE(IsSameWindow(CurrentPage(setup.sheet->Sheet()), setup.page));
    EXPECT_EQ(WindowText(PageControl(setup.page, dialog_ids::kLoginEdit)), "changed");
    EXPECT_EQ(ReadFileBytes(setup.file), kLine);
}

TEST(SaveFailure, ApplyOnceTheFileIsWritableAgainWritesTheEditWithoutABox) {
    EditedSheet setup("save-read-only-retry");
    ASSERT_TRUE(setup.OpenAndEdit());
    ReadOnlyFile readOnly(setup.file);
    ASSERT_TRUE(readOnly.Refused()) << kReadOnlyNotEnforced;
    ASSERT_EQ(setup.Press(kApplyButtonId).size(), 1u);
    readOnly.Clear();
    EXPECT_TRUE(setup.Press(kApplyButtonId).empty());
    EXPECT_FALSE(ApplyEnabled(setup.sheet->Sheet()));
    EXPECT_NE(ReadFileBytes(setup.file).find("-u changed"), std::string::npos) << ReadFileBytes(setup.file);
}
