#include "tools/vqctool/record_fields.h"

#include <charconv>

#include "common/ansi_text.h"

namespace vqctool {

namespace {

using S = ConnectionSettings;

constexpr RecordField Text(const char* name, std::string S::*member, bool settable = true) {
    return {name, FieldKind::Text, member, nullptr, nullptr, nullptr, settable};
}
constexpr RecordField Number(const char* name, std::int32_t S::*member, bool settable = true) {
    return {name, FieldKind::Number, nullptr, member, nullptr, nullptr, settable};
}
constexpr RecordField Unsigned(const char* name, std::uint32_t S::*member) {
    return {name, FieldKind::UnsignedNumber, nullptr, nullptr, member, nullptr, false};
}
constexpr RecordField Flag(const char* name, std::uint8_t S::*member, bool settable = true) {
    return {name, FieldKind::Flag, nullptr, nullptr, nullptr, member, settable};
}

}  // namespace

// clang-format off
const RecordField kRecordFields[kRecordFieldCount] = {
    Text("answerBack", &S::answerBack),
    Text("login", &S::login),
    Text("host", &S::host),
    Text("commandLine", &S::commandLine),
    Text("localTarget", &S::localTarget),
    Text("serviceName", &S::serviceName),
    Text("startDirectory", &S::startDirectory),
    Text("proxyHost", &S::proxyHost),
    Text("proxyUser", &S::proxyUser),
    Text("brokerHost", &S::brokerHost),
    Text("clientPath", &S::clientPath, false),
    Text("spareText", &S::spareText, false),
    Number("servicePort", &S::servicePort),
    Number("proxyPort", &S::proxyPort),
    Number("brokerPort", &S::brokerPort),
    Unsigned("lastError", &S::lastError),
    Flag("modified", &S::modified, false),
    Flag("encrypt", &S::encrypt),
    Flag("disguiseHttp", &S::disguiseHttp),
    Flag("optionT", &S::optionT),
    Flag("localConnect", &S::localConnect),
    Flag("optionR", &S::optionR),
    Flag("optionN", &S::optionN),
    Flag("optionNM", &S::optionNM),
    Flag("optionL", &S::optionL),
    Flag("optionK", &S::optionK),
    Flag("brokerUpperF", &S::brokerUpperF),
    Flag("option_s", &S::option_s),
    Flag("noOptionM", &S::noOptionM),
    Flag("inDomain", &S::inDomain, false),
    Flag("inDomainKnown", &S::inDomainKnown, false),
    Number("clientVersion", &S::clientVersion, false),
    Number("route", &S::route),
};
// clang-format on

const RecordField* FindField(std::string_view name) noexcept {
    for (const RecordField& field : kRecordFields)
        if (name == field.name) return &field;
    return nullptr;
}

std::string FieldValueText(const RecordField& field, const ConnectionSettings& record) {
    switch (field.kind) {
    case FieldKind::Text: return record.*field.text;
    case FieldKind::Number: return std::to_string(record.*field.number);
    case FieldKind::UnsignedNumber: return std::to_string(record.*field.unsignedNumber);
    case FieldKind::Flag: return record.*field.flag ? "true" : "false";
    }
    return {};
}

bool SameFieldValue(const RecordField& field, const ConnectionSettings& a, const ConnectionSettings& b) {
    switch (field.kind) {
    case FieldKind::Text: return a.*field.text == b.*field.text;
    case FieldKind::Number: return a.*field.number == b.*field.number;
    case FieldKind::UnsignedNumber: return a.*field.unsignedNumber == b.*field.unsignedNumber;
    case FieldKind::Flag: return (a.*field.flag != 0) == (b.*field.flag != 0);
    }
    return true;
}

std::optional<std::int32_t> ParseNumber(std::string_view text) noexcept {
    std::string_view digits = text;
    if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
    if (digits.empty() || digits.front() == '+') return std::nullopt;
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
    return value;
}

std::optional<bool> ParseFlag(std::string_view text) noexcept {
    for (const char* yes : {"true", "yes", "on", "1"})
        if (ansi_text::EqualsIgnoringCase(text, yes)) return true;
    for (const char* no : {"false", "no", "off", "0"})
        if (ansi_text::EqualsIgnoringCase(text, no)) return false;
    return std::nullopt;
}

}  // namespace vqctool
