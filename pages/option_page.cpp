#include "pages/option_page.h"

#include "pages/resize_maps.h"

CVQCOptionPage::CVQCOptionPage(VQCFileInfo* record, const char* title)
    : CVQCPropertyPageImpl(record, kTemplateIndex, title) {}

const ResizeMapEntry* CVQCOptionPage::ResizeMap() noexcept { return kOptionPageResizeMap; }

// ---- The page's own messages -------------------------------------------------------
bool CVQCOptionPage::OnPageMessage(UINT message, WPARAM, LPARAM, LRESULT& result) {
    switch (message) {
    case WM_INITDIALOG:
        DlgResize_Init();
        result = 0;
        return true;
    default:
        return false;
    }
}
