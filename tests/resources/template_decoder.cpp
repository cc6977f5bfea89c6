#include "template_decoder.h"

namespace {

class Reader {
public:
    Reader(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), size_(size) {}

    bool Failed() const { return failed_; }
    std::size_t Position() const { return position_; }
    void AlignTo4() { position_ = (position_ + 3) & ~static_cast<std::size_t>(3); }

    std::uint16_t Word() {
        if (position_ + 2 > size_) {
            failed_ = true;
            return 0;
        }
        const std::uint16_t value = static_cast<std::uint16_t>(bytes_[position_] | (bytes_[position_ + 1] << 8));
        position_ += 2;
        return value;
    }

    std::uint32_t DoubleWord() {
        const std::uint32_t low = Word();
        return low | (static_cast<std::uint32_t>(Word()) << 16);
    }

    std::u16string Text() {
        std::u16string text;
        for (std::uint16_t c = Word(); c != 0 && !failed_; c = Word()) text.push_back(c);
        return text;
    }

private:
    const std::uint8_t* bytes_;
    std::size_t size_;
    std::size_t position_ = 0;
    bool failed_ = false;
};

}  // namespace

DecodedTemplate DecodeTemplate(const std::uint8_t* bytes, std::size_t size) {
    DecodedTemplate t;
    Reader in(bytes, size);
    t.style = in.DoubleWord();
    t.exStyle = in.DoubleWord();
    t.controlCount = in.Word();
    t.x = static_cast<std::int16_t>(in.Word());
    t.y = static_cast<std::int16_t>(in.Word());
    t.cx = static_cast<std::int16_t>(in.Word());
    t.cy = static_cast<std::int16_t>(in.Word());
    t.menu = in.Word();
    t.className = in.Text();
    t.title = in.Text();
    t.hasFont = (t.style & 0x40) != 0;
    if (t.hasFont) {
        t.pointSize = in.Word();
        t.faceName = in.Text();
    }
    for (std::uint16_t i = 0; i < t.controlCount && !in.Failed(); ++i) {
        DecodedControl c;
        in.AlignTo4();
        c.offset = in.Position();
        c.style = in.DoubleWord();
        c.exStyle = in.DoubleWord();
        c.x = static_cast<std::int16_t>(in.Word());
        c.y = static_cast<std::int16_t>(in.Word());
        c.cx = static_cast<std::int16_t>(in.Word());
        c.cy = static_cast<std::int16_t>(in.Word());
        c.id = in.Word();
        c.className = in.Text();
        c.caption = in.Text();
        c.creationDataSize = in.Word();
        t.controls.push_back(c);
    }
    t.end = in.Position();
    t.ok = !in.Failed();
    return t;
}
