// shell_properties: a file's Properties opened by Wine's own shell, the way a right-click and
// "Properties" in a folder view open them, so the sheet holds whatever the registered
// property-sheet handlers add.
//   shell_properties FILE                    shows the sheet; returns when the user closes it
//   shell_properties FILE --screenshots DIR  shows each page in turn, writes DIR\pageN.png
//                                            (N from 1, in tab order), then presses Cancel
//   ... --screenshots DIR --failed-save      also, before Cancel: holds the file open as
//                                            another program would, presses OK and writes
//                                            the box that tells the failed save as
//                                            DIR\save-failed.png
// Prints one line per page, "pageN<TAB>title" (UTF-8), once the sheet is up.
// Exit status: 0 done, 1 the shell opened no sheet or the verb failed, 2 usage error.
#include <windows.h>
#include <commctrl.h>
#include <prsht.h>

#include <string>
#include <vector>

#include "common/win_handles.h"
#include "tests/support/shell_properties_road.h"
#include "devtools/window_capture.h"

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;
// The shell reads the file type, loads the handlers and builds every page's template first.
constexpr DWORD kSheetWait = 60000;

// Output goes out as bytes, whatever the console's code page.
void Print(HANDLE stream, const std::string& text) {
    DWORD written = 0;
    WriteFile(stream, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

int Usage() {
    Print(GetStdHandle(STD_ERROR_HANDLE), "usage: shell_properties FILE [--screenshots DIR [--failed-save]]\n");
    return kExitUsage;
}

// Brings page `index` to the front and lets the sheet's thread paint it completely.
void ShowPageNow(HWND sheet, int index) {
    SendMessageW(sheet, PSM_SETCURSEL, static_cast<WPARAM>(index), 0);
    RedrawWindow(sheet, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN | RDW_UPDATENOW);
    DWORD_PTR ignored = 0;
    SendMessageTimeoutW(sheet, WM_NULL, 0, 0, SMTO_BLOCK, 5000, &ignored);
    Sleep(300);
}

// The message box the sheet's thread shows, owned by the sheet; null when none came in time.
HWND WaitForOwnedBox(HWND sheet, DWORD milliseconds) {
    for (DWORD waited = 0; waited < milliseconds; waited += 50) {
        HWND box = nullptr;
        EnumThreadWindows(
            GetWindowThreadProcessId(sheet, nullptr),
            [](HWND window, LPARAM found) CALLBACK -> BOOL {
                char className[16] = {};
                GetClassNameA(window, className, sizeof(className));
                if (!IsWindowVisible(window) || std::string(className) != "#32770" || !GetWindow(window, GW_OWNER))
                    return TRUE;
                *reinterpret_cast<HWND*>(found) = window;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&box));
        if (box && GetWindow(box, GW_OWNER) == sheet) return box;
        Sleep(50);
    }
    return nullptr;
}

// OK on a file another program holds: the sheet's pages cannot write it and tell the user.
bool PictureFailedSave(HWND sheet, const std::string& file, const std::string& picture) {
    const UniqueKernelHandle lock(
        CreateFileA(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!lock) return false;
    PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_OK, 0);
    const HWND box = WaitForOwnedBox(sheet, 10000);
    if (!box) return false;
    Sleep(300);  // painted
    const bool saved = window_capture::SaveWindowPng(box, picture);
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    return saved;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 4 && argc != 5) return Usage();
    const std::string file = argv[1];
    std::string screenshots;
    bool failedSave = false;
    if (argc >= 4) {
        if (std::string(argv[2]) != "--screenshots") return Usage();
        screenshots = argv[3];
    }
    if (argc == 5) {
        if (std::string(argv[4]) != "--failed-save") return Usage();
        failedSave = true;
    }

    const HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE err = GetStdHandle(STD_ERROR_HANDLE);
    shell_road::PropertiesOnShellThread road({file});
    const HWND sheet = road.WaitForSheet(kSheetWait);
    if (!sheet) {
        road.WaitUntilReturned(kSheetWait);
        char code[16];
        wsprintfA(code, "0x%08lX", static_cast<unsigned long>(road.Result()));
        Print(err,
              "shell_properties: the shell opened no property sheet for " + file + " (verb result " + code + ")\n");
        return kExitFailed;
    }

    const std::vector<std::wstring> titles = shell_road::PageTitles(sheet);
    int status = kExitOk;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const std::string name = "page" + std::to_string(i + 1);
        Print(out, name + "\t" + shell_road::Utf8(titles[i]) + "\n");
        if (screenshots.empty()) continue;
        ShowPageNow(sheet, static_cast<int>(i));
        if (!window_capture::SaveWindowPng(sheet, screenshots + "\\" + name + ".png")) {
            Print(err, "shell_properties: could not write " + screenshots + "\\" + name + ".png\n");
            status = kExitFailed;
        }
    }
    if (failedSave && !PictureFailedSave(sheet, file, screenshots + "\\save-failed.png")) {
        Print(err, "shell_properties: no box told the failed save of " + file + "\n");
        status = kExitFailed;
    }
    if (!screenshots.empty()) PostMessageW(sheet, PSM_PRESSBUTTON, PSBTN_CANCEL, 0);
    road.WaitUntilReturned(INFINITE);
    if (FAILED(road.Result())) status = kExitFailed;
    return status;
}
