// What a folder view costs per ".vqc" file, against what the shell's own icon path costs
// per shortcut, side by side in one process:
//   ours:     CoCreateInstance of the extension, IPersistFile::Load of the file,
//             IExtractIconA::GetIconLocation, then Extract (or, for a file without an icon,
//             ExtractIconExA of the location it names, as the shell does), releasing all;
//   shortcut: CoCreateInstance of the shell link, IPersistFile::Load of a .lnk whose icon
//             is an .ico with the same images, IShellLinkA::GetIconLocation, ExtractIconExA.
// Both classes are created from their class factories registered in this process, so the
// registry lookup the shell would make for either is left out of both.
//   vqc_icon_benchmark [CYCLES [ROUNDS [steps]]]      (defaults 1000 and 7)
// "steps" adds where each side's time goes, call by call.
#include <windows.h>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>
#include <shobjidl.h>

#include <cstdio>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "connection/icon_stream.h"
#include "shellext/vqcprop_ids.h"
#include "tests/support/temp_folder.h"
#include "tests/support/wide_text.h"
#include "devtools/benchmark_files.h"
#include "devtools/built_server.h"
#include "devtools/side_by_side.h"

namespace {

using side_by_side::Now;

struct Case {
    std::string name;
    const char* measure;  // the row's name in scripts/bench.sh's table
    std::wstring connectionFile;
    std::wstring shortcutFile;
};

// Time spent in each call of our cycle, summed over the cycles of the "steps" run.
struct Steps {
    double create = 0, load = 0, location = 0, extract = 0, release = 0;
    int cycles = 0;
};

// Adds the time since its last lap to one step of `steps`; does nothing without steps, so
// a timed cycle and a cycle of the breakdown run the same code.
class StepClock {
public:
    explicit StepClock(Steps* steps) : steps_(steps), mark_(steps ? Now() : 0) {}

    void Lap(double Steps::*step) {
        if (!steps_) return;
        const double now = Now();
        steps_->*step += now - mark_;
        mark_ = now;
    }

    // What is left of a cycle after its last call is releasing the icons.
    void EndCycle() {
        Lap(&Steps::release);
        if (steps_) ++steps_->cycles;
    }

private:
    Steps* steps_;
    double mark_;
};

// One cycle of either side: `makeIcons` makes the large and the small icon, marking the
// clock's laps between its calls; the cycle ends with both destroyed. False when a call
// failed or an icon is missing.
template <typename MakeIcons>
bool TimedCycle(Steps* steps, MakeIcons makeIcons) {
    StepClock clock(steps);
    HICON large = nullptr, small = nullptr;
    if (!makeIcons(clock, large, small)) return false;
    const bool made = benchmark_server::DestroyBoth(large, small);
    clock.EndCycle();
    return made;
}

bool OurCycle(const std::wstring& path, Steps* steps) {
    return TimedCycle(steps, [&](StepClock& clock, HICON& large, HICON& small) {
        ComPtr<IPersistFile> file;
        if (FAILED(CoCreateInstance(CLSID_VQCProp, nullptr, CLSCTX_INPROC_SERVER, IID_IPersistFile, file.PutVoid())))
            return false;
        clock.Lap(&Steps::create);
        if (FAILED(file->Load(path.c_str(), STGM_READ))) return false;
        clock.Lap(&Steps::load);
        ComPtr<IExtractIconA> extract;
        if (FAILED(file->QueryInterface(IID_IExtractIconA, extract.PutVoid()))) return false;
        char location[MAX_PATH] = {};
        int index = -1;
        UINT flags = 0;
        if (extract->GetIconLocation(GIL_FORSHELL, location, MAX_PATH, &index, &flags) != S_OK) return false;
        clock.Lap(&Steps::location);
        HRESULT extracted = S_FALSE;
        if (flags & GIL_NOTFILENAME) {
            extracted = extract->Extract(location, static_cast<UINT>(index), &large, &small,
                                         MAKELONG(GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CXSMICON)));
        }
        if (extracted != S_OK) {
            // The shell extracts the icon itself from the location it was given.
            if (small) DestroyIcon(small);
            large = small = nullptr;
            ExtractIconExA(location, index, &large, &small, 1);
        }
        clock.Lap(&Steps::extract);
        return true;
    });
}

bool ShortcutCycle(const std::wstring& path, Steps* steps) {
    return TimedCycle(steps, [&](StepClock& clock, HICON& large, HICON& small) {
        ComPtr<IShellLinkA> link;
        if (FAILED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA, link.PutVoid())))
            return false;
        clock.Lap(&Steps::create);
        ComPtr<IPersistFile> file;
        if (FAILED(link->QueryInterface(IID_IPersistFile, file.PutVoid()))) return false;
        if (FAILED(file->Load(path.c_str(), STGM_READ))) return false;
        clock.Lap(&Steps::load);
        char location[MAX_PATH] = {};
        int index = -1;
        if (FAILED(link->GetIconLocation(location, MAX_PATH, &index))) return false;
        clock.Lap(&Steps::location);
        ExtractIconExA(location, index, &large, &small, 1);
        clock.Lap(&Steps::extract);
        return true;
    });
}

void PrintSteps(const char* side, const char* extractName, const Steps& steps) {
    const double n = steps.cycles / 1e6;
    std::printf(
        "  steps of %s: CoCreateInstance %.1f us, Load %.1f us, GetIconLocation %.1f us, %s %.1f us, "
        "release %.1f us\n",
        side, steps.create / n, steps.load / n, steps.location / n, extractName, steps.extract / n, steps.release / n);
}

}  // namespace

int main(int argc, char** argv) {
    const side_by_side::Counts counts = side_by_side::CountsFromArguments(argc, argv, {1000, 7});
    const bool showSteps = argc > 3 && std::string(argv[3]) == "steps";

    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
    {
        const std::string dllPath = benchmark_files::BuiltDllPath();
        const benchmark_server::ExtensionServer ours(dllPath);
        const benchmark_server::SystemServer link(CLSID_ShellLink);

        const test_support::TempFolder folder("icon-benchmark");
        const std::vector<IconImage> typical = {MakeTestIconImage(32, 4), MakeTestIconImage(16, 4)};
        const std::vector<IconImage> largest = {benchmark_files::LargestAcceptedImage(), MakeTestIconImage(16, 32)};
        std::vector<Case> cases;
        auto addIconCase = [&](const std::string& name, const char* measure, const char* stem,
                               const std::vector<IconImage>& images, std::size_t fileBytes) {
            const std::string vqc = folder.File(std::string(stem) + ".vqc");
            const std::string ico = folder.File(std::string(stem) + ".ico");
            const std::string lnk = folder.File(std::string(stem) + ".lnk");
            const std::size_t written = benchmark_files::WriteConnectionFile(vqc, images, fileBytes);
            benchmark_files::WriteIconFile(ico, images);
            benchmark_files::WriteShortcut(lnk, ico, 0);
            cases.push_back({name + " (" + std::to_string(written) + " bytes)", measure, test_support::Wide(vqc),
                             test_support::Wide(lnk)});
        };
        addIconCase("file with a 32x32 and a 16x16 icon at 4 bits", "icon-typical", "typical", typical, 0);
        {
            const std::string vqc = folder.File("plain.vqc");
            const std::string lnk = folder.File("plain.lnk");
            const std::size_t written = benchmark_files::WriteConnectionFile(vqc, {}, 0);
            // Both end at the DLL's own icon: ours names it, the shortcut points at it.
            benchmark_files::WriteShortcut(lnk, dllPath, 0);
            cases.push_back({"file without an icon (" + std::to_string(written) + " bytes)", "icon-none",
                             test_support::Wide(vqc), test_support::Wide(lnk)});
        }
        addIconCase("100 KB file with the largest icon the reader takes", "icon-100kb", "largest", largest, 100 * 1024);

        std::printf("icon per file: the extension against the shell's shortcut path\n");
        for (const Case& c : cases) {
            for (int warm = 0; warm < 10; ++warm) {
                if (!OurCycle(c.connectionFile, nullptr) || !ShortcutCycle(c.shortcutFile, nullptr)) {
                    std::fprintf(stderr, "%s: the icon could not be extracted\n", c.name.c_str());
                    return 1;
                }
            }
            const side_by_side::Comparison result = side_by_side::Compare(
                counts.rounds, counts.cycles, [&] { return OurCycle(c.connectionFile, nullptr); },
                [&] { return ShortcutCycle(c.shortcutFile, nullptr); });
            side_by_side::Report(c.name, "extension (.vqc)", "shortcut (.lnk -> .ico)", result, counts.rounds,
                                 counts.cycles, c.measure);
            if (showSteps) {
                Steps ourSteps, shortcutSteps;
                for (int i = 0; i < counts.cycles; ++i) {
                    OurCycle(c.connectionFile, &ourSteps);
                    ShortcutCycle(c.shortcutFile, &shortcutSteps);
                }
                PrintSteps("ours", "Extract", ourSteps);
                PrintSteps("the shortcut", "ExtractIconExA", shortcutSteps);
            }
        }
    }
    CoUninitialize();
    return 0;
}
