// The exception the code raises where it cannot go on (no string storage, a length out
// of range); it carries the HRESULT that the COM boundary hands back to the shell.
#pragma once

#include <cstdint>
#include <stdexcept>

constexpr std::int32_t kResultFail = static_cast<std::int32_t>(0x80004005);         // E_FAIL
constexpr std::int32_t kResultInvalidArg = static_cast<std::int32_t>(0x80070057);   // E_INVALIDARG
constexpr std::int32_t kResultOutOfMemory = static_cast<std::int32_t>(0x8007000E);  // E_OUTOFMEMORY

class HResultError : public std::runtime_error {
public:
    explicit HResultError(std::int32_t code) : std::runtime_error("HRESULT error"), code_(code) {}
    std::int32_t Code() const noexcept { return code_; }

private:
    std::int32_t code_;
};
