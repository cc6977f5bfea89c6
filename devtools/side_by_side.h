// Times two ways of doing one job side by side in one process: rounds that alternate the
// two, so both see the same machine, and a report of the per-cycle median over the rounds,
// the spread of the rounds and the ratio of the medians. Absolute times under Wine are
// noise; the ratio is the figure.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace side_by_side {

inline double Now() {
    static const double frequency = [] {
        LARGE_INTEGER f;
        QueryPerformanceFrequency(&f);
        return static_cast<double>(f.QuadPart);
    }();
    LARGE_INTEGER t;
    QueryPerformanceCounter(&t);
    return static_cast<double>(t.QuadPart) / frequency;
}

// The per-cycle times of every round of one side, in seconds.
struct Samples {
    std::vector<double> perCycle;

    double Median() const {
        std::vector<double> sorted = perCycle;
        std::sort(sorted.begin(), sorted.end());
        const std::size_t n = sorted.size();
        return n % 2 ? sorted[n / 2] : (sorted[n / 2 - 1] + sorted[n / 2]) / 2;
    }
    double Fastest() const { return *std::min_element(perCycle.begin(), perCycle.end()); }
    double Slowest() const { return *std::max_element(perCycle.begin(), perCycle.end()); }
};

// Both sides' rounds, in the order they ran; round i of one side ran next to round i of
// the other, so each round gives a ratio of its own, and the figure is their median.
struct Comparison {
    Samples ours;
    Samples floor;
    Samples RoundRatios() const {
        Samples ratios;
        for (std::size_t i = 0; i < ours.perCycle.size() && i < floor.perCycle.size(); ++i)
            ratios.perCycle.push_back(ours.perCycle[i] / floor.perCycle[i]);
        return ratios;
    }
    double Ratio() const { return RoundRatios().Median(); }
};

// Runs `rounds` rounds; each times `cycles` calls of ours, then of the floor (the order
// swaps every round so that neither side always runs warm). A cycle returns false when
// its work failed, which ends the program: a benchmark of failing calls measures nothing.
template <typename Ours, typename Floor>
Comparison Compare(int rounds, int cycles, Ours ours, Floor floor) {
    Comparison result;
    auto timeCycles = [cycles](auto& cycle, Samples& samples, const char* side) {
        const double start = Now();
        for (int i = 0; i < cycles; ++i) {
            if (!cycle()) {
                std::fprintf(stderr, "%s: a cycle failed\n", side);
                std::exit(1);
            }
        }
        samples.perCycle.push_back((Now() - start) / cycles);
    };
    for (int round = 0; round < rounds; ++round) {
        if (round % 2 == 0) {
            timeCycles(ours, result.ours, "ours");
            timeCycles(floor, result.floor, "floor");
        } else {
            timeCycles(floor, result.floor, "floor");
            timeCycles(ours, result.ours, "ours");
        }
    }
    return result;
}

// One line per case: both medians with the spread of their rounds, and the ratio (the
// median of the rounds' ratios, with their spread). With `measure` set, one more line for
// scripts/bench.sh's table: "row|measure|ours us|floor us|ratio|lowest|highest|rounds".
inline void Report(const std::string& name, const char* oursName, const char* floorName, const Comparison& c,
                   int rounds, int cycles, const char* measure = nullptr) {
    const Samples ratios = c.RoundRatios();
    std::printf("%s\n", name.c_str());
    std::printf("  %-26s median %10.1f us  (rounds %.1f .. %.1f)\n", oursName, c.ours.Median() * 1e6,
                c.ours.Fastest() * 1e6, c.ours.Slowest() * 1e6);
    std::printf("  %-26s median %10.1f us  (rounds %.1f .. %.1f)\n", floorName, c.floor.Median() * 1e6,
                c.floor.Fastest() * 1e6, c.floor.Slowest() * 1e6);
    std::printf("  ratio %.2f  (rounds %.2f .. %.2f; %d rounds of %d cycles)\n", ratios.Median(), ratios.Fastest(),
                ratios.Slowest(), rounds, cycles);
    if (measure) {
        std::printf("row|%s|%.1f|%.1f|%.3f|%.3f|%.3f|%d\n", measure, c.ours.Median() * 1e6, c.floor.Median() * 1e6,
                    ratios.Median(), ratios.Fastest(), ratios.Slowest(), rounds);
    }
    std::fflush(stdout);
}

// "PROGRAM [CYCLES [ROUNDS]]" with the defaults for a run by hand.
struct Counts {
    int cycles;
    int rounds;
};

inline Counts CountsFromArguments(int argc, char** argv, Counts defaults) {
    Counts counts = defaults;
    if (argc > 1) counts.cycles = std::max(1, std::atoi(argv[1]));
    if (argc > 2) counts.rounds = std::max(1, std::atoi(argv[2]));
    return counts;
}

}  // namespace side_by_side
