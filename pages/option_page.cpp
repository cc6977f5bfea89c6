#include "pages/option_page.h"

#include <shellapi.h>
#include <shlwapi.h>

#include <string>

#include "common/win_handles.h"
#include "pages/icon_size_setting.h"
#include "ui/open_file_dialog.h"
#include "pages/option_page_rules.h"
#include "pages/resize_maps.h"
#include "resources/local_string_cache.h"
#include "runtime/module_runtime.h"

namespace {

// The owner-draw numbers of the rules are the system's.
static_assert(option_page::kDrawEntire == ODA_DRAWENTIRE && option_page::kDrawSelect == ODA_SELECT &&
              option_page::kDrawFocus == ODA_FOCUS);
static_assert(option_page::kStateSelected == ODS_SELECTED && option_page::kStateFocus == ODS_FOCUS);
static_assert(option_page::kColourWindow == COLOR_WINDOW && option_page::kColourHighlight == COLOR_HIGHLIGHT);

constexpr std::size_t kPathBufferChars = 261;

// The label's text: the pattern read as FormatMessage reads a message text, with `name` as
// insert 1 and an empty text for every other insert a pattern could name (%2 to %99), so no
// insert reads past the arguments. Empty when FormatMessage fails.
std::string FormatSourceLabel(const char* pattern, const std::string& name) {
    constexpr std::size_t kInsertCount = 99;
    DWORD_PTR inserts[kInsertCount];
    for (DWORD_PTR& insert : inserts) insert = reinterpret_cast<DWORD_PTR>("");
    inserts[0] = reinterpret_cast<DWORD_PTR>(name.c_str());
    char* text = nullptr;
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ARGUMENT_ARRAY | FORMAT_MESSAGE_ALLOCATE_BUFFER,
                       pattern, 0, 0, reinterpret_cast<char*>(&text), 0, reinterpret_cast<va_list*>(inserts));
    const UniqueLocalMemory owned(text);
    return length ? std::string(text, length) : std::string();
}

// The full path of this DLL's own file (the fallback icon source).
std::string ModulePath() {
    char path[kPathBufferChars] = {};
    const DWORD length = GetModuleFileNameA(TheModuleRuntime().Instance(), path, static_cast<DWORD>(sizeof(path)));
    return std::string(path, length < sizeof(path) ? length : 0);
}

void ShowIcon(HWND view, HICON icon) noexcept { SendMessageA(view, STM_SETICON, reinterpret_cast<WPARAM>(icon), 0); }

}  // namespace

CVQCOptionPage::CVQCOptionPage(VQCFileInfo* record, const char* title)
    : CVQCPropertyPageImpl(record, kTemplateIndex, title), m_iconSize(ReadShellIconSize()) {}

CVQCOptionPage::~CVQCOptionPage() { ClearIconList(); }

const ResizeMapEntry* CVQCOptionPage::ResizeMap() noexcept { return kOptionPageResizeMap; }

bool CVQCOptionPage::OnDestroy() {
    ClearIconList();
    m_iconList.Attach(nullptr);  // its handle must not be used again
    return true;
}

void CVQCOptionPage::OnInitDialog() {
    DlgResize_Init();
    m_browseButton = Control(dialog_ids::kBrowseButton);
    m_dynamicSizing = Control(dialog_ids::kDynamicSizingCheck);
    m_iconList.Attach(Control(dialog_ids::kIconList));
    m_smallIconView = Control(dialog_ids::kSmallIconView);
    m_largeIconView = Control(dialog_ids::kLargeIconView);
    m_sourceLabel = Control(dialog_ids::kIconSourceLabel);
    VQCFileInfo* record = Record();
    if (!record) return;

    // The installed client's icons first; without a client this DLL's own.
    m_iconFile = record->clientPath;
    if (m_iconFile.empty()) m_iconFile = ModulePath();
    UpdateSourceLabel();
    FillIconList();
    // A file without an icon takes the first one listed; the next Apply writes it.
    if (!record->icon) SelectIcon(0);
    ShowRecordIcons();
    SendMessageA(m_dynamicSizing, BM_SETCHECK,
                 option_page::DynamicSizingChecked(record->option_s) ? BST_CHECKED : BST_UNCHECKED, 0);
}

bool CVQCOptionPage::OnCommand(int id, int code) {
    switch (id) {
    case dialog_ids::kBrowseButton:
        if (code == BN_CLICKED && Record()) OnBrowse();
        return true;
    case dialog_ids::kIconList:
        if (code == LBN_SELCHANGE && Record()) {
            const LRESULT index = SendMessageA(m_iconList.Window(), LB_GETCURSEL, 0, 0);
            if (index == LB_ERR) return true;
            SelectIcon(static_cast<int>(index));
            SendChanged();
        }
        return true;
    case dialog_ids::kDynamicSizingCheck:
        if (code == BN_CLICKED && Record()) {
            const bool checked = SendMessageA(m_dynamicSizing, BM_GETCHECK, 0, 0) == BST_CHECKED;
            Record()->option_s = option_page::OptionSFromCheck(checked);
            SendChanged();
        }
        return true;
    default: return false;
    }
}

// Another icon source: the list and the label follow it, the record only when the user
// then picks an icon.
void CVQCOptionPage::OnBrowse() {
    OpenFileDialog dialog(m_iconFile.c_str(), kBrowseFlags, GetLocalString(kFilterStringId), Window());
    if (dialog.DoModal() != IDOK) return;
    m_iconFile = dialog.FilePath();
    UpdateSourceLabel();
    FillIconList();
}

// ---- The icon source and the list ----------------------------------------------------
void CVQCOptionPage::UpdateSourceLabel() {
    std::string name = m_iconFile;
    PathStripPathA(name.data());
    name.resize(std::char_traits<char>::length(name.c_str()));
    const char* pattern = GetLocalString(kSourceLabelStringId);
    SetWindowTextA(m_sourceLabel, FormatSourceLabel(pattern ? pattern : "", name).c_str());
}

void CVQCOptionPage::FillIconList() {
    ClearIconList();
    const auto count =
        reinterpret_cast<INT_PTR>(ExtractIconA(TheModuleRuntime().Instance(), m_iconFile.c_str(), UINT(-1)));
    if (count <= 0) return;
    for (INT_PTR i = 0; i < count; ++i) {
        HICON large = nullptr;
        HICON small = nullptr;
        const UINT extracted = ExtractIconExA(m_iconFile.c_str(), static_cast<int>(i), &large, &small, 1);
        if (!option_page::ExtractionSucceeded(extracted)) continue;
        UniqueIcon ownedLarge(large);
        const UniqueIcon ownedSmall(small);
        if (option_page::IconIsListed(extracted, ownedSmall.Get() != nullptr)) m_iconList.Add(std::move(ownedLarge));
    }
}

void CVQCOptionPage::ClearIconList() noexcept { m_iconList.Clear(); }

void CVQCOptionPage::SelectIcon(int index) {
    VQCFileInfo* record = Record();
    if (index < 0 || !record) return;
    const HICON listed = m_iconList.IconAt(index);
    record->icon.Reset();
    record->icon.Reset(listed ? CopyIcon(listed) : nullptr);
    ShowIcon(m_largeIconView, record->icon.Get());

    HICON small = nullptr;
    const UINT extracted = ExtractIconExA(m_iconFile.c_str(), index, nullptr, &small, 1);
    if (option_page::ExtractionSucceeded(extracted) && small) {
        const UniqueIcon extractedSmall(small);
        record->smallIcon.Reset(CopyIcon(extractedSmall.Get()));
    }
    ShowRecordIcons();
}

void CVQCOptionPage::ShowRecordIcons() const noexcept {
    const VQCFileInfo* record = Record();
    if (!record) return;
    ShowIcon(m_smallIconView, record->smallIcon.Get());
    ShowIcon(m_largeIconView, record->icon.Get());
}

// ---- Owner draw ---------------------------------------------------------------------
void CVQCOptionPage::MeasureItem(MEASUREITEMSTRUCT* item) {
    const int extent = option_page::ItemExtent(m_iconSize);
    item->itemWidth = static_cast<UINT>(extent);
    item->itemHeight = static_cast<UINT>(extent);
}

void CVQCOptionPage::DrawItem(DRAWITEMSTRUCT* item) {
    const option_page::ItemPaint paint = option_page::PlanItemPaint(
        item->CtlID, static_cast<std::int32_t>(item->itemID), item->itemAction, item->itemState);
    if (paint.background) {
        FillRect(item->hDC, &item->rcItem, GetSysColorBrush(paint.colour));
        const option_page::ItemPoint at = option_page::IconOrigin(
            {item->rcItem.left, item->rcItem.top, item->rcItem.right, item->rcItem.bottom}, m_iconSize);
        DrawIconEx(item->hDC, at.x, at.y, reinterpret_cast<HICON>(item->itemData), 0, 0, 0, nullptr, DI_NORMAL);
    }
    if (paint.focus) DrawFocusRect(item->hDC, &item->rcItem);
}
