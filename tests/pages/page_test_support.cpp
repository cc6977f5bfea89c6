#include "tests/pages/page_test_support.h"

#include <utility>

#include "tests/support/wide_text.h"

namespace page_test {

// --- ExtensionCopy ---------------------------------------------------------------------

ExtensionCopy::ExtensionCopy(const std::string& tag, const std::string& clientFixture, bool withVServer,
                             const std::string& clientName)
    : folder_(tag), dllPath_(folder_.File(VQC_DLL_FILE_NAME)) {
    if (!clientFixture.empty()) CopyFileA(ClientFixturePath(clientFixture).c_str(), File(clientName).c_str(), FALSE);
    if (withVServer) WriteFileBytes(File("vserver.dll"), "stand-in");
    if (CopyFileA(BuiltDllPath().c_str(), dllPath_.c_str(), FALSE)) module_ = LoadLibraryA(dllPath_.c_str());
}

ExtensionCopy::~ExtensionCopy() { Unload(); }

GetClassObjectFunction ExtensionCopy::GetClassObject() const {
    return reinterpret_cast<GetClassObjectFunction>(
        reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
}

HRESULT ExtensionCopy::CanUnloadNow() const {
    auto canUnload =
        reinterpret_cast<CanUnloadNowFunction>(reinterpret_cast<void*>(GetProcAddress(module_, "DllCanUnloadNow")));
    return canUnload ? canUnload() : E_UNEXPECTED;
}

void ExtensionCopy::Unload() {
    if (module_) FreeLibrary(module_);
    module_ = nullptr;
}

// --- ShellPropertySheet ---------------------------------------------------------------------

ShellPropertySheet::ShellPropertySheet(GetClassObjectFunction getClassObject, const std::string& file)
    : getClassObject_(getClassObject), file_(file), wideFile_(test_support::Wide(file)) {}

ShellPropertySheet::ShellPropertySheet(GetClassObjectFunction getClassObject, const std::wstring& file)
    : getClassObject_(getClassObject), wideFile_(file) {}

ShellPropertySheet::~ShellPropertySheet() {
    Destroy();
    object_.Reset();
}

HRESULT ShellPropertySheet::CreateObject() {
    if (!getClassObject_) return E_POINTER;
    ComPtr<IClassFactory> factory;
    HRESULT result = getClassObject_(kVQCPropClassId, IID_IClassFactory, factory.PutVoid());
    if (FAILED(result)) return result;
    return factory->CreateInstance(nullptr, IID_IShellPropSheetExt, object_.PutVoid());
}

HRESULT ShellPropertySheet::Initialize() {
    if (!object_) return E_POINTER;
    ComPtr<IShellExtInit> init;
    HRESULT result = object_->QueryInterface(IID_IShellExtInit, init.PutVoid());
    if (FAILED(result)) return result;
    ComPtr<IDataObject> selection = ShellSelection(std::vector<std::wstring>{wideFile_});
    if (!selection) return E_UNEXPECTED;
    return init->Initialize(nullptr, selection.Get(), nullptr);
}

BOOL CALLBACK ShellPropertySheet::CollectPage(HPROPSHEETPAGE page, LPARAM self) {
    auto* sheet = reinterpret_cast<ShellPropertySheet*>(self);
    const int index = static_cast<int>(sheet->offers_.size());
    sheet->offers_.push_back(page);
    if (sheet->refused_.count(index)) return FALSE;
    sheet->accepted_.push_back(page);
    return TRUE;
}

HRESULT ShellPropertySheet::AddPages() {
    if (!object_) return E_POINTER;
    return object_->AddPages(CollectPage, reinterpret_cast<LPARAM>(this));
}

HWND ShellPropertySheet::Show() {
    if (accepted_.empty()) return nullptr;
    sheet_ = test_support::ShowModelessSheet(accepted_, "connection", PSH_PROPTITLE);
    return sheet_;
}

bool ShellPropertySheet::Open() {
    return SUCCEEDED(CreateObject()) && Initialize() == S_OK && AddPages() == S_OK && Show() != nullptr;
}

void ShellPropertySheet::Destroy() {
    if (sheet_) DestroyWindow(sheet_);
    sheet_ = nullptr;
    PumpMessages();
}

// --- DirectSheet -----------------------------------------------------------------------------

DirectSheet::~DirectSheet() {
    if (sheet_) {
        Destroy();
    } else {
        // Never shown: the handles are still ours, and destroying one releases its page.
        for (HPROPSHEETPAGE page : pages_) DestroyPropertySheetPage(page);
    }
}

HWND DirectSheet::Show() {
    sheet_ = test_support::ShowModelessSheet(pages_, "direct");
    return sheet_;
}

void DirectSheet::Destroy() {
    if (sheet_) DestroyWindow(sheet_);
    sheet_ = nullptr;
    pages_.clear();
    PumpMessages();
}

// --- Driving a sheet -------------------------------------------------------------------------

HWND PageWindow(HWND sheet, int index) {
    return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_INDEXTOHWND, static_cast<WPARAM>(index), 0));
}

HWND CurrentPage(HWND sheet) { return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETCURRENTPAGEHWND, 0, 0)); }

int PageCount(HWND sheet) {
    const auto tabs = reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETTABCONTROL, 0, 0));
    return tabs ? static_cast<int>(SendMessageA(tabs, TCM_GETITEMCOUNT, 0, 0)) : -1;
}

std::string PageTitle(HWND sheet, int index) {
    const auto tabs = reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETTABCONTROL, 0, 0));
    char text[256] = {};
    TCITEMA item{};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = sizeof(text);
    if (!tabs || !SendMessageA(tabs, TCM_GETITEMA, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item))) {
        return "<no tab>";
    }
    return text;
}

int PageIndex(HWND sheet, const std::string& title) {
    for (int i = 0; i < PageCount(sheet); ++i) {
        if (PageTitle(sheet, i) == title) return i;
    }
    return -1;
}

void ShowPage(HWND sheet, int index) {
    SendMessageA(sheet, PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
    PumpMessages();
}

HWND ShowPageTitled(HWND sheet, const std::string& title) {
    const int index = PageIndex(sheet, title);
    if (index < 0) return nullptr;
    ShowPage(sheet, index);
    return PageWindow(sheet, index);
}

BOOL Apply(HWND sheet) {
    const auto result = static_cast<BOOL>(SendMessageA(sheet, PSM_APPLY, 0, 0));
    PumpMessages();
    return result;
}

void ClickButton(HWND sheet, int id) {
    const HWND button = GetDlgItem(sheet, id);
    SendMessageA(sheet, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
    PumpMessages();
}

bool SheetClosed(HWND sheet) { return CurrentPage(sheet) == nullptr; }

HWND PageControl(HWND page, int id) { return GetDlgItem(page, id); }

std::vector<int> ChildIds(HWND window) {
    std::vector<int> ids;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        ids.push_back(GetDlgCtrlID(child));
    }
    return ids;
}

RECT ChildRect(HWND child) {
    RECT rect{};
    GetWindowRect(child, &rect);
    MapWindowPoints(HWND_DESKTOP, GetParent(child), reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

// --- WriteWatch ------------------------------------------------------------------------------

WriteWatch::WriteWatch(std::string file) : file_(std::move(file)) {}

WriteWatch::~WriteWatch() {
    for (HWND page : watched_) {
        if (IsWindow(page)) RemoveWindowSubclass(page, Subclass, 1);
    }
}

void WriteWatch::Watch(HWND page) {
    if (page && SetWindowSubclass(page, Subclass, 1, reinterpret_cast<DWORD_PTR>(this))) watched_.push_back(page);
}

LRESULT CALLBACK WriteWatch::Subclass(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                      DWORD_PTR self) {
    auto* watch = reinterpret_cast<WriteWatch*>(self);
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, Subclass, 1);
    const bool apply =
        message == WM_NOTIFY && lParam && reinterpret_cast<const NMHDR*>(lParam)->code == static_cast<UINT>(PSN_APPLY);
    if (!apply) return DefSubclassProc(window, message, wParam, lParam);
    ++watch->applies_;
    WriteFileBytes(watch->file_, kMarker);
    const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
    const std::string content = ReadFileBytes(watch->file_);
    if (content != kMarker) watch->writes_.push_back(content);
    return result;
}

}  // namespace page_test
