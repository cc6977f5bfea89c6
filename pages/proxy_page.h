// CVQCProxyPage: the "Proxy" page of a connection file's sheet: the route to the server
// (direct, through a proxy server, or through a connection broker) and its host and port.
#pragma once

#include <windows.h>

#include <cstdint>

#include "pages/property_page.h"
#include "pages/resize_layout.h"

class CVQCProxyPage final : public CVQCPropertyPageImpl<CVQCProxyPage> {
public:
    static constexpr int kTemplateIndex = 2;
    static constexpr std::uint32_t kTitleStringId = 48;

    // record may be null (the page then shows its controls and changes nothing); title is
    // the tab's text or null.
    CVQCProxyPage(VQCFileInfo* record, const char* title);

    static const ResizeMapEntry* ResizeMap() noexcept;

private:
    friend class CVQCPropertyPageImpl<CVQCProxyPage>;

    // The page's own message entries, tried before resizing and the sheet notifications.
    bool OnPageMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
};
