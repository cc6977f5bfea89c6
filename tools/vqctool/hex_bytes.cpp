#include "tools/vqctool/hex_bytes.h"

namespace vqctool {

namespace {

int HexValue(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace

std::vector<std::uint8_t> HexTextBytes(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 2);
    int high = -1;
    for (const char c : text) {
        const int value = HexValue(c);
        if (value < 0) continue;
        if (high < 0) {
            high = value;
        } else {
            bytes.push_back(static_cast<std::uint8_t>(high * 16 + value));
            high = -1;
        }
    }
    return bytes;
}

}  // namespace vqctool
