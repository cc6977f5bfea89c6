// The shell's road with the server linked into this program: the class factory of this
// process's module, Initialize with the shell's selection of a real file, AddPages, and a
// modeless sheet. Linked in, the tests can look at the page objects and the record they
// share. No client lies beside this program, so all three pages are offered.
#include <gtest/gtest.h>

#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "shellext/vqcprop_module.h"
#include "tests/pages/page_test_support.h"
#include "tests/shellext/shellext_test_support.h"
#include "tests/window_assertions.h"
#include "tests/support/system_structure_sizes.h"

using namespace page_test;

namespace {

HRESULT STDAPICALLTYPE ThisProcessGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    return TheModule().GetClassObject(classId, iid, object);
}

bool IconAlive(HICON icon) {
    ICONINFO info{};
    if (!GetIconInfo(icon, &info)) return false;
    if (info.hbmColor) DeleteObject(info.hbmColor);
    if (info.hbmMask) DeleteObject(info.hbmMask);
    return true;
}

// What the writer makes of the file for a client of unknown version.
std::string WriterBytesFor(const std::string& path) {
    VQCFileInfo record(path.c_str());
    record.refCount = 1;
    record.Read(path.c_str());
    TempFolder folder("expected");
    const std::string copy = folder.File("expected.vqc");
    record.Write(copy.c_str());
    return ReadFileBytes(copy);
}

constexpr char kLine[] = "-h  server.example  -u  tester  -C  bookmark";

}  // namespace

TEST(InProcessSheet, OffersConnectionProxyAndOptionsInThisOrder) {
    TempFolder folder("in-order");
    const std::string file = folder.File("order.vqc");
    WriteFileBytes(file, kLine);
    ShellPropertySheet sheet(ThisProcessGetClassObject, file);
    ASSERT_TRUE(sheet.Open());
    EXPECT_EQ(sheet.Offered(), 3);
    EXPECT_EQ(PageCount(sheet.Sheet()), 3);
    EXPECT_EQ(PageTitle(sheet.Sheet(), 0), "Connection");
    EXPECT_EQ(PageTitle(sheet.Sheet(), 1), "Proxy");
    EXPECT_EQ(PageTitle(sheet.Sheet(), 2), "Options");
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    EXPECT_NE(CVQCConnectionPage::FromWindow(PageWindow(sheet.Sheet(), 0)), nullptr);
    EXPECT_NE(CVQCProxyPage::FromWindow(PageWindow(sheet.Sheet(), 1)), nullptr);
    EXPECT_NE(CVQCOptionPage::FromWindow(PageWindow(sheet.Sheet(), 2)), nullptr);
}

TEST(InProcessSheet, ThePagesShareOneRecordReadFromTheFile) {
    TempFolder folder("shared");
    const std::string file = folder.File("shared.vqc");
    WriteFileBytes(file, kLine);
    ShellPropertySheet sheet(ThisProcessGetClassObject, file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    VQCFileInfo* record = CVQCConnectionPage::FromWindow(PageWindow(sheet.Sheet(), 0))->Record();
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(CVQCProxyPage::FromWindow(PageWindow(sheet.Sheet(), 1))->Record(), record);
    EXPECT_EQ(CVQCOptionPage::FromWindow(PageWindow(sheet.Sheet(), 2))->Record(), record);
    EXPECT_EQ(record->host, "server.example");
    EXPECT_EQ(record->login, "tester");
    char full[MAX_PATH + 1] = {};
    GetFullPathNameA(file.c_str(), sizeof(full), full, nullptr);
    EXPECT_EQ(_stricmp(record->filePath.c_str(), full), 0) << record->filePath;
    // Only the pages hold it: AddPages gave its own reference back.
    EXPECT_EQ(record->refCount, 3u);
    EXPECT_EQ(record->clientPath, "");
    EXPECT_EQ(record->clientVersion, 726);
}

TEST(InProcessSheet, EveryPageNamesTheModulesLockCountAsReferenceParent) {
    // Wine's sheet does not count through it, so the pointer each page hands over is checked.
    TempFolder folder("refparent");
    const std::string file = folder.File("refparent.vqc");
    WriteFileBytes(file, kLine);
    ShellPropertySheet sheet(ThisProcessGetClassObject, file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    // clang-format off
    const PROPSHEETPAGEA* descriptions[] = {
        &CVQCConnectionPage::FromWindow(PageWindow(sheet.Sheet(), 0))->Description(),
        &CVQCProxyPage::FromWindow(PageWindow(sheet.Sheet(), 1))->Description(),
        &CVQCOptionPage::FromWindow(PageWindow(sheet.Sheet(), 2))->Description(),
    };
    // clang-format on
    const char* titles[] = {"Connection", "Proxy", "Options"};
    for (int i = 0; i < 3; ++i) {
        const PROPSHEETPAGEA& d = *descriptions[i];
        EXPECT_EQ(d.pcRefParent, TheModule().LockCountAddress()) << i;
        EXPECT_EQ(d.dwSize, system_sizes::kFullPropertySheetPage) << i;
        EXPECT_EQ(d.dwFlags, static_cast<DWORD>(PSP_DLGINDIRECT | PSP_USECALLBACK | PSP_USEREFPARENT | PSP_USETITLE))
            << i;
        EXPECT_STREQ(d.pszTitle, titles[i]);
        EXPECT_EQ(d.hInstance, TheModule().instance) << i;
    }
}

TEST(InProcessSheet, RecordIsFreedWithTheLastPageEvenWhenProxyAndOptionsWereNeverShown) {
    TempFolder folder("freed");
    const std::string file = folder.File("icon.vqc");
    WriteFileBytes(file, test_support::ConnectionLineWithIcon({32, 16}));
    ShellPropertySheet sheet(ThisProcessGetClassObject, file);
    ASSERT_TRUE(sheet.Open());
    sheet.ReleaseObject();
    ASSERT_EQ(PageWindow(sheet.Sheet(), 1), nullptr);
    ASSERT_EQ(PageWindow(sheet.Sheet(), 2), nullptr);
    VQCFileInfo* record = CVQCConnectionPage::FromWindow(PageWindow(sheet.Sheet(), 0))->Record();
    ASSERT_NE(record, nullptr);
    const HICON icon = record->icon.Get();
    const HICON smallIcon = record->smallIcon.Get();
    ASSERT_NE(icon, nullptr);
    ASSERT_NE(smallIcon, nullptr);
    EXPECT_EQ(record->refCount, 3u);
    EXPECT_TRUE(IconAlive(icon));
    sheet.Destroy();
    // The record's destructor destroyed the icons it owned.
    EXPECT_FALSE(IconAlive(icon));
    EXPECT_FALSE(IconAlive(smallIcon));
}

TEST(InProcessSheet, RefusedPageIsDeletedAndTheOthersStillWork) {
    TempFolder folder("refused");
    const std::string file = folder.File("refused.vqc");
    WriteFileBytes(file, kLine);
    ShellPropertySheet sheet(ThisProcessGetClassObject, file);
    sheet.RefuseOffer(1);  // the Proxy page
    ASSERT_TRUE(sheet.Open());
    EXPECT_EQ(sheet.Offered(), 3);
    EXPECT_EQ(sheet.Accepted().size(), 2u);
    EXPECT_EQ(PageTitle(sheet.Sheet(), 0), "Connection");
    EXPECT_EQ(PageTitle(sheet.Sheet(), 1), "Options");
    ShowPage(sheet.Sheet(), 1);
    VQCFileInfo* record = CVQCConnectionPage::FromWindow(PageWindow(sheet.Sheet(), 0))->Record();
    // The refused page gave its reference back when it was deleted.
    EXPECT_EQ(record->refCount, 2u);
    EXPECT_EQ(CVQCOptionPage::FromWindow(PageWindow(sheet.Sheet(), 1))->Record(), record);

    const std::string expected = WriterBytesFor(file);
    WriteWatch watch(file);
    watch.Watch(PageWindow(sheet.Sheet(), 0));
    watch.Watch(PageWindow(sheet.Sheet(), 1));
    EXPECT_EQ(Apply(sheet.Sheet()), TRUE);
    EXPECT_EQ(watch.Applies(), 2);
    ASSERT_EQ(watch.Writes().size(), 2u);
    EXPECT_EQ(watch.Writes()[0], expected);
    EXPECT_EQ(watch.Writes()[1], expected);
}

TEST(InProcessSheet, AllPagesRefusedLeavesNoPageAndFreesTheRecord) {
    TempFolder folder("all-refused");
    const std::string file = folder.File("icon.vqc");
    WriteFileBytes(file, test_support::ConnectionLineWithIcon({32}));
    const LONG locks = TheModule().GetLockCount();
    {
        ShellPropertySheet sheet(ThisProcessGetClassObject, file);
        sheet.RefuseOffer(0);
        sheet.RefuseOffer(1);
        sheet.RefuseOffer(2);
        ASSERT_EQ(sheet.CreateObject(), S_OK);
        ASSERT_EQ(sheet.Initialize(), S_OK);
        EXPECT_EQ(sheet.AddPages(), S_OK);
        EXPECT_EQ(sheet.Offered(), 3);
        EXPECT_TRUE(sheet.Accepted().empty());
        EXPECT_EQ(TheModule().WindowCreation().Count(), 0);
    }
    EXPECT_EQ(TheModule().GetLockCount(), locks);
}

TEST(InProcessSheet, WriteFailureKeepsTheSheetOnThePageAndTheEditsForARetry) {
    TempFolder folder("retry");
    const std::string file = folder.File("retry.vqc");
    WriteFileBytes(file, kLine);
    ShellPropertySheet sheet(ThisProcessGetClassObject, file);
    ASSERT_TRUE(sheet.Open());
    const HWND page = PageWindow(sheet.Sheet(), 0);
    VQCFileInfo* record = CVQCConnectionPage::FromWindow(page)->Record();
    record->host = "edited.example";
    {
        const UniqueKernelHandle lock(
            CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(lock);
        MessageBoxWatcher boxes(sheet.Sheet());
        ClickButton(sheet.Sheet(), IDOK);
        EXPECT_EQ(boxes.Boxes().size(), 1u);
        EXPECT_FALSE(SheetClosed(sheet.Sheet()));
        EXPECT_TRUE(IsSameWindow(CurrentPage(sheet.Sheet()), page));
        EXPECT_EQ(record->lastError, static_cast<std::uint32_t>(ERROR_SHARING_VIOLATION));
        EXPECT_EQ(record->host, "edited.example");
    }
    EXPECT_EQ(ReadFileBytes(file), kLine);
    ClickButton(sheet.Sheet(), IDOK);
    EXPECT_TRUE(SheetClosed(sheet.Sheet()));
    EXPECT_NE(ReadFileBytes(file).find("-h edited.example"), std::string::npos) << ReadFileBytes(file);
}

TEST(InProcessSheet, NoPageObjectOutlivesTheSheet) {
    TempFolder folder("no-leak");
    const std::string file = folder.File("cycle.vqc");
    WriteFileBytes(file, test_support::ConnectionLineWithIcon({32, 16}));
    const LONG locks = TheModule().GetLockCount();
    // Many sheets, some pages refused, some never shown: each cycle's record must go, which
    // the icons it owned show.
    for (int cycle = 0; cycle < 20; ++cycle) {
        ShellPropertySheet sheet(ThisProcessGetClassObject, file);
        sheet.RefuseOffer(cycle % 3);
        ASSERT_TRUE(sheet.Open());
        const HWND first = PageWindow(sheet.Sheet(), 0);
        VQCFileInfo* record = cycle % 3 == 0 ? CVQCProxyPage::FromWindow(first)->Record()
                                             : CVQCConnectionPage::FromWindow(first)->Record();
        ASSERT_NE(record, nullptr);
        EXPECT_EQ(record->refCount, 2u) << cycle;
        const HICON icon = record->icon.Get();
        sheet.ReleaseObject();
        sheet.Destroy();
        EXPECT_FALSE(IconAlive(icon)) << cycle;
    }
    EXPECT_EQ(TheModule().GetLockCount(), locks);
    EXPECT_EQ(TheModule().WindowCreation().Count(), 0);
}
