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
#include "pages/connection_page.h"
#include "pages/option_page.h"
#include "pages/proxy_page.h"
#include "resources/dialog_template.h"
#include "resources/local_string_cache.h"
#include "shellext/vqcprop_ids.h"
#include "tests/support/modeless_sheet.h"
#include "tests/support/shell_selection.h"
#include "tests/support/temp_folder.h"
#include "devtools/benchmark_files.h"
#include "devtools/built_server.h"
#include "devtools/side_by_side.h"

namespace {

struct PageText {
    int templateIndex;
    std::uint32_t titleStringId;
};
// The sheet as the extension builds it when no client is installed: all three pages.
constexpr PageText kPages[] = {{CVQCConnectionPage::kTemplateIndex, CVQCConnectionPage::kTitleStringId},
                               {CVQCProxyPage::kTemplateIndex, CVQCProxyPage::kTitleStringId},
                               {CVQCOptionPage::kTemplateIndex, CVQCOptionPage::kTitleStringId}};

// Shows the pages in a modeless sheet, has every page create its window, destroys the
// sheet (which releases every page). True when all page windows were made.
bool ShowEveryPageAndClose(std::vector<HPROPSHEETPAGE>& pages) {
    if (pages.empty()) return false;
    const HWND sheet = test_support::ShowModelessSheet(pages, "connection", PSH_PROPTITLE);
    if (!sheet) return false;
    bool everyPage = true;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        SendMessageA(sheet, PSM_SETCURSEL, i, 0);
        everyPage = everyPage && SendMessageA(sheet, PSM_INDEXTOHWND, i, 0) != 0;
    }
    DestroyWindow(sheet);
    test_support::PumpMessages();
    return everyPage;
}

BOOL CALLBACK CollectPage(HPROPSHEETPAGE page, LPARAM pages) {
    reinterpret_cast<std::vector<HPROPSHEETPAGE>*>(pages)->push_back(page);
    return TRUE;
}

bool OurCycle(IDataObject* selection) {
    std::vector<HPROPSHEETPAGE> pages;
    ComPtr<IShellExtInit> init;
    if (FAILED(CoCreateInstance(CLSID_VQCProp, nullptr, CLSCTX_INPROC_SERVER, IID_IShellExtInit, init.PutVoid())))
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

}  // namespace

int main(int argc, char** argv) {
    const side_by_side::Counts counts = side_by_side::CountsFromArguments(argc, argv, {100, 7});
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    {
        const benchmark_server::ExtensionServer ours(benchmark_files::BuiltDllPath());
        const test_support::TempFolder folder("properties-benchmark");
        const std::string file = folder.File("office.vqc");
        const std::size_t written =
            benchmark_files::WriteConnectionFile(file, {MakeTestIconImage(32, 4), MakeTestIconImage(16, 4)}, 0);
        const ComPtr<IDataObject> selection = test_support::ShellSelection({file});
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
        const side_by_side::Comparison result = side_by_side::Compare(
            counts.rounds, counts.cycles, [&] { return OurCycle(selection.Get()); }, [&] { return FloorCycle(floor); });
        side_by_side::Report("Properties of a connection file (" + std::to_string(written) +
                                 " bytes, three pages, every page window created)",
                             "extension", "empty pages, same templates", result, counts.rounds, counts.cycles,
                             "properties");
    }
    CoUninitialize();
    return 0;
}
