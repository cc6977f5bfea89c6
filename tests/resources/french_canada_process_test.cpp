// Canadian French has no texts of its own: everything is English_UK (LC_ALL=fr_CA.UTF-8).
#include <windows.h>

#include <string>

#include <gtest/gtest.h>

#include "expected_tables.h"
#include "resources/local_string_cache.h"

TEST(FrenchCanadaProcess, EveryIdGivesTheEnglishText) {
    for (std::uint32_t id = 0; id < 49; ++id) {
        const char* text = GetLocalString(id);
        ASSERT_NE(text, nullptr) << id;
        const std::u16string_view english = expected::kEnglish[id];
        EXPECT_EQ(std::string(text), std::string(english.begin(), english.end())) << id;
    }
}

TEST(FrenchCanadaProcess, FilterIsTheEnglishList) {
    const char* filter = GetLocalString(40);
    ASSERT_NE(filter, nullptr);
    const std::u16string_view english = expected::kEnglishFilter;
    EXPECT_EQ(std::string(filter, english.size()), std::string(english.begin(), english.end()));
}
