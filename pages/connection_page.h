// CVQCConnectionPage: the "Connection" page of a connection file's sheet: connection type,
// server, login and login type, local command line, service, bookmark and answer back.
#pragma once

#include <windows.h>

#include <cstdint>

#include "pages/property_page.h"
#include "pages/resize_layout.h"

class CVQCConnectionPage final : public CVQCPropertyPageImpl<CVQCConnectionPage> {
public:
    static constexpr int kTemplateIndex = 1;
    static constexpr std::uint32_t kTitleStringId = 21;

    // record may be null (the page then shows its controls and changes nothing); title is
    // the tab's text or null.
    CVQCConnectionPage(VQCFileInfo* record, const char* title);

    static const ResizeMapEntry* ResizeMap() noexcept;

private:
    friend class CVQCPropertyPageImpl<CVQCConnectionPage>;

    // The page's own message entries, tried before resizing and the sheet notifications.
    bool OnPageMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
};
