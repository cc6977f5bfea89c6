// The four dialogs the DLL builds at run time, as tables: one description per dialog and
// one per control, with numbers that may differ by language. Portable data.
#pragma once

#include <cstdint>

// One node of a per-language list of numbers. Language 1 doubles as the default.
struct LocalValue {
    std::int32_t value;
    std::uint32_t language;
    const LocalValue* next;
};

// The value for the language: the first node of that language, else the last node of
// language 1, else 0.
std::int32_t ResolveLocalValue(const LocalValue* list, int languageIndex) noexcept;

// What a dialog and each of its controls are described by alike.
struct WindowDesc {
    std::int32_t id;  // a control's id; a dialog's template index
    const LocalValue* x;
    const LocalValue* y;
    const LocalValue* cx;
    const LocalValue* cy;
    const LocalValue* style;
    const LocalValue* exStyle;
    const char16_t* className;     // null: no class text
    const char16_t* const* texts;  // caption or title per language (a string table row), or null
};

using ControlDesc = WindowDesc;

struct DialogDesc : WindowDesc {
    std::uint32_t pointSize;
    const char16_t* faceName;            // non-null: the template carries a font
    const ControlDesc* const* controls;  // null-terminated, in tab order
};

// Indexed by template index less one (dialog_ids.h names the four).
constexpr int kDialogCount = 4;
extern const DialogDesc* const g_dialogDescs[kDialogCount];

// The description of a template index, or null outside 1 to 4.
const DialogDesc* FindDialogDesc(int index) noexcept;
