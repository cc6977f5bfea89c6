// The guard every COM method runs its body in: no C++ exception may reach the shell.
// An HResultError answers its own code, exhausted memory E_OUTOFMEMORY, anything else E_FAIL.
#pragma once

#include <windows.h>

#include <new>
#include <utility>

#include "common/hresult_error.h"

template <typename Body>
HRESULT GuardComCall(Body&& body) noexcept {
    try {
        return std::forward<Body>(body)();
    } catch (const HResultError& error) {
        return static_cast<HRESULT>(error.Code());
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_FAIL;
    }
}
