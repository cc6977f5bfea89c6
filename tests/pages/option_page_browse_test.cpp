// "&Browse Icon ..." on real Options pages: what the page hands the open-file dialog
// (recorded through the dialog's replaceable show function), and the system's own dialog
// driven as a user would: a confirmed file changes the label and the list, never the
// record, until an icon is clicked; Cancel changes nothing.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "ui/open_file_dialog.h"
#include "pages/option_page.h"
#include "resources/local_string_cache.h"
#include "tests/pages/file_dialog_driver.h"
#include "tests/pages/option_page_test_support.h"
#include "tests/window_assertions.h"
#include "tests/support/system_structure_sizes.h"

using namespace option_test;
using page_test::TempFolder;

namespace {

// What the page gave the dialog, copied while the call lasts.
struct Recorded {
    int calls = 0;
    OPENFILENAMEA settings{};
    std::string file;
    std::vector<std::string> filter;  // the strings of the list, up to its empty one
    std::string answer;               // put into the file buffer when not empty
    BOOL result = FALSE;
};
Recorded* g_recorded = nullptr;

BOOL WINAPI RecordingShow(LPOPENFILENAMEA settings) {
    Recorded& r = *g_recorded;
    ++r.calls;
    std::memcpy(&r.settings, settings, std::min<std::size_t>(sizeof(r.settings), settings->lStructSize));
    r.file = settings->lpstrFile ? settings->lpstrFile : "<null>";
    for (const char* piece = settings->lpstrFilter; piece && *piece; piece += std::strlen(piece) + 1)
        r.filter.push_back(piece);
    if (!r.answer.empty()) lstrcpynA(settings->lpstrFile, r.answer.c_str(), static_cast<int>(settings->nMaxFile));
    return r.result;
}

class RecordedBrowse : public ::testing::Test {
protected:
    void SetUp() override {
        g_recorded = &recorded;
        previous = OpenFileDialog::SetShowFunctionForTesting(RecordingShow);
    }
    void TearDown() override {
        OpenFileDialog::SetShowFunctionForTesting(previous);
        g_recorded = nullptr;
    }

    ComPtr<VQCFileInfo> Record(const std::string& clientPath = IconsDll()) {
        const std::string file = folder.File("browse.vqc");
        WriteFileBytes(file, "-h server ");
        ComPtr<VQCFileInfo> record = RecordFor(file);
        record->clientPath = clientPath;
        return record;
    }

    TempFolder folder{"option-browse"};
    Recorded recorded;
    OpenFileDialog::ShowFunction previous = nullptr;
};

}  // namespace

TEST_F(RecordedBrowse, DialogGetsTheSourceTheFlagsTheFilterAndThePageAsOwner) {
    const ComPtr<VQCFileInfo> record = Record();
    OptionSheet sheet(record.Get());
    sheet.ClickButton(dialog_ids::kBrowseButton);
    ASSERT_EQ(recorded.calls, 1);
    EXPECT_EQ(recorded.settings.lStructSize, system_sizes::kFullOpenFileName);
    EXPECT_EQ(recorded.settings.lStructSize, OpenFileDialog::StructureSize());
    EXPECT_EQ(recorded.settings.Flags, 0x881024u);
    EXPECT_TRUE(IsSameWindow(recorded.settings.hwndOwner, sheet.Window()));
    EXPECT_EQ(recorded.settings.lpstrDefExt, nullptr);
    EXPECT_EQ(recorded.settings.nMaxFile, 260u);
    EXPECT_EQ(recorded.file, IconsDll());
    EXPECT_EQ(recorded.filter,
              (std::vector<std::string>{"Executable and icon files", "*.exe;*.dll;*.ico", "All files", "*.*"}));
    EXPECT_EQ(recorded.settings.lpstrFilter, GetLocalString(40));
}

TEST_F(RecordedBrowse, InitialNameLongerThan259CharactersIsCut) {
    const std::string longPath = "C:\\" + std::string(280, 'p') + "\\client.dll";
    const ComPtr<VQCFileInfo> record = Record(longPath);
    OptionSheet sheet(record.Get());
    EXPECT_EQ(sheet.Page()->IconFileForTesting(), longPath);
    sheet.ClickButton(dialog_ids::kBrowseButton);
    ASSERT_EQ(recorded.calls, 1);
    EXPECT_EQ(recorded.file, longPath.substr(0, 259));
}

TEST_F(RecordedBrowse, CancelChangesNothing) {
    const ComPtr<VQCFileInfo> record = Record();
    OptionSheet sheet(record.Get());
    const HICON icon = record->icon.Get();
    recorded.answer = IconFile("true_colour");
    recorded.result = FALSE;
    sheet.ClickButton(dialog_ids::kBrowseButton);
    ASSERT_EQ(recorded.calls, 1);
    EXPECT_EQ(sheet.Page()->IconFileForTesting(), IconsDll());
    EXPECT_EQ(sheet.Label(), "Look for icons in: option_icons.dll");
    EXPECT_EQ(sheet.ListCount(), 5);
    EXPECT_EQ(record->icon.Get(), icon);
    EXPECT_FALSE(sheet.ApplyEnabled());
}

TEST_F(RecordedBrowse, ConfirmedFileChangesLabelAndListButNotTheRecord) {
    const ComPtr<VQCFileInfo> record = Record();
    OptionSheet sheet(record.Get());
    const HICON icon = record->icon.Get();
    const HICON small = record->smallIcon.Get();
    recorded.answer = IconFile("true_colour");
    recorded.result = TRUE;
    sheet.ClickButton(dialog_ids::kBrowseButton);
    EXPECT_EQ(sheet.Page()->IconFileForTesting(), IconFile("true_colour"));
    EXPECT_EQ(sheet.Label(), "Look for icons in: true_colour.ico");
    ASSERT_EQ(sheet.ListCount(), 1);
    EXPECT_EQ(SignatureOf(sheet.ListIcon(0)), signature::kTrueColourLarge);
    EXPECT_EQ(SendMessageA(sheet.List(), LB_GETCURSEL, 0, 0), LB_ERR);  // nothing selected
    EXPECT_EQ(record->icon.Get(), icon);
    EXPECT_EQ(record->smallIcon.Get(), small);
    EXPECT_EQ(SignatureOf(record->icon.Get()), signature::kFourBitLarge);
    EXPECT_FALSE(sheet.ApplyEnabled());

    sheet.ClickItem(0);
    EXPECT_EQ(SignatureOf(record->icon.Get()), signature::kTrueColourLarge);
    EXPECT_EQ(SignatureOf(record->smallIcon.Get()), signature::kTrueColourSmall);
    EXPECT_TRUE(sheet.ApplyEnabled());
}

TEST_F(RecordedBrowse, ConfirmedFileWithoutIconsEmptiesTheList) {
    const ComPtr<VQCFileInfo> record = Record();
    OptionSheet sheet(record.Get());
    const std::string plain = folder.File("plain.txt");
    WriteFileBytes(plain, "no icons here");
    recorded.answer = plain;
    recorded.result = TRUE;
    sheet.ClickButton(dialog_ids::kBrowseButton);
    EXPECT_EQ(sheet.Label(), "Look for icons in: plain.txt");
    EXPECT_EQ(sheet.ListCount(), 0);
    EXPECT_TRUE(record->icon);
}

TEST_F(RecordedBrowse, ListedIconsOfTheOldSourceAreDestroyedOnRefill) {
    const ComPtr<VQCFileInfo> record = Record();
    OptionSheet sheet(record.Get());
    std::vector<HICON> old;
    for (int i = 0; i < sheet.ListCount(); ++i) old.push_back(sheet.ListIcon(i));
    recorded.answer = IconFile("four_bit");
    recorded.result = TRUE;
    sheet.ClickButton(dialog_ids::kBrowseButton);
    ASSERT_EQ(old.size(), 5u);
    for (HICON icon : old) EXPECT_EQ(IconWidth(icon), 0) << "still alive";
}

TEST_F(RecordedBrowse, WithoutARecordNoDialogOpens) {
    OptionSheet sheet(nullptr);
    sheet.ClickButton(dialog_ids::kBrowseButton);
    EXPECT_EQ(recorded.calls, 0);
}

// ---- The system's own dialog --------------------------------------------------------------

namespace {

// The Windows form of a path the build gives with forward slashes.
std::string WindowsPath(std::string path) {
    for (char& c : path)
        if (c == '/') c = '\\';
    return path;
}

ComPtr<VQCFileInfo> DialogRecord(const TempFolder& folder) {
    const std::string file = folder.File("dialog.vqc");
    WriteFileBytes(file, "-h server ");
    ComPtr<VQCFileInfo> record = RecordFor(file);
    record->clientPath = WindowsPath(IconsDll());
    return record;
}

}  // namespace

TEST(OptionPageBrowseDialog, TypedFileChangesLabelAndListThenAClickChangesTheRecord) {
    TempFolder folder("option-dialog");
    const ComPtr<VQCFileInfo> record = DialogRecord(folder);
    OptionSheet sheet(record.Get());
    const HICON icon = record->icon.Get();
    const std::string chosen = WindowsPath(IconFile("black_white"));

    page_test::FileDialogDriver driver(GetCurrentThreadId(), chosen);
    sheet.ClickButton(dialog_ids::kBrowseButton);
    driver.Finish();
    ASSERT_TRUE(driver.SawDialog());
    EXPECT_EQ(driver.Title(), "Open");
    EXPECT_TRUE(IsSameWindow(driver.Owner(), sheet.Sheet()));  // the page's top-level window
    EXPECT_EQ(driver.FileNameShown(), "option_icons.dll");
    EXPECT_EQ(driver.FileTypeShown(), "Executable and icon files");

    EXPECT_EQ(sheet.Page()->IconFileForTesting(), chosen);
    EXPECT_EQ(sheet.Label(), "Look for icons in: black_white.ico");
    ASSERT_EQ(sheet.ListCount(), 1);
    EXPECT_EQ(SignatureOf(sheet.ListIcon(0)), signature::kWhite);
    EXPECT_EQ(record->icon.Get(), icon);
    EXPECT_FALSE(sheet.ApplyEnabled());

    sheet.ClickItem(0);
    EXPECT_EQ(SignatureOf(record->icon.Get()), signature::kWhite);
    EXPECT_TRUE(sheet.ApplyEnabled());
}

TEST(OptionPageBrowseDialog, CancelledDialogChangesNothing) {
    TempFolder folder("option-dialog-cancel");
    const ComPtr<VQCFileInfo> record = DialogRecord(folder);
    OptionSheet sheet(record.Get());
    const HICON icon = record->icon.Get();

    page_test::FileDialogDriver driver(GetCurrentThreadId(), "");
    sheet.ClickButton(dialog_ids::kBrowseButton);
    driver.Finish();
    ASSERT_TRUE(driver.SawDialog());
    EXPECT_EQ(sheet.Page()->IconFileForTesting(), WindowsPath(IconsDll()));
    EXPECT_EQ(sheet.Label(), "Look for icons in: option_icons.dll");
    EXPECT_EQ(sheet.ListCount(), 5);
    EXPECT_EQ(record->icon.Get(), icon);
    EXPECT_FALSE(sheet.ApplyEnabled());
}
