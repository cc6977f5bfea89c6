#include "resources/dialog_template_writer.h"

#include "resources/local_strings.h"

namespace {

// Little-endian output that only counts when there is no buffer.
class TemplateOutput {
public:
    explicit TemplateOutput(void* buffer) noexcept : bytes_(static_cast<std::uint8_t*>(buffer)) {}

    std::size_t Position() const noexcept { return position_; }

    void AlignTo4() noexcept { position_ = (position_ + 3) & ~static_cast<std::size_t>(3); }

    void Word(std::uint16_t value) noexcept {
        Byte(static_cast<std::uint8_t>(value));
        Byte(static_cast<std::uint8_t>(value >> 8));
    }

    void DoubleWord(std::uint32_t value) noexcept {
        Word(static_cast<std::uint16_t>(value));
        Word(static_cast<std::uint16_t>(value >> 16));
    }

    // The text up to its first NUL, then one NUL; an empty string for null.
    void Text(const char16_t* text) noexcept {
        for (; text != nullptr && *text != u'\0'; ++text) Word(static_cast<std::uint16_t>(*text));
        Word(0);
    }

    void Text(std::u16string_view text) noexcept {
        for (char16_t c : text) {
            if (c == u'\0') break;
            Word(static_cast<std::uint16_t>(c));
        }
        Word(0);
    }

private:
    void Byte(std::uint8_t value) noexcept {
        if (bytes_ != nullptr) bytes_[position_] = value;
        ++position_;
    }

    std::uint8_t* bytes_;
    std::size_t position_ = 0;
};

std::uint32_t Resolved32(const LocalValue* list, int languageIndex) noexcept {
    return static_cast<std::uint32_t>(ResolveLocalValue(list, languageIndex));
}

std::uint16_t Resolved16(const LocalValue* list, int languageIndex) noexcept {
    return static_cast<std::uint16_t>(ResolveLocalValue(list, languageIndex));
}

}  // namespace

std::size_t WriteDialogTemplate(const DialogDesc& desc, void* buffer, int languageIndex, std::uint32_t pointSize,
                                std::u16string_view fontFace) noexcept {
    const int L = languageIndex;
    std::uint16_t controlCount = 0;
    if (desc.controls != nullptr)
        while (desc.controls[controlCount] != nullptr) ++controlCount;

    TemplateOutput out(buffer);
    std::uint32_t style = Resolved32(desc.style, L);
    if (desc.faceName != nullptr) style |= kDsSetFont;
    out.DoubleWord(style);
    out.DoubleWord(Resolved32(desc.exStyle, L));
    out.Word(controlCount);
    out.Word(Resolved16(desc.x, L));
    out.Word(Resolved16(desc.y, L));
    out.Word(Resolved16(desc.cx, L));
    out.Word(Resolved16(desc.cy, L));
    out.Word(0);  // no menu
    out.Text(desc.className);
    out.Text(PickLocalText(desc.texts, L));
    if (desc.faceName != nullptr) {
        // The stored face only switches the font on; the face written is the caller's.
        out.Word(static_cast<std::uint16_t>(pointSize != 0 ? pointSize : desc.pointSize));
        out.Text(fontFace);
    }

    for (std::uint16_t i = 0; i < controlCount; ++i) {
        const ControlDesc& control = *desc.controls[i];
        out.AlignTo4();
        out.DoubleWord(Resolved32(control.style, L) | kWsVisible);
        out.DoubleWord(Resolved32(control.exStyle, L));
        out.Word(Resolved16(control.x, L));
        out.Word(Resolved16(control.y, L));
        out.Word(Resolved16(control.cx, L));
        out.Word(Resolved16(control.cy, L));
        out.Word(static_cast<std::uint16_t>(control.id));
        out.Text(control.className);
        out.Text(PickLocalText(control.texts, L));
        out.Word(0);  // no creation data
    }
    return out.Position();
}
