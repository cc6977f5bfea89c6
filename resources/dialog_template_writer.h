// Turns a dialog description into the bytes of a Win32 DLGTEMPLATE (header, menu,
// class, title, font) followed by one DLGITEMTEMPLATE per control. Portable: the
// language and the font face are plain inputs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "resources/dialog_tables.h"

constexpr std::uint32_t kDsSetFont = 0x40;
constexpr std::uint32_t kWsVisible = 0x10000000;

// Writes the template into `buffer` and returns its size in bytes; with a null buffer
// nothing is written and only the size is returned. The font part (when `desc` names a
// face) carries `pointSize`, or the description's own size when it is 0, and
// `fontFace` instead of the stored face name. Each control starts on a 4-byte boundary
// counted from the start of the block; padding bytes are left as they are.
std::size_t WriteDialogTemplate(const DialogDesc& desc, void* buffer, int languageIndex, std::uint32_t pointSize,
                                std::u16string_view fontFace) noexcept;
