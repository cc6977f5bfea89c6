// Leak proof by effect for the Options page. Wine answers 0 to every handle count, so the
// tests take away all but a few hundred of the handles Windows objects can have (icons
// and windows share Wine's one table of USER handles, bitmaps the process's GDI table)
// and then open, use and close the page far more often than a page that leaked one
// handle per round could.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "common/win_handles.h"
#include "ui/open_file_dialog.h"
#include "pages/option_page.h"
#include "tests/pages/option_page_test_support.h"

namespace option_test {

// Holds every USER and GDI handle it can get, then gives `headroom` of each back.
// Wine's USER handle table belongs to the whole prefix, so a test that squeezes it must
// run alone (ctest RUN_SERIAL).
class HandleSqueeze {
public:
    explicit HandleSqueeze(std::size_t headroom) {
        unsigned char andBits[4] = {0xFF, 0xFF, 0xFF, 0xFF};
        unsigned char xorBits[4] = {};
        const UniqueIcon model(CreateIcon(nullptr, 1, 1, 1, 1, andBits, xorBits));
        if (!model) return;
        for (;;) {
            UniqueIcon copy(CopyIcon(model.Get()));
            if (!copy) break;
            icons_.push_back(std::move(copy));
        }
        for (;;) {
            UniqueGdiObject bitmap(CreateBitmap(1, 1, 1, 1, nullptr));
            if (!bitmap) break;
            bitmaps_.push_back(std::move(bitmap));
        }
        iconsHeld_ = icons_.size();
        bitmapsHeld_ = bitmaps_.size();
        for (std::size_t i = 0; i < headroom && !icons_.empty(); ++i) icons_.pop_back();
        for (std::size_t i = 0; i < headroom && !bitmaps_.empty(); ++i) bitmaps_.pop_back();
        // Wine lets go of more bitmaps than were given back once the icons are made
        // (measured: about twice the headroom); take what is over the headroom again.
        for (std::size_t left = BitmapsLeft(); left > headroom; --left) {
            UniqueGdiObject bitmap(CreateBitmap(1, 1, 1, 1, nullptr));
            if (!bitmap) break;
            bitmaps_.push_back(std::move(bitmap));
        }
        for (std::size_t left = IconsLeft(); left > headroom; --left) {
            UniqueIcon copy(CopyIcon(model.Get()));
            if (!copy) break;
            icons_.push_back(std::move(copy));
        }
    }
    HandleSqueeze(const HandleSqueeze&) = delete;
    HandleSqueeze& operator=(const HandleSqueeze&) = delete;

    // How many the tables gave before they refused.
    std::size_t IconsHeld() const { return iconsHeld_; }
    std::size_t BitmapsHeld() const { return bitmapsHeld_; }

    // How many more icons and bitmaps can be made right now (made and destroyed again).
    static std::size_t IconsLeft() {
        std::vector<UniqueIcon> made;
        for (;;) {
            UniqueIcon icon(MakeTestIcon(16, 4));
            if (!icon) return made.size();
            made.push_back(std::move(icon));
        }
    }
    static std::size_t BitmapsLeft() {
        std::vector<UniqueGdiObject> made;
        for (;;) {
            UniqueGdiObject bitmap(CreateBitmap(1, 1, 1, 1, nullptr));
            if (!bitmap) return made.size();
            made.push_back(std::move(bitmap));
        }
    }

private:
    std::vector<UniqueIcon> icons_;
    std::vector<UniqueGdiObject> bitmaps_;
    std::size_t iconsHeld_ = 0;
    std::size_t bitmapsHeld_ = 0;
};

// The browse dialog as a user who picks the icons DLL again.
inline BOOL WINAPI PickTheIconsDll(LPOPENFILENAMEA settings) {
    lstrcpynA(settings->lpstrFile, IconsDll().c_str(), static_cast<int>(settings->nMaxFile));
    return TRUE;
}

// One round of a user's work on a connection file: open the Options page for a file
// without an icon (it adopts the client's first icon), browse for the same source again,
// pick the black-and-white icon, tick the check box, apply, close. True when every step
// did what it does with handles to spare, including a list of all five icons.
inline bool OpenPickApplyClose(const std::string& file) {
    WriteFileBytes(file, "-h server ");
    const ComPtr<VQCFileInfo> record = RecordFor(file);
    record->clientPath = IconsDll();
    bool ok = true;
    {
        OptionSheet sheet(record.Get());
        if (!sheet.Window()) return false;
        ok = ok && sheet.ListCount() == 5 && record->icon && record->smallIcon;
        const OpenFileDialog::ShowFunction previous = OpenFileDialog::SetShowFunctionForTesting(PickTheIconsDll);
        sheet.ClickButton(dialog_ids::kBrowseButton);
        OpenFileDialog::SetShowFunctionForTesting(previous);
        ok = ok && sheet.ListCount() == 5;
        sheet.ClickItem(1);
        sheet.ClickButton(dialog_ids::kDynamicSizingCheck);
        ok = ok && page_test::Apply(sheet.Sheet()) != FALSE;
    }
    const std::string written = ReadFileBytes(file);
    return ok && written.find("-I \"") != std::string::npos;
}

}  // namespace option_test
