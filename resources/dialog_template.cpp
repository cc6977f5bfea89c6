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

namespace {

// The face a template of `desc` names: the system's GUI font, when the table asks for one.
std::wstring FaceFor(const DialogDesc& desc) {
    return desc.faceName != nullptr ? DefaultGuiFontFace() : std::wstring();
}

std::size_t BuildWithFace(const DialogDesc& desc, void* buffer, std::uint32_t pointSize,
                          const std::wstring& face) noexcept {
    try {
        const std::u16string_view face16(reinterpret_cast<const char16_t*>(face.c_str()), face.size());
        return WriteDialogTemplate(desc, buffer, GetUILanguageIndex(), pointSize, face16);
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

}  // namespace

std::size_t BuildDialogTemplate(const DialogDesc* desc, void* buffer, std::uint32_t pointSize) noexcept {
    if (desc == nullptr) return 0;
    try {
        return BuildWithFace(*desc, buffer, pointSize, FaceFor(*desc));
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

INT_PTR CreateTableDialog(HINSTANCE instance, int index, HWND parent, DLGPROC dialogProc, LPARAM initParam,
                          std::uint32_t pointSize, void** inOut, unsigned flags) noexcept {
    const DialogDesc* desc = FindDialogDesc(index);
    if (desc == nullptr) return 0;
    // One face for the size and the bytes: a face found for one and not the other would
    // write more than was measured.
    std::wstring face;
    try {
        face = FaceFor(*desc);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    const std::size_t size = BuildWithFace(*desc, nullptr, 0, face);
    if (size == 0) return 0;
    const std::uint32_t buildPointSize = (flags & kUsePointSize) != 0 ? pointSize : 0;

    if ((flags & kIntoCallerBuffer) != 0) {
        if (inOut == nullptr || *inOut == nullptr) return 0;
        BuildWithFace(*desc, *inOut, buildPointSize, face);
        return 0;
    }
    if ((flags & kAllocTemplate) != 0) {
        if (inOut == nullptr) return 0;
        void* block = std::malloc(size);
        if (block == nullptr) return 0;
        BuildWithFace(*desc, block, buildPointSize, face);
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
    BuildWithFace(*desc, scratch.data(), buildPointSize, face);
    const auto* dialogTemplate = reinterpret_cast<const DLGTEMPLATE*>(scratch.data());
    if ((flags & kModal) != 0) return DialogBoxIndirectParamA(instance, dialogTemplate, parent, dialogProc, initParam);
    return reinterpret_cast<INT_PTR>(
        CreateDialogIndirectParamA(instance, dialogTemplate, parent, dialogProc, initParam));
}

DLGTEMPLATE* AllocDialogTemplate(int index, std::uint32_t pointSize) noexcept {
    void* block = nullptr;
    const unsigned flags = pointSize != 0 ? (kAllocTemplate | kUsePointSize) : kAllocTemplate;
    CreateTableDialog(nullptr, index, nullptr, nullptr, 0, pointSize, &block, flags);
    return static_cast<DLGTEMPLATE*>(block);
}
