#include "pages/connection_page.h"

#include <string>
#include <vector>

#include "pages/connection_page_environment.h"
#include "pages/resize_maps.h"
#include "ui/scoped_flag.h"
#include "resources/dialog_ids.h"
#include "resources/local_string_cache.h"

using namespace connection_page;
using namespace dialog_ids;

namespace {

// A list text of the string table; a missing text is an empty item.
const char* ListText(std::uint32_t textId) noexcept {
    const char* text = GetLocalString(textId);
    return text ? text : "";
}

int AddListItem(HWND list, const char* text) {
    return static_cast<int>(SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text)));
}

int FindListItem(HWND list, const char* text) {
    return static_cast<int>(
        SendMessageA(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text)));
}

int ListSelection(HWND list) { return static_cast<int>(SendMessageA(list, CB_GETCURSEL, 0, 0)); }

void SelectListItem(HWND list, int index) { SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0); }

// The text of a list item; empty for a position that holds none.
std::string ListItemText(HWND list, int index) {
    const LRESULT length = SendMessageA(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(index), 0);
    if (length == CB_ERR || length < 0) return {};
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    const LRESULT copied =
        SendMessageA(list, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
    text.resize(copied > 0 ? static_cast<std::size_t>(copied) : 0);
    return text;
}

}  // namespace

CVQCConnectionPage::CVQCConnectionPage(VQCFileInfo* record, const char* title)
    : CVQCPropertyPageImpl(record, kTemplateIndex, title) {}

const ResizeMapEntry* CVQCConnectionPage::ResizeMap() noexcept { return kConnectionPageResizeMap; }

void CVQCConnectionPage::OnInitDialog() {
    DlgResize_Init();

    const ScopedFlag filling(m_filling);
    FillLoginTypeList();
    FillConnectionTypeList();
    if (Record()) FillFromRecord();
}

void CVQCConnectionPage::FillLoginTypeList() {
    VQCFileInfo* record = Record();
    const HWND list = Control(kLoginTypeList);
    for (LoginType type : OfferedLoginTypes(record, [record] { return record->IsInDomain(); }))
        AddListItem(list, ListText(EntryOf(type).textId));
    for (const LoginTypeEntry& entry : kLoginTypes)
        m_loginTypeIndex[static_cast<std::size_t>(entry.type)] = FindListItem(list, ListText(entry.textId));
}

void CVQCConnectionPage::FillConnectionTypeList() {
    const HWND list = Control(kConnectionTypeList);
    const bool serverModule = IsServerModulePresent(TheModuleRuntime().Instance());
    for (ConnectionType type : OfferedConnectionTypes(Record(), serverModule))
        AddListItem(list, ListText(EntryOf(type).textId));
    // The list sorts its items: every position is looked up by its text.
    for (const ConnectionTypeEntry& entry : kConnectionTypes)
        m_connectionTypeIndex[static_cast<std::size_t>(entry.type)] = FindListItem(list, ListText(entry.textId));
}

void CVQCConnectionPage::FillServerList() {
    const VQCFileInfo& record = *Record();
    const HWND box = Control(kServerBox);
    for (const std::string& host : ServerList(ReadRecentHosts(), record.host)) AddListItem(box, host.c_str());
    ShowText(box, record.host);
}

void CVQCConnectionPage::FillFromRecord() {
    const VQCFileInfo& record = *Record();
    SelectListItem(Control(kConnectionTypeList),
                   m_connectionTypeIndex[static_cast<std::size_t>(ConnectionTypeOf(record))]);
    FillServerList();
    SelectListItem(Control(kLoginTypeList), m_loginTypeIndex[static_cast<std::size_t>(LoginTypeOf(record))]);

    for (const TextEditField& edit : kTextEdits) ShowText(Control(edit.controlId), record.*edit.field);
    for (const CheckBoxField& box : kCheckBoxes)
        SendMessageA(Control(box.controlId), BM_SETCHECK, record.*box.flag ? BST_CHECKED : BST_UNCHECKED, 0);

    const std::string port = ServicePortText(record.servicePort, record.encrypt != 0);
    if (!port.empty()) ShowText(Control(kServicePortEdit), port);

    ApplyLayoutRule();
}

// ---- Commands ------------------------------------------------------------------------
bool CVQCConnectionPage::OnCommand(int id, int code) {
    // Notifications caused by the page's own filling are no edits.
    const bool edit = !m_filling && Record() != nullptr;
    switch (id) {
    case kConnectionTypeList:
        if (code != CBN_SELCHANGE) return false;
        OnConnectionTypeChanged();
        return true;
    case kLoginTypeList:
        if (code != CBN_SELCHANGE) return false;
        OnLoginTypeChanged();
        return true;
    case kServerBox:
        if (code == CBN_SELCHANGE) {
            if (edit) OnServerSelected();
            return true;
        }
        if (code == CBN_EDITCHANGE) {
            if (edit) OnServerEdited();
            return true;
        }
        return false;
    case kServicePortEdit:
        if (code != EN_CHANGE) return false;
        if (edit) OnServicePortEdited();
        return true;
    default: break;
    }
    if (const TextEditField* field = FindTextEdit(id); field && code == EN_CHANGE) {
        if (edit) OnTextEdited(*field);
        return true;
    }
    if (const CheckBoxField* box = FindCheckBox(id); box && code == BN_CLICKED) {
        if (edit) OnCheckBoxClicked(*box);
        return true;
    }
    return false;
}

void CVQCConnectionPage::OnConnectionTypeChanged() {
    ApplyLoginTypeRule();
    ApplyLayoutRule();
    VQCFileInfo* record = Record();
    if (!record) return;
    StoreConnectionType(*record, SelectedConnectionType());
    RecordChanged(true);
    ShowText(Control(kDiscoveryLoginEdit), record->login);
    ShowText(Control(kLoginEdit), record->login);
}

void CVQCConnectionPage::OnLoginTypeChanged() {
    ApplyLoginTypeRule();
    VQCFileInfo* record = Record();
    if (!record || ListSelection(Control(kLoginTypeList)) == CB_ERR) return;
    StoreLoginType(*record, SelectedLoginType().value_or(LoginType::AlwaysRequirePassword));
    RecordChanged(true);
}

void CVQCConnectionPage::OnServerSelected() {
    const HWND box = Control(kServerBox);
    Record()->host = ansi_text::Trimmed(ListItemText(box, ListSelection(box)));
    RecordChanged(true);
}

void CVQCConnectionPage::OnServerEdited() {
    Record()->host = ansi_text::Trimmed(ControlText(Control(kServerBox)));
    RecordChanged(true);
}

void CVQCConnectionPage::OnTextEdited(const TextEditField& edit) {
    Record()->*edit.field = ansi_text::Trimmed(ControlText(Control(edit.controlId)));
    RecordChanged(true);
}

void CVQCConnectionPage::OnServicePortEdited() {
    Record()->servicePort = ServicePortFromText(ControlText(Control(kServicePortEdit)));
    RecordChanged(true);
}

void CVQCConnectionPage::OnCheckBoxClicked(const CheckBoxField& box) {
    const LRESULT state = SendMessageA(Control(box.controlId), BM_GETCHECK, 0, 0);
    Record()->*box.flag = state == BST_CHECKED ? 1 : 0;
    RecordChanged(box.setsModified);
}

void CVQCConnectionPage::RecordChanged(bool setsModified) {
    if (setsModified) Record()->modified = 1;
    SendChanged();
}

// ---- Rules ---------------------------------------------------------------------------
ConnectionType CVQCConnectionPage::SelectedConnectionType() const {
    return ConnectionTypeAt(ListSelection(Control(kConnectionTypeList)), m_connectionTypeIndex);
}

std::optional<LoginType> CVQCConnectionPage::SelectedLoginType() const {
    return LoginTypeAt(ListSelection(Control(kLoginTypeList)), m_loginTypeIndex);
}

void CVQCConnectionPage::ApplyLayoutRule() {
    for (const LayoutStep& step : PlanLayout(SelectedConnectionType(), Record())) {
        const HWND control = Control(step.controlId);
        switch (step.action) {
        case LayoutAction::Show: ShowWindow(control, SW_SHOW); break;
        case LayoutAction::Hide: ShowWindow(control, SW_HIDE); break;
        case LayoutAction::Enable: EnableWindow(control, TRUE); break;
        }
    }
}

void CVQCConnectionPage::ApplyLoginTypeRule() {
    const LoginTypeRule rule = PlanLoginTypeRule(SelectedLoginType());
    for (const EnableStep& step : rule.enable) EnableWindow(Control(step.controlId), step.enabled ? TRUE : FALSE);
    if (rule.legacyCheck != LegacyProtocolCheck::Leave)
        SendMessageA(Control(kLegacyProtocolCheck), BM_SETCHECK,
                     rule.legacyCheck == LegacyProtocolCheck::Check ? BST_CHECKED : BST_UNCHECKED, 0);
}

void CVQCConnectionPage::ShowText(HWND control, const std::string& text) {
    const ScopedFlag filling(m_filling);
    SetWindowTextA(control, text.c_str());
}
