// What every sweep of the built DLL must show: each armed call came and failed, nothing
// leaked, no problem; the sweep's summary printed for the test's output.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/faults/fault_sweep.h"

inline void ExpectClean(const faults::SweepReport& report, const std::string& name) {
    std::printf("%s\n", report.Summary(name).c_str());
    EXPECT_GT(report.calls, 0u);
    EXPECT_EQ(report.injected, report.swept.size()) << "runs whose armed call never came";
    EXPECT_EQ(report.objectsLeaked, 0u);
    for (const std::string& problem : report.problems) ADD_FAILURE() << problem;
}
