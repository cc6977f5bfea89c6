// Explorer's threads at once against a registered copy of the DLL. Several threads, each in a
// single-threaded apartment of its own, run the icon handler's whole cycle through
// CoCreateInstance (object, Load, the icon's location, Extract, release) on files with an
// icon, without one and broken, while the main thread opens, edits, applies and closes
// sheets on other files. The run is cut into rounds: each starts from a fresh load of the
// DLL with every thread let go at once (so that what the DLL makes on first use is raced
// for), and ends with everything released, DllCanUnloadNow asked, the DLL unloaded and the
// fault layer's books read. A first round on one thread learns what a single thread answers
// for every file and how fast it goes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/faults/fault_layer.h"

namespace thread_stress {

enum FileKind : std::size_t { kWithIcon, kWithoutIcon, kBroken, kFileKinds };

struct StressOptions {
    unsigned threads = 8;
    double seconds = 10;         // the threads at once, all rounds together
    double roundSeconds = 2;     // the length of one round
    double aloneSeconds = 2;     // one thread alone in the first round
    bool sheets = true;          // the main thread opens sheets meanwhile
    bool untilAProblem = false;  // stop after the first round that found one
};

struct StressReport {
    unsigned threads = 0;
    std::size_t rounds = 0;
    std::array<std::uint64_t, kFileKinds> cycles{};
    std::uint64_t sheets = 0;
    double seconds = 0;
    std::uint64_t aloneCycles = 0;
    double aloneSeconds = 0;
    std::uint64_t wrongAnswers = 0;
    faults::Balance made{};        // by the module in the rounds of many threads, by kind
    std::size_t keptByDesign = 0;  // alive after the first round's unload: the process's own
    std::vector<std::string> problems;

    std::uint64_t Cycles() const;
    double CyclesPerSecond() const;
    double AloneCyclesPerSecond() const;
    // The figures in a few lines: threads, cycles per kind of file, sheets, cycles/s against
    // one thread alone, objects made, and the problems found.
    std::string Summary() const;
};

// Runs the stress in `folder` against the DLL registered for the class at `dllPath`.
StressReport Run(const std::string& dllPath, const std::string& folder, const StressOptions& options);

// The options of the environment over the given ones: VQC_STRESS_THREADS, VQC_STRESS_SECONDS,
// VQC_STRESS_ROUND_SECONDS and VQC_STRESS_ALONE_SECONDS.
StressOptions OptionsFromEnvironment(StressOptions options);

}  // namespace thread_stress
