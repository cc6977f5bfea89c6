// What opening a connection file's Properties costs, against the floor of any sheet with
// the same three pages, side by side in one process:
//   ours:  CoCreateInstance of the extension, Initialize with the shell's selection of the
//          file, AddPages, a modeless sheet of the pages with every page window created,
//          then the sheet destroyed and the object released;
//   floor: the same three dialog templates (built once, beforehand) and titles as pages
//          with an empty dialog procedure, in the same kind of sheet, created and destroyed
//          the same way.
//   vqc_properties_benchmark [CYCLES [ROUNDS]]      (defaults 100 and 7)
#include <windows.h>
#include <commctrl.h>
#include <objbase.h>
#include <prsht.h>
#include <shlobj.h>

#include <cstdio>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "resources/dialog_template.h"
#include "resources/local_string_cache.h"
#include "shellext/vqcprop_ids.h"
#include "tools/benchmark_files.h"
#include "tools/built_server.h"
#include "tools/side_by_side.h"

namespace {

struct PageText {
    int templateIndex;
    std::uint32_t titleStringId;
};
// The sheet as the extension builds it when no client is installed: all three pages.
constexpr PageText kPages[] = {{1, 21}, {2, 48}, {3, 23}};

void PumpMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

// Shows the pages in a modeless sheet, has every page create its window, destroys the
// sheet (which releases every page). True when all page windows were made.
bool ShowEveryPageAndClose(std::vector<HPROPSHEETPAGE>& pages) {
    if (pages.empty()) return false;
    PROPSHEETHEADERA header{};
    header.dwSize = sizeof(header);
    header.dwFlags = PSH_MODELESS | PSH_PROPTITLE;
    header.hInstance = GetModuleHandleA(nullptr);
    header.pszCaption = "connection";
    header.nPages = static_cast<UINT>(pages.size());
    header.phpage = pages.data();
    const INT_PTR result = PropertySheetA(&header);
    if (result == 0 || result == -1) return false;
    const HWND sheet = GetAncestor(reinterpret_cast<HWND>(result), GA_ROOT);
    bool everyPage = true;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        SendMessageA(sheet, PSM_SETCURSEL, i, 0);
        everyPage = everyPage && SendMessageA(sheet, PSM_INDEXTOHWND, i, 0) != 0;
    }
    DestroyWindow(sheet);
    PumpMessages();
    return everyPage;
}

BOOL CALLBACK CollectPage(HPROPSHEETPAGE page, LPARAM pages) {
    reinterpret_cast<std::vector<HPROPSHEETPAGE>*>(pages)->push_back(page);
    return TRUE;
}

bool OurCycle(IDataObject* selection) {
    std::vector<HPROPSHEETPAGE> pages;
    ComPtr<IShellExtInit> init;
    if (FAILED(CoCreateInstance(CLSID_VQCProp, nullptr, CLSCTX_INPROC_SERVER, IID_IShellExtInit,
                                init.PutVoid())))
        return false;
    if (init->Initialize(nullptr, selection, nullptr) != S_OK) return false;
    ComPtr<IShellPropSheetExt> extension;
    if (FAILED(init->QueryInterface(IID_IShellPropSheetExt, extension.PutVoid()))) return false;
    if (extension->AddPages(CollectPage, reinterpret_cast<LPARAM>(&pages)) != S_OK) return false;
    return pages.size() == std::size(kPages) && ShowEveryPageAndClose(pages);
}

INT_PTR CALLBACK EmptyPage(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

struct FloorPages {
    std::vector<UniqueDialogTemplate> templates;
    std::vector<const char*> titles;
};

bool FloorCycle(const FloorPages& floor) {
    std::vector<HPROPSHEETPAGE> pages;
    for (std::size_t i = 0; i < floor.templates.size(); ++i) {
        PROPSHEETPAGEA page{};
        page.dwSize = sizeof(page);
        page.dwFlags = PSP_DLGINDIRECT | PSP_USETITLE;
        page.hInstance = GetModuleHandleA(nullptr);
        page.pResource = floor.templates[i].Get();
        page.pszTitle = floor.titles[i];
        page.pfnDlgProc = EmptyPage;
        const HPROPSHEETPAGE handle = CreatePropertySheetPageA(&page);
        if (!handle) return false;
        pages.push_back(handle);
    }
    return ShowEveryPageAndClose(pages);
}

// The shell's own data object for the selection of one file, as its Properties verb has it.
ComPtr<IDataObject> ShellSelectionOf(const std::string& path) {
    ComPtr<IDataObject> selection;
    PIDLIST_ABSOLUTE item = nullptr;
    if (FAILED(SHParseDisplayName(benchmark_files::Wide(path).c_str(), nullptr, &item, 0, nullptr)))
        return selection;
    ComPtr<IShellFolder> folder;
    PCUITEMID_CHILD child = nullptr;
    if (SUCCEEDED(SHBindToParent(item, IID_IShellFolder, folder.PutVoid(), &child)))
        folder->GetUIObjectOf(nullptr, 1, &child, IID_IDataObject, nullptr, selection.PutVoid());
    CoTaskMemFree(item);
    return selection;
}

}  // namespace

int main(int argc, char** argv) {
    const side_by_side::Counts counts = side_by_side::CountsFromArguments(argc, argv, {100, 7});
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    {
        const benchmark_server::ExtensionServer ours(benchmark_files::BuiltDllPath());
        const benchmark_files::Folder folder("vqc-properties-benchmark");
        const std::string file = folder.Path("office.vqc");
        const std::size_t written = benchmark_files::WriteConnectionFile(
            file, {benchmark_files::PatternImage(32, 4), benchmark_files::PatternImage(16, 4)}, 0);
        const ComPtr<IDataObject> selection = ShellSelectionOf(file);
        if (!selection) {
            std::fprintf(stderr, "the shell gave no selection for %s\n", file.c_str());
            return 1;
        }

        FloorPages floor;
        for (const PageText& page : kPages) {
            floor.templates.emplace_back(AllocDialogTemplate(page.templateIndex, 0));
            floor.titles.push_back(GetLocalString(page.titleStringId));
            if (!floor.templates.back()) {
                std::fprintf(stderr, "no template %d\n", page.templateIndex);
                return 1;
            }
        }

        for (int warm = 0; warm < 3; ++warm) {
            if (!OurCycle(selection.Get()) || !FloorCycle(floor)) {
                std::fprintf(stderr, "a sheet could not be shown\n");
                return 1;
            }
        }
        const side_by_side::Comparison result =
            side_by_side::Compare(counts.rounds, counts.cycles, [&] { return OurCycle(selection.Get()); },
                                  [&] { return FloorCycle(floor); });
        side_by_side::Report("Properties of a connection file (" + std::to_string(written) +
                                 " bytes, three pages, every page window created)",
                             "extension", "empty pages, same templates", result, counts.rounds, counts.cycles);
    }
    CoUninitialize();
    return 0;
}
