// Reads the bytes of an in-memory dialog template back into its fields, for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct DecodedControl {
    std::size_t offset = 0;
    std::uint32_t style = 0;
    std::uint32_t exStyle = 0;
    std::int16_t x = 0, y = 0, cx = 0, cy = 0;
    std::uint16_t id = 0;
    std::u16string className;
    std::u16string caption;
    std::uint16_t creationDataSize = 0xFFFF;
};

struct DecodedTemplate {
    std::uint32_t style = 0;
    std::uint32_t exStyle = 0;
    std::uint16_t controlCount = 0;
    std::int16_t x = 0, y = 0, cx = 0, cy = 0;
    std::uint16_t menu = 0xFFFF;
    std::u16string className;
    std::u16string title;
    bool hasFont = false;
    std::uint16_t pointSize = 0;
    std::u16string faceName;
    std::vector<DecodedControl> controls;
    std::size_t end = 0;  // the position behind the last thing read
    bool ok = false;      // false when a read would pass `size`
};

DecodedTemplate DecodeTemplate(const std::uint8_t* bytes, std::size_t size);
