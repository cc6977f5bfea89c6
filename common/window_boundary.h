// The guard every window procedure, dialog procedure and page callback runs its body in:
// no C++ exception may unwind into the system's window code, which cannot pass one on.
#pragma once

#include <utility>

// Runs body; when it throws, answers what onFailure (which must not throw) answers.
template <typename Body, typename OnFailure>
auto GuardWindowCall(Body&& body, OnFailure&& onFailure) noexcept -> decltype(body()) {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return std::forward<OnFailure>(onFailure)();
    }
}
