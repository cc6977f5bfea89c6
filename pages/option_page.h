// CVQCOptionPage: the "Options" page of a connection file's sheet: the icon the file
// carries (chosen from the icons of a source file) and dynamic screen sizing. Its icon list
// is drawn by the page, so it also routes the owner-draw messages.
#pragma once

#include <windows.h>
#include <commdlg.h>

#include <cstdint>
#include <string>

#include "ui/icon_list_box.h"
#include "ui/owner_draw_router.h"
#include "pages/property_page.h"
#include "resources/dialog_ids.h"
#include "ui/resize_layout.h"

class CVQCOptionPage final : public CVQCPropertyPageImpl<CVQCOptionPage>, public OwnerDrawRouter<CVQCOptionPage> {
public:
    static constexpr int kTemplateIndex = dialog_ids::kOptionsPageTemplate;
    static constexpr std::uint32_t kTitleStringId = 23;
    static constexpr std::uint32_t kSourceLabelStringId = 24;  // "Look for icons in: %1"
    static constexpr std::uint32_t kFilterStringId = 40;       // the browse dialog's filter list
    static constexpr DWORD kBrowseFlags = OFN_FILEMUSTEXIST | OFN_HIDEREADONLY;

    // Reads the desktop's icon size.
    CVQCOptionPage(VQCFileInfo* record, const char* title);
    ~CVQCOptionPage() override;

    static const ResizeMapEntry* ResizeMap() noexcept;

    // The owner-draw hooks (OwnerDrawRouter): every item of the icon list is a square of
    // one and a half icon sizes with the item's icon centred as the nominal size would be.
    void MeasureItem(MEASUREITEMSTRUCT* item);
    void DrawItem(DRAWITEMSTRUCT* item);

    // Test seams: what the page holds.
    int IconSizeForTesting() const noexcept { return m_iconSize; }
    const std::string& IconFileForTesting() const noexcept { return m_iconFile; }

private:
    friend class CVQCPropertyPageImpl<CVQCOptionPage>;
    friend class OwnerDrawRouter<CVQCOptionPage>;

    // WM_INITDIALOG is answered 0 whether or not there is a record.
    static constexpr LRESULT kInitDialogAnswer = 0;
    void OnInitDialog();
    // The list goes with the page: its icons are given back and its handle forgotten.
    bool OnDestroy();
    // True when the command was one of the page's own.
    bool OnCommand(int id, int code);
    void OnBrowse();

    // The label above the list: the source file's bare name put into string 24.
    void UpdateSourceLabel();
    // Every icon of m_iconFile whose two sizes extract, in the file's order.
    void FillIconList();
    void ClearIconList() noexcept;
    // Item index's icon becomes the record's icon; its small icon comes from the file's
    // icon of the same index. Nothing for a negative index.
    void SelectIcon(int index);
    void ShowRecordIcons() const noexcept;

    int m_iconSize;
    HWND m_browseButton = nullptr;
    HWND m_dynamicSizing = nullptr;
    IconListBox m_iconList;  // owns its items' icons
    HWND m_smallIconView = nullptr;
    HWND m_largeIconView = nullptr;
    HWND m_sourceLabel = nullptr;
    std::string m_iconFile;
};
