// The built DLL as the shell uses it: a copy in a folder of its own (with a stand-in client
// beside it when a test wants one), its class factory, Initialize with the shell's selection
// of a real file, AddPages, and a modeless sheet driven by the messages a user's clicks send.
#include <windows.h>
#include <shellapi.h>

#include <gtest/gtest.h>

#include "connection/vqc_file_info.h"
#include "tests/pages/page_test_support.h"

using namespace page_test;

namespace {

constexpr char kLine[] = "-h  server.example  -u  tester  -C  bookmark";

// What the writer makes of the file for a client of the given version.
std::string WriterBytesFor(const std::string& path, int clientVersion = 726) {
    VQCFileInfo record(path.c_str());
    record.refCount = 1;
    record.Read(path.c_str());
    record.clientVersion = clientVersion;
    TempFolder folder("expected");
    const std::string copy = folder.File("expected.vqc");
    record.Write(copy.c_str());
    return ReadFileBytes(copy);
}

// Gives the connection file an icon of its own (the DLL's first icon), so that the Options
// page, shown, has nothing to adopt and every page writes what the writer makes of the file.
void EmbedIcon(const std::string& path, const std::string& iconSource) {
    VQCFileInfo record(path.c_str());
    record.refCount = 1;
    record.Read(path.c_str());
    HICON large = nullptr;
    HICON small = nullptr;
    ExtractIconExA(iconSource.c_str(), 0, &large, &small, 1);
    record.SetIcons(large, small);
    record.Write(path.c_str());
}

// A DLL copy, a connection file beside it, and the shell's sheet for that file.
struct DllWithFile {
    explicit DllWithFile(const std::string& tag, const std::string& client = "", const std::string& line = kLine)
        : dll(tag, client), file(dll.File("connection.vqc")) {
        WriteFileBytes(file, line);
    }
    ExtensionCopy dll;
    std::string file;
};

}  // namespace

// --- Which pages ----------------------------------------------------------------------

TEST(ShellSheetPages, Client619GetsConnectionAndOptions) {
    DllWithFile setup("v619", "client_6_19_5");
    ASSERT_NE(setup.dll.Module(), nullptr);
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    EXPECT_EQ(sheet.Offered(), 2);
    ASSERT_EQ(PageCount(sheet.Sheet()), 2);
    EXPECT_EQ(PageTitle(sheet.Sheet(), 0), "Connection");
    EXPECT_EQ(PageTitle(sheet.Sheet(), 1), "Options");
    EXPECT_EQ(PageIndex(sheet.Sheet(), "Proxy"), -1);
    const HWND options = ShowPageTitled(sheet.Sheet(), "Options");
    ASSERT_NE(options, nullptr);
    EXPECT_NE(PageControl(options, 1041), nullptr);
}

TEST(ShellSheetPages, Client620GetsAllThree) {
    DllWithFile setup("v620", "client_6_20");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    EXPECT_EQ(sheet.Offered(), 3);
    ASSERT_EQ(PageCount(sheet.Sheet()), 3);
    EXPECT_EQ(PageTitle(sheet.Sheet(), 0), "Connection");
    EXPECT_EQ(PageTitle(sheet.Sheet(), 1), "Proxy");
    EXPECT_EQ(PageTitle(sheet.Sheet(), 2), "Options");
}

TEST(ShellSheetPages, NoClientGetsAllThree) {
    DllWithFile setup("no-client");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    EXPECT_EQ(sheet.Offered(), 3);
    EXPECT_EQ(PageCount(sheet.Sheet()), 3);
}

TEST(ShellSheetPages, ClientVersion62GetsTwoPages) {
    // 6.2 joins to 62, not 620: below the Proxy page's threshold.
    DllWithFile setup("v62", "client_6_2");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    EXPECT_EQ(sheet.Offered(), 2);
}

TEST(ShellSheetPages, FileThatCannotBeReadStillGetsAllThree) {
    DllWithFile setup("unreadable");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_EQ(sheet.CreateObject(), S_OK);
    ASSERT_EQ(sheet.Initialize(), S_OK);
    {
        // Held open without sharing while the pages are made: the read fails.
        const UniqueKernelHandle lock(
            CreateFileA(setup.file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(lock);
        EXPECT_EQ(sheet.AddPages(), S_OK);
    }
    EXPECT_EQ(sheet.Offered(), 3);
    ASSERT_NE(sheet.Show(), nullptr);
    EXPECT_EQ(PageCount(sheet.Sheet()), 3);
}

TEST(ShellSheetPages, FileTooLargeToReadStillGetsAllThree) {
    DllWithFile setup("too-large");
    {
        // Sparse: 2 GiB of nothing, more than the reader takes.
        const UniqueKernelHandle file(
            CreateFileA(setup.file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(file);
        LARGE_INTEGER size;
        size.QuadPart = 0x80000000LL;
        ASSERT_TRUE(SetFilePointerEx(file.Get(), size, nullptr, FILE_BEGIN));
        ASSERT_TRUE(SetEndOfFile(file.Get()));
    }
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_EQ(sheet.CreateObject(), S_OK);
    ASSERT_EQ(sheet.Initialize(), S_OK);
    EXPECT_EQ(sheet.AddPages(), S_OK);
    EXPECT_EQ(sheet.Offered(), 3);
    DeleteFileA(setup.file.c_str());
}

TEST(ShellSheetPages, TwoSelectedFilesGetNoPages) {
    DllWithFile setup("two-files");
    WriteFileBytes(setup.dll.File("second.vqc"), kLine);
    ComApartment apartment;
    ComPtr<IClassFactory> factory;
    ASSERT_EQ(setup.dll.GetClassObject()(kVQCPropClassId, IID_IClassFactory, factory.PutVoid()), S_OK);
    ComPtr<IShellExtInit> init;
    ASSERT_EQ(factory->CreateInstance(nullptr, IID_IShellExtInit, init.PutVoid()), S_OK);
    ComPtr<IDataObject> both = ShellSelection({setup.file, setup.dll.File("second.vqc")});
    ASSERT_TRUE(both);
    EXPECT_EQ(init->Initialize(nullptr, both.Get(), nullptr), E_FAIL);
}

TEST(ShellSheetPages, EachPageShowsItsTemplateAndControls) {
    DllWithFile setup("controls");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    const HWND connection = PageWindow(sheet.Sheet(), 0);
    const HWND proxy = PageWindow(sheet.Sheet(), 1);
    const HWND options = PageWindow(sheet.Sheet(), 2);
    ASSERT_NE(connection, nullptr);
    ASSERT_NE(proxy, nullptr);
    ASSERT_NE(options, nullptr);
    EXPECT_EQ(ChildIds(connection).size(), 24u);
    EXPECT_EQ(ChildIds(proxy).size(), 12u);
    EXPECT_EQ(ChildIds(options).size(), 7u);
    EXPECT_NE(PageControl(connection, 1001), nullptr);
    EXPECT_EQ(PageControl(connection, 1025), nullptr);
    EXPECT_NE(PageControl(proxy, 1025), nullptr);
    EXPECT_EQ(PageControl(proxy, 1001), nullptr);
    EXPECT_NE(PageControl(options, 1041), nullptr);
    EXPECT_EQ(PageControl(options, 1025), nullptr);
    char text[64] = {};
    GetWindowTextA(PageControl(connection, 1001), text, sizeof(text));
    EXPECT_STREQ(text, "Connection &type:");
    GetWindowTextA(PageControl(proxy, 1025), text, sizeof(text));
    EXPECT_STREQ(text, "Proxy &Server:");
    char className[16] = {};
    GetClassNameA(PageControl(options, 1041), className, sizeof(className));
    EXPECT_EQ(lstrcmpiA(className, "ListBox"), 0);
}

// --- Apply, OK, Cancel --------------------------------------------------------------------

TEST(ShellSheetApply, ApplyWritesOncePerCreatedPageWithIdenticalBytes) {
    DllWithFile setup("apply-all");
    EmbedIcon(setup.file, setup.dll.DllPath());
    const std::string expected = WriterBytesFor(setup.file);
    ASSERT_NE(expected.find("-I \""), std::string::npos);
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    WriteWatch watch(setup.file);
    for (int i = 0; i < 3; ++i) watch.Watch(PageWindow(sheet.Sheet(), i));
    EXPECT_EQ(Apply(sheet.Sheet()), TRUE);
    EXPECT_EQ(watch.Applies(), 3);
    ASSERT_EQ(watch.Writes().size(), 3u);
    for (const std::string& bytes : watch.Writes()) EXPECT_EQ(bytes, expected);
    EXPECT_FALSE(SheetClosed(sheet.Sheet()));
}

TEST(ShellSheetApply, ApplyWithOnlyTheFirstPageCreatedWritesOnce) {
    DllWithFile setup("apply-one");
    const std::string expected = WriterBytesFor(setup.file);
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    ASSERT_EQ(PageWindow(sheet.Sheet(), 1), nullptr);
    WriteWatch watch(setup.file);
    watch.Watch(PageWindow(sheet.Sheet(), 0));
    EXPECT_EQ(Apply(sheet.Sheet()), TRUE);
    EXPECT_EQ(watch.Applies(), 1);
    ASSERT_EQ(watch.Writes().size(), 1u);
    EXPECT_EQ(watch.Writes()[0], expected);
    EXPECT_EQ(ReadFileBytes(setup.file), expected);
}

TEST(ShellSheetApply, ApplyButtonWritesLikeTheMessage) {
    DllWithFile setup("apply-button");
    EmbedIcon(setup.file, setup.dll.DllPath());
    const std::string expected = WriterBytesFor(setup.file);
    ASSERT_NE(expected.find("-I \""), std::string::npos);
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 2);
    WriteWatch watch(setup.file);
    watch.Watch(PageWindow(sheet.Sheet(), 0));
    watch.Watch(PageWindow(sheet.Sheet(), 2));
    // Apply is enabled by a change; the sheet itself can say so.
    SendMessageA(sheet.Sheet(), PSM_CHANGED, reinterpret_cast<WPARAM>(PageWindow(sheet.Sheet(), 2)), 0);
    ClickButton(sheet.Sheet(), kApplyButtonId);
    EXPECT_EQ(watch.Applies(), 2);
    ASSERT_EQ(watch.Writes().size(), 2u);
    EXPECT_EQ(watch.Writes()[0], expected);
    EXPECT_EQ(watch.Writes()[1], expected);
}

TEST(ShellSheetApply, OkWritesOncePerCreatedPageAndClosesTheSheet) {
    DllWithFile setup("ok", "client_6_20");
    const std::string expected = WriterBytesFor(setup.file, 620);
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 1);
    WriteWatch watch(setup.file);
    watch.Watch(PageWindow(sheet.Sheet(), 0));
    watch.Watch(PageWindow(sheet.Sheet(), 1));
    ClickButton(sheet.Sheet(), IDOK);
    EXPECT_TRUE(SheetClosed(sheet.Sheet()));
    EXPECT_EQ(watch.Applies(), 2);
    ASSERT_EQ(watch.Writes().size(), 2u);
    EXPECT_EQ(watch.Writes()[0], expected);
    EXPECT_EQ(watch.Writes()[1], expected);
}

TEST(ShellSheetApply, CancelWritesNothing) {
    DllWithFile setup("cancel");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 1);
    ShowPage(sheet.Sheet(), 2);
    WriteWatch watch(setup.file);
    for (int i = 0; i < 3; ++i) watch.Watch(PageWindow(sheet.Sheet(), i));
    PressCancel(sheet.Sheet());
    EXPECT_TRUE(SheetClosed(sheet.Sheet()));
    sheet.Destroy();
    EXPECT_EQ(watch.Applies(), 0);
    EXPECT_EQ(ReadFileBytes(setup.file), kLine);
}

TEST(ShellSheetApply, ClosingTheSheetWritesNothing) {
    DllWithFile setup("close");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    WriteWatch watch(setup.file);
    watch.Watch(PageWindow(sheet.Sheet(), 0));
    SendMessageA(sheet.Sheet(), WM_SYSCOMMAND, SC_CLOSE, 0);
    PumpMessages();
    EXPECT_TRUE(SheetClosed(sheet.Sheet()));
    sheet.Destroy();
    EXPECT_EQ(watch.Applies(), 0);
    EXPECT_EQ(ReadFileBytes(setup.file), kLine);
}

TEST(ShellSheetApply, WriteFailureKeepsTheSheetOnTheFailingPage) {
    DllWithFile setup("locked");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    ShowPage(sheet.Sheet(), 2);
    {
        const UniqueKernelHandle lock(
            CreateFileA(setup.file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(lock);
        MessageBoxWatcher boxes(sheet.Sheet());
        ClickButton(sheet.Sheet(), IDOK);
        EXPECT_FALSE(SheetClosed(sheet.Sheet()));
        EXPECT_NE(CurrentPage(sheet.Sheet()), nullptr);
        EXPECT_EQ(boxes.Boxes().size(), 1u);
    }
    EXPECT_EQ(ReadFileBytes(setup.file), kLine);
    // Once the file is free again, OK writes and closes.
    ClickButton(sheet.Sheet(), IDOK);
    EXPECT_TRUE(SheetClosed(sheet.Sheet()));
    EXPECT_EQ(ReadFileBytes(setup.file), WriterBytesFor(setup.file));
}

TEST(ShellSheetApply, ApplyFromAForeignWindowIsNotHandled) {
    DllWithFile setup("foreign");
    ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(sheet.Open());
    const HWND page = PageWindow(sheet.Sheet(), 0);
    const HWND foreign =
        CreateWindowExA(0, "static", "foreign", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(foreign, nullptr);
    NMHDR header{foreign, 0, static_cast<UINT>(PSN_APPLY)};
    SetWindowLongPtrA(page, DWLP_MSGRESULT, 0x77);
    EXPECT_EQ(SendMessageA(page, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), 0);
    DestroyWindow(foreign);
    EXPECT_EQ(ReadFileBytes(setup.file), kLine);
    // The same notification from the sheet is handled.
    header.hwndFrom = sheet.Sheet();
    EXPECT_EQ(SendMessageA(page, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), PSNRET_NOERROR);
    EXPECT_EQ(ReadFileBytes(setup.file), WriterBytesFor(setup.file));
}

TEST(ShellSheetApply, TwoSheetsAtOnceWriteTheirOwnFiles) {
    DllWithFile setup("two-sheets");
    const std::string other = setup.dll.File("other.vqc");
    WriteFileBytes(other, "-h  other.example");
    ShellPropertySheet first(setup.dll.GetClassObject(), setup.file);
    ASSERT_TRUE(first.Open());
    ShellPropertySheet second(setup.dll.GetClassObject(), other);
    ASSERT_TRUE(second.Open());
    EXPECT_EQ(Apply(second.Sheet()), TRUE);
    EXPECT_EQ(ReadFileBytes(other), WriterBytesFor(other));
    EXPECT_EQ(ReadFileBytes(setup.file), kLine);
    EXPECT_EQ(Apply(first.Sheet()), TRUE);
    EXPECT_EQ(ReadFileBytes(setup.file), WriterBytesFor(setup.file));
}

// --- Unloading ------------------------------------------------------------------------------

TEST(ShellSheetUnload, DllCanUnloadOnceTheObjectAndTheSheetAreGone) {
    DllWithFile setup("unload");
    {
        ShellPropertySheet sheet(setup.dll.GetClassObject(), setup.file);
        ASSERT_TRUE(sheet.Open());
        EXPECT_EQ(setup.dll.CanUnloadNow(), S_FALSE);  // the object is alive
        sheet.ReleaseObject();
        ShowPage(sheet.Sheet(), 1);
        EXPECT_EQ(Apply(sheet.Sheet()), TRUE);
        sheet.Destroy();
        EXPECT_EQ(setup.dll.CanUnloadNow(), S_OK);
    }
    EXPECT_EQ(setup.dll.CanUnloadNow(), S_OK);
    setup.dll.Unload();
}
