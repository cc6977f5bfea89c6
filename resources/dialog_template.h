// Dialog templates in the UI language, built at run time from the tables of
// dialog_tables.h, and the dialogs made from them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdlib>
#include <cstdint>
#include <string>

#include "common/unique_handle.h"
#include "resources/dialog_tables.h"

// Flags of CreateTableDialog.
enum : unsigned {
    kUsePointSize = 0x1,      // use the pointSize argument instead of the table's
    kAllocTemplate = 0x2,     // store a malloc'ed template in *inOut, create nothing
    kIntoCallerBuffer = 0x4,  // build into the buffer *inOut points to, create nothing
    kModal = 0x10,            // DialogBoxIndirectParamA instead of CreateDialogIndirectParamA
};

// The face of the stock DEFAULT_GUI_FONT, widened from CP_ACP: the face every template
// carries, so the pages use the desktop's own dialog font.
std::wstring DefaultGuiFontFace();

// The template of `desc` in the UI language, written into `buffer` (or only measured
// when it is null); returns its size in bytes. pointSize 0 keeps the table's size.
std::size_t BuildDialogTemplate(const DialogDesc* desc, void* buffer, std::uint32_t pointSize) noexcept;

// Builds template `index` (1 to 4) and finishes as `flags` say: the window handle of a
// modeless dialog, the result of a modal one, or 0 (template handed over through inOut,
// bad index, no memory).
INT_PTR CreateTableDialog(HINSTANCE instance, int index, HWND parent, DLGPROC dialogProc, LPARAM initParam,
                          std::uint32_t pointSize, void** inOut, unsigned flags) noexcept;

// A heap template for a property page, or null; the caller frees it with free().
DLGTEMPLATE* AllocDialogTemplate(int index, std::uint32_t pointSize) noexcept;

// Owner of a template from AllocDialogTemplate: freed with free().
inline void FreeDialogTemplate(DLGTEMPLATE* dialogTemplate) noexcept { std::free(dialogTemplate); }
using UniqueDialogTemplate = UniqueAny<DLGTEMPLATE*, FreeDialogTemplate>;
