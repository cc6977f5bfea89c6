#include "resources/dialog_template.h"

#include <cstdlib>
#include <new>
#include <string_view>
#include <vector>

#include "resources/dialog_template_writer.h"
#include "resources/ui_language.h"

std::wstring DefaultGuiFontFace() {
    LOGFONTA font{};
    if (GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof(font), &font) == 0) return {};
    wchar_t face[LF_FACESIZE] = {};
    if (MultiByteToWideChar(CP_ACP, 0, font.lfFaceName, -1, face, LF_FACESIZE) == 0) return {};
    return face;
}

std::size_t BuildDialogTemplate(const DialogDesc* desc, void* buffer, std::uint32_t pointSize) noexcept {
    if (desc == nullptr) return 0;
    try {
        const std::wstring face = desc->faceName != nullptr ? DefaultGuiFontFace() : std::wstring();
        const std::u16string_view face16(reinterpret_cast<const char16_t*>(face.c_str()), face.size());
        return WriteDialogTemplate(*desc, buffer, GetUILanguageIndex(), pointSize, face16);
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

INT_PTR CreateTableDialog(HINSTANCE instance, int index, HWND parent, DLGPROC dialogProc,
                          LPARAM initParam, std::uint32_t pointSize, void** inOut,
                          unsigned flags) noexcept {
    const DialogDesc* desc = FindDialogDesc(index);
    if (desc == nullptr) return 0;
    const std::size_t size = BuildDialogTemplate(desc, nullptr, 0);
    if (size == 0) return 0;
    const std::uint32_t buildPointSize = (flags & kUsePointSize) != 0 ? pointSize : 0;

    if ((flags & kIntoCallerBuffer) != 0) {
        if (inOut == nullptr || *inOut == nullptr) return 0;
        BuildDialogTemplate(desc, *inOut, buildPointSize);
        return 0;
    }
    if ((flags & kAllocTemplate) != 0) {
        if (inOut == nullptr) return 0;
        void* block = std::malloc(size);
        if (block == nullptr) return 0;
        BuildDialogTemplate(desc, block, buildPointSize);
        *inOut = block;
        return 0;
    }

    // The template only has to live while the dialog is being created or run.
    std::vector<DWORD> scratch;
    try {
        scratch.assign((size + sizeof(DWORD) - 1) / sizeof(DWORD), 0);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    BuildDialogTemplate(desc, scratch.data(), buildPointSize);
    const auto* dialogTemplate = reinterpret_cast<const DLGTEMPLATE*>(scratch.data());
    if ((flags & kModal) != 0)
        return DialogBoxIndirectParamA(instance, dialogTemplate, parent, dialogProc, initParam);
    return reinterpret_cast<INT_PTR>(
        CreateDialogIndirectParamA(instance, dialogTemplate, parent, dialogProc, initParam));
}

DLGTEMPLATE* AllocDialogTemplate(int index, std::uint32_t pointSize) noexcept {
    void* block = nullptr;
    const unsigned flags = pointSize != 0 ? (kAllocTemplate | kUsePointSize) : kAllocTemplate;
    CreateTableDialog(nullptr, index, nullptr, nullptr, 0, pointSize, &block, flags);
    return static_cast<DLGTEMPLATE*>(block);
}
