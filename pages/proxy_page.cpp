#include "pages/proxy_page.h"

#include "pages/resize_maps.h"
#include "ui/scoped_flag.h"
#include "resources/dialog_ids.h"
#include "resources/local_string_cache.h"

using namespace dialog_ids;
using namespace proxy_page;

CVQCProxyPage::CVQCProxyPage(VQCFileInfo* record, const char* title)
    : CVQCPropertyPageImpl(record, kTemplateIndex, title) {}

const ResizeMapEntry* CVQCProxyPage::ResizeMap() noexcept { return kProxyPageResizeMap; }

void CVQCProxyPage::OnInitDialog() {
    DlgResize_Init();

    m_routeList = Control(kProxyRouteList);
    m_proxyHostEdit = Control(kProxyHostEdit);
    m_proxyUserEdit = Control(kProxyUserEdit);
    m_proxyPortEdit = Control(kProxyPortEdit);
    m_brokerHostEdit = Control(kBrokerHostEdit);
    m_brokerPortEdit = Control(kBrokerPortEdit);
    m_dialUpCheckBox = Control(kDialUpCheckBox);

    if (const VQCFileInfo* record = Record()) {
        const ProxyPageDisplay display = DisplayFromRecord(*record);
        const ScopedFlag filling(m_filling);
        SetWindowTextA(m_proxyHostEdit, display.proxyHost.c_str());
        if (display.proxyPortFilled) {
            SetWindowTextA(m_proxyPortEdit, display.proxyPort.c_str());
            SetWindowTextA(m_proxyUserEdit, display.proxyUser.c_str());
        }
        SetWindowTextA(m_brokerHostEdit, display.brokerHost.c_str());
        if (display.brokerPortFilled) {
            SetWindowTextA(m_brokerPortEdit, display.brokerPort.c_str());
            SendMessageA(m_dialUpCheckBox, BM_SETCHECK, display.dialUpChecked ? BST_CHECKED : BST_UNCHECKED, 0);
        }
    }

    FillRouteList();
    SendMessageA(m_routeList, CB_SETCURSEL, WPARAM(m_routeIndices.index[InitialRouteEntry(Record())]), 0);
    ApplyLayoutRule();
}

void CVQCProxyPage::FillRouteList() {
    for (const RouteEntry& entry : kRouteEntries) {
        const char* text = GetLocalString(entry.textId);
        if (text && IsRouteEntryOffered(entry, Record())) {
            SendMessageA(m_routeList, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
        }
    }
    // Each entry is found again by its text; one that was not added is -1.
    for (int position = 0; position < kRouteEntryCount; ++position) {
        const char* text = GetLocalString(kRouteEntries[position].textId);
        m_routeIndices.index[position] =
            text ? static_cast<int>(
                       SendMessageA(m_routeList, CB_FINDSTRINGEXACT, WPARAM(-1), reinterpret_cast<LPARAM>(text)))
                 : CB_ERR;
    }
}

void CVQCProxyPage::ApplyLayoutRule() {
    const int selection = static_cast<int>(SendMessageA(m_routeList, CB_GETCURSEL, 0, 0));
    const std::uint32_t mask = LayoutMaskForSelection(selection, m_routeIndices);
    for (const LayoutRow& row : kProxyLayoutRows) {
        ShowWindow(Control(row.controlId), IsShownForMask(row, mask) ? SW_SHOW : SW_HIDE);
    }
}

bool CVQCProxyPage::OnCommand(int id, int code) {
    const TextEditRow* textEdit = code == EN_CHANGE ? FindTextEdit(id) : nullptr;
    const PortEditRow* portEdit = code == EN_CHANGE ? FindPortEdit(id) : nullptr;
    const bool routeChange = id == kProxyRouteList && code == CBN_SELCHANGE;
    const bool dialUpClick = id == kDialUpCheckBox && code == BN_CLICKED;
    if (!textEdit && !portEdit && !routeChange && !dialUpClick) return false;

    VQCFileInfo* record = Record();
    if (!record || m_filling) return true;

    if (routeChange) {
        ApplyLayoutRule();
        const int selection = static_cast<int>(SendMessageA(m_routeList, CB_GETCURSEL, 0, 0));
        StoreRouteSelection(*record, selection, m_routeIndices);  // modified stays as it was
    } else if (textEdit) {
        StoreEditedText(*record, *textEdit, ControlText(Control(id)));
    } else if (portEdit) {
        StoreEditedPort(*record, *portEdit, ControlText(Control(id)));
    } else {
        StoreDialUpCheck(*record, SendMessageA(m_dialUpCheckBox, BM_GETCHECK, 0, 0) == BST_CHECKED);
    }
    SendChanged();
    return true;
}
