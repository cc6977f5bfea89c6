#include "pages/option_page_rules.h"

#include <string_view>

#include "common/ansi_text.h"

namespace option_page {

int IconSizeFromSetting(bool readOk, std::uint32_t type, const std::uint8_t* data, std::size_t size) noexcept {
    if (!readOk || (type != kRegistryString && type != kRegistryExpandString)) return kDefaultIconSize;
    if (size > kIconSizeSettingBytes) return kDefaultIconSize;
    if (size == 0) return kDefaultIconSize;  // an empty value reads as "", which is 0
    if (!data || data[size - 1] != 0) return kDefaultIconSize;
    const std::string_view text(reinterpret_cast<const char*>(data));
    const int value = ansi_text::ParseDecimal(text);
    return value > 0 ? value : kDefaultIconSize;
}

ItemPoint IconOrigin(const ItemRect& item, int iconSize) noexcept {
    // In 64 bits, so that no rectangle and size can overflow on the way.
    const long long x = item.left + (static_cast<long long>(item.right) - iconSize - item.left) / 2;
    const long long y = item.top + (static_cast<long long>(item.bottom) - iconSize - item.top) / 2;
    return {static_cast<int>(x), static_cast<int>(y)};
}

ItemPaint PlanItemPaint(std::uint32_t controlId, std::int32_t itemId, std::uint32_t action,
                        std::uint32_t state) noexcept {
    ItemPaint paint;
    if (controlId != static_cast<std::uint32_t>(dialog_ids::kIconList) || itemId < 0) return paint;
    if (action & (kDrawEntire | kDrawSelect)) {
        paint.background = true;
        paint.colour = (state & kStateSelected) ? kColourHighlight : kColourWindow;
    }
    paint.focus = (action & kDrawFocus) != 0 || (state & kStateFocus) != 0;
    return paint;
}

}  // namespace option_page
