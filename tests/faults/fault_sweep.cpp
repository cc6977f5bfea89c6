#include "tests/faults/fault_sweep.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <thread>

namespace faults {
namespace {

using CanUnloadNowFunction = HRESULT(STDAPICALLTYPE*)();

struct RunOutcome {
    std::vector<std::string> problems;
    std::vector<LiveObject> live;  // after the module is gone
    bool fired = false;
    CallSite firedCall;
};

RunOutcome RunOnce(const std::string& modulePath, const Scenario& scenario, const SweepOptions& options,
                   std::uint64_t armAt, bool trace) {
    RunOutcome outcome;
    const HMODULE module = LoadLibraryA(modulePath.c_str());
    if (!module) {
        outcome.problems.push_back("the module did not load: error " + std::to_string(GetLastError()));
        return outcome;
    }
    InstallInto(module);
    // Said before the run, so that a run that ends the process is named.
    std::printf("run k=%llu: module at %p\n", static_cast<unsigned long long>(armAt), static_cast<void*>(module));
    std::fflush(stdout);

    RunChecks checks;
    // A thread of the run's own, ended before the module goes: what the C++ runtime keeps
    // per thread (the exception globals) is freed when the thread ends, as it is when one
    // of the shell's threads ends.
    std::thread runner([&] {
        try {
            if (options.warmUp) {
                options.warmUp(module);
                ForgetLiveObjects();
            }
            BeginCounting(armAt, trace);
            FailFirstCallOf(options.standingFault);
            scenario(module, checks);
        } catch (const std::exception& error) {
            checks.Expect(false, std::string("an exception reached the caller: ") + error.what());
        } catch (...) {
            checks.Expect(false, "an exception reached the caller");
        }
    });
    runner.join();
    FailFirstCallOf(nullptr);
    outcome.fired = Fired();
    outcome.firedCall = FiredCall();
    ArmAt(0);

    if (options.comServer) {
        const auto canUnload =
            reinterpret_cast<CanUnloadNowFunction>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
        checks.Expect(canUnload && canUnload() == S_OK, "objects or locks of the module are still alive");
    }
    FreeLibrary(module);
    checks.Expect(GetModuleHandleA(modulePath.c_str()) == nullptr, "the module stayed loaded");
    if (options.afterUnload) options.afterUnload(checks);

    outcome.live = LiveObjectList();
    for (const std::string& problem : BookProblems()) checks.Expect(false, problem);
    outcome.problems = checks.Problems();
    return outcome;
}

// What a clean run leaves alive on purpose (state the module keeps for the life of the
// process), by kind and the place it is allocated at.
using KeptObjects = std::map<std::pair<ObjectKind, std::uintptr_t>, std::size_t>;

KeptObjects Kept(const std::vector<LiveObject>& live) {
    KeptObjects kept;
    for (const LiveObject& object : live) ++kept[{object.kind, object.madeAt.path[0]}];
    return kept;
}

// The objects of a run beyond what a clean run keeps: the run's leaks.
std::vector<LiveObject> Leaks(const std::vector<LiveObject>& live, KeptObjects kept) {
    std::vector<LiveObject> leaks;
    for (const LiveObject& object : live) {
        auto found = kept.find({object.kind, object.madeAt.path[0]});
        if (found != kept.end() && found->second > 0) {
            --found->second;
            continue;
        }
        leaks.push_back(object);
    }
    return leaks;
}

std::string DescribeLeaks(const std::vector<LiveObject>& leaks) {
    Balance count{};
    std::string origins;
    for (const LiveObject& object : leaks) {
        ++count[static_cast<std::size_t>(object.kind)];
        origins += "\n    " + std::string(KindName(object.kind)) + ", made by " + Describe(object.madeAt);
    }
    return "left alive: " + DescribeLive(count) + origins;
}

std::vector<std::uint64_t> ChooseRuns(const std::vector<CallSite>& trace, std::size_t maxRuns) {
    const std::uint64_t calls = trace.size();
    std::vector<std::uint64_t> runs;
    if (maxRuns == 0 || calls <= maxRuns) {
        for (std::uint64_t k = 1; k <= calls; ++k) runs.push_back(k);
        return runs;
    }
    std::set<std::uint64_t> chosen;
    std::set<CallSite> seen;
    for (std::uint64_t k = 1; k <= calls; ++k) {
        if (seen.insert(trace[k - 1]).second) chosen.insert(k);
    }
    if (chosen.size() < maxRuns) {
        const std::size_t rest = maxRuns - chosen.size();
        for (std::size_t i = 0; i < rest; ++i) chosen.insert(1 + (calls - 1) * (i + 1) / (rest + 1));
    }
    runs.assign(chosen.begin(), chosen.end());
    return runs;
}

}  // namespace

std::string DescribeRuns(const std::vector<std::uint64_t>& runs) {
    std::string text;
    for (std::size_t i = 0; i < runs.size();) {
        std::size_t j = i;
        while (j + 1 < runs.size() && runs[j + 1] == runs[j] + 1) ++j;
        if (!text.empty()) text += ", ";
        text += std::to_string(runs[i]);
        if (j > i) text += "-" + std::to_string(runs[j]);
        i = j + 1;
    }
    return text;
}

std::string SweepReport::Summary(const std::string& name) const {
    return "sweep " + name + ": " + std::to_string(calls) + " calls at " + std::to_string(sites) + " sites; " +
           std::to_string(swept.size()) + " faulted runs (k = " + DescribeRuns(swept) + "); faults injected " +
           std::to_string(injected) + "; kept by a clean run for the process " + std::to_string(keptByDesign) +
           "; objects leaked " + std::to_string(objectsLeaked) + "; problems " + std::to_string(problems.size());
}

SweepOptions OptionsFromEnvironment(SweepOptions options) {
    if (const char* most = std::getenv("VQC_SWEEP_MAX_RUNS"); most && *most) {
        char* end = nullptr;
        const unsigned long runs = std::strtoul(most, &end, 10);
        if (*end == '\0' && runs > 0) options.maxRuns = runs;
    }
    const char* all = std::getenv("VQC_SWEEP_ALL");
    if (all && std::string(all) == "1") options.maxRuns = 0;
    return options;
}

SweepReport Sweep(const std::string& modulePath, const Scenario& scenario, const SweepOptions& options) {
    SweepReport report;
    // The counting run: no fault, every call's site kept. It must itself be clean.
    const RunOutcome counting = RunOnce(modulePath, scenario, options, 0, true);
    const std::vector<CallSite> trace = Trace();
    BeginCounting(0, false);
    report.calls = trace.size();
    report.sites = std::set<CallSite>(trace.begin(), trace.end()).size();
    for (const std::string& problem : counting.problems) report.problems.push_back("counting run: " + problem);
    const KeptObjects kept = Kept(counting.live);
    report.keptByDesign = counting.live.size();

    // VQC_SWEEP_TRACE=1 lists the calls of the counting run, to find a run by its k.
    if (const char* list = std::getenv("VQC_SWEEP_TRACE"); list && std::string(list) == "1") {
        for (std::size_t k = 1; k <= trace.size(); ++k)
            std::printf("call %zu: %s\n", k, Describe(trace[k - 1]).c_str());
    }
    report.swept = ChooseRuns(trace, options.maxRuns);
    for (const std::uint64_t k : report.swept) {
        const RunOutcome run = RunOnce(modulePath, scenario, options, k, false);
        if (run.fired) ++report.injected;
        const std::string call = run.fired ? Describe(run.firedCall) : "not reached";
        std::vector<std::string> problems = run.problems;
        const std::vector<LiveObject> leaks = Leaks(run.live, kept);
        report.objectsLeaked += leaks.size();
        if (!leaks.empty()) problems.push_back(DescribeLeaks(leaks));
        for (const std::string& problem : problems)
            report.problems.push_back("k=" + std::to_string(k) + " (" + call + "): " + problem);
    }
    return report;
}

}  // namespace faults
