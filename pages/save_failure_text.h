// What the user reads when Apply cannot write the connection file: the file's full path,
// then the system's own text for the error (which the system gives in the user's language),
// or the error's number when the system has no text for it.
#pragma once

#include <cstdint>
#include <string>

std::string SaveFailureText(const std::string& path, const std::string& systemText, std::uint32_t error);
