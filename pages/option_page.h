// CVQCOptionPage: the "Options" page of a connection file's sheet: the icon the file
// carries (chosen from the icons of a source file) and dynamic screen sizing. Its icon list
// is drawn by the page, so it also routes the owner-draw messages.
#pragma once

#include <windows.h>

#include <cstdint>

#include "pages/owner_draw_router.h"
#include "pages/property_page.h"
#include "pages/resize_layout.h"

class CVQCOptionPage final : public CVQCPropertyPageImpl<CVQCOptionPage>,
                             public OwnerDrawRouter<CVQCOptionPage> {
public:
    static constexpr int kTemplateIndex = 3;
    static constexpr std::uint32_t kTitleStringId = 23;

    // record may be null (the page then shows its controls and changes nothing); title is
    // the tab's text or null.
    CVQCOptionPage(VQCFileInfo* record, const char* title);

    static const ResizeMapEntry* ResizeMap() noexcept;


private:
    friend class CVQCPropertyPageImpl<CVQCOptionPage>;
    friend class OwnerDrawRouter<CVQCOptionPage>;

    // The page's own message entries, tried before resizing, owner draw and the sheet
    // notifications.
    bool OnPageMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
};
