#include "resources/dialog_tables.h"

#include <cstddef>
#include <iterator>
#include <utility>

#include "resources/dialog_ids.h"
#include "resources/local_strings.h"

std::int32_t ResolveLocalValue(const LocalValue* list, int languageIndex) noexcept {
    std::int32_t fallback = 0;
    for (const LocalValue* node = list; node != nullptr; node = node->next) {
        if (node->language == static_cast<std::uint32_t>(languageIndex)) return node->value;
        if (node->language == 1) fallback = node->value;
    }
    return fallback;
}

namespace {

using namespace dialog_ids;

// A list holding one value for every language. Equal values share one node.
template <std::uint32_t V>
constexpr LocalValue kAll{static_cast<std::int32_t>(V), 1, nullptr};

// The one number that differs by language: German needs a wider Browse button.
constexpr LocalValue kBrowseWidthDefault{62, 1, nullptr};
constexpr LocalValue kBrowseWidth{90, 2, &kBrowseWidthDefault};

constexpr const char16_t* kStatic = u"static";
constexpr const char16_t* kEdit = u"edit";
constexpr const char16_t* kButton = u"button";
constexpr const char16_t* kComboBox = u"combobox";
constexpr const char16_t* kListBox = u"listbox";
constexpr const char16_t* const* kNoCaption = nullptr;

// WS_CHILD | WS_VISIBLE and the rest of each kind's bits.
constexpr std::uint32_t kLabel = 0x50000000;      // SS_LEFT
constexpr std::uint32_t kTextBox = 0x50810080;    // WS_BORDER | WS_TABSTOP | ES_AUTOHSCROLL
constexpr std::uint32_t kNumberBox = 0x50812080;  // ... | ES_NUMBER
constexpr std::uint32_t kCheckBox = 0x50010003;   // WS_TABSTOP | BS_AUTOCHECKBOX

constexpr ControlDesc Control(std::int32_t id, const LocalValue* x, const LocalValue* y, const LocalValue* cx,
                              const LocalValue* cy, const LocalValue* style, const char16_t* className,
                              const char16_t* const* texts) {
    return ControlDesc{id, x, y, cx, cy, style, &kAll<0>, className, texts};
}

// Template 1, Connection page. Groups that the page shows one at a time share places.
// clang-format off
constexpr ControlDesc kConnection[] = {
//          id                    x          y           cx          cy          style              class      caption
    Control(kConnectionTypeLabel, &kAll<6>,  &kAll<6>,   &kAll<60>,  &kAll<8>,   &kAll<kLabel>,     kStatic,   LocalTexts(15)),
    Control(kConnectionTypeList,  &kAll<68>, &kAll<4>,   &kAll<104>, &kAll<100>, &kAll<0x50210103>, kComboBox, kNoCaption),
    Control(kDiscoveryLoginLabel, &kAll<6>,  &kAll<24>,  &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(12)),
    Control(kDiscoveryLoginEdit,  &kAll<68>, &kAll<22>,  &kAll<104>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kServerLabel,         &kAll<6>,  &kAll<23>,  &kAll<60>,  &kAll<8>,   &kAll<kLabel>,     kStatic,   LocalTexts(11)),
    Control(kServerBox,           &kAll<68>, &kAll<21>,  &kAll<104>, &kAll<74>,  &kAll<0x50210042>, kComboBox, kNoCaption),
    Control(kLoginTypeLabel,      &kAll<6>,  &kAll<40>,  &kAll<60>,  &kAll<8>,   &kAll<kLabel>,     kStatic,   LocalTexts(16)),
    Control(kLoginTypeList,       &kAll<68>, &kAll<38>,  &kAll<104>, &kAll<76>,  &kAll<0x50210043>, kComboBox, kNoCaption),
    Control(kLoginLabel,          &kAll<6>,  &kAll<56>,  &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(12)),
    Control(kLoginEdit,           &kAll<68>, &kAll<54>,  &kAll<104>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kCommandLineLabel,    &kAll<6>,  &kAll<21>,  &kAll<109>, &kAll<8>,   &kAll<kLabel>,     kStatic,   LocalTexts(13)),
    Control(kCommandLineEdit,     &kAll<6>,  &kAll<34>,  &kAll<166>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kStartDirectoryLabel, &kAll<6>,  &kAll<49>,  &kAll<109>, &kAll<20>,  &kAll<kLabel>,     kStatic,   LocalTexts(17)),
    Control(kStartDirectoryEdit,  &kAll<6>,  &kAll<60>,  &kAll<166>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kServiceNameLabel,    &kAll<6>,  &kAll<72>,  &kAll<60>,  &kAll<8>,   &kAll<kLabel>,     kStatic,   LocalTexts(18)),
    Control(kServiceNameEdit,     &kAll<68>, &kAll<70>,  &kAll<104>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kServicePortLabel,    &kAll<6>,  &kAll<88>,  &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(19)),
    Control(kServicePortEdit,     &kAll<68>, &kAll<86>,  &kAll<104>, &kAll<13>,  &kAll<kNumberBox>, kEdit,     kNoCaption),
    Control(kBookmarkLabel,       &kAll<6>,  &kAll<104>, &kAll<60>,  &kAll<8>,   &kAll<kLabel>,     kStatic,   LocalTexts(46)),
    Control(kBookmarkEdit,        &kAll<68>, &kAll<102>, &kAll<104>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kAnswerBackLabel,     &kAll<6>,  &kAll<120>, &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(9)),
    Control(kAnswerBackEdit,      &kAll<68>, &kAll<118>, &kAll<104>, &kAll<13>,  &kAll<0x508100C4>, kEdit,     kNoCaption),
    Control(kEncryptionCheck,     &kAll<6>,  &kAll<136>, &kAll<140>, &kAll<13>,  &kAll<kCheckBox>,  kButton,   LocalTexts(0)),
    Control(kLegacyProtocolCheck, &kAll<6>,  &kAll<170>, &kAll<200>, &kAll<13>,  &kAll<kCheckBox>,  kButton,   LocalTexts(1)),
};
// clang-format on

// Template 2, Proxy page. The proxy group and the broker group share their places.
// clang-format off
constexpr ControlDesc kProxy[] = {
    Control(kProxyRouteList,  &kAll<6>,  &kAll<4>,   &kAll<165>, &kAll<47>,  &kAll<0x50010443>, kComboBox, kNoCaption),
    Control(kProxyHostLabel,  &kAll<6>,  &kAll<25>,  &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(2)),
    Control(kProxyHostEdit,   &kAll<68>, &kAll<23>,  &kAll<104>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kProxyPortLabel,  &kAll<6>,  &kAll<41>,  &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(3)),
    Control(kProxyPortEdit,   &kAll<68>, &kAll<39>,  &kAll<104>, &kAll<13>,  &kAll<kNumberBox>, kEdit,     kNoCaption),
    Control(kProxyUserLabel,  &kAll<6>,  &kAll<57>,  &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(4)),
    Control(kProxyUserEdit,   &kAll<68>, &kAll<55>,  &kAll<104>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kBrokerHostLabel, &kAll<6>,  &kAll<25>,  &kAll<65>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(7)),
    Control(kBrokerHostEdit,  &kAll<68>, &kAll<23>,  &kAll<104>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kBrokerPortLabel, &kAll<6>,  &kAll<41>,  &kAll<60>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(8)),
    Control(kBrokerPortEdit,  &kAll<68>, &kAll<39>,  &kAll<104>, &kAll<13>,  &kAll<kNumberBox>, kEdit,     kNoCaption),
    Control(kDialUpCheckBox,  &kAll<6>,  &kAll<57>,  &kAll<165>, &kAll<26>,  &kAll<0x50012403>, kButton,   LocalTexts(6)),
};
// clang-format on

// Template 3, Options page.
// clang-format off
constexpr ControlDesc kOptions[] = {
    Control(kIconLabel,          &kAll<9>,  &kAll<6>,   &kAll<25>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(25)),
    Control(kLargeIconView,      &kAll<35>, &kAll<6>,   &kAll<32>,  &kAll<32>,  &kAll<0x50000003>, kStatic,   kNoCaption),
    Control(kSmallIconView,      &kAll<74>, &kAll<6>,   &kAll<16>,  &kAll<16>,  &kAll<0x50000003>, kStatic,   kNoCaption),
    Control(kIconSourceLabel,    &kAll<9>,  &kAll<38>,  &kAll<70>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   kNoCaption),
    Control(kBrowseButton,       &kAll<82>, &kAll<36>,  &kBrowseWidth, &kAll<14>, &kAll<0x50010000>, kButton, LocalTexts(22)),
    Control(kIconList,           &kAll<9>,  &kAll<52>,  &kAll<165>, &kAll<120>, &kAll<0x50900311>, kListBox,  kNoCaption),
    Control(kDynamicSizingCheck, &kAll<9>,  &kAll<180>, &kAll<125>, &kAll<13>,  &kAll<kCheckBox>,  kButton,   LocalTexts(10)),
};
// clang-format on

// Template 4, Connection Details.
// clang-format off
constexpr ControlDesc kConnectionDetails[] = {
    Control(kDetailsServerLabel,      &kAll<16>, &kAll<9>,   &kAll<75>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(43)),
    Control(kDetailsServerEdit,       &kAll<95>, &kAll<7>,   &kAll<150>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kDetailsServiceNameLabel, &kAll<15>, &kAll<33>,  &kAll<75>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(44)),
    Control(kDetailsServiceNameEdit,  &kAll<95>, &kAll<31>,  &kAll<150>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kDetailsServicePortLabel, &kAll<15>, &kAll<58>,  &kAll<75>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(45)),
    Control(kDetailsServicePortEdit,  &kAll<95>, &kAll<56>,  &kAll<150>, &kAll<13>,  &kAll<kNumberBox>, kEdit,     kNoCaption),
    Control(kDetailsBookmarkLabel,    &kAll<17>, &kAll<82>,  &kAll<75>,  &kAll<9>,   &kAll<kLabel>,     kStatic,   LocalTexts(46)),
    Control(kDetailsBookmarkEdit,     &kAll<95>, &kAll<81>,  &kAll<150>, &kAll<13>,  &kAll<kTextBox>,   kEdit,     kNoCaption),
    Control(kDetailsEncryptionCheck,  &kAll<17>, &kAll<112>, &kAll<88>,  &kAll<13>,  &kAll<kCheckBox>,  kButton,   LocalTexts(47)),
};
// clang-format on

// Null-terminated pointer lists in table order.
template <const auto& Controls, std::size_t... I>
constexpr const ControlDesc* const kControlListOf[] = {&Controls[I]..., nullptr};

template <const auto& Controls>
constexpr auto ControlList() {
    return []<std::size_t... I>(std::index_sequence<I...>) { return kControlListOf<Controls, I...>; }
    (std::make_index_sequence<std::size(Controls)>{});
}

constexpr std::uint32_t kPageStyle = 0x80C80040;     // WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_SETFONT
constexpr std::uint32_t kDetailsStyle = 0x40C00048;  // WS_CHILD | WS_CAPTION | DS_SETFONT | DS_FIXEDSYS
constexpr std::uint32_t kControlParent = 0x10000;    // WS_EX_CONTROLPARENT
constexpr const char16_t* kShellDialogFace = u"MS Shell Dlg";

// clang-format off
constexpr DialogDesc kConnectionPage{{kConnectionPageTemplate, &kAll<0>, &kAll<0>, &kAll<184>, &kAll<176>,
                                      &kAll<kPageStyle>, &kAll<kControlParent>, nullptr, nullptr},
                                     8, kShellDialogFace, ControlList<kConnection>()};
constexpr DialogDesc kProxyPage{{kProxyPageTemplate, &kAll<0>, &kAll<0>, &kAll<184>, &kAll<196>,
                                 &kAll<kPageStyle>, &kAll<kControlParent>, nullptr, nullptr},
                                8, kShellDialogFace, ControlList<kProxy>()};
constexpr DialogDesc kOptionsPage{{kOptionsPageTemplate, &kAll<0>, &kAll<0>, &kAll<184>, &kAll<196>,
                                   &kAll<kPageStyle>, &kAll<kControlParent>, nullptr, nullptr},
                                  8, kShellDialogFace, ControlList<kOptions>()};
constexpr DialogDesc kConnectionDetailsDialog{{kConnectionDetailsTemplate, &kAll<0>, &kAll<0>, &kAll<320>, &kAll<140>,
                                               &kAll<kDetailsStyle>, &kAll<kControlParent>, nullptr, LocalTexts(41)},
                                              8, kShellDialogFace, ControlList<kConnectionDetails>()};
// clang-format on

}  // namespace

// clang-format off
const DialogDesc* const g_dialogDescs[kDialogCount] = {
    &kConnectionPage, &kProxyPage, &kOptionsPage, &kConnectionDetailsDialog};
// clang-format on

const DialogDesc* FindDialogDesc(int index) noexcept {
    if (index < 1 || index > kDialogCount) return nullptr;
    return g_dialogDescs[index - 1];
}
