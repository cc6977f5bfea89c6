// A GUID's fields read from its registry text, "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}", at
// compile time: the server's identifiers are written once, as the registry shows them, and
// the binary GUIDs the COM side needs are made from that text.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace guid_text {

// The fields in GUID's order (Data1, Data2, Data3, Data4).
struct GuidFields {
    std::uint32_t data1 = 0;
    std::uint16_t data2 = 0;
    std::uint16_t data3 = 0;
    std::array<std::uint8_t, 8> data4{};
};

constexpr int HexDigitValue(char c) noexcept {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The fields of a braced GUID text of either case; none for any other text. In a constant
// initializer, `ParseGuidText(text).value()` does not compile for a text that is none.
constexpr std::optional<GuidFields> ParseGuidText(std::string_view text) noexcept {
    constexpr std::string_view kShape = "{########-####-####-####-############}";
    if (text.size() != kShape.size()) return std::nullopt;
    std::array<std::uint8_t, 16> bytes{};
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (kShape[i] != '#') {
            if (text[i] != kShape[i]) return std::nullopt;
            continue;
        }
        const int value = HexDigitValue(text[i]);
        if (value < 0) return std::nullopt;
        bytes[digits / 2] = static_cast<std::uint8_t>(bytes[digits / 2] << 4 | value);
        ++digits;
    }
    GuidFields fields;
    fields.data1 = std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
                   std::uint32_t{bytes[3]};
    fields.data2 = static_cast<std::uint16_t>(bytes[4] << 8 | bytes[5]);
    fields.data3 = static_cast<std::uint16_t>(bytes[6] << 8 | bytes[7]);
    for (std::size_t i = 0; i < fields.data4.size(); ++i) fields.data4[i] = bytes[8 + i];
    return fields;
}

}  // namespace guid_text
