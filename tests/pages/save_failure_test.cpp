// A save that fails is told to the user: Apply on a file another program holds locked shows
// one message box owned by the sheet, naming the file and the system's text for the error;
// the sheet stays open on its page with the edit, and an Apply once the lock is gone writes.
#include <windows.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "common/ansi_text.h"
#include "common/same_window.h"
#include "common/win_handles.h"
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
