// One file's entry of `show --json`: its path, every field of the record under its field
// name (texts as strings, numbers as numbers, flags as booleans), the route, connection
// type and login type by the names the pages show, and the two icons' formats. Texts are
// handed through `toUtf8` (the ANSI code page's conversion on Windows). Portable.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "connection/connection_settings.h"

namespace vqctool {

using TextConversion = std::function<std::string(std::string_view)>;

struct IconFormat {
    int width = 0;
    int height = 0;
    int bitsPerPixel = 0;
};

// The format of an icon image block as the reader keeps it (BITMAPINFOHEADER first, its
// height doubled for the mask); askedWidth and askedHeight, when not 0, are the size the
// icon was made at. None for a block too short for its header.
std::optional<IconFormat> ImageBlockFormat(const std::vector<std::uint8_t>& block, int askedWidth, int askedHeight);

// The entry of a file that was read.
nlohmann::ordered_json RecordJson(const std::string& path, const ConnectionSettings& record,
                                  const std::optional<IconFormat>& icon, const std::optional<IconFormat>& smallIcon,
                                  const TextConversion& toUtf8);

// The entry of a file that could not be read: its path and the reason.
nlohmann::ordered_json ErrorJson(const std::string& path, const std::string& error, const TextConversion& toUtf8);

// One entry as text on one line, invalid UTF-8 replaced rather than refused.
std::string JsonText(const nlohmann::ordered_json& value);

}  // namespace vqctool
