// The Options page on real modeless sheets under Wine: the icon size setting, the icon
// list and the icon a file adopts, picking icons, the check box, Apply, and a page
// without a record.
#include <windows.h>
#include <shellapi.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pages/option_page.h"
#include "resources/local_string_cache.h"
#include "tests/pages/option_page_test_support.h"
#include "tests/registration/registry_test_support.h"

using namespace option_test;
using page_test::TempFolder;

namespace {

constexpr const char kWindowMetrics[] = "Control Panel\\Desktop\\WindowMetrics";

// A record whose client is the icons DLL, as AddPages leaves it for an installed client.
ComPtr<VQCFileInfo> ClientRecord(const TempFolder& folder, const std::string& clientPath = IconsDll()) {
    const std::string file = folder.File("test.vqc");
    WriteFileBytes(file, "-h server ");
    ComPtr<VQCFileInfo> record = RecordFor(file);
    record->Read(file.c_str());
    record->clientPath = clientPath;
    return record;
}

// Decodes the icon block of a written file.
struct WrittenIcons {
    UniqueIcon icon;
    UniqueIcon smallIcon;
};
WrittenIcons ReadBack(const std::string& file) {
    VQCFileInfo back(file.c_str());
    back.Read(file.c_str());
    return {UniqueIcon(back.icon.Detach()), UniqueIcon(back.smallIcon.Detach())};
}

}  // namespace

// ---- "Shell Icon Size" ------------------------------------------------------------------

struct IconSizeCase {
    const char* name;
    DWORD type;
    std::string data;  // stored as it stands (the tests add the terminator they want)
    int iconSize;
};

class ShellIconSizeOnThePage : public ::testing::TestWithParam<IconSizeCase> {};

TEST_P(ShellIconSizeOnThePage, SetsTheIconSizeAndTheItemHeight) {
    const IconSizeCase& c = GetParam();
    test_support::PrivateCurrentUser root("option-icon-size");
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, kWindowMetrics, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    const UniqueRegKey owned(key);
    ASSERT_EQ(RegSetValueExA(key, "Shell Icon Size", 0, c.type, reinterpret_cast<const BYTE*>(c.data.data()),
                             static_cast<DWORD>(c.data.size())),
              ERROR_SUCCESS);

    TempFolder folder("option-size");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    ASSERT_NE(sheet.Window(), nullptr);
    EXPECT_EQ(sheet.Page()->IconSizeForTesting(), c.iconSize);
    ASSERT_GT(sheet.ListCount(), 0);
    EXPECT_EQ(SendMessageA(sheet.List(), LB_GETITEMHEIGHT, 0, 0), c.iconSize * 3 / 2);
}

INSTANTIATE_TEST_SUITE_P(Values, ShellIconSizeOnThePage,
                         ::testing::Values(IconSizeCase{"FortyEight", REG_SZ, std::string("48", 3), 48},
                                           IconSizeCase{"TwentyFour", REG_SZ, std::string("24", 3), 24},
                                           IconSizeCase{"Zero", REG_SZ, std::string("0", 2), 32},
                                           IconSizeCase{"MinusFive", REG_SZ, std::string("-5", 3), 32},
                                           IconSizeCase{"Letters", REG_SZ, std::string("abc", 4), 32},
                                           IconSizeCase{"BlankAndPlusSign", REG_SZ, std::string(" +20", 5), 20},
                                           IconSizeCase{"EightCharacters", REG_SZ, std::string("00000048", 9), 32},
                                           IconSizeCase{"SevenCharacters", REG_SZ, std::string("0000048", 8), 48},
                                           IconSizeCase{"Dword", REG_DWORD, std::string("\x30\0\0\0", 4), 32},
                                           IconSizeCase{"Empty", REG_SZ, std::string("", 1), 32},
                                           IconSizeCase{"EmptyOfNoBytes", REG_SZ, std::string(), 32},
                                           IconSizeCase{"ExpandString", REG_EXPAND_SZ, std::string("48", 3), 48}),
                         [](const ::testing::TestParamInfo<IconSizeCase>& info) {
                             return std::string(info.param.name);
                         });

TEST(OptionPage, WithoutTheSettingTheIconSizeIs32AndItemsAre48) {
    test_support::PrivateCurrentUser root("option-no-setting");
    TempFolder folder("option-no-setting");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    EXPECT_EQ(sheet.Page()->IconSizeForTesting(), 32);
    EXPECT_EQ(SendMessageA(sheet.List(), LB_GETITEMHEIGHT, 0, 0), 48);
}

// ---- The icon list and the adopted icon ---------------------------------------------------

TEST(OptionPage, ListHoldsEveryIconOfTheClientWhoseTwoSizesExtractInFileOrder) {
    TempFolder folder("option-list");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    EXPECT_EQ(sheet.Page()->IconFileForTesting(), IconsDll());
    ASSERT_EQ(sheet.ListCount(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(IconWidth(sheet.ListIcon(i)), GetSystemMetrics(SM_CXICON)) << i;
        EXPECT_EQ(SignatureOf(sheet.ListIcon(i)), kListedLargeSignatures[i]) << i;
    }
}

TEST(OptionPage, IconWhosePairExtractionGivesNoSmallImageIsNotListed) {
    // Wine makes both sizes from the image it picks for the large size, so an icon whose
    // large image loads nowhere comes out of the pair extraction without a small icon.
    HICON large = nullptr, small = nullptr;
    EXPECT_EQ(ExtractIconExA(IconFile("broken_large").c_str(), 0, &large, &small, 1), 2u);
    EXPECT_EQ(small, nullptr);
    const UniqueIcon ownedLarge(large), ownedSmall(small);

    TempFolder folder("option-broken");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder, IconFile("broken_large"));
    OptionSheet sheet(record.Get());
    EXPECT_EQ(sheet.ListCount(), 0);
    EXPECT_EQ(record->icon.Get(), nullptr);
}

TEST(OptionPage, LabelNamesTheSourceFileWithoutItsFolders) {
    TempFolder folder("option-label");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    EXPECT_EQ(sheet.Label(), "Look for icons in: option_icons.dll");
}

// The name is insert 1 of the label's message text: percent sequences in it are shown as
// they stand, never read as inserts or escapes of their own.
TEST(OptionPage, LabelShowsPercentSequencesInTheFileNameAsTheyStand) {
    TempFolder folder("option-label-percent");
    const std::string client = folder.File("a%1b%n%%c%0.dll");
    ASSERT_TRUE(CopyFileA(IconsDll().c_str(), client.c_str(), FALSE));
    const ComPtr<VQCFileInfo> record = ClientRecord(folder, client);
    OptionSheet sheet(record.Get());
    EXPECT_EQ(sheet.Label(), "Look for icons in: a%1b%n%%c%0.dll");
}

TEST(OptionPage, RecordWithoutIconAdoptsTheClientsFirstIconUntold) {
    TempFolder folder("option-adopt");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    ASSERT_EQ(record->icon.Get(), nullptr);
    OptionSheet sheet(record.Get());
    ASSERT_TRUE(record->icon);
    ASSERT_TRUE(record->smallIcon);
    EXPECT_EQ(SignatureOf(record->icon.Get()), signature::kFourBitLarge);
    EXPECT_EQ(SignatureOf(record->smallIcon.Get()), signature::kFourBitSmall);
    EXPECT_EQ(IconWidth(record->smallIcon.Get()), GetSystemMetrics(SM_CXSMICON));
    // A copy of the listed icon, not the list's own.
    EXPECT_NE(record->icon.Get(), sheet.ListIcon(0));
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kLargeIconView), record->icon.Get());
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kSmallIconView), record->smallIcon.Get());
    EXPECT_FALSE(sheet.ApplyEnabled());
    EXPECT_EQ(record->modified, 0);
}

TEST(OptionPage, ApplyWritesTheAdoptedIconIntoTheFile) {
    TempFolder folder("option-adopt-apply");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    EXPECT_TRUE(page_test::Apply(sheet.Sheet()));
    const std::string written = ReadFileBytes(record->filePath);
    EXPECT_EQ(written.rfind("-h server \r\n-I \"", 0), 0u) << written.substr(0, 40);
    const WrittenIcons back = ReadBack(record->filePath);
    ASSERT_TRUE(back.icon);
    ASSERT_TRUE(back.smallIcon);
    EXPECT_EQ(IconWidth(back.icon.Get()), 32);
    EXPECT_EQ(RenderedIcon(back.icon.Get(), 32, RGB(0, 128, 255)),
              RenderedIcon(record->icon.Get(), 32, RGB(0, 128, 255)));
    EXPECT_EQ(RenderedIcon(back.smallIcon.Get(), 16, RGB(0, 128, 255)),
              RenderedIcon(record->smallIcon.Get(), 16, RGB(0, 128, 255)));
    EXPECT_EQ(SignatureOf(back.icon.Get()), signature::kFourBitLarge);
}

TEST(OptionPage, RecordWithAnIconKeepsIt) {
    TempFolder folder("option-keep");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    record->SetIcons(MakeTestIcon(32, 8), MakeTestIcon(16, 8));
    const HICON icon = record->icon.Get(), small = record->smallIcon.Get();
    OptionSheet sheet(record.Get());
    EXPECT_EQ(record->icon.Get(), icon);
    EXPECT_EQ(record->smallIcon.Get(), small);
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kLargeIconView), icon);
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kSmallIconView), small);
    EXPECT_EQ(sheet.ListCount(), 5);
}

TEST(OptionPage, WithoutAClientTheSourceIsThisModulesOwnFile) {
    // Linked into this program, "this DLL" is the test program, which carries no icon:
    // the list stays empty and the record gets no icon.
    TempFolder folder("option-no-client");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder, "");
    OptionSheet sheet(record.Get());
    char self[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, self, sizeof(self));
    EXPECT_EQ(sheet.Page()->IconFileForTesting(), self);
    EXPECT_EQ(sheet.ListCount(), 0);
    EXPECT_EQ(record->icon.Get(), nullptr);
    EXPECT_EQ(record->smallIcon.Get(), nullptr);
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kLargeIconView), nullptr);
}

TEST(OptionPage, SourceWithoutIconsLeavesTheSmallIconOfTheRecord) {
    // Only the small icon came from the file; the empty list gives no icon and the
    // failed extraction keeps the small one.
    TempFolder folder("option-small-only");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder, folder.File("missing.dll"));
    record->SetIcons(nullptr, MakeTestIcon(16, 4));
    const HICON small = record->smallIcon.Get();
    OptionSheet sheet(record.Get());
    EXPECT_EQ(sheet.ListCount(), 0);
    EXPECT_EQ(record->icon.Get(), nullptr);
    EXPECT_EQ(record->smallIcon.Get(), small);
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kSmallIconView), small);
}

// ---- Picking icons ------------------------------------------------------------------------

TEST(OptionPage, PickingAnIconChangesTheRecordAndEnablesApply) {
    TempFolder folder("option-pick");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    ASSERT_FALSE(sheet.ApplyEnabled());
    sheet.ClickItem(2);
    EXPECT_EQ(SignatureOf(record->icon.Get()), signature::kTrueColourLarge);
    EXPECT_NE(record->icon.Get(), sheet.ListIcon(2));
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kLargeIconView), record->icon.Get());
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kSmallIconView), record->smallIcon.Get());
    EXPECT_TRUE(sheet.ApplyEnabled());
    EXPECT_EQ(record->modified, 0);
}

TEST(OptionPage, SmallIconComesFromTheFilesIconOfTheListIndex) {
    // List item 2 is the file's icon 3 (icon 2 is not listed); the small icon is taken
    // from the file's icon 2, as the list index is used as the file's icon index.
    TempFolder folder("option-pick-index");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    sheet.ClickItem(2);
    EXPECT_EQ(SignatureOf(record->smallIcon.Get()), signature::kBrokenLargeSmall);
    sheet.ClickItem(0);
    EXPECT_EQ(SignatureOf(record->icon.Get()), signature::kFourBitLarge);
    EXPECT_EQ(SignatureOf(record->smallIcon.Get()), signature::kFourBitSmall);
}

TEST(OptionPage, SmallIconThatCannotBeExtractedKeepsTheOldOne) {
    // List item 4 (large_48) takes its small icon from the file's icon 4, broken_small.
    TempFolder folder("option-pick-broken-small");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    sheet.ClickItem(2);
    const HICON small = record->smallIcon.Get();
    sheet.ClickItem(4);
    EXPECT_EQ(SignatureOf(record->icon.Get()), signature::kLarge48Large);
    EXPECT_EQ(record->smallIcon.Get(), small);
    EXPECT_EQ(sheet.ShownIcon(dialog_ids::kSmallIconView), small);
}

TEST(OptionPage, SelectionChangeToNothingChangesNothing) {
    TempFolder folder("option-pick-none");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    const HICON icon = record->icon.Get();
    sheet.ClickItem(-1);
    EXPECT_EQ(SendMessageA(sheet.List(), LB_GETCURSEL, 0, 0), LB_ERR);
    EXPECT_EQ(record->icon.Get(), icon);
    EXPECT_FALSE(sheet.ApplyEnabled());
}

TEST(OptionPage, BlackAndWhiteIconPickedAndAppliedReadsBackTheSame) {
    TempFolder folder("option-bw");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    OptionSheet sheet(record.Get());
    sheet.ClickItem(1);
    ICONINFO info{};
    ASSERT_TRUE(GetIconInfo(record->icon.Get(), &info));
    const UniqueGdiObject colour(info.hbmColor), mask(info.hbmMask);
    EXPECT_EQ(info.hbmColor, nullptr);  // a real black-and-white icon
    ASSERT_TRUE(page_test::Apply(sheet.Sheet()));
    const WrittenIcons back = ReadBack(record->filePath);
    ASSERT_TRUE(back.icon);
    ASSERT_TRUE(back.smallIcon);
    EXPECT_EQ(IconSize(back.icon.Get()).cx, 32);
    EXPECT_EQ(IconSize(back.icon.Get()).cy, 32);
    for (COLORREF background : {RGB(0x20, 0xC0, 0x60), RGB(0x90, 0x10, 0xA0)}) {
        EXPECT_EQ(RenderedIcon(back.icon.Get(), 32, background), RenderedIcon(record->icon.Get(), 32, background));
        EXPECT_EQ(RenderedIcon(back.smallIcon.Get(), 16, background),
                  RenderedIcon(record->smallIcon.Get(), 16, background));
    }
    EXPECT_EQ(RenderedIcon(back.icon.Get(), 32, 0, DI_MASK), RenderedIcon(record->icon.Get(), 32, 0, DI_MASK));
    EXPECT_EQ(SignatureOf(back.icon.Get()), signature::kWhite);
}

TEST(OptionPage, FourBitIconPickedAndAppliedReadsBackTheSame) {
    TempFolder folder("option-4bit");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    record->SetIcons(MakeTestIcon(32, 8), nullptr);  // something else first
    OptionSheet sheet(record.Get());
    sheet.ClickItem(0);
    ASSERT_TRUE(page_test::Apply(sheet.Sheet()));
    const WrittenIcons back = ReadBack(record->filePath);
    ASSERT_TRUE(back.icon);
    EXPECT_EQ(IconSize(back.icon.Get()).cx, 32);
    for (COLORREF background : {RGB(0x20, 0xC0, 0x60), RGB(0x90, 0x10, 0xA0)}) {
        EXPECT_EQ(RenderedIcon(back.icon.Get(), 32, background), RenderedIcon(record->icon.Get(), 32, background));
        EXPECT_EQ(RenderedIcon(back.smallIcon.Get(), 16, background),
                  RenderedIcon(record->smallIcon.Get(), 16, background));
    }
    EXPECT_EQ(RenderedIcon(back.icon.Get(), 32, 0, DI_MASK), RenderedIcon(record->icon.Get(), 32, 0, DI_MASK));
    EXPECT_EQ(SignatureOf(back.icon.Get()), signature::kFourBitLarge);
    EXPECT_EQ(SignatureOf(back.smallIcon.Get()), signature::kFourBitSmall);
}

// ---- Dynamic screen sizing ----------------------------------------------------------------

TEST(OptionPage, CheckBoxIsCheckedExactlyWhenOptionSIsClear) {
    TempFolder folder("option-check");
    for (std::uint8_t value : {0, 1}) {
        const ComPtr<VQCFileInfo> record = ClientRecord(folder);
        record->option_s = value;
        OptionSheet sheet(record.Get());
        EXPECT_EQ(SendMessageA(sheet.Control(dialog_ids::kDynamicSizingCheck), BM_GETCHECK, 0, 0),
                  value == 0 ? BST_CHECKED : BST_UNCHECKED);
    }
}

TEST(OptionPage, CheckingClearsOptionSAndUncheckingSetsIt) {
    TempFolder folder("option-check-click");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    record->option_s = 1;
    OptionSheet sheet(record.Get());
    sheet.ClickButton(dialog_ids::kDynamicSizingCheck);
    EXPECT_EQ(record->option_s, 0);
    EXPECT_TRUE(sheet.ApplyEnabled());
    sheet.ClickButton(dialog_ids::kDynamicSizingCheck);
    EXPECT_EQ(record->option_s, 1);
    EXPECT_EQ(record->modified, 0);
    ASSERT_TRUE(page_test::Apply(sheet.Sheet()));
    EXPECT_NE(ReadFileBytes(record->filePath).find("-s "), std::string::npos);
}

// ---- Without a record ---------------------------------------------------------------------

TEST(OptionPage, WithoutARecordTheControlsStayEmptyAndNothingReacts) {
    OptionSheet sheet(nullptr);
    ASSERT_NE(sheet.Window(), nullptr);
    EXPECT_EQ(sheet.ListCount(), 0);
    EXPECT_EQ(sheet.Label(), "");
    EXPECT_EQ(sheet.Page()->IconFileForTesting(), "");
    sheet.ClickButton(dialog_ids::kDynamicSizingCheck);
    sheet.ClickItem(0);
    EXPECT_FALSE(sheet.ApplyEnabled());
    EXPECT_FALSE(page_test::Apply(sheet.Sheet()));
}

// ---- Window destruction -------------------------------------------------------------------

TEST(OptionPage, ClosingThePageDestroysTheListedIcons) {
    TempFolder folder("option-close");
    const ComPtr<VQCFileInfo> record = ClientRecord(folder);
    std::vector<HICON> listed;
    HICON adopted = nullptr;
    {
        OptionSheet sheet(record.Get());
        for (int i = 0; i < sheet.ListCount(); ++i) listed.push_back(sheet.ListIcon(i));
        adopted = record->icon.Get();
    }
    ASSERT_EQ(listed.size(), 5u);
    for (HICON icon : listed) EXPECT_EQ(IconWidth(icon), 0) << "still alive";
    // The record's own copy lives on with the record.
    EXPECT_EQ(IconWidth(adopted), 32);
}
