// The record's fields as vqctool names them: the member names of ConnectionSettings, in
// their declared order, each with its kind and whether `set` may change it. One table for
// show, set, new and check. Portable.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "connection/connection_settings.h"

namespace vqctool {

enum class FieldKind : std::uint8_t { Text, Number, UnsignedNumber, Flag };

struct RecordField {
    const char* name;
    FieldKind kind;
    // Exactly one of these is set, the one of the kind.
    std::string ConnectionSettings::*text;
    std::int32_t ConnectionSettings::*number;
    std::uint32_t ConnectionSettings::*unsignedNumber;
    std::uint8_t ConnectionSettings::*flag;
    // Whether `set` and `new` take it: the fields that come from the file. The rest are the
    // program's own state (lastError, modified, the domain answer, the client, the path).
    bool settable;
};

constexpr std::size_t kRecordFieldCount = 33;
extern const RecordField kRecordFields[kRecordFieldCount];

// The field of that exact name; null when there is none.
const RecordField* FindField(std::string_view name) noexcept;

// The field's value as text: texts as they are, numbers in decimal, flags as true/false.
std::string FieldValueText(const RecordField& field, const ConnectionSettings& record);

// Whether the field holds the same value in both records.
bool SameFieldValue(const RecordField& field, const ConnectionSettings& a, const ConnectionSettings& b);

// A decimal number with an optional sign and nothing else, inside the 32-bit range.
std::optional<std::int32_t> ParseNumber(std::string_view text) noexcept;
// true/false, yes/no, on/off or 1/0, in any case.
std::optional<bool> ParseFlag(std::string_view text) noexcept;

}  // namespace vqctool
