#include "tools/vqctool/record_json.h"

#include "pages/connection_page_rules.h"
#include "tools/vqctool/record_fields.h"
#include "tools/vqctool/type_names.h"

namespace vqctool {

namespace {

nlohmann::ordered_json IconJson(const std::optional<IconFormat>& icon) {
    if (!icon) return nullptr;
    return {{"width", icon->width}, {"height", icon->height}, {"bitsPerPixel", icon->bitsPerPixel}};
}

std::int32_t LittleEndian32(const std::vector<std::uint8_t>& bytes, std::size_t at) {
    return static_cast<std::int32_t>(
        static_cast<std::uint32_t>(bytes[at]) | static_cast<std::uint32_t>(bytes[at + 1]) << 8 |
        static_cast<std::uint32_t>(bytes[at + 2]) << 16 | static_cast<std::uint32_t>(bytes[at + 3]) << 24);
}

}  // namespace

std::optional<IconFormat> ImageBlockFormat(const std::vector<std::uint8_t>& block, int askedWidth, int askedHeight) {
    constexpr std::size_t kHeaderBytes = 40;
    if (block.size() < kHeaderBytes) return std::nullopt;
    IconFormat format;
    format.width = askedWidth ? askedWidth : LittleEndian32(block, 4);
    const std::int32_t doubled = LittleEndian32(block, 8);
    format.height = askedHeight ? askedHeight : (doubled < 0 ? -doubled : doubled) / 2;
    format.bitsPerPixel = block[14] | block[15] << 8;
    return format;
}

nlohmann::ordered_json RecordJson(const std::string& path, const ConnectionSettings& record,
                                  const std::optional<IconFormat>& icon, const std::optional<IconFormat>& smallIcon,
                                  const TextConversion& toUtf8) {
    nlohmann::ordered_json ordered;  // keeps the table's order in the text
    ordered["path"] = toUtf8(path);
    for (const RecordField& field : kRecordFields) {
        switch (field.kind) {
        case FieldKind::Text: ordered[field.name] = toUtf8(record.*field.text); break;
        case FieldKind::Number: ordered[field.name] = record.*field.number; break;
        case FieldKind::UnsignedNumber: ordered[field.name] = record.*field.unsignedNumber; break;
        case FieldKind::Flag: ordered[field.name] = record.*field.flag != 0; break;
        }
    }
    ordered["filePath"] = toUtf8(record.filePath);
    ordered["routeName"] = ShownRouteText(record);
    ordered["connectionType"] = ConnectionTypeText(connection_page::ConnectionTypeOf(record));
    ordered["loginType"] = LoginTypeText(connection_page::LoginTypeOf(record));
    ordered["icon"] = IconJson(icon);
    ordered["smallIcon"] = IconJson(smallIcon);
    return ordered;
}

nlohmann::ordered_json ErrorJson(const std::string& path, const std::string& error, const TextConversion& toUtf8) {
    return {{"path", toUtf8(path)}, {"error", toUtf8(error)}};
}

std::string JsonText(const nlohmann::ordered_json& value) {
    return value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace vqctool
