#include "tools/vqctool/field_edits.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "common/ansi_text.h"
#include "pages/proxy_page_rules.h"
#include "tools/vqctool/type_names.h"

namespace vqctool {

namespace cp = connection_page;
namespace pp = proxy_page;

namespace {

constexpr std::string_view kConnectionTypeName = "connection-type";
constexpr std::string_view kLoginTypeName = "login-type";

bool IsNameCharacter(char c) noexcept { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-'; }

// The login type whose own flag is the member; none for a member that is no login flag.
std::optional<cp::LoginType> LoginTypeOfFlag(std::uint8_t ConnectionSettings::*flag) noexcept {
    for (const cp::LoginTypeEntry& entry : cp::kLoginTypes)
        if (entry.flag && entry.flag == flag) return entry.type;
    return std::nullopt;
}

std::optional<cp::ConnectionType> ConnectionTypeOfFlag(std::uint8_t ConnectionSettings::*flag) noexcept {
    if (flag == &ConnectionSettings::localConnect) return cp::ConnectionType::Local;
    if (flag == &ConnectionSettings::optionK) return cp::ConnectionType::Discovery;
    return std::nullopt;
}

// What an empty port edit stores on the pages.
std::optional<std::int32_t> EmptyPortValue(std::int32_t ConnectionSettings::*member) noexcept {
    if (member == &ConnectionSettings::servicePort) return kServicePortNotGiven;
    for (const pp::PortEditRow& row : pp::kProxyPortEdits)
        if (row.field == member) return row.emptyValue;
    return std::nullopt;
}

void ApplyFlag(ConnectionSettings& record, const RecordField& field, bool value) {
    if (const auto login = LoginTypeOfFlag(field.flag)) {
        if (value)
            cp::StoreLoginType(record, *login);
        else if (record.*field.flag)
            cp::StoreLoginType(record, cp::LoginType::AlwaysRequirePassword);
        return;
    }
    if (const auto type = ConnectionTypeOfFlag(field.flag)) {
        if (value)
            cp::StoreConnectionType(record, *type);
        else if (cp::ConnectionTypeOf(record) == *type)
            cp::StoreConnectionType(record, cp::ConnectionType::Remote);
        return;
    }
    record.*field.flag = value ? 1 : 0;
}

// An edit that names a list's entry (a connection or login type) rather than a field's value;
// `type` is the entry the value named, none when it named no entry.
template <typename Type>
std::optional<FieldEdit> EntryEdit(FieldEdit edit, FieldEdit::Kind kind, std::optional<Type> type, const char* what,
                                   std::string_view value, std::string (*names)(), std::string& error) {
    if (!type) {
        error = "unknown " + std::string(what) + " \"" + std::string(value) + "\"; one of: " + names();
        return std::nullopt;
    }
    edit.kind = kind;
    edit.number = static_cast<std::int32_t>(*type);
    return edit;
}

}  // namespace

bool LooksLikeEdit(std::string_view argument) noexcept {
    const std::size_t equals = argument.find('=');
    if (equals == 0 || equals == std::string_view::npos) return false;
    return std::all_of(argument.begin(), argument.begin() + static_cast<std::ptrdiff_t>(equals), IsNameCharacter);
}

std::optional<FieldEdit> ParseEdit(std::string_view argument, std::string& error) {
    FieldEdit edit;
    edit.argument = std::string(argument);
    const std::size_t equals = argument.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        error = "not FIELD=VALUE: " + edit.argument;
        return std::nullopt;
    }
    const std::string_view name = argument.substr(0, equals);
    const std::string_view value = argument.substr(equals + 1);

    if (name == kConnectionTypeName) {
        return EntryEdit(std::move(edit), FieldEdit::Kind::ConnectionType,
                         ConnectionTypeByName(ansi_text::Trimmed(value)), "connection type", value, ConnectionTypeNames,
                         error);
    }
    if (name == kLoginTypeName) {
        return EntryEdit(std::move(edit), FieldEdit::Kind::LoginType, LoginTypeByName(ansi_text::Trimmed(value)),
                         "login type", value, LoginTypeNames, error);
    }

    const RecordField* field = FindField(name);
    if (!field) {
        error = "unknown field \"" + std::string(name) + "\"";
        return std::nullopt;
    }
    if (!field->settable) {
        error = "field \"" + std::string(name) + "\" cannot be set";
        return std::nullopt;
    }
    edit.field = field;
    switch (field->kind) {
    case FieldKind::Text: edit.text = ansi_text::Trimmed(value); return edit;
    case FieldKind::Flag:
        if (const auto flag = ParseFlag(value)) {
            edit.flag = *flag;
            return edit;
        }
        error = "field \"" + std::string(name) + "\" takes true or false, not \"" + std::string(value) + "\"";
        return std::nullopt;
    case FieldKind::Number:
        if (field->number == &ConnectionSettings::route) {
            if (const auto route = RouteByName(ansi_text::Trimmed(value))) {
                edit.number = *route;
                return edit;
            }
            const auto number = ParseNumber(value);
            if (number && !RouteText(*number).empty()) {
                edit.number = *number;
                return edit;
            }
            error = "unknown route \"" + std::string(value) + "\"; one of: " + RouteNames();
            return std::nullopt;
        }
        if (value.empty()) {
            if (const auto empty = EmptyPortValue(field->number)) {
                edit.number = *empty;
                return edit;
            }
        }
        if (const auto number = ParseNumber(value)) {
            edit.number = *number;
            return edit;
        }
        error = "field \"" + std::string(name) + "\" takes a number, not \"" + std::string(value) + "\"";
        return std::nullopt;
    case FieldKind::UnsignedNumber: break;
    }
    error = "field \"" + std::string(name) + "\" cannot be set";
    return std::nullopt;
}

void ApplyEdits(ConnectionSettings& record, const std::vector<FieldEdit>& edits) {
    for (const FieldEdit& edit : edits) {
        switch (edit.kind) {
        case FieldEdit::Kind::ConnectionType:
            cp::StoreConnectionType(record, static_cast<cp::ConnectionType>(edit.number));
            break;
        case FieldEdit::Kind::LoginType: cp::StoreLoginType(record, static_cast<cp::LoginType>(edit.number)); break;
        case FieldEdit::Kind::Field:
            switch (edit.field->kind) {
            case FieldKind::Text: record.*edit.field->text = edit.text; break;
            case FieldKind::Number: record.*edit.field->number = edit.number; break;
            case FieldKind::Flag: ApplyFlag(record, *edit.field, edit.flag); break;
            case FieldKind::UnsignedNumber: break;
            }
            break;
        }
        record.modified = 1;
    }
}

std::vector<std::string> DescribeChanges(const ConnectionSettings& before, const ConnectionSettings& after) {
    std::vector<std::string> changes;
    for (const RecordField& field : kRecordFields) {
        if (!field.settable || SameFieldValue(field, before, after)) continue;
        changes.push_back(std::string(field.name) + ": " + FieldValueText(field, before) + " -> " +
                          FieldValueText(field, after));
    }
    return changes;
}

}  // namespace vqctool
