// CVQCConnectionPage: the "Connection" page of a connection file's sheet: connection type,
// server, login and login type, local command line, service, bookmark and answer back.
// What it offers, shows and enables comes from connection_page_rules.h; this class only
// carries those rules out on its controls and copies the user's edits into the record.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "pages/connection_page_rules.h"
#include "pages/property_page.h"
#include "ui/resize_layout.h"

class CVQCConnectionPage final : public CVQCPropertyPageImpl<CVQCConnectionPage> {
public:
    static constexpr int kTemplateIndex = dialog_ids::kConnectionPageTemplate;
    static constexpr std::uint32_t kTitleStringId = 21;

    CVQCConnectionPage(VQCFileInfo* record, const char* title);

    static const ResizeMapEntry* ResizeMap() noexcept;

    // A test seam: the list position of each entry after the lists were filled; -1 when
    // not added.
    const connection_page::ConnectionTypeIndices& ConnectionTypeIndexForTesting() const noexcept {
        return m_connectionTypeIndex;
    }
    const connection_page::LoginTypeIndices& LoginTypeIndexForTesting() const noexcept { return m_loginTypeIndex; }

private:
    friend class CVQCPropertyPageImpl<CVQCConnectionPage>;

    void OnInitDialog();
    // True for the commands of the page's map (handled even when nothing is done).
    bool OnCommand(int id, int code);

    void FillLoginTypeList();
    void FillConnectionTypeList();
    void FillServerList();
    void FillFromRecord();

    void OnConnectionTypeChanged();
    void OnLoginTypeChanged();
    void OnServerSelected();
    void OnServerEdited();
    void OnTextEdited(const connection_page::TextEditField& edit);
    void OnServicePortEdited();
    void OnCheckBoxClicked(const connection_page::CheckBoxField& box);

    void ApplyLayoutRule();
    void ApplyLoginTypeRule();

    connection_page::ConnectionType SelectedConnectionType() const;
    std::optional<connection_page::LoginType> SelectedLoginType() const;

    // Sets a control's text as the page's own doing: its change notification is no edit.
    void ShowText(HWND control, const std::string& text);
    // A user's edit reached the record: mark it (unless told not to) and enable Apply.
    void RecordChanged(bool setsModified);

    connection_page::ConnectionTypeIndices m_connectionTypeIndex{-1, -1, -1};
    connection_page::LoginTypeIndices m_loginTypeIndex{-1, -1, -1, -1, -1, -1};

    // Set while the page itself writes into its controls.
    bool m_filling = false;
};
