// The Options page's rules over plain data: the desktop's "Shell Icon Size" setting, the
// size of an icon list item, where an item's icon goes and how the item is painted, when
// an extracted icon is listed, and the check box's meaning. The window code applies them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "resources/dialog_ids.h"

namespace option_page {

constexpr int kDefaultIconSize = 32;

// Registry value types as the registry numbers them.
constexpr std::uint32_t kRegistryString = 1;        // REG_SZ
constexpr std::uint32_t kRegistryExpandString = 2;  // REG_EXPAND_SZ
// The setting is read into a buffer of this many bytes; a longer value fails the read.
constexpr std::size_t kIconSizeSettingBytes = 8;

// The icon size from "Shell Icon Size" as the registry query returned it: readOk is
// whether the query into the 8-byte buffer succeeded, type the value's type, data and
// size the bytes it returned. The value counts only when it is REG_SZ or REG_EXPAND_SZ
// and ends in a NUL inside those bytes (no bytes read as ""); its decimal number (leading
// blanks and a sign allowed, up to the first non-digit) is the size when greater than 0.
// 32 otherwise.
int IconSizeFromSetting(bool readOk, std::uint32_t type, const std::uint8_t* data, std::size_t size) noexcept;

// Width and height of every icon list item: one and a half times the icon size.
constexpr int ItemExtent(int iconSize) noexcept { return iconSize * 3 / 2; }

struct ItemRect {
    int left;
    int top;
    int right;
    int bottom;
};

struct ItemPoint {
    int x;
    int y;
};

// Where an item's icon is drawn: centred as an icon of the nominal size would be (signed
// division, so an item smaller than the icon puts it above and left of the item).
ItemPoint IconOrigin(const ItemRect& item, int iconSize) noexcept;

// Owner-draw actions and states and colour numbers as Windows numbers them.
constexpr std::uint32_t kDrawEntire = 0x1;     // ODA_DRAWENTIRE
constexpr std::uint32_t kDrawSelect = 0x2;     // ODA_SELECT
constexpr std::uint32_t kDrawFocus = 0x4;      // ODA_FOCUS
constexpr std::uint32_t kStateSelected = 0x1;  // ODS_SELECTED
constexpr std::uint32_t kStateFocus = 0x10;    // ODS_FOCUS
constexpr int kColourWindow = 5;               // COLOR_WINDOW
constexpr int kColourHighlight = 13;           // COLOR_HIGHLIGHT

// What to paint for one WM_DRAWITEM.
struct ItemPaint {
    bool background = false;  // fill the item with `colour`, then draw its icon
    int colour = 0;           // system colour index of the fill
    bool focus = false;       // draw the focus rectangle over the item
};

// Nothing for another control or a negative item id (an empty list's focus); otherwise
// the fill and icon for a whole-item or selection drawing (highlight when selected), and
// the focus rectangle for a focus drawing or a focused item.
ItemPaint PlanItemPaint(std::uint32_t controlId, std::int32_t itemId, std::uint32_t action,
                        std::uint32_t state) noexcept;

// ExtractIconExA's result for one icon: the handles it hands back count only when it
// reports success, neither 0 nor UINT_MAX (a missing file); on failure Wine may leave
// stale values in them.
constexpr bool ExtractionSucceeded(std::uint32_t result) noexcept { return result != 0 && result != 0xFFFFFFFFu; }
// An icon is listed only when the extraction at both sizes succeeded and gave a small
// icon; its large icon becomes the item's data.
constexpr bool IconIsListed(std::uint32_t result, bool hasSmall) noexcept {
    return ExtractionSucceeded(result) && hasSmall;
}

// "&Dynamic screen sizing" is the inverse of option_s: checked exactly when option_s is 0,
// and the box's new state sets option_s to 0 when checked, 1 otherwise.
constexpr bool DynamicSizingChecked(std::uint8_t option_s) noexcept { return option_s == 0; }
constexpr std::uint8_t OptionSFromCheck(bool checked) noexcept { return checked ? 0 : 1; }

}  // namespace option_page
