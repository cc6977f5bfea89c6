// The FIELD=VALUE arguments of `set` and `new`: checked all at once before any file is
// touched, then laid over a record with the pages' own rules, so the record keeps one
// connection type and one login type. Portable.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connection/connection_settings.h"
#include "pages/connection_page_rules.h"
#include "tools/vqctool/record_fields.h"

namespace vqctool {

struct FieldEdit {
    enum class Kind : std::uint8_t { Field, ConnectionType, LoginType };
    Kind kind = Kind::Field;
    const RecordField* field = nullptr;  // for Kind::Field
    std::string text;                    // a text field's new value, trimmed as the pages trim edits
    std::int32_t number = 0;             // a number field's value, a route, or a type
    bool flag = false;
    std::string argument;  // as given, for messages
};

// Whether the argument has the form NAME=VALUE with a name of letters, digits, _ and -.
bool LooksLikeEdit(std::string_view argument) noexcept;

// The edit of one argument, or nothing with `error` naming what is wrong.
std::optional<FieldEdit> ParseEdit(std::string_view argument, std::string& error);

// Lays the edits over the record in their order. A login flag set to true chooses that
// login type (the other four flags cleared), set to false while it is the record's own
// type chooses "Always require password"; localConnect and optionK likewise choose the
// connection type. Empty port values stand for what an empty edit on the pages stores.
void ApplyEdits(ConnectionSettings& record, const std::vector<FieldEdit>& edits);

// "name: old -> new" for each field that differs, in the table's order.
std::vector<std::string> DescribeChanges(const ConnectionSettings& before, const ConnectionSettings& after);

}  // namespace vqctool
