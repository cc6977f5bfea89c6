#include "pages/proxy_page.h"

#include "pages/resize_maps.h"
#include "pages/scoped_flag.h"
#include "resources/local_string_cache.h"

CVQCProxyPage::CVQCProxyPage(VQCFileInfo* record, const char* title)
    : CVQCPropertyPageImpl(record, kTemplateIndex, title) {}

const ResizeMapEntry* CVQCProxyPage::ResizeMap() noexcept { return kProxyPageResizeMap; }

void CVQCProxyPage::OnInitDialog() {
    DlgResize_Init();

    routeList_ = Control(kProxyRouteList);
    proxyHostEdit_ = Control(kProxyHostEdit);
    proxyUserEdit_ = Control(kProxyUserEdit);
    proxyPortEdit_ = Control(kProxyPortEdit);
    brokerHostEdit_ = Control(kBrokerHostEdit);
    brokerPortEdit_ = Control(kBrokerPortEdit);
    dialUpCheckBox_ = Control(kDialUpCheckBox);

    if (const VQCFileInfo* record = Record()) {
        const ProxyPageDisplay display = DisplayFromRecord(*record);
        const ScopedFlag filling(filling_);
        SetWindowTextA(proxyHostEdit_, display.proxyHost.c_str());
        if (display.proxyPortFilled) {
            SetWindowTextA(proxyPortEdit_, display.proxyPort.c_str());
            SetWindowTextA(proxyUserEdit_, display.proxyUser.c_str());
        }
        SetWindowTextA(brokerHostEdit_, display.brokerHost.c_str());
        if (display.brokerPortFilled) {
            SetWindowTextA(brokerPortEdit_, display.brokerPort.c_str());
            SendMessageA(dialUpCheckBox_, BM_SETCHECK, display.dialUpChecked ? BST_CHECKED : BST_UNCHECKED, 0);
        }
    }

    FillRouteList();
    SendMessageA(routeList_, CB_SETCURSEL, WPARAM(routeIndices_.index[InitialRouteEntry(Record())]), 0);
    ApplyLayout();
}

void CVQCProxyPage::FillRouteList() {
    for (const RouteEntry& entry : kRouteEntries) {
        const char* text = GetLocalString(entry.textId);
        if (text && IsRouteEntryOffered(entry, Record())) {
            SendMessageA(routeList_, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        }
    }
    // Each entry is found again by its text; one that was not added is -1.
    for (int position = 0; position < kRouteEntryCount; ++position) {
        const char* text = GetLocalString(kRouteEntries[position].textId);
        routeIndices_.index[position] =
            text ? static_cast<int>(SendMessageA(routeList_, CB_FINDSTRINGEXACT, WPARAM(-1),
                                                 reinterpret_cast<LPARAM>(text)))
                 : CB_ERR;
    }
}

void CVQCProxyPage::ApplyLayout() {
    const int selection = static_cast<int>(SendMessageA(routeList_, CB_GETCURSEL, 0, 0));
    const std::uint32_t mask = LayoutMaskForSelection(selection, routeIndices_);
    for (const LayoutRow& row : kProxyLayoutRows) {
        ShowWindow(Control(row.controlId), IsShownForMask(row, mask) ? SW_SHOW : SW_HIDE);
    }
}

bool CVQCProxyPage::OnCommand(int controlId, int code) {
    const TextEditRow* textEdit = code == EN_CHANGE ? FindTextEdit(controlId) : nullptr;
    const PortEditRow* portEdit = code == EN_CHANGE ? FindPortEdit(controlId) : nullptr;
    const bool routeChange = controlId == kProxyRouteList && code == CBN_SELCHANGE;
    const bool dialUpClick = controlId == kDialUpCheckBox && code == BN_CLICKED;
    if (!textEdit && !portEdit && !routeChange && !dialUpClick) return false;

    VQCFileInfo* record = Record();
    if (!record || filling_) return true;

    if (routeChange) {
        ApplyLayout();
        const int selection = static_cast<int>(SendMessageA(routeList_, CB_GETCURSEL, 0, 0));
        StoreRouteSelection(*record, selection, routeIndices_);  // modified stays as it was
    } else if (textEdit) {
        StoreEditedText(*record, *textEdit, ControlText(Control(controlId)));
    } else if (portEdit) {
        StoreEditedPort(*record, *portEdit, ControlText(Control(controlId)));
    } else {
        StoreDialUpCheck(*record, SendMessageA(dialUpCheckBox_, BM_GETCHECK, 0, 0) == BST_CHECKED);
    }
    SendChanged();
    return true;
}
