#include "pages/connection_page.h"

#include "pages/resize_maps.h"

CVQCConnectionPage::CVQCConnectionPage(VQCFileInfo* record, const char* title)
    : CVQCPropertyPageImpl(record, kTemplateIndex, title) {}

const ResizeMapEntry* CVQCConnectionPage::ResizeMap() noexcept { return kConnectionPageResizeMap; }

// ---- The page's own messages -------------------------------------------------------
bool CVQCConnectionPage::OnPageMessage(UINT message, WPARAM, LPARAM, LRESULT& result) {
    switch (message) {
    case WM_INITDIALOG:
        DlgResize_Init();
        result = TRUE;  // the default focus
        return true;
    default:
        return false;
    }
}
