#include "common/guid_text.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

using guid_text::GuidFields;
using guid_text::ParseGuidText;

namespace {

void ExpectFields(const GuidFields& fields, std::uint32_t data1, std::uint16_t data2, std::uint16_t data3,
                  std::array<std::uint8_t, 8> data4) {
    EXPECT_EQ(fields.data1, data1);
    EXPECT_EQ(fields.data2, data2);
    EXPECT_EQ(fields.data3, data3);
    EXPECT_EQ(fields.data4, data4);
}

}  // namespace

TEST(GuidText, ReadsTheFieldsInRegistryOrder) {
    const auto fields = ParseGuidText("{01234567-89ab-cdef-0011-223344556677}");
    ASSERT_TRUE(fields.has_value());
    ExpectFields(*fields, 0x01234567, 0x89AB, 0xCDEF, {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77});
}

TEST(GuidText, ReadsUpperAndLowerCaseHexAlike) {
    const auto lower = ParseGuidText("{4b7d19e2-60a3-4f8c-a2d5-7c31e98b0f46}");
    const auto upper = ParseGuidText("{4B7D19E2-60A3-4F8C-A2D5-7C31E98B0F46}");
    ASSERT_TRUE(lower.has_value());
    ASSERT_TRUE(upper.has_value());
    ExpectFields(*lower, 0x4B7D19E2, 0x60A3, 0x4F8C, {0xA2, 0xD5, 0x7C, 0x31, 0xE9, 0x8B, 0x0F, 0x46});
    ExpectFields(*upper, 0x4B7D19E2, 0x60A3, 0x4F8C, {0xA2, 0xD5, 0x7C, 0x31, 0xE9, 0x8B, 0x0F, 0x46});
}

TEST(GuidText, WorksInAConstantExpression) {
    constexpr GuidFields fields = ParseGuidText("{ffffffff-0000-ffff-0000-ffffffffffff}").value();
    static_assert(fields.data1 == 0xFFFFFFFF && fields.data2 == 0 && fields.data3 == 0xFFFF);
    ExpectFields(fields, 0xFFFFFFFF, 0, 0xFFFF, {0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
}

TEST(GuidText, RefusesATextOfAnotherShape) {
    for (const char* text : {
             "",
             "01234567-89ab-cdef-0011-223344556677",     // no braces
             "{01234567-89ab-cdef-0011-22334455667}",    // a digit short
             "{01234567-89ab-cdef-0011-2233445566778}",  // a digit long
             "{01234567-89ab-cdef-00112-23344556677}",   // a hyphen out of place
             "{01234567-89ab-cdef-0011-22334455667g}",   // not a hex digit
             "(01234567-89ab-cdef-0011-223344556677)",   // other brackets
             " {01234567-89ab-cdef-0011-223344556677",   // blank in place of a brace
         }) {
        EXPECT_FALSE(ParseGuidText(text).has_value()) << text;
    }
}
