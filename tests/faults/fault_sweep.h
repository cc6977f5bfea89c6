// Sweeps a scenario over a module's system calls: one counting run finds the N calls the
// scenario makes and where each is made from; then a fresh load of the module per run fails
// one call k. After every run the objects must be released (DllCanUnloadNow), the module
// unloaded, and the books balanced; the scenario adds its own checks.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/faults/fault_layer.h"

namespace faults {

// What a scenario found wrong in one run.
class RunChecks {
public:
    void Expect(bool holds, const std::string& what) {
        if (!holds) problems_.push_back(what);
    }
    const std::vector<std::string>& Problems() const { return problems_; }

private:
    std::vector<std::string> problems_;
};

// A scenario runs against the freshly loaded module and checks what it sees.
using Scenario = std::function<void(HMODULE module, RunChecks& checks)>;

struct SweepOptions {
    // At most this many faulted runs; 0 runs every k. When N is larger, every call site's
    // first call runs, then calls spread evenly over the rest.
    std::size_t maxRuns = 300;
    // Whether the module must answer DllCanUnloadNow with S_OK after a run (a COM server).
    bool comServer = true;
    // Runs on the run's thread before the count starts, with its objects then forgotten: it
    // makes what the module's runtime makes once per thread or per load (for the first
    // exception a thread sees), which lives on after the module is unloaded.
    std::function<void(HMODULE module)> warmUp;
    // Checks that can only be made once the module is gone (what it writes at unload).
    std::function<void(RunChecks&)> afterUnload;
    // A function whose first call fails in every run, the counting run included (null:
    // none): the sweep then covers what the module does after that failure.
    const char* standingFault = nullptr;
};

struct SweepReport {
    std::uint64_t calls = 0;            // N of the counting run
    std::size_t sites = 0;              // distinct call sites among them
    std::vector<std::uint64_t> swept;   // the k that ran
    std::size_t injected = 0;           // runs in which the armed call happened and failed
    std::size_t keptByDesign = 0;       // alive after the clean counting run: the process's state
    std::size_t objectsLeaked = 0;      // alive after a faulted run beyond what a clean run keeps
    std::vector<std::string> problems;  // "k=12 (malloc at +0x1234): File 1 left alive"
    std::string Summary(const std::string& name) const;
};

// The options a sweep runs with: VQC_SWEEP_MAX_RUNS=N in the environment samples at most N
// runs (every call site's first call still runs), VQC_SWEEP_ALL=1 runs every k.
SweepOptions OptionsFromEnvironment(SweepOptions options = {});

SweepReport Sweep(const std::string& modulePath, const Scenario& scenario, const SweepOptions& options);

// "1-37, 40, 52-60": a list of k, short.
std::string DescribeRuns(const std::vector<std::uint64_t>& runs);

}  // namespace faults
