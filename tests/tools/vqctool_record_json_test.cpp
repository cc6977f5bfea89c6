// show --json's entry of one record, parsed back with the JSON library.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/vqctool/record_json.h"
#include "tools/vqctool/run_summary.h"

using namespace vqctool;

namespace {

std::string Same(std::string_view text) { return std::string(text); }

}  // namespace

TEST(VqctoolRecordJson, EveryFieldHasItsNameAndType) {
    ConnectionSettings record("C:\\files\\a.vqc");
    record.host = "server \"one\"\t\\";
    record.servicePort = 5000;
    record.encrypt = 1;
    record.optionR = 1;
    record.proxyHost = "proxy";
    record.route = kRouteProxy;
    const auto parsed = nlohmann::json::parse(
        JsonText(RecordJson("C:\\files\\a.vqc", record, IconFormat{32, 32, 32}, std::nullopt, Same)));
    EXPECT_EQ(parsed["path"], "C:\\files\\a.vqc");
    EXPECT_EQ(parsed["host"], "server \"one\"\t\\");
    EXPECT_TRUE(parsed["servicePort"].is_number_integer());
    EXPECT_EQ(parsed["servicePort"], 5000);
    EXPECT_TRUE(parsed["encrypt"].is_boolean());
    EXPECT_EQ(parsed["encrypt"], true);
    EXPECT_EQ(parsed["optionK"], false);
    EXPECT_EQ(parsed["lastError"], 0);
    EXPECT_EQ(parsed["clientVersion"], 726);
    EXPECT_EQ(parsed["filePath"], "C:\\files\\a.vqc");
    EXPECT_EQ(parsed["route"], 1);
    EXPECT_EQ(parsed["routeName"], "Connect via a proxy server");
    EXPECT_EQ(parsed["connectionType"], "Connect to remote server");
    EXPECT_EQ(parsed["loginType"], "Cache password");
    EXPECT_EQ(parsed["icon"], (nlohmann::json{{"width", 32}, {"height", 32}, {"bitsPerPixel", 32}}));
    EXPECT_TRUE(parsed["smallIcon"].is_null());
    EXPECT_FALSE(parsed.contains("error"));
    // The path, 33 fields and filePath, three names and two icons.
    EXPECT_EQ(parsed.size(), 1u + 34u + 3u + 2u);
}

TEST(VqctoolRecordJson, TextsGoThroughTheConversion) {
    ConnectionSettings record;
    record.login = "J\xF6rg";  // o-umlaut in Windows-1252
    const auto latin1 = [](std::string_view text) {
        std::string out;
        for (const char c : text) {
            const auto byte = static_cast<unsigned char>(c);
            if (byte < 0x80) {
                out.push_back(c);
            } else {
                out.push_back(static_cast<char>(0xC0 | (byte >> 6)));
                out.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
            }
        }
        return out;
    };
    const auto parsed =
        nlohmann::json::parse(JsonText(RecordJson("a.vqc", record, std::nullopt, std::nullopt, latin1)));
    EXPECT_EQ(parsed["login"], "J\xC3\xB6rg");
}

TEST(VqctoolRecordJson, InvalidUtf8IsReplacedNotRefused) {
    ConnectionSettings record;
    record.login = "\xFF";
    const auto parsed = nlohmann::json::parse(JsonText(RecordJson("a.vqc", record, std::nullopt, std::nullopt, Same)));
    EXPECT_EQ(parsed["login"], "\xEF\xBF\xBD");
}

TEST(VqctoolRecordJson, AFileThatCannotBeReadHasPathAndError) {
    const auto parsed = nlohmann::json::parse(JsonText(ErrorJson("a.vqc", "The system cannot find the file.", Same)));
    EXPECT_EQ(parsed, (nlohmann::json{{"path", "a.vqc"}, {"error", "The system cannot find the file."}}));
}

TEST(VqctoolRunSummary, SummaryAndProgressLines) {
    EXPECT_EQ(SummaryLine({412, 37, 2}), "412 files, 37 changed, 2 failed");
    EXPECT_EQ(SummaryLine({1, 0, 0}), "1 file, 0 changed, 0 failed");
    EXPECT_EQ(ProgressLine(1200, 10000), "1200/10000 files");
}

TEST(VqctoolRecordJson, AnImageBlocksFormatIsItsHeaders) {
    std::vector<std::uint8_t> block(40, 0);
    block[4] = 48;  // width
    block[8] = 96;  // height, doubled for the mask
    block[14] = 4;  // bits per pixel
    const auto own = ImageBlockFormat(block, 0, 0);
    ASSERT_TRUE(own);
    EXPECT_EQ(own->width, 48);
    EXPECT_EQ(own->height, 48);
    EXPECT_EQ(own->bitsPerPixel, 4);
    const auto asked = ImageBlockFormat(block, 16, 16);
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->width, 16);
    EXPECT_EQ(asked->height, 16);
    EXPECT_EQ(asked->bitsPerPixel, 4);
    block.resize(39);
    EXPECT_FALSE(ImageBlockFormat(block, 0, 0));
}
