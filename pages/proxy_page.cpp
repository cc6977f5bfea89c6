#include "pages/proxy_page.h"

#include "pages/resize_maps.h"

CVQCProxyPage::CVQCProxyPage(VQCFileInfo* record, const char* title)
    : CVQCPropertyPageImpl(record, kTemplateIndex, title) {}

const ResizeMapEntry* CVQCProxyPage::ResizeMap() noexcept { return kProxyPageResizeMap; }

// ---- The page's own messages -------------------------------------------------------
bool CVQCProxyPage::OnPageMessage(UINT message, WPARAM, LPARAM, LRESULT& result) {
    switch (message) {
    case WM_INITDIALOG:
        DlgResize_Init();
        result = TRUE;  // the default focus
        return true;
    default:
        return false;
    }
}
