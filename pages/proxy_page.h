// CVQCProxyPage: the "Proxy" page of a connection file's sheet: the route to the server
// (direct, through a proxy server, or through a connection broker) and its host and port.
#pragma once

#include <windows.h>

#include <cstdint>

#include "pages/property_page.h"
#include "pages/proxy_page_rules.h"
#include "resources/dialog_ids.h"
#include "ui/resize_layout.h"

class CVQCProxyPage final : public CVQCPropertyPageImpl<CVQCProxyPage> {
public:
    static constexpr int kTemplateIndex = dialog_ids::kProxyPageTemplate;
    static constexpr std::uint32_t kTitleStringId = 48;

    CVQCProxyPage(VQCFileInfo* record, const char* title);

    static const ResizeMapEntry* ResizeMap() noexcept;

private:
    friend class CVQCPropertyPageImpl<CVQCProxyPage>;

    void OnInitDialog();
    // True when the command is one of the page's own; the record changes only with a
    // record and only for what the user does, not while the page fills its controls.
    bool OnCommand(int id, int code);
    void FillRouteList();
    // Shows the group of the selected route and hides the other.
    void ApplyLayoutRule();

    HWND m_routeList = nullptr;
    HWND m_proxyHostEdit = nullptr;
    HWND m_proxyUserEdit = nullptr;
    HWND m_proxyPortEdit = nullptr;
    HWND m_brokerHostEdit = nullptr;
    HWND m_brokerPortEdit = nullptr;
    HWND m_dialUpCheckBox = nullptr;
    proxy_page::RouteListIndices m_routeIndices;
    // Set while WM_INITDIALOG puts the record's values into the edits: the edit-change
    // notifications that setting a text sends are not the user's edits.
    bool m_filling = false;
};
