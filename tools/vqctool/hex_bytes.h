// The bytes of an icon's hex text: every pair of hex digits, other characters (the line
// breaks) skipped, an odd last digit dropped. Portable.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace vqctool {

std::vector<std::uint8_t> HexTextBytes(std::string_view text);

}  // namespace vqctool
