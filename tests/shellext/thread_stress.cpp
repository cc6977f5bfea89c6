#include "tests/shellext/thread_stress.h"

#include <windows.h>
#include <objbase.h>
#include <shlobj.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <set>
#include <thread>

#include "common/com_ptr.h"
#include "tests/pages/page_test_support.h"
#include "tests/shellext/icon_cycle.h"
#include "tests/shellext/shell_scenarios.h"
#include "tests/shellext/shellext_test_support.h"
#include "tests/support/hresult_text.h"

using namespace page_test;

namespace thread_stress {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kWrongAnswersShown = 5;

const char* KindName(std::size_t kind) {
    static constexpr const char* kNames[kFileKinds] = {"with icon", "without icon", "broken"};
    return kNames[kind];
}

struct StressFile {
    std::string name;
    std::wstring path;
    FileKind kind;
};

// The files the icon threads draw: each kind several times over, a missing file among the
// broken ones (deleted while the folder was shown).
std::vector<StressFile> MakeIconFiles(const std::string& folder) {
    struct Content {
        const char* name;
        FileKind kind;
        std::string text;
        bool written;
    };
    const std::vector<Content> contents = {
        {"icon-32-16.vqc", kWithIcon, test_support::ConnectionLineWithIcon({32, 16}), true},
        {"icon-48-16.vqc", kWithIcon, test_support::ConnectionLineWithIcon({48, 16}), true},
        {"icon-16.vqc", kWithIcon, test_support::ConnectionLineWithIcon({16}), true},
        {"plain.vqc", kWithoutIcon, shell_scenarios::kPropertiesLine, true},
        {"local.vqc", kWithoutIcon, "-d workstation -u local", true},
        {"remote.vqc", kWithoutIcon, "-h host.example -V 4790 -l -u someone -C run", true},
        {"truncated-icon.vqc", kBroken, "-h server.example -I \"0000010002002020\" -u", true},
        {"not-hex.vqc", kBroken, "-I \"zz\" -h", true},
        {"empty.vqc", kBroken, "", true},
        {"missing.vqc", kBroken, "", false},
    };
    std::vector<StressFile> files;
    for (const Content& content : contents) {
        const std::string path = folder + "\\" + content.name;
        if (content.written) WriteFileBytes(path, content.text);
        files.push_back({content.name, test_support::Wide(path), content.kind});
    }
    return files;
}

// What one icon cycle answered: the object made through COM, then the shell's questions.
struct CycleAnswer {
    HRESULT create = E_FAIL;
    icon_cycle::IconAnswer icon;
};

bool Same(const CycleAnswer& a, const CycleAnswer& b) {
    return a.create == b.create && icon_cycle::SameAnswer(a.icon, b.icon);
}

std::string Describe(const CycleAnswer& a) {
    return "create " + test_support::HresultText(a.create) +
           (a.create == S_OK ? ", " + icon_cycle::Describe(a.icon) : "");
}

// The shell's cycle for one file of a folder view, through COM on this thread's apartment:
// object, Load, the icon's location, Extract, release.
CycleAnswer IconCycle(const std::wstring& file) {
    CycleAnswer answer;
    ComPtr<IPersistFile> persist;
    answer.create =
        CoCreateInstance(kVQCPropClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IPersistFile, persist.PutVoid());
    if (persist) answer.icon = icon_cycle::AskForTheIcon(persist.Get(), file);
    return answer;
}

// The class object as the shell gets it: through COM and the registered server.
HRESULT STDAPICALLTYPE ClassObjectThroughCom(REFCLSID classId, REFIID iid, void** object) {
    return CoGetClassObject(classId, CLSCTX_INPROC_SERVER, nullptr, iid, object);
}

// A user's visit to one file's Properties: open, one edit on every page, Apply, close.
void VisitSheet(const std::string& file, std::vector<std::string>& problems) {
    WriteFileBytes(file, shell_scenarios::kPropertiesLine);
    ShellPropertySheet shell(ClassObjectThroughCom, file);
    if (!shell.Open()) {
        problems.push_back("a sheet did not open");
        return;
    }
    if (shell_scenarios::EditEveryPage(shell.Sheet()) !=
        (shell_scenarios::kConnectionPage | shell_scenarios::kProxyPage | shell_scenarios::kOptionsPage))
        problems.push_back("a sheet lacked a page");
    if (!shell_scenarios::Press(shell.Sheet(), kApplyButtonId).empty()) problems.push_back("Apply told of a failure");
    if (ReadFileBytes(file).find("-u changed") == std::string::npos) problems.push_back("Apply did not write the edit");
    shell.Destroy();
}

// What one icon thread counted in a round.
struct Tally {
    std::array<std::uint64_t, kFileKinds> cycles{};
    std::uint64_t wrong = 0;
    std::vector<std::string> wrongShown;
};

// A count that lets its waiters go when it reaches zero. (std::latch of MinGW's libstdc++ 12
// has been seen to miss the wake-up here and wait for ever.)
class Countdown {
public:
    explicit Countdown(LONG count) : count_(count), reached_(CreateEventA(nullptr, TRUE, count <= 0, nullptr)) {}
    void CountDown() {
        if (InterlockedDecrement(&count_) == 0) SetEvent(reached_.Get());
    }
    void Wait() const { WaitForSingleObject(reached_.Get(), INFINITE); }

private:
    volatile LONG count_;
    UniqueKernelHandle reached_;
};

// Lets a round's threads go at once and brings them back one by one.
struct RoundSync {
    explicit RoundSync(unsigned threads) : ready(static_cast<LONG>(threads)), released(static_cast<LONG>(threads)) {}
    Countdown ready;  // every thread is in its apartment
    Countdown go{1};  // all at once
    std::atomic<bool> stop{false};
    Countdown released;  // every thread has released its objects
    Countdown leave{1};  // the module's state has been read: leave the apartments
};

void IconThread(unsigned number, const std::vector<StressFile>& files, const std::vector<CycleAnswer>& expected,
                RoundSync& sync, Tally& tally) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    sync.ready.CountDown();
    sync.go.Wait();
    // Each thread starts on a file of its own and then walks all of them.
    for (std::size_t i = number; !sync.stop.load(); ++i) {
        const std::size_t f = i % files.size();
        const CycleAnswer answer = IconCycle(files[f].path);
        ++tally.cycles[files[f].kind];
        if (Same(answer, expected[f])) continue;
        ++tally.wrong;
        if (tally.wrongShown.size() < kWrongAnswersShown)
            tally.wrongShown.push_back("thread " + std::to_string(number) + ", " + files[f].name + ": " +
                                       Describe(answer) + "; one thread alone: " + Describe(expected[f]));
    }
    sync.released.CountDown();
    sync.leave.Wait();
    // Every object is gone: leaving the apartment lets COM unload the DLL for it.
    CoUninitialize();
}

template <typename Function>
Function Export(HMODULE module, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

double Seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

// One round: a fresh load, the threads let go at once, sheets on this thread meanwhile, and
// the checks at the end.
struct RoundResult {
    std::array<std::uint64_t, kFileKinds> cycles{};
    std::uint64_t sheets = 0;
    double seconds = 0;
    std::uint64_t wrong = 0;
    faults::Balance made{};
    std::vector<faults::LiveObject> alive;  // after the unload
    std::vector<std::string> problems;
    bool unloaded = false;
};

class Stress {
public:
    Stress(const std::string& dllPath, const std::string& folder, const StressOptions& options)
        : dllPath_(dllPath), folder_(folder), options_(options), files_(MakeIconFiles(folder)) {}

    StressReport Run() {
        StressReport report;
        report.threads = options_.threads;
        // The first round on one thread: the answers every later cycle is held to, what the
        // process keeps by design, and the rate of one thread alone.
        const RoundResult alone = RunRound(1, options_.aloneSeconds, true);
        report.aloneCycles = Total(alone.cycles);
        report.aloneSeconds = alone.seconds;
        for (const faults::LiveObject& object : alone.alive) keptSites_.insert(Key(object));
        report.keptByDesign = alone.alive.size();
        AddProblems(report, "one thread alone", alone);
        if (!alone.unloaded) return report;

        const std::size_t rounds = RoundCount();
        for (std::size_t r = 0; r < rounds; ++r) {
            const double length = options_.seconds / static_cast<double>(rounds);
            RoundResult round = RunRound(options_.threads, length, false);
            ++report.rounds;
            for (std::size_t kind = 0; kind < kFileKinds; ++kind) report.cycles[kind] += round.cycles[kind];
            report.sheets += round.sheets;
            report.seconds += round.seconds;
            report.wrongAnswers += round.wrong;
            for (std::size_t kind = 0; kind < faults::kObjectKindCount; ++kind) report.made[kind] += round.made[kind];
            std::vector<faults::LiveObject> leaked;
            for (const faults::LiveObject& object : round.alive)
                if (!keptSites_.count(Key(object))) leaked.push_back(object);
            for (std::size_t i = 0; i < leaked.size() && i < kWrongAnswersShown; ++i)
                round.problems.push_back("left alive: " + faults::Describe(leaked[i].madeAt));
            if (leaked.size() > kWrongAnswersShown)
                round.problems.push_back("left alive: " + std::to_string(leaked.size()) + " objects in all");
            AddProblems(report, "round " + std::to_string(r + 1), round);
            // A DLL that stayed loaded cannot start the next round afresh.
            if (!round.unloaded || (options_.untilAProblem && !round.problems.empty())) break;
        }
        return report;
    }

private:
    std::size_t RoundCount() const {
        const double rounds = options_.roundSeconds > 0 ? options_.seconds / options_.roundSeconds : 1;
        return rounds < 1 ? 1 : static_cast<std::size_t>(rounds + 0.5);
    }

    static std::uint64_t Total(const std::array<std::uint64_t, kFileKinds>& cycles) {
        std::uint64_t total = 0;
        for (std::uint64_t count : cycles) total += count;
        return total;
    }

    static std::string Key(const faults::LiveObject& object) { return faults::Describe(object.madeAt); }

    static void AddProblems(StressReport& report, const std::string& round, const RoundResult& result) {
        for (const std::string& problem : result.problems) report.problems.push_back(round + ": " + problem);
    }

    RoundResult RunRound(unsigned threads, double seconds, bool learn) {
        RoundResult result;
        const HMODULE module = LoadLibraryA(dllPath_.c_str());
        if (!module) {
            result.problems.push_back("the DLL did not load");
            return result;
        }
        faults::InstallInto(module);
        faults::RememberDestroyed(false);
        const faults::Balance madeBefore = faults::MadeObjects();

        {
            // COM on this thread for the sheets (and the first round's answers) of this round.
            const ComApartment apartment;
            if (learn) {
                expected_.clear();
                for (const StressFile& file : files_) expected_.push_back(IconCycle(file.path));
                if (options_.sheets) {
                    // The pages' first visit makes what the process keeps by design.
                    VisitSheet(folder_ + "\\sheet-0.vqc", result.problems);
                    ++result.sheets;
                }
            }

            RoundSync sync(threads);
            std::vector<Tally> tallies(threads);
            std::vector<std::thread> running;
            for (unsigned t = 0; t < threads; ++t)
                running.emplace_back(IconThread, t, std::cref(files_), std::cref(expected_), std::ref(sync),
                                     std::ref(tallies[t]));
            sync.ready.Wait();
            const Clock::time_point start = Clock::now();
            const Clock::time_point end =
                start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
            sync.go.CountDown();
            while (Clock::now() < end) {
                if (options_.sheets) {
                    VisitSheet(folder_ + "\\sheet-" + std::to_string(result.sheets % 2) + ".vqc", result.problems);
                    ++result.sheets;
                    // The shell lets go of extensions no object holds any more, now and then.
                    CoFreeUnusedLibrariesEx(0, 0);
                } else {
                    Sleep(20);
                }
            }
            sync.stop = true;
            sync.released.Wait();
            result.seconds = Seconds(Clock::now() - start);

            // Every thread and every sheet has let go of its objects.
            const auto canUnloadNow = Export<CanUnloadNowFunction>(module, "DllCanUnloadNow");
            const HRESULT unload = canUnloadNow ? canUnloadNow() : E_FAIL;
            if (unload != S_OK)
                result.problems.push_back("DllCanUnloadNow answered " + test_support::HresultText(unload) +
                                          " at the end");
            sync.leave.CountDown();
            for (std::thread& thread : running) thread.join();
            CoFreeUnusedLibrariesEx(0, 0);

            for (const Tally& tally : tallies) {
                for (std::size_t kind = 0; kind < kFileKinds; ++kind) result.cycles[kind] += tally.cycles[kind];
                result.wrong += tally.wrong;
                for (const std::string& wrong : tally.wrongShown)
                    if (result.problems.size() < 2 * kWrongAnswersShown) result.problems.push_back(wrong);
            }
            if (result.wrong > 0)
                result.problems.push_back(std::to_string(result.wrong) + " cycles answered otherwise than one thread");
        }

        const faults::Balance madeAfter = faults::MadeObjects();
        for (std::size_t kind = 0; kind < faults::kObjectKindCount; ++kind)
            result.made[kind] = madeAfter[kind] - madeBefore[kind];
        FreeLibrary(module);
        result.unloaded = GetModuleHandleA(dllPath_.c_str()) == nullptr;
        if (!result.unloaded) result.problems.push_back("the DLL stayed loaded after COM and the test let it go");
        // Its static destructors ran through the books: what is left is left for good.
        result.alive = faults::LiveObjectList();
        for (const std::string& problem : faults::BookProblems()) result.problems.push_back(problem);
        return result;
    }

    std::string dllPath_;
    std::string folder_;
    StressOptions options_;
    std::vector<StressFile> files_;
    std::vector<CycleAnswer> expected_;
    std::set<std::string> keptSites_;
};

double EnvironmentNumber(const char* name, double fallback) {
    const char* text = std::getenv(name);
    return text && *text ? std::strtod(text, nullptr) : fallback;
}

}  // namespace

std::uint64_t StressReport::Cycles() const {
    std::uint64_t total = 0;
    for (std::uint64_t count : cycles) total += count;
    return total;
}

double StressReport::CyclesPerSecond() const { return seconds > 0 ? static_cast<double>(Cycles()) / seconds : 0; }

double StressReport::AloneCyclesPerSecond() const {
    return aloneSeconds > 0 ? static_cast<double>(aloneCycles) / aloneSeconds : 0;
}

std::string StressReport::Summary() const {
    char line[512];
    std::string text;
    std::snprintf(line, sizeof(line),
                  "thread stress: %u threads, %zu rounds, %.1f s; sheets on the main thread: %llu\n", threads, rounds,
                  seconds, static_cast<unsigned long long>(sheets));
    text += line;
    std::snprintf(line, sizeof(line),
                  "  cycles: %s %llu, %s %llu, %s %llu; %llu in all, %.1f/s; one thread alone %.1f/s (%llu in %.1f "
                  "s), %.2f times that\n",
                  KindName(kWithIcon), static_cast<unsigned long long>(cycles[kWithIcon]), KindName(kWithoutIcon),
                  static_cast<unsigned long long>(cycles[kWithoutIcon]), KindName(kBroken),
                  static_cast<unsigned long long>(cycles[kBroken]), static_cast<unsigned long long>(Cycles()),
                  CyclesPerSecond(), AloneCyclesPerSecond(), static_cast<unsigned long long>(aloneCycles), aloneSeconds,
                  AloneCyclesPerSecond() > 0 ? CyclesPerSecond() / AloneCyclesPerSecond() : 0.0);
    text += line;
    const std::string madeText = faults::DescribeLive(made);
    std::snprintf(line, sizeof(line),
                  "  made by the DLL: %s; kept by design: %zu; wrong answers: %llu; problems: %zu\n",
                  madeText.empty() ? "nothing" : madeText.c_str(), keptByDesign,
                  static_cast<unsigned long long>(wrongAnswers), problems.size());
    text += line;
    return text;
}

StressReport Run(const std::string& dllPath, const std::string& folder, const StressOptions& options) {
    return Stress(dllPath, folder, options).Run();
}

StressOptions OptionsFromEnvironment(StressOptions options) {
    options.threads = static_cast<unsigned>(EnvironmentNumber("VQC_STRESS_THREADS", options.threads));
    options.seconds = EnvironmentNumber("VQC_STRESS_SECONDS", options.seconds);
    options.roundSeconds = EnvironmentNumber("VQC_STRESS_ROUND_SECONDS", options.roundSeconds);
    options.aloneSeconds = EnvironmentNumber("VQC_STRESS_ALONE_SECONDS", options.aloneSeconds);
    options.sheets = EnvironmentNumber("VQC_STRESS_SHEETS", options.sheets ? 1 : 0) != 0;
    return options;
}

}  // namespace thread_stress
