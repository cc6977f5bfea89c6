// What the user reads when Apply cannot write the connection file: the file's full path,
// then the system's own text for the error (which the system gives in the user's language),
// or the error's number when the system has no text for it. A write that fails puts the
// file's old content back; only when even that failed does the text say so, last.
#pragma once

#include <cstdint>
#include <string>

std::string SaveFailureText(const std::string& path, const std::string& systemText, std::uint32_t error,
                            bool oldContentLost = false);

// The sentence the text ends with when the old content could not be put back.
inline constexpr char kOldContentLostSentence[] =
    "The file's previous content could not be put back either, so the file is now incomplete.";
