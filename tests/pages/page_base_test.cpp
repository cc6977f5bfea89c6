// The page base on real modeless sheets: the page description, the record reference, the
// binding of object and window through the creation list, the sheet notifications, the
// helpers, and the guard that keeps exceptions away from the sheet.
#include "pages/property_page.h"

#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <stdexcept>
#include <vector>

#include "common/same_window.h"
#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "pages/resize_maps.h"
#include "tests/connection/test_files.h"
#include "tests/pages/page_test_support.h"
#include "tests/row_names.h"
#include "tests/window_assertions.h"
#include "tests/support/system_structure_sizes.h"

using namespace page_test;

namespace {

// A page that records what reaches its own entries and throws where a test asks it to.
class ProbePage final : public CVQCPropertyPageImpl<ProbePage> {
public:
    ProbePage(VQCFileInfo* record, const char* title) : CVQCPropertyPageImpl(record, 1, title) { ++alive; }
    ~ProbePage() override { --alive; }

    static const ResizeMapEntry* ResizeMap() noexcept { return kConnectionPageResizeMap; }

    bool OnPageMessage(UINT message, WPARAM, LPARAM lParam, LRESULT& result) {
        if (message == throwOn) {
            const bool anyNotification = message != WM_NOTIFY || throwOnCode == 0;
            if (anyNotification || reinterpret_cast<const NMHDR*>(lParam)->code == throwOnCode) {
                throw std::runtime_error("probe");
            }
        }
        if (message == WM_INITDIALOG) {
            ++initDialogs;
            DlgResize_Init();
            result = TRUE;
            return true;
        }
        if (message == kHandledMessage) {
            result = 0x1234;
            return true;
        }
        return false;
    }

    using CVQCPropertyPageImpl::ControlText;
    using CVQCPropertyPageImpl::OnSheetNotification;
    using CVQCPropertyPageImpl::SendChanged;

    static constexpr UINT kHandledMessage = WM_APP + 1;
    static inline int alive = 0;
    UINT throwOn = 0;
    UINT throwOnCode = 0;
    int initDialogs = 0;
};

// A record for a real file; the caller holds one reference.
ComPtr<VQCFileInfo> RecordFor(const std::string& path) {
    ComPtr<VQCFileInfo> record(new VQCFileInfo(path.c_str()));
    record->Read(path.c_str());
    return record;
}

// What the writer makes of a record: the bytes every apply must leave in the file.
std::string WriterBytes(VQCFileInfo& record) {
    TempFile copy("expected");
    record.Write(copy.Path());
    return copy.Content();
}

// A hidden top-level window that is neither a page nor a sheet.
class ForeignWindow {
public:
    ForeignWindow()
        : window_(CreateWindowExA(0, "static", "foreign", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr)) {
    }
    ~ForeignWindow() { DestroyWindow(window_); }
    HWND Get() const { return window_; }

private:
    HWND window_;
};

LRESULT Notify(HWND page, HWND from, UINT code) {
    NMHDR header{from, 0, code};
    return SendMessageA(page, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header));
}

// Sheet messages the test wants to see: PSM_CHANGED and PSM_UNCHANGED with their page.
struct SheetMessages {
    std::vector<std::pair<UINT, HWND>> seen;
    static LRESULT CALLBACK Subclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                     DWORD_PTR self) {
        if (message == PSM_CHANGED || message == PSM_UNCHANGED) {
            reinterpret_cast<SheetMessages*>(self)->seen.emplace_back(message, reinterpret_cast<HWND>(wParam));
        }
        if (message == WM_NCDESTROY) RemoveWindowSubclass(window, Subclass, 2);
        return DefSubclassProc(window, message, wParam, lParam);
    }
    void Watch(HWND sheet) { SetWindowSubclass(sheet, Subclass, 2, reinterpret_cast<DWORD_PTR>(this)); }
};

}  // namespace

// --- The description ------------------------------------------------------------------

TEST(PageDescription, IsFilledAsTheSheetExpectsIt) {
    ComPtr<VQCFileInfo> record(new VQCFileInfo("C:\\x.vqc"));
    auto* page = new CVQCConnectionPage(record.Get(), "Connection");
    const PROPSHEETPAGEA& d = page->Description();
    EXPECT_EQ(d.dwSize, system_sizes::kFullPropertySheetPage);
    EXPECT_EQ(d.dwFlags, static_cast<DWORD>(PSP_DLGINDIRECT | PSP_USECALLBACK | PSP_USEREFPARENT | PSP_USETITLE));
    EXPECT_EQ(d.hInstance, TheModuleRuntime().Instance());
    EXPECT_EQ(d.pResource, page->TemplateForTesting());
    EXPECT_STREQ(d.pszTitle, "Connection");
    EXPECT_EQ(d.pfnDlgProc, &CVQCConnectionPage::StartDialogProc);
    EXPECT_EQ(d.pfnCallback, &CVQCConnectionPage::PageCallback);
    EXPECT_EQ(d.lParam, reinterpret_cast<LPARAM>(page));
    EXPECT_EQ(d.pcRefParent, TheModuleRuntime().LockCountAddress());
    // The bytes after PROPSHEETPAGEA (the header bitmap) are zero.
    const auto* bytes = reinterpret_cast<const unsigned char*>(&d);
    for (std::size_t i = sizeof(PROPSHEETPAGEA); i < system_sizes::kFullPropertySheetPage; ++i)
        EXPECT_EQ(bytes[i], 0) << i;
    delete page;
}

TEST(PageDescription, ReferenceParentIsTheModulesLockCount) {
    // The sheet counts held pages in it, which keeps the DLL loaded while a page exists.
    auto* page = new CVQCOptionPage(nullptr, nullptr);
    auto* lockCount = reinterpret_cast<volatile LONG*>(TheModuleRuntime().LockCountAddress());
    const LONG before = *lockCount;
    InterlockedIncrement(reinterpret_cast<volatile LONG*>(page->Description().pcRefParent));
    EXPECT_EQ(*lockCount, before + 1);
    InterlockedDecrement(lockCount);
    delete page;
}

TEST(PageDescription, WithoutATitleTheFlagIsLeftOut) {
    auto* page = new CVQCProxyPage(nullptr, nullptr);
    EXPECT_EQ(page->Description().dwFlags, static_cast<DWORD>(PSP_DLGINDIRECT | PSP_USECALLBACK | PSP_USEREFPARENT));
    EXPECT_EQ(page->Description().pszTitle, nullptr);
    delete page;
}

TEST(PageDescription, EachPageBuildsItsOwnTemplate) {
    auto* connection = new CVQCConnectionPage(nullptr, nullptr);
    auto* proxy = new CVQCProxyPage(nullptr, nullptr);
    auto* options = new CVQCOptionPage(nullptr, nullptr);
    auto* second = new CVQCConnectionPage(nullptr, nullptr);
    EXPECT_EQ(connection->TemplateForTesting()->cdit, 24);
    EXPECT_EQ(proxy->TemplateForTesting()->cdit, 12);
    EXPECT_EQ(options->TemplateForTesting()->cdit, 7);
    EXPECT_EQ(connection->TemplateForTesting()->cy, 176);
    EXPECT_EQ(proxy->TemplateForTesting()->cy, 196);
    EXPECT_NE(connection->TemplateForTesting(), second->TemplateForTesting());
    for (auto* page : {connection, second}) delete page;
    delete proxy;
    delete options;
}

TEST(PageDescription, TitleIdsAndTemplatesOfTheThreePages) {
    EXPECT_EQ(CVQCConnectionPage::kTitleStringId, 21u);
    EXPECT_EQ(CVQCConnectionPage::kTemplateIndex, 1);
    EXPECT_EQ(CVQCProxyPage::kTitleStringId, 48u);
    EXPECT_EQ(CVQCProxyPage::kTemplateIndex, 2);
    EXPECT_EQ(CVQCOptionPage::kTitleStringId, 23u);
    EXPECT_EQ(CVQCOptionPage::kTemplateIndex, 3);
}

// --- The record and the page's life ----------------------------------------------------

TEST(PageLifetime, EachPageHoldsOneRecordReferenceUntilItIsDeleted) {
    ComPtr<VQCFileInfo> record(new VQCFileInfo("C:\\x.vqc"));
    EXPECT_EQ(record->refCount, 1u);
    auto* first = new CVQCConnectionPage(record.Get(), nullptr);
    auto* second = new CVQCOptionPage(record.Get(), nullptr);
    EXPECT_EQ(record->refCount, 3u);
    EXPECT_EQ(first->Record(), record.Get());
    delete first;
    EXPECT_EQ(record->refCount, 2u);
    delete second;
    EXPECT_EQ(record->refCount, 1u);
}

TEST(PageLifetime, PagesNeverShownAreDeletedWithTheSheet) {
    ComPtr<VQCFileInfo> record(new VQCFileInfo("C:\\x.vqc"));
    {
        DirectSheet sheet;
        sheet.Add<ProbePage>(record.Get(), "one");
        sheet.Add<ProbePage>(record.Get(), "two");
        sheet.Add<ProbePage>(record.Get(), "three");
        EXPECT_EQ(ProbePage::alive, 3);
        ASSERT_NE(sheet.Show(), nullptr);
        EXPECT_NE(PageWindow(sheet.Sheet(), 0), nullptr);
        EXPECT_EQ(PageWindow(sheet.Sheet(), 1), nullptr);  // never shown, never created
        EXPECT_EQ(record->refCount, 4u);
        sheet.Destroy();
        EXPECT_EQ(ProbePage::alive, 0);
    }
    EXPECT_EQ(record->refCount, 1u);
}

TEST(PageLifetime, HandleDestroyedBeforeAnySheetDeletesThePage) {
    auto* page = new ProbePage(nullptr, nullptr);
    const HPROPSHEETPAGE handle = page->CreatePage();
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(ProbePage::alive, 1);
    DestroyPropertySheetPage(handle);
    EXPECT_EQ(ProbePage::alive, 0);
}

TEST(PageLifetime, PageDeletedWhileWaitingForItsWindowLeavesTheCreationList) {
    const int before = TheModuleRuntime().WindowCreation().Count();
    auto* page = new ProbePage(nullptr, nullptr);
    PROPSHEETPAGEA copy = page->Description();
    EXPECT_EQ(ProbePage::PageCallback(nullptr, PSPCB_CREATE, &copy), TRUE);
    EXPECT_EQ(TheModuleRuntime().WindowCreation().Count(), before + 1);
    delete page;
    EXPECT_EQ(TheModuleRuntime().WindowCreation().Count(), before);
}

TEST(PageLifetime, AddRefCallbackChangesNothing) {
    auto* page = new ProbePage(nullptr, nullptr);
    PROPSHEETPAGEA copy = page->Description();
    EXPECT_EQ(ProbePage::PageCallback(nullptr, PSPCB_ADDREF, &copy), 0u);
    EXPECT_EQ(ProbePage::alive, 1);
    EXPECT_EQ(ProbePage::PageCallback(nullptr, PSPCB_RELEASE, &copy), 0u);
    EXPECT_EQ(ProbePage::alive, 0);
}

// --- Object and window -------------------------------------------------------------------

TEST(PageBinding, FirstMessageBindsTheObjectToItsWindow) {
    DirectSheet sheet;
    auto* page = sheet.Add<CVQCConnectionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND window = PageWindow(sheet.Sheet(), 0);
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsSameWindow(page->Window(), window));
    EXPECT_EQ(CVQCConnectionPage::FromWindow(window), page);
    EXPECT_TRUE(IsSameWindow(GetParent(window), sheet.Sheet()));
}

TEST(PageBinding, ObjectsOwnProcedureAnswersFromTheFirstMessageOn) {
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    EXPECT_EQ(page->initDialogs, 1);
    EXPECT_EQ(SendMessageA(page->Window(), ProbePage::kHandledMessage, 0, 0), 0x1234);
    EXPECT_EQ(ProbePage::PageDialogProc(page->Window(), ProbePage::kHandledMessage, 0, 0), TRUE);
    EXPECT_EQ(GetWindowLongPtrA(page->Window(), DWLP_MSGRESULT), 0x1234);
}

TEST(PageBinding, TwoSheetsOneAfterTheOtherBindTheirOwnObjects) {
    DirectSheet first;
    auto* firstPage = first.Add<ProbePage>(nullptr, "first");
    ASSERT_NE(first.Show(), nullptr);
    DirectSheet second;
    auto* secondPage = second.Add<ProbePage>(nullptr, "second");
    ASSERT_NE(second.Show(), nullptr);
    EXPECT_EQ(ProbePage::FromWindow(PageWindow(first.Sheet(), 0)), firstPage);
    EXPECT_EQ(ProbePage::FromWindow(PageWindow(second.Sheet(), 0)), secondPage);
    EXPECT_FALSE(IsSameWindow(firstPage->Window(), secondPage->Window()));
    EXPECT_EQ(firstPage->initDialogs, 1);
    EXPECT_EQ(secondPage->initDialogs, 1);
    EXPECT_EQ(TheModuleRuntime().WindowCreation().Count(), 0);
}

namespace {
struct SecondThreadSheet {
    ProbePage* page = nullptr;
    HWND window = nullptr;
    ProbePage* bound = nullptr;
    int initDialogs = -1;

    static DWORD WINAPI Run(void* parameter) {
        auto* self = static_cast<SecondThreadSheet*>(parameter);
        DirectSheet sheet;
        self->page = sheet.Add<ProbePage>(nullptr, "other thread");
        if (sheet.Show()) {
            self->window = PageWindow(sheet.Sheet(), 0);
            self->bound = ProbePage::FromWindow(self->window);
            self->initDialogs = self->page->initDialogs;
        }
        return 0;
    }
};
}  // namespace

TEST(PageBinding, PageOfASecondThreadBindsItsOwnObjectWhileTheFirstSheetLives) {
    DirectSheet mine;
    auto* myPage = mine.Add<ProbePage>(nullptr, "this thread");
    ASSERT_NE(mine.Show(), nullptr);

    SecondThreadSheet other;
    const HANDLE thread = CreateThread(nullptr, 0, SecondThreadSheet::Run, &other, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);

    ASSERT_NE(other.window, nullptr);
    EXPECT_EQ(other.bound, other.page);
    EXPECT_EQ(other.initDialogs, 1);
    EXPECT_EQ(ProbePage::FromWindow(myPage->Window()), myPage);
    EXPECT_EQ(myPage->initDialogs, 1);
}

TEST(PageBinding, ObjectWaitingOnOneThreadIsNotTakenByAnotherThreadsWindow) {
    // This thread's page is listed for its window, then another thread builds a whole sheet
    // before this thread's window exists: each window still gets its own object.
    auto* waiting = new ProbePage(nullptr, nullptr);
    PROPSHEETPAGEA copy = waiting->Description();
    ASSERT_EQ(ProbePage::PageCallback(nullptr, PSPCB_CREATE, &copy), TRUE);

    SecondThreadSheet other;
    const HANDLE thread = CreateThread(nullptr, 0, SecondThreadSheet::Run, &other, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_EQ(other.bound, other.page);
    EXPECT_EQ(other.initDialogs, 1);

    const HWND window = CreateDialogIndirectParamA(GetModuleHandleA(nullptr), waiting->TemplateForTesting(), nullptr,
                                                   ProbePage::StartDialogProc, 0);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(ProbePage::FromWindow(window), waiting);
    EXPECT_TRUE(IsSameWindow(waiting->Window(), window));
    EXPECT_EQ(waiting->initDialogs, 1);
    DestroyWindow(window);
    EXPECT_EQ(waiting->Window(), nullptr);
    delete waiting;
}

TEST(PageBinding, WindowWithoutAWaitingObjectAnswersNothing) {
    const int before = TheModuleRuntime().WindowCreation().Count();
    const DLGTEMPLATE* source = nullptr;
    auto* page = new ProbePage(nullptr, nullptr);
    source = page->TemplateForTesting();
    const HWND window =
        CreateDialogIndirectParamA(GetModuleHandleA(nullptr), source, nullptr, ProbePage::StartDialogProc, 0);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(ProbePage::FromWindow(window), nullptr);
    EXPECT_EQ(page->initDialogs, 0);
    EXPECT_EQ(SendMessageA(window, ProbePage::kHandledMessage, 0, 0), 0);
    DestroyWindow(window);
    delete page;
    EXPECT_EQ(TheModuleRuntime().WindowCreation().Count(), before);
}

TEST(PageBinding, WindowOutlivingItsObjectAnswersNothing) {
    auto* page = new ProbePage(nullptr, nullptr);
    PROPSHEETPAGEA copy = page->Description();
    ASSERT_EQ(ProbePage::PageCallback(nullptr, PSPCB_CREATE, &copy), TRUE);
    const HWND window = CreateDialogIndirectParamA(GetModuleHandleA(nullptr), page->TemplateForTesting(), nullptr,
                                                   ProbePage::StartDialogProc, 0);
    ASSERT_NE(window, nullptr);
    ASSERT_EQ(SendMessageA(window, ProbePage::kHandledMessage, 0, 0), 0x1234);
    delete page;
    EXPECT_EQ(ProbePage::FromWindow(window), nullptr);
    EXPECT_EQ(SendMessageA(window, ProbePage::kHandledMessage, 0, 0), 0);
    DestroyWindow(window);
}

// --- Sheet notifications ------------------------------------------------------------------

TEST(PageNotifications, ApplyWithAnUntouchedRecordStillWritesTheFile) {
    TempFile file("untouched", "-h   server.example   -u   tester");
    ComPtr<VQCFileInfo> record = RecordFor(file.Path());
    ASSERT_EQ(record->modified, 0);
    const std::string expected = WriterBytes(*record.Get());
    ASSERT_NE(expected, file.Content());  // the writer's spacing differs from the file's

    DirectSheet sheet;
    sheet.Add<CVQCConnectionPage>(record.Get());
    ASSERT_NE(sheet.Show(), nullptr);
    EXPECT_EQ(Apply(sheet.Sheet()), TRUE);
    EXPECT_EQ(file.Content(), expected);
}

TEST(PageNotifications, ApplyWithoutARecordKeepsTheSheetOpenOnThePage) {
    DirectSheet sheet;
    sheet.Add<CVQCConnectionPage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND page = PageWindow(sheet.Sheet(), 0);
    EXPECT_EQ(Apply(sheet.Sheet()), FALSE);
    ClickButton(sheet.Sheet(), IDOK);
    EXPECT_FALSE(SheetClosed(sheet.Sheet()));
    EXPECT_TRUE(IsSameWindow(CurrentPage(sheet.Sheet()), page));
}

TEST(PageNotifications, SuccessfulApplyAnswersNoErrorAndTellsTheSheetThePageIsUnchanged) {
    TempFile file("unchanged", "-h server.example");
    ComPtr<VQCFileInfo> record = RecordFor(file.Path());
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(record.Get());
    ASSERT_NE(sheet.Show(), nullptr);
    SheetMessages messages;
    messages.Watch(sheet.Sheet());
    LRESULT result = 0xdeadbeef;
    NMHDR header{sheet.Sheet(), 0, static_cast<UINT>(PSN_APPLY)};
    EXPECT_TRUE(page->ProcessWindowMessage(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header), result));
    EXPECT_EQ(result, PSNRET_NOERROR);
    ASSERT_EQ(messages.seen.size(), 1u);
    EXPECT_EQ(messages.seen[0].first, static_cast<UINT>(PSM_UNCHANGED));
    EXPECT_TRUE(IsSameWindow(messages.seen[0].second, page->Window()));
}

TEST(PageNotifications, FailedWriteAnswersInvalidNoChangePageAndSendsNothing) {
    TempFile file("locked", "-h server.example");
    ComPtr<VQCFileInfo> record = RecordFor(file.Path());
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(record.Get());
    ASSERT_NE(sheet.Show(), nullptr);
    SheetMessages messages;
    messages.Watch(sheet.Sheet());
    const UniqueKernelHandle lock(
        CreateFileA(file.Path(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(lock);
    LRESULT result = 0xdeadbeef;
    NMHDR header{sheet.Sheet(), 0, static_cast<UINT>(PSN_APPLY)};
    MessageBoxWatcher boxes(sheet.Sheet());
    EXPECT_TRUE(page->ProcessWindowMessage(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header), result));
    EXPECT_EQ(result, PSNRET_INVALID_NOCHANGEPAGE);
    EXPECT_EQ(record->lastError, static_cast<std::uint32_t>(ERROR_SHARING_VIOLATION));
    EXPECT_TRUE(messages.seen.empty());
    // The user was told, once.
    EXPECT_EQ(boxes.Boxes().size(), 1u);
}

// The same window with the upper half of its handle flipped between the sign-extended and
// the zero-extended form: the system hands out both.
HWND OtherFormOf(HWND window) {
    return reinterpret_cast<HWND>(reinterpret_cast<std::uintptr_t>(window) ^ 0xFFFFFFFF00000000ull);
}

TEST(SameWindow, HandlesThatDifferOnlyInTheirUpperHalfNameOneWindow) {
    EXPECT_TRUE(SameWindow(reinterpret_cast<HWND>(0x80001234ull), reinterpret_cast<HWND>(0xFFFFFFFF80001234ull)));
    EXPECT_TRUE(SameWindow(reinterpret_cast<HWND>(0x1234ull), reinterpret_cast<HWND>(0x1234ull)));
    EXPECT_FALSE(SameWindow(reinterpret_cast<HWND>(0x1234ull), reinterpret_cast<HWND>(0x1235ull)));
    EXPECT_FALSE(SameWindow(reinterpret_cast<HWND>(0x1234ull), nullptr));
}

TEST(SameWindow, AssertionNamesTheSheetInBothFormsOfItsHandleAndNoOtherWindow) {
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    EXPECT_TRUE(IsSameWindow(OtherFormOf(sheet.Sheet()), sheet.Sheet()));
    EXPECT_TRUE(IsSameWindow(GetParent(page->Window()), OtherFormOf(sheet.Sheet())));
    const ::testing::AssertionResult different = IsSameWindow(page->Window(), sheet.Sheet());
    EXPECT_FALSE(different);
    EXPECT_NE(std::string(different.message()).find("name different windows"), std::string::npos);
}

TEST(PageNotifications, TenOtherSheetCodesAnswerZeroAndDoNothing) {
    TempFile file("ten", "-h   server.example");
    ComPtr<VQCFileInfo> record = RecordFor(file.Path());
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(record.Get());
    ASSERT_NE(sheet.Show(), nullptr);
    for (int code : {PSN_SETACTIVE, PSN_KILLACTIVE, PSN_RESET, PSN_HELP, PSN_WIZBACK, PSN_WIZNEXT, PSN_WIZFINISH,
                     PSN_QUERYCANCEL, PSN_TRANSLATEACCELERATOR, PSN_QUERYINITIALFOCUS}) {
        LRESULT result = 0xdeadbeef;
        NMHDR header{sheet.Sheet(), 0, static_cast<UINT>(code)};
        EXPECT_TRUE(page->ProcessWindowMessage(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header), result))
            << code;
        EXPECT_EQ(result, 0) << code;
        // Through the window: handled, with 0 as the message result.
        SetWindowLongPtrA(page->Window(), DWLP_MSGRESULT, 0x55);
        EXPECT_EQ(ProbePage::PageDialogProc(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), TRUE)
            << code;
        EXPECT_EQ(GetWindowLongPtrA(page->Window(), DWLP_MSGRESULT), 0) << code;
    }
    EXPECT_EQ(file.Content(), "-h   server.example");
}

TEST(PageNotifications, OtherCodesAreNotHandled) {
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    for (int code : {static_cast<int>(NM_CLICK), static_cast<int>(PSN_FIRST) - 10, static_cast<int>(PSN_FIRST) - 14,
                     static_cast<int>(PSN_FIRST) - 11, 0}) {
        LRESULT result = 0xdeadbeef;
        NMHDR header{sheet.Sheet(), 0, static_cast<UINT>(code)};
        EXPECT_FALSE(
            page->ProcessWindowMessage(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header), result))
            << code;
        EXPECT_EQ(result, static_cast<LRESULT>(0xdeadbeef));
    }
}

// --- Exceptions stop at the dialog procedure ----------------------------------------------------

TEST(PageGuard, ExceptionDuringApplyKeepsTheSheetOnThePage) {
    TempFile file("throwing", "-h   server.example");
    ComPtr<VQCFileInfo> record = RecordFor(file.Path());
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(record.Get());
    ASSERT_NE(sheet.Show(), nullptr);
    page->throwOn = WM_NOTIFY;
    page->throwOnCode = static_cast<UINT>(PSN_APPLY);
    EXPECT_EQ(Apply(sheet.Sheet()), FALSE);
    NMHDR header{sheet.Sheet(), 0, static_cast<UINT>(PSN_APPLY)};
    EXPECT_EQ(ProbePage::PageDialogProc(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), TRUE);
    EXPECT_EQ(GetWindowLongPtrA(page->Window(), DWLP_MSGRESULT), PSNRET_INVALID_NOCHANGEPAGE);
    ClickButton(sheet.Sheet(), IDOK);
    EXPECT_FALSE(SheetClosed(sheet.Sheet()));
    EXPECT_EQ(file.Content(), "-h   server.example");
}

TEST(PageGuard, ExceptionDuringAnyOtherMessageLeavesItUnhandled) {
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    page->throwOn = ProbePage::kHandledMessage;
    EXPECT_EQ(ProbePage::PageDialogProc(page->Window(), ProbePage::kHandledMessage, 0, 0), FALSE);
    EXPECT_EQ(SendMessageA(page->Window(), ProbePage::kHandledMessage, 0, 0), 0);
    page->throwOn = WM_NOTIFY;
    page->throwOnCode = static_cast<UINT>(PSN_SETACTIVE);
    NMHDR header{sheet.Sheet(), 0, static_cast<UINT>(PSN_SETACTIVE)};
    EXPECT_EQ(ProbePage::PageDialogProc(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), FALSE);
    page->throwOn = 0;
    EXPECT_TRUE(IsWindow(page->Window()));
    EXPECT_EQ(SendMessageA(page->Window(), ProbePage::kHandledMessage, 0, 0), 0x1234);
}

TEST(WindowBoundary, BodyResultPassesThroughAndAnExceptionGivesTheFailureAnswer) {
    EXPECT_EQ(GuardWindowCall([] { return 7; }, [] { return -1; }), 7);
    EXPECT_EQ(GuardWindowCall([]() -> int { throw std::runtime_error("x"); }, [] { return -1; }), -1);
    EXPECT_EQ(GuardWindowCall([]() -> int { throw std::bad_alloc(); }, [] { return -2; }), -2);
    EXPECT_EQ(GuardWindowCall([]() -> int { throw 5; }, [] { return -3; }), -3);
}

// --- Helpers --------------------------------------------------------------------------------

TEST(PageHelpers, ControlTextReadsTheWholeText) {
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    const HWND edit = PageControl(page->Window(), 1012);
    ASSERT_NE(edit, nullptr);
    const std::string longText(3000, 'x');
    SetWindowTextA(edit, (longText + " end").c_str());
    EXPECT_EQ(ProbePage::ControlText(edit), longText + " end");
    SetWindowTextA(edit, "");
    EXPECT_EQ(ProbePage::ControlText(edit), "");
    EXPECT_EQ(ProbePage::ControlText(PageControl(page->Window(), 1001)), "Connection &type:");
}

TEST(PageHelpers, SendChangedTellsTheSheetWithThePagesWindowAndEnablesApply) {
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(nullptr);
    ASSERT_NE(sheet.Show(), nullptr);
    SheetMessages messages;
    messages.Watch(sheet.Sheet());
    const HWND applyButton = GetDlgItem(sheet.Sheet(), kApplyButtonId);
    ASSERT_NE(applyButton, nullptr);
    EXPECT_FALSE(IsWindowEnabled(applyButton));
    page->SendChanged();
    PumpMessages();
    EXPECT_TRUE(IsWindowEnabled(applyButton));
    ASSERT_EQ(messages.seen.size(), 1u);
    EXPECT_EQ(messages.seen[0].first, static_cast<UINT>(PSM_CHANGED));
    EXPECT_TRUE(IsSameWindow(messages.seen[0].second, page->Window()));
}

// --- Sheet notifications by sender: one row per behaviour ------------------------------------

namespace {

// Who sends a notification to the page.
enum class Sender { Sheet, SheetInItsOtherForm, ThePageItself, ForeignWindow };

// What the file holds afterwards.
enum class FileAfter {
    AsItWas,    // nothing written
    Rewritten,  // the writer's bytes, which differ from the file's own spacing
};

// A probe page (with a record of "-h   server.example" or none) gets one notification through
// its message map: handled or not, the result it answers, and the file afterwards. A
// notification left unhandled answers nothing through the window either.
struct NotificationCase {
    const char* name;
    bool withRecord;
    Sender from;
    UINT code;
    bool handled;
    LRESULT result;
    FileAfter file;
};
// Each row shows in ctest's list as its name ("# GetParam() = <name>"), not as its bytes.
void PrintTo(const NotificationCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const NotificationCase kNotificationCases[] = {
    {"ApplyWithoutARecordAnswersInvalidNoChangePage",         false, Sender::Sheet,               PSN_APPLY,     true,  PSNRET_INVALID_NOCHANGEPAGE,      FileAfter::AsItWas},
    {"ApplyFromTheSheetInTheOtherFormOfItsHandleWrites",      true,  Sender::SheetInItsOtherForm, PSN_APPLY,     true,  PSNRET_NOERROR,                   FileAfter::Rewritten},
    {"ApplyFromAForeignWindowIsNotHandledAndWritesNothing",   true,  Sender::ForeignWindow,       PSN_APPLY,     false, static_cast<LRESULT>(0xdeadbeef), FileAfter::AsItWas},
    {"NotificationsFromThePageItselfAreHandled",              true,  Sender::ThePageItself,       PSN_APPLY,     true,  PSNRET_NOERROR,                   FileAfter::Rewritten},
    {"SetActiveFromAForeignWindowIsNotHandled",               false, Sender::ForeignWindow,       PSN_SETACTIVE, false, static_cast<LRESULT>(0xdeadbeef), FileAfter::AsItWas},
};
// clang-format on

class NotificationBySender : public ::testing::TestWithParam<NotificationCase> {};

TEST_P(NotificationBySender, IsAnsweredAsTheRowSays) {
    const NotificationCase& c = GetParam();
    const std::string original = "-h   server.example";
    TempFile file(c.name, original);
    ComPtr<VQCFileInfo> record;
    if (c.withRecord) record = RecordFor(file.Path());
    DirectSheet sheet;
    auto* page = sheet.Add<ProbePage>(record.Get());
    ASSERT_NE(sheet.Show(), nullptr);
    ForeignWindow foreign;
    HWND from = nullptr;
    switch (c.from) {
    case Sender::Sheet: from = sheet.Sheet(); break;
    case Sender::SheetInItsOtherForm: from = OtherFormOf(sheet.Sheet()); break;
    case Sender::ThePageItself: from = page->Window(); break;
    case Sender::ForeignWindow: from = foreign.Get(); break;
    }

    LRESULT result = 0xdeadbeef;
    NMHDR header{from, 0, c.code};
    EXPECT_EQ(page->ProcessWindowMessage(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header), result),
              c.handled);
    EXPECT_EQ(result, c.result);
    if (!c.handled) {
        EXPECT_EQ(ProbePage::PageDialogProc(page->Window(), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&header)), FALSE);
        EXPECT_EQ(Notify(page->Window(), from, c.code), 0);
    }
    switch (c.file) {
    case FileAfter::AsItWas: EXPECT_EQ(file.Content(), original); break;
    case FileAfter::Rewritten:
        EXPECT_EQ(file.Content(), WriterBytes(*record.Get()));
        EXPECT_NE(file.Content(), original);
        break;
    }
}

INSTANTIATE_TEST_SUITE_P(PageNotifications, NotificationBySender, ::testing::ValuesIn(kNotificationCases), RowName());

}  // namespace
