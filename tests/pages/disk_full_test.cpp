// A save the file system itself refuses: this program runs with a limit on the size of every
// file it writes (with_file_size_limit.sh sets it and names it in VQC_FILE_SIZE_LIMIT), so a
// connection file that grows past it stops being written where the limit is, as on a volume
// that fills up. The writer empties the file before it writes; when the write then fails it
// puts the file's old bytes back, and the user hears of the failure, and of the old content
// being gone only when even that failed.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "common/ansi_text.h"
#include "common/win_handles.h"
#include "connection/vqc_file_info.h"
#include "resources/dialog_ids.h"
#include "pages/connection_page_rules.h"
#include "pages/save_failure_text.h"
#include "tests/pages/page_test_support.h"
#include "tests/window_assertions.h"

using namespace page_test;

namespace {

// The limit this process runs under, in bytes; 0 when it was not told of one.
std::size_t FileSizeLimit() {
    const char* limit = std::getenv("VQC_FILE_SIZE_LIMIT");
    return limit ? static_cast<std::size_t>(std::strtoull(limit, nullptr, 10)) : 0;
}

// Writes bytes to a new file through a mapping: the server, which runs without the limit,
// grows the file to its size, and the bytes reach it through memory, so a file larger than
// the limit can be made by this process (as another program on the machine would make it).
bool MakeFileThroughMapping(const std::string& path, const std::string& bytes) {
    const UniqueKernelHandle file(CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file || bytes.empty()) return static_cast<bool>(file);
    const UniqueKernelHandle mapping(
        CreateFileMappingA(file.Get(), nullptr, PAGE_READWRITE, 0, static_cast<DWORD>(bytes.size()), nullptr));
    if (!mapping) return false;
    const UniqueMappedView view(MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, bytes.size()));
    if (!view) return false;
    CopyMemory(const_cast<void*>(view.Get()), bytes.data(), bytes.size());
    return true;
}

// What the system answers a write that would take a file past the limit: the reason the
// user is to be given.
DWORD ErrorOfAWriteBeyondTheLimit(const std::string& path, std::size_t limit) {
    const UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const std::string bytes(limit + 1, 'x');
    DWORD written = 0;
    if (!WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(limit), &written, nullptr) || written != limit)
        return ERROR_SUCCESS;
    SetLastError(ERROR_SUCCESS);
    if (WriteFile(file.Get(), bytes.data(), 1, &written, nullptr)) return ERROR_SUCCESS;
    return GetLastError();
}

// A connection file of `size` bytes whose -C text is words, which the reader joins back as
// they were: "-h server.example -u tester -C bookmark w0 w1 ...".
std::string ConnectionFileOfSize(std::size_t size) {
    std::string text = "-h server.example -u tester -C bookmark";
    for (int word = 0; text.size() < size; ++word) text += " w" + std::to_string(word);
    text.resize(size);
    if (text.back() == ' ') text.back() = 'x';
    return text;
}

// A login long enough to take any of these files past the limit.
std::string LongLogin() { return std::string(8192, 'L'); }

// A DLL copy made through a mapping (the built DLL is larger than the limit), loaded, with a
// connection file beside it; the shell's sheet for it, and a long login typed on the
// Connection page.
class FullVolumeSheet {
public:
    FullVolumeSheet(const std::string& tag, const std::string& oldContent)
        : folder_(tag), dll_(folder_.File("vqcprop64.dll")), file_(folder_.File("connection.vqc")) {
        if (MakeFileThroughMapping(dll_, ReadFileBytes(BuiltDllPath()))) module_.Reset(LoadLibraryA(dll_.c_str()));
        made_ = MakeFileThroughMapping(file_, oldContent);
        if (module_ && made_) {
            const auto getClassObject = reinterpret_cast<GetClassObjectFunction>(
                reinterpret_cast<void*>(GetProcAddress(module_.Get(), "DllGetClassObject")));
            sheet_ = std::make_unique<ShellPropertySheet>(getClassObject, file_);
        }
    }

    // Opens the sheet and types the login; false when a step of it did not happen.
    bool OpenAndEdit(const std::string& login) {
        if (!sheet_ || !sheet_->Open()) return false;
        page_ = ShowPageTitled(sheet_->Sheet(), "Connection");
        if (!page_) return false;
        TypeText(PageControl(page_, dialog_ids::kLoginEdit), login);
        return ApplyEnabled(sheet_->Sheet());
    }

    // A click on one of the sheet's buttons; the message boxes it brought up, each closed.
    std::vector<SeenBox> Press(int button) {
        MessageBoxWatcher watcher(sheet_->Sheet());
        ClickButton(sheet_->Sheet(), button);
        PumpMessages();
        return watcher.Boxes();
    }

    // The file, the system's reason and, when the old content is gone too, the sentence
    // that says so.
    std::string BoxText(DWORD error, bool oldContentLost) const {
        std::string text = file_ + "\r\n\r\n" + ansi_text::Trimmed(test_support::SystemErrorText(error));
        if (oldContentLost) text += std::string("\r\n\r\n") + kOldContentLostSentence;
        return text;
    }

    HWND Sheet() const { return sheet_->Sheet(); }
    HWND Page() const { return page_; }
    const std::string& File() const { return file_; }

    ~FullVolumeSheet() {
        if (sheet_) sheet_->Destroy();
        sheet_.reset();
    }

private:
    TempFolder folder_;
    std::string dll_;
    std::string file_;
    UniqueModule module_;
    bool made_ = false;
    std::unique_ptr<ShellPropertySheet> sheet_;
    HWND page_ = nullptr;
};

// The limit and the system's reason for refusing a write past it; a failure when this
// process runs without a limit (every test below would prove nothing then).
class DiskFull : public ::testing::Test {
protected:
    void SetUp() override {
        limit_ = FileSizeLimit();
        ASSERT_GT(limit_, 0u) << "VQC_FILE_SIZE_LIMIT is not set: run through with_file_size_limit.sh";
        const TempFolder scratch("disk-full-probe");
        error_ = ErrorOfAWriteBeyondTheLimit(scratch.File("probe.bin"), limit_);
        ASSERT_NE(error_, static_cast<DWORD>(ERROR_SUCCESS)) << "a write past " << limit_ << " bytes did not fail";
    }

    std::size_t limit_ = 0;
    DWORD error_ = ERROR_SUCCESS;
};

}  // namespace

TEST_F(DiskFull, AWriteThatWouldPassTheLimitTakesTheBytesUpToItThenFails) {
    const TempFolder folder("disk-full-limit");
    const std::string path = folder.File("probe.bin");
    const UniqueKernelHandle file(
        CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(file);
    const std::string bytes(limit_ + 100, 'x');
    DWORD written = 0;
    // The system takes what fits and answers success; the rest it refuses.
    EXPECT_TRUE(WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    EXPECT_EQ(written, limit_);
    EXPECT_FALSE(WriteFile(file.Get(), bytes.data(), 100, &written, nullptr));
    EXPECT_EQ(GetLastError(), error_);
}

TEST_F(DiskFull, WriterPutsTheOldBytesBackWhenTheNewTextDoesNotFit) {
    const TempFolder folder("disk-full-writer");
    const std::string path = folder.File("connection.vqc");
    const std::string old = ConnectionFileOfSize(limit_ - 4096);
    WriteFileBytes(path, old);
    VQCFileInfo record(path.c_str());
    record.AddRef();
    ASSERT_EQ(record.Read(path.c_str()), 0);
    record.login = LongLogin();
    EXPECT_EQ(record.Write(path.c_str()), 1);
    EXPECT_EQ(record.lastError, error_);
    EXPECT_EQ(record.lastWrite, Replacement::OldPutBack);
    const std::string now = ReadFileBytes(path);
    EXPECT_EQ(now.size(), old.size());
    EXPECT_TRUE(now == old) << "the file holds other bytes than before the write";
}

TEST_F(DiskFull, WriterSaysTheOldBytesAreLostWhenTheyDoNotFitEither) {
    const TempFolder folder("disk-full-writer-lost");
    const std::string path = folder.File("connection.vqc");
    const std::string old = ConnectionFileOfSize(limit_ + 4096);
    ASSERT_TRUE(MakeFileThroughMapping(path, old));
    VQCFileInfo record(path.c_str());
    record.AddRef();
    ASSERT_EQ(record.Read(path.c_str()), 0);
    record.login = LongLogin();
    EXPECT_EQ(record.Write(path.c_str()), 1);
    EXPECT_EQ(record.lastError, error_);
    EXPECT_EQ(record.lastWrite, Replacement::OldLost);
    EXPECT_EQ(ReadFileBytes(path).size(), limit_);
}

TEST_F(DiskFull, ApplyShowsOneBoxNamingTheFileAndTheSystemsReasonAndTheFileKeepsItsBytes) {
    const std::string old = ConnectionFileOfSize(limit_ - 4096);
    FullVolumeSheet setup("disk-full-apply", old);
    ASSERT_TRUE(setup.OpenAndEdit(LongLogin()));
    const std::vector<SeenBox> boxes = setup.Press(kApplyButtonId);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, setup.BoxText(error_, false));
    EXPECT_EQ(boxes[0].title, WindowText(setup.Sheet()));
    const std::string now = ReadFileBytes(setup.File());
    EXPECT_EQ(now.size(), old.size());
    EXPECT_TRUE(now == old) << "the file holds other bytes than before Apply";
}

TEST_F(DiskFull, TheSheetStaysOpenOnItsPageWithTheEdit) {
    FullVolumeSheet setup("disk-full-stays", ConnectionFileOfSize(limit_ - 4096));
    ASSERT_TRUE(setup.OpenAndEdit(LongLogin()));
    ASSERT_EQ(setup.Press(kApplyButtonId).size(), 1u);
    EXPECT_FALSE(SheetClosed(setup.Sheet()));
    EXPECT_TRUE(IsSameWindow(CurrentPage(setup.Sheet()), setup.Page()));
    EXPECT_TRUE(ApplyEnabled(setup.Sheet()));
    EXPECT_EQ(WindowText(PageControl(setup.Page(), dialog_ids::kLoginEdit)), LongLogin());
}

TEST_F(DiskFull, OkOnAllThreePagesShowsOneBoxAndKeepsTheSheetAndTheFile) {
    const std::string old = ConnectionFileOfSize(limit_ - 4096);
    FullVolumeSheet setup("disk-full-ok", old);
    ASSERT_TRUE(setup.OpenAndEdit(LongLogin()));
    ASSERT_EQ(PageCount(setup.Sheet()), 3);
    for (int index = 0; index < 3; ++index) ShowPage(setup.Sheet(), index);
    ShowPageTitled(setup.Sheet(), "Connection");
    const std::vector<SeenBox> boxes = setup.Press(IDOK);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, setup.BoxText(error_, false));
    EXPECT_FALSE(SheetClosed(setup.Sheet()));
    EXPECT_TRUE(ReadFileBytes(setup.File()) == old) << "the file holds other bytes than before OK";
}

TEST_F(DiskFull, ApplyOnceTheEditFitsWritesItWithoutABox) {
    FullVolumeSheet setup("disk-full-retry", ConnectionFileOfSize(limit_ - 4096));
    ASSERT_TRUE(setup.OpenAndEdit(LongLogin()));
    ASSERT_EQ(setup.Press(kApplyButtonId).size(), 1u);
    TypeText(PageControl(setup.Page(), dialog_ids::kLoginEdit), "changed");
    EXPECT_TRUE(setup.Press(kApplyButtonId).empty());
    EXPECT_FALSE(ApplyEnabled(setup.Sheet()));
    const std::string now = ReadFileBytes(setup.File());
    EXPECT_EQ(now.rfind("-h server.example -u changed -C bookmark w0 w1 ", 0), 0u) << now.substr(0, 80);
}

TEST_F(DiskFull, WhenTheOldBytesCannotBePutBackEitherTheBoxSaysSo) {
    FullVolumeSheet setup("disk-full-lost", ConnectionFileOfSize(limit_ + 4096));
    ASSERT_TRUE(setup.OpenAndEdit(LongLogin()));
    const std::vector<SeenBox> boxes = setup.Press(kApplyButtonId);
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, setup.BoxText(error_, true));
    EXPECT_FALSE(SheetClosed(setup.Sheet()));
    EXPECT_EQ(WindowText(PageControl(setup.Page(), dialog_ids::kLoginEdit)), LongLogin());
}
