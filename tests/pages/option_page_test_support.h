// The Options page's tests: its icon sources (drawn by tests/pages/fixtures), the colour
// that tells each icon apart, the page shown alone in a real modeless sheet, and reading
// pixels back from a window.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/com_ptr.h"
#include "common/win_handles.h"
#include "connection/vqc_file_info.h"
#include "pages/option_page.h"
#include "tests/support/test_icons.h"
#include "tests/pages/page_test_support.h"

namespace option_test {

// The DLL whose icon groups are, in order: four_bit, black_white, broken_large (its large
// image loads nowhere), true_colour, broken_small (its small image loads nowhere), large_48.
inline std::string IconsDll() { return VQC_OPTION_ICONS_DLL; }
// One of those icons as an .ico file of its own.
inline std::string IconFile(const std::string& name) { return std::string(VQC_OPTION_ICON_DIR) + "/" + name + ".ico"; }

// The colour in the middle of each image (0x00RRGGBB).
namespace signature {
constexpr std::uint32_t kFourBitLarge = 0xC03030, kFourBitSmall = 0xC03031;
constexpr std::uint32_t kWhite = 0xFFFFFF;  // both images of black_white
constexpr std::uint32_t kBrokenLargeSmall = 0x0AC80B;
constexpr std::uint32_t kTrueColourLarge = 0x285AD2, kTrueColourSmall = 0x285AD3;
constexpr std::uint32_t kBrokenSmallLarge = 0xE6B414;
constexpr std::uint32_t kLarge48Large = 0x7814A0, kLarge48Small = 0x7814A1;
}  // namespace signature

// The icons listed from IconsDll(), in list order.
inline const std::vector<std::uint32_t> kListedLargeSignatures = {
    signature::kFourBitLarge, signature::kWhite, signature::kTrueColourLarge, signature::kBrokenSmallLarge,
    signature::kLarge48Large};

inline int IconWidth(HICON icon) { return IconSize(icon).cx; }

// The colour in the middle of an icon drawn at its own size; 0xFF000000 without an icon.
inline std::uint32_t SignatureOf(HICON icon) {
    const int size = IconWidth(icon);
    if (size <= 0) return 0xFF000000u;
    const std::vector<std::uint32_t> pixels = RenderedIcon(icon, size, RGB(255, 0, 255));
    return pixels[static_cast<std::size_t>(size / 2) * size + size / 2];
}

inline std::uint32_t Rgb(COLORREF colour) {
    return (std::uint32_t{GetRValue(colour)} << 16) | (std::uint32_t{GetGValue(colour)} << 8) | GetBValue(colour);
}

// A fresh record for a connection file, with the test's reference.
inline ComPtr<VQCFileInfo> RecordFor(const std::string& path) {
    return ComPtr<VQCFileInfo>(new VQCFileInfo(path.c_str()));
}

// The Options page alone in a real modeless sheet, made in this program so the test can
// look at the page object and the record.
class OptionSheet {
public:
    explicit OptionSheet(VQCFileInfo* record) {
        page_ = sheet_.Add<CVQCOptionPage>(record, "Options");
        if (page_) sheet_.Show();
    }
    ~OptionSheet() { sheet_.Destroy(); }
    OptionSheet(const OptionSheet&) = delete;
    OptionSheet& operator=(const OptionSheet&) = delete;

    CVQCOptionPage* Page() const { return page_; }
    HWND Sheet() const { return sheet_.Sheet(); }
    HWND Window() const { return page_ ? page_->Window() : nullptr; }
    HWND Control(int id) const { return GetDlgItem(Window(), id); }
    HWND List() const { return Control(dialog_ids::kIconList); }

    int ListCount() const { return static_cast<int>(SendMessageA(List(), LB_GETCOUNT, 0, 0)); }
    HICON ListIcon(int index) const {
        return reinterpret_cast<HICON>(SendMessageA(List(), LB_GETITEMDATA, static_cast<WPARAM>(index), 0));
    }
    HICON ShownIcon(int viewId) const {
        return reinterpret_cast<HICON>(SendMessageA(Control(viewId), STM_GETICON, 0, 0));
    }
    std::string Label() const {
        char text[512] = {};
        GetWindowTextA(Control(dialog_ids::kIconSourceLabel), text, sizeof(text));
        return text;
    }
    bool ApplyEnabled() const { return page_test::ApplyEnabled(Sheet()); }

    // A click on list item index: the selection moves and the list tells its owner.
    void ClickItem(int index) const {
        SendMessageA(List(), LB_SETCURSEL, static_cast<WPARAM>(index), 0);
        SendMessageA(Window(), WM_COMMAND, MAKEWPARAM(dialog_ids::kIconList, LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(List()));
        page_test::PumpMessages();
    }
    // A click on a button of the page (the check box toggles itself first).
    void ClickButton(int id) const {
        SendMessageA(Control(id), BM_CLICK, 0, 0);
        page_test::PumpMessages();
    }

private:
    page_test::DirectSheet sheet_;
    CVQCOptionPage* page_ = nullptr;
};

// The pixels of a rectangle of a window's client area as the window drew them, top-down
// 0x00RRGGBB.
inline std::vector<std::uint32_t> WindowPixels(HWND window, const RECT& area) {
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    page_test::PumpMessages();
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const test_support::PixelSection section(width, height);
    if (!section) return {};
    {
        const WindowDC source(window);
        const UniqueMemoryDC copy(CreateCompatibleDC(source.Get()));
        const SelectedObject selected(copy.Get(), section.Bitmap());
        BitBlt(copy.Get(), 0, 0, width, height, source.Get(), area.left, area.top, SRCCOPY);
    }
    return section.Pixels();
}

}  // namespace option_test
