// The text of the registration failure log: its two kinds of line, the registry paths
// they name, and the bytes of the log file. Plain data in, plain text out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A key or value below keyPath: "<keyPath>\<name>", "(Default)" standing for a null name.
std::string RegistryChildPath(std::string_view keyPath, const char* name);

// "Failed to create registry key %s Error %d %s"
std::string KeyCreateFailureLine(std::string_view keyPath, std::int32_t errorCode, std::string_view errorText);

// "Failed to set registry value %s to \"%s\" Error %d %s"
std::string ValueSetFailureLine(std::string_view valuePath, std::string_view data, std::int32_t errorCode,
                                std::string_view errorText);

// The system's text of an error as it stands (its line break kept); "??" when it is empty.
std::string ErrorTextOrPlaceholder(std::string_view systemText);

// The log file: the lines in order, a line feed after every line but the last.
std::string LogFileContents(const std::vector<std::string>& lines);
