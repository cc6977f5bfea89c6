// Marks a fuzz harness's own code (its models of the rules, its splitting, its checks) to be
// left out of the fuzzer's coverage: its branches would only add features and a callback
// per compared byte to every run, while the code under test carries its own.
#pragma once

#if defined(__clang__)
#define VQC_NOT_FUZZED __attribute__((noinline, no_sanitize("coverage")))
#else
#define VQC_NOT_FUZZED
#endif
