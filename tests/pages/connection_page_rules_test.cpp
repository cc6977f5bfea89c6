#include "pages/connection_page_rules.h"

#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/row_names.h"

using namespace connection_page;
using namespace dialog_ids;

namespace {

ConnectionSettings RecordAt(std::int32_t clientVersion) {
    ConnectionSettings record("C:\\conn\\a.vqc");
    record.clientVersion = clientVersion;
    return record;
}

std::vector<std::uint32_t> TextIds(const std::vector<ConnectionType>& types) {
    std::vector<std::uint32_t> ids;
    ids.reserve(types.size());
    for (ConnectionType type : types) ids.push_back(EntryOf(type).textId);
    return ids;
}

std::vector<std::uint32_t> TextIds(const std::vector<LoginType>& types) {
    std::vector<std::uint32_t> ids;
    ids.reserve(types.size());
    for (LoginType type : types) ids.push_back(EntryOf(type).textId);
    return ids;
}

// Carries out a layout plan on a page where every control starts visible and enabled,
// as the template creates them.
struct ControlStates {
    std::map<int, bool> visible;
    std::map<int, bool> enabled;

    ControlStates() {
        for (int id = kFirstControlId; id <= kLastControlId; ++id) {
            visible[id] = true;
            enabled[id] = true;
        }
    }
    void Apply(const std::vector<LayoutStep>& steps) {
        for (const LayoutStep& step : steps) {
            if (step.action == LayoutAction::Show) visible[step.controlId] = true;
            if (step.action == LayoutAction::Hide) visible[step.controlId] = false;
            if (step.action == LayoutAction::Enable) enabled[step.controlId] = true;
        }
    }
    void Apply(const LoginTypeRule& rule) {
        for (const EnableStep& step : rule.enable) enabled[step.controlId] = step.enabled;
    }
    std::set<int> Visible() const {
        std::set<int> ids;
        for (const auto& [id, shown] : visible)
            if (shown) ids.insert(id);
        return ids;
    }
    std::set<int> Disabled() const {
        std::set<int> ids;
        for (const auto& [id, on] : enabled)
            if (!on) ids.insert(id);
        return ids;
    }
};

std::set<int> VisibleAfterLayout(ConnectionType type, const ConnectionSettings* record) {
    ControlStates states;
    states.Apply(PlanLayout(type, record));
    return states.Visible();
}

// Controls no rule touches: the connection-type label and list.
const std::set<int> kAlwaysShown = {kConnectionTypeLabel, kConnectionTypeList};

std::set<int> Union(std::set<int> a, const std::set<int>& b) {
    a.insert(b.begin(), b.end());
    return a;
}

// clang-format off
const std::set<int> kRemoteGroup = {kLoginLabel,      kLoginEdit,        kLegacyProtocolCheck, kServerLabel,
                                    kServerBox,       kLoginTypeLabel,   kLoginTypeList,       kEncryptionCheck,
                                    kAnswerBackLabel, kAnswerBackEdit,   kServicePortLabel,    kServicePortEdit};
// clang-format on
const std::set<int> kLocalGroup = {kCommandLineLabel, kCommandLineEdit, kStartDirectoryLabel, kStartDirectoryEdit};
const std::set<int> kSharedGroup = {kBookmarkLabel, kBookmarkEdit, kServiceNameLabel, kServiceNameEdit};
const std::set<int> kDiscoveryGroup = {kDiscoveryLoginLabel, kDiscoveryLoginEdit};

}  // namespace

// ---- Connection types ----

TEST(ConnectionTypeList, TableHoldsTextIdsFieldsAndMasks) {
    ASSERT_EQ(kConnectionTypes.size(), 3u);
    const ConnectionTypeEntry& remote = EntryOf(ConnectionType::Remote);
    EXPECT_EQ(remote.textId, 34u);
    EXPECT_EQ(remote.offered, ConnectionTypeOffered::Always);
    EXPECT_EQ(remote.localConnect, 0);
    EXPECT_EQ(remote.optionK, 0);
    EXPECT_EQ(remote.mask, 1);
    const ConnectionTypeEntry& local = EntryOf(ConnectionType::Local);
    EXPECT_EQ(local.textId, 35u);
    EXPECT_EQ(local.offered, ConnectionTypeOffered::WhenServerModulePresent);
    EXPECT_EQ(local.localConnect, 1);
    EXPECT_EQ(local.optionK, 0);
    EXPECT_EQ(local.mask, 2);
    const ConnectionTypeEntry& discovery = EntryOf(ConnectionType::Discovery);
    EXPECT_EQ(discovery.textId, 36u);
    EXPECT_EQ(discovery.offered, ConnectionTypeOffered::WhenRecordFromDiscoveryVersion);
    EXPECT_EQ(discovery.localConnect, 0);
    EXPECT_EQ(discovery.optionK, 1);
    EXPECT_EQ(discovery.mask, 4);
}

TEST(ConnectionTypeList, EachEntrySitsAtItsTypesPosition) {
    for (std::size_t i = 0; i < kConnectionTypes.size(); ++i)
        EXPECT_EQ(static_cast<std::size_t>(kConnectionTypes[i].type), i);
}

TEST(ConnectionTypeList, WithoutRecordOrServerModuleOnlyRemoteIsOffered) {
    EXPECT_EQ(TextIds(OfferedConnectionTypes(nullptr, false)), (std::vector<std::uint32_t>{34}));
}

TEST(ConnectionTypeList, ServerModuleAddsConnectLocallyWithoutARecord) {
    EXPECT_EQ(TextIds(OfferedConnectionTypes(nullptr, true)), (std::vector<std::uint32_t>{34, 35}));
}

TEST(ConnectionTypeList, DiscoverServiceNeedsARecord) {
    // No record: its version cannot be asked, so even an unknown (newest) client gets none.
    for (bool server : {false, true})
        for (ConnectionType type : OfferedConnectionTypes(nullptr, server)) EXPECT_NE(type, ConnectionType::Discovery);
}

TEST(ConnectionTypeList, DiscoverServiceFromClient665) {
    const ConnectionSettings at664 = RecordAt(664);
    const ConnectionSettings at665 = RecordAt(665);
    const ConnectionSettings at726 = RecordAt(726);
    EXPECT_EQ(TextIds(OfferedConnectionTypes(&at664, false)), (std::vector<std::uint32_t>{34}));
    EXPECT_EQ(TextIds(OfferedConnectionTypes(&at665, false)), (std::vector<std::uint32_t>{34, 36}));
    EXPECT_EQ(TextIds(OfferedConnectionTypes(&at726, false)), (std::vector<std::uint32_t>{34, 36}));
}

TEST(ConnectionTypeList, AllThreeInTableOrder) {
    const ConnectionSettings record = RecordAt(690);
    EXPECT_EQ(TextIds(OfferedConnectionTypes(&record, true)), (std::vector<std::uint32_t>{34, 35, 36}));
}

TEST(ConnectionTypeList, VersionFieldsAreJoinedNotScaledSo62IsBelowEveryGate) {
    const ConnectionSettings record = RecordAt(62);  // a 6.2 client
    EXPECT_EQ(TextIds(OfferedConnectionTypes(&record, true)), (std::vector<std::uint32_t>{34, 35}));
}

TEST(ConnectionTypeSelection, PositionsOfRemoteAndLocalAreFoundWhereverTheListSortedThem) {
    const ConnectionTypeIndices indices = {1, 0, 2};
    EXPECT_EQ(ConnectionTypeAt(1, indices), ConnectionType::Remote);
    EXPECT_EQ(ConnectionTypeAt(0, indices), ConnectionType::Local);
    EXPECT_EQ(ConnectionTypeAt(2, indices), ConnectionType::Discovery);
}

TEST(ConnectionTypeSelection, NoSelectionCountsAsDiscoveryEvenWhenLocalWasNotAdded) {
    // The missing "Connect locally" has index -1, which is also CB_ERR: still no match.
    const ConnectionTypeIndices indices = {0, -1, -1};
    EXPECT_EQ(ConnectionTypeAt(-1, indices), ConnectionType::Discovery);
    EXPECT_EQ(ConnectionTypeAt(-1, ConnectionTypeIndices{-1, -1, -1}), ConnectionType::Discovery);
}

TEST(ConnectionTypeSelection, PositionBeyondTheEntriesCountsAsDiscovery) {
    EXPECT_EQ(ConnectionTypeAt(7, ConnectionTypeIndices{0, 1, -1}), ConnectionType::Discovery);
}

TEST(ConnectionTypeSelection, StoringEachTypeSetsBothFlags) {
    ConnectionSettings record = RecordAt(726);
    record.localConnect = 1;
    record.optionK = 1;
    StoreConnectionType(record, ConnectionType::Remote);
    EXPECT_EQ(record.localConnect, 0);
    EXPECT_EQ(record.optionK, 0);
    StoreConnectionType(record, ConnectionType::Local);
    EXPECT_EQ(record.localConnect, 1);
    EXPECT_EQ(record.optionK, 0);
    StoreConnectionType(record, ConnectionType::Discovery);
    EXPECT_EQ(record.localConnect, 0);
    EXPECT_EQ(record.optionK, 1);
}

TEST(ConnectionTypeSelection, StoringTouchesNoOtherField) {
    ConnectionSettings record = RecordAt(690);
    record.modified = 0;
    record.optionR = 1;
    StoreConnectionType(record, ConnectionType::Local);
    EXPECT_EQ(record.modified, 0);
    EXPECT_EQ(record.optionR, 1);
    EXPECT_EQ(record.clientVersion, 690);
}

// ---- Login types ----

TEST(LoginTypeList, TableHoldsTextIdsFlagsAndMasksInListOrder) {
    ASSERT_EQ(kLoginTypes.size(), 6u);
    const std::uint32_t textIds[] = {28, 29, 30, 31, 33, 32};
    const LoginFlag flags[] = {nullptr,
                               &ConnectionSettings::optionR,
                               &ConnectionSettings::optionT,
                               &ConnectionSettings::optionN,
                               &ConnectionSettings::optionL,
                               &ConnectionSettings::optionNM};
    const int masks[] = {0x01, 0x02, 0x04, 0x08, 0x10, 0x20};
    const LoginTypeOffered offered[] = {LoginTypeOffered::Always,
                                        LoginTypeOffered::Always,
                                        LoginTypeOffered::Always,
                                        LoginTypeOffered::BelowDomainLoginVersion,
                                        LoginTypeOffered::BelowDomainLoginVersion,
                                        LoginTypeOffered::FromDomainLoginVersionInDomain};
    for (std::size_t i = 0; i < kLoginTypes.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(kLoginTypes[i].type), i);
        EXPECT_EQ(kLoginTypes[i].textId, textIds[i]) << i;
        EXPECT_EQ(kLoginTypes[i].flag, flags[i]) << i;
        EXPECT_EQ(kLoginTypes[i].mask, masks[i]) << i;
        EXPECT_EQ(kLoginTypes[i].offered, offered[i]) << i;
    }
}

TEST(LoginTypeList, BelowClient690OffersFiveWithTheNtEntries) {
    for (std::int32_t version : {619, 620, 640, 664, 665, 689}) {
        const ConnectionSettings record = RecordAt(version);
        int asked = 0;
        EXPECT_EQ(TextIds(OfferedLoginTypes(&record,
                                            [&] {
                                                ++asked;
                                                return true;
                                            })),
                  (std::vector<std::uint32_t>{28, 29, 30, 31, 33}))
            << version;
        EXPECT_EQ(asked, 0) << "the domain is not asked below 690";
    }
}

TEST(LoginTypeList, Client690OutsideADomainOffersExactlyThree) {
    const ConnectionSettings record = RecordAt(690);
    EXPECT_EQ(TextIds(OfferedLoginTypes(&record, [] { return false; })), (std::vector<std::uint32_t>{28, 29, 30}));
}

TEST(LoginTypeList, Client690InADomainAddsWindowsDomainCredentialsLast) {
    const ConnectionSettings record = RecordAt(690);
    EXPECT_EQ(TextIds(OfferedLoginTypes(&record, [] { return true; })), (std::vector<std::uint32_t>{28, 29, 30, 32}));
}

TEST(LoginTypeList, UnknownClientCountsAsNewest) {
    const ConnectionSettings record = RecordAt(726);
    EXPECT_EQ(TextIds(OfferedLoginTypes(&record, [] { return true; })), (std::vector<std::uint32_t>{28, 29, 30, 32}));
}

TEST(LoginTypeList, DomainIsAskedExactlyOnceFrom690) {
    const ConnectionSettings record = RecordAt(690);
    int asked = 0;
    OfferedLoginTypes(&record, [&] {
        ++asked;
        return false;
    });
    EXPECT_EQ(asked, 1);
}

TEST(LoginTypeList, WithoutRecordThreeEntriesAndNoDomainQuestion) {
    int asked = 0;
    EXPECT_EQ(TextIds(OfferedLoginTypes(nullptr,
                                        [&] {
                                            ++asked;
                                            return true;
                                        })),
              (std::vector<std::uint32_t>{28, 29, 30}));
    EXPECT_EQ(asked, 0);
    EXPECT_EQ(ClientVersionOf(nullptr), 726);
}

TEST(LoginTypeList, MissingDomainQuestionCountsAsNo) {
    const ConnectionSettings record = RecordAt(690);
    EXPECT_EQ(TextIds(OfferedLoginTypes(&record, nullptr)), (std::vector<std::uint32_t>{28, 29, 30}));
}

TEST(LoginTypeSelection, PositionsMapToTheirTypes) {
    const LoginTypeIndices indices = {0, 1, 2, -1, -1, 3};
    EXPECT_EQ(LoginTypeAt(0, indices), LoginType::AlwaysRequirePassword);
    EXPECT_EQ(LoginTypeAt(1, indices), LoginType::CachePassword);
    EXPECT_EQ(LoginTypeAt(2, indices), LoginType::TextWindow);
    EXPECT_EQ(LoginTypeAt(3, indices), LoginType::WindowsDomainCredentials);
}

TEST(LoginTypeSelection, NoSelectionMatchesNoEntryThatWasLeftOut) {
    const LoginTypeIndices indices = {0, 1, 2, -1, -1, -1};
    EXPECT_EQ(LoginTypeAt(-1, indices), std::nullopt);
    EXPECT_EQ(LoginTypeAt(4, indices), std::nullopt);
}

TEST(LoginTypeSelection, PriorityCachePasswordFirst) {
    ConnectionSettings record = RecordAt(726);
    record.optionR = record.optionN = record.optionNM = record.optionL = record.optionT = 1;
    EXPECT_EQ(LoginTypeOf(record), LoginType::CachePassword);
    record.optionR = 0;
    EXPECT_EQ(LoginTypeOf(record), LoginType::NtDomain);
    record.optionN = 0;
    EXPECT_EQ(LoginTypeOf(record), LoginType::WindowsDomainCredentials);
    record.optionNM = 0;
    EXPECT_EQ(LoginTypeOf(record), LoginType::NtNoLogon);
    record.optionL = 0;
    EXPECT_EQ(LoginTypeOf(record), LoginType::TextWindow);
    record.optionT = 0;
    EXPECT_EQ(LoginTypeOf(record), LoginType::AlwaysRequirePassword);
}

TEST(LoginTypeSelection, StoringSetsItsOwnFlagAndClearsTheOtherFour) {
    for (const LoginTypeEntry& entry : kLoginTypes) {
        ConnectionSettings record = RecordAt(726);
        record.optionR = record.optionN = record.optionNM = record.optionL = record.optionT = 1;
        StoreLoginType(record, entry.type);
        for (LoginFlag flag : kLoginFlags) EXPECT_EQ(record.*flag, flag == entry.flag ? 1 : 0) << entry.textId;
        EXPECT_EQ(LoginTypeOf(record), entry.type);
    }
}

TEST(LoginTypeSelection, StoringTouchesNoOtherFlag) {
    ConnectionSettings record = RecordAt(726);
    record.optionK = 1;
    record.noOptionM = 1;
    StoreLoginType(record, LoginType::NtDomain);
    EXPECT_EQ(record.optionK, 1);
    EXPECT_EQ(record.noOptionM, 1);
    EXPECT_EQ(record.modified, 0);
}

// ---- Layout rule ----

TEST(LayoutRule, TableRowsHoldTheirControls) {
    EXPECT_EQ(kLayoutTable[0].mask, 1);
    EXPECT_EQ(kLayoutTable[1].mask, 2);
    EXPECT_EQ(kLayoutTable[2].mask, 3);
    EXPECT_EQ(kLayoutTable[3].mask, 4);
    const std::array<int, 12> remote = {1009, 1010, 1024, 1005, 1006, 1007, 1008, 1023, 1021, 1022, 1017, 1018};
    const std::array<int, 12> local = {1011, 1012, 1013, 1014};
    const std::array<int, 12> shared = {1019, 1020, 1015, 1016};
    const std::array<int, 12> discovery = {1003, 1004};
    EXPECT_EQ(kLayoutTable[0].controls, remote);
    EXPECT_EQ(kLayoutTable[1].controls, local);
    EXPECT_EQ(kLayoutTable[2].controls, shared);
    EXPECT_EQ(kLayoutTable[3].controls, discovery);
}

TEST(LayoutRule, StepsFollowTheTableThenTheVersionHidings) {
    const ConnectionSettings record = RecordAt(640);
    const std::vector<LayoutStep> steps = PlanLayout(ConnectionType::Remote, &record);
    const auto S = LayoutAction::Show;
    const auto H = LayoutAction::Hide;
    const std::vector<LayoutStep> expected = {
        {1009, S}, {1010, S}, {1024, S}, {1005, S}, {1006, S}, {1007, S}, {1008, S}, {1023, S},
        {1021, S}, {1022, S}, {1017, S}, {1018, S}, {1011, H}, {1012, H}, {1013, H}, {1014, H},
        {1019, S}, {1020, S}, {1015, S}, {1016, S}, {1003, H}, {1004, H}, {1023, H}, {1024, H},
    };
    EXPECT_EQ(steps, expected);
}

TEST(LayoutRule, DiscoveryEnablesTheRemoteLoginEditAfterTheTable) {
    const std::vector<LayoutStep> steps = PlanLayout(ConnectionType::Discovery, nullptr);
    ASSERT_EQ(steps.size(), 23u);
    EXPECT_EQ(steps.back(), (LayoutStep{kLoginEdit, LayoutAction::Enable}));
    for (ConnectionType type : {ConnectionType::Remote, ConnectionType::Local})
        for (const LayoutStep& step : PlanLayout(type, nullptr)) EXPECT_NE(step.action, LayoutAction::Enable);
}

TEST(LayoutRule, WithoutRecordNoVersionHidings) {
    EXPECT_EQ(VisibleAfterLayout(ConnectionType::Remote, nullptr),
              Union(Union(kAlwaysShown, kRemoteGroup), kSharedGroup));
    EXPECT_EQ(VisibleAfterLayout(ConnectionType::Local, nullptr),
              Union(Union(kAlwaysShown, kLocalGroup), kSharedGroup));
    EXPECT_EQ(VisibleAfterLayout(ConnectionType::Discovery, nullptr), Union(kAlwaysShown, kDiscoveryGroup));
}

TEST(LayoutRule, RemoteControlsShownPerClientVersion) {
    struct Case {
        std::int32_t version;
        bool encryption;
        bool legacy;
    };
    // clang-format off
    const Case cases[] = {
        {619, false, false}, {620, true, false}, {639, true, false}, {640, false, false},
        {641, true, false},  {664, true, false}, {665, true, true},  {689, true, true},
        {690, true, false},  {726, true, false},
    };
    // clang-format on
    for (const Case& c : cases) {
        const ConnectionSettings record = RecordAt(c.version);
        const std::set<int> visible = VisibleAfterLayout(ConnectionType::Remote, &record);
        EXPECT_EQ(visible.count(kEncryptionCheck), c.encryption ? 1u : 0u) << c.version;
        EXPECT_EQ(visible.count(kLegacyProtocolCheck), c.legacy ? 1u : 0u) << c.version;
        std::set<int> expected = Union(Union(kAlwaysShown, kRemoteGroup), kSharedGroup);
        if (!c.encryption) expected.erase(kEncryptionCheck);
        if (!c.legacy) expected.erase(kLegacyProtocolCheck);
        EXPECT_EQ(visible, expected) << c.version;
    }
}

TEST(LayoutRule, Client640HidesEncryptionThoughItIsAbove620) {
    const ConnectionSettings record = RecordAt(640);
    EXPECT_EQ(VisibleAfterLayout(ConnectionType::Remote, &record).count(kEncryptionCheck), 0u);
}

TEST(LayoutRule, VersionHidingsNeverShowAControlOfAnotherGroup) {
    for (std::int32_t version : {619, 620, 640, 664, 665, 689, 690, 726}) {
        const ConnectionSettings record = RecordAt(version);
        EXPECT_EQ(VisibleAfterLayout(ConnectionType::Local, &record),
                  Union(Union(kAlwaysShown, kLocalGroup), kSharedGroup))
            << version;
        EXPECT_EQ(VisibleAfterLayout(ConnectionType::Discovery, &record), Union(kAlwaysShown, kDiscoveryGroup))
            << version;
    }
}

TEST(LayoutRule, EnablesOnlyTheRemoteLoginEditAndOnlyForDiscovery) {
    ControlStates states;
    for (int id = kFirstControlId; id <= kLastControlId; ++id) states.enabled[id] = false;
    states.Apply(PlanLayout(ConnectionType::Discovery, nullptr));
    std::set<int> enabled;
    for (const auto& [id, on] : states.enabled)
        if (on) enabled.insert(id);
    EXPECT_EQ(enabled, std::set<int>{kLoginEdit});
}

// ---- Login-type rule ----

TEST(LoginTypeRule, EnableTableHoldsControlsAndMasks) {
    const std::pair<int, int> expected[] = {{1010, 0x03}, {1016, 0x33}, {1020, 0x3B}, {1023, 0x2B}, {1024, 0x03}};
    ASSERT_EQ(kLoginTypeEnableTable.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(kLoginTypeEnableTable[i].controlId, expected[i].first);
        EXPECT_EQ(kLoginTypeEnableTable[i].mask, expected[i].second);
    }
}

TEST(LoginTypeRule, EnabledControlsPerLoginType) {
    const std::map<LoginType, std::set<int>> disabled = {
        {LoginType::AlwaysRequirePassword, {}},
        {LoginType::CachePassword, {}},
        {LoginType::TextWindow, {1010, 1016, 1020, 1023, 1024}},
        {LoginType::NtDomain, {1010, 1016, 1024}},
        {LoginType::NtNoLogon, {1010, 1023, 1024}},
        {LoginType::WindowsDomainCredentials, {1010, 1024}},
    };
    for (const auto& [type, expected] : disabled) {
        ControlStates states;
        states.Apply(PlanLoginTypeRule(type));
        EXPECT_EQ(states.Disabled(), expected) << EntryOf(type).textId;
    }
}

TEST(LoginTypeRule, StepsFollowTheTableOrder) {
    const LoginTypeRule rule = PlanLoginTypeRule(LoginType::NtNoLogon);
    const std::vector<EnableStep> expected = {{1010, false}, {1016, true}, {1020, true}, {1023, false}, {1024, false}};
    EXPECT_EQ(rule.enable, expected);
}

TEST(LoginTypeRule, NoSelectionCountsAsAlwaysRequirePassword) {
    const LoginTypeRule rule = PlanLoginTypeRule(std::nullopt);
    for (const EnableStep& step : rule.enable) EXPECT_TRUE(step.enabled) << step.controlId;
    EXPECT_EQ(rule.legacyCheck, LegacyProtocolCheck::Leave);
}

TEST(LoginTypeRule, NtDomainChecksLegacyProtocolAndWindowsDomainCredentialsUnchecksIt) {
    EXPECT_EQ(PlanLoginTypeRule(LoginType::NtDomain).legacyCheck, LegacyProtocolCheck::Check);
    EXPECT_EQ(PlanLoginTypeRule(LoginType::WindowsDomainCredentials).legacyCheck, LegacyProtocolCheck::Uncheck);
    for (LoginType type :
         {LoginType::AlwaysRequirePassword, LoginType::CachePassword, LoginType::TextWindow, LoginType::NtNoLogon})
        EXPECT_EQ(PlanLoginTypeRule(type).legacyCheck, LegacyProtocolCheck::Leave) << EntryOf(type).textId;
}

// ---- Texts, check boxes, ports, servers ----

TEST(TextEdits, EachEditNamesItsField) {
    EXPECT_EQ(FindTextEdit(1010)->field, &ConnectionSettings::login);
    EXPECT_EQ(FindTextEdit(1004)->field, &ConnectionSettings::login);
    EXPECT_EQ(FindTextEdit(1012)->field, &ConnectionSettings::localTarget);
    EXPECT_EQ(FindTextEdit(1014)->field, &ConnectionSettings::startDirectory);
    EXPECT_EQ(FindTextEdit(1016)->field, &ConnectionSettings::serviceName);
    EXPECT_EQ(FindTextEdit(1020)->field, &ConnectionSettings::commandLine);
    EXPECT_EQ(FindTextEdit(1022)->field, &ConnectionSettings::answerBack);
}

TEST(TextEdits, FilledInTheOrderThePageOpens) {
    const int order[] = {1010, 1004, 1012, 1014, 1020, 1016, 1022};
    for (std::size_t i = 0; i < kTextEdits.size(); ++i) EXPECT_EQ(kTextEdits[i].controlId, order[i]);
}

TEST(TextEdits, PortServerAndListsAreNotPlainTextEdits) {
    for (int id : {1002, 1006, 1008, 1018, 1023, 1024, 1001, 1003}) EXPECT_EQ(FindTextEdit(id), nullptr) << id;
}

TEST(CheckBoxes, EncryptionSetsModifiedLegacyProtocolDoesNot) {
    const CheckBoxField* encryption = FindCheckBox(1023);
    const CheckBoxField* legacy = FindCheckBox(1024);
    ASSERT_NE(encryption, nullptr);
    ASSERT_NE(legacy, nullptr);
    EXPECT_EQ(encryption->flag, &ConnectionSettings::encrypt);
    EXPECT_TRUE(encryption->setsModified);
    EXPECT_EQ(legacy->flag, &ConnectionSettings::noOptionM);
    EXPECT_FALSE(legacy->setsModified);
    EXPECT_EQ(FindCheckBox(1022), nullptr);
}

TEST(ServicePortDisplay, DefaultPortsFollowEncryption) {
    EXPECT_EQ(DefaultServicePort(false), 790);
    EXPECT_EQ(DefaultServicePort(true), 4790);
}

// ---- Tables: one row per behaviour, each with the examples that pin it ----

namespace {

// The connection type a record opens as, from its two flags (client 7.26).
struct OpeningTypeCase {
    const char* name;
    std::uint8_t localConnect;
    std::uint8_t optionK;
    ConnectionType opensAs;
};
// Each row shows in ctest's list as its name ("# GetParam() = <name>"), not as its bytes.
void PrintTo(const OpeningTypeCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const OpeningTypeCase kOpeningTypeCases[] = {
    {"RecordWithNeitherFlagOpensAsRemote", 0, 0, ConnectionType::Remote},
    {"LocalConnectOpensAsLocal",           1, 0, ConnectionType::Local},
    {"OptionKOpensAsDiscovery",            0, 1, ConnectionType::Discovery},
    {"LocalConnectWinsOverOptionK",        1, 1, ConnectionType::Local},
};
// clang-format on

// What the service port edit shows for a port and the encryption setting.
struct PortShown {
    std::int32_t port;
    bool encrypt;
    const char* text;
};
struct PortShownCase {
    const char* name;
    std::vector<PortShown> examples;
};
void PrintTo(const PortShownCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const PortShownCase kPortShownCases[] = {
    {"NotGivenShowsEmpty",                      {{-1, false, ""}, {-1, true, ""}}},
    {"DefaultOfTheEncryptionSettingShowsEmpty", {{790, false, ""}, {4790, true, ""}}},
    {"TheOtherSettingsDefaultIsShown",          {{790, true, "790"}, {4790, false, "4790"}}},
    {"AnyOtherNumberIsShownAsDecimal",          {{0, false, "0"}, {8000, true, "8000"}, {-2, false, "-2"}, {99999, false, "99999"},
                                                 {INT_MIN, false, "-2147483648"}}},
};
// clang-format on

// What the service port edit's text stores.
struct PortRead {
    const char* text;
    std::int32_t port;
};
struct PortReadCase {
    const char* name;
    std::vector<PortRead> examples;
};
void PrintTo(const PortReadCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const PortReadCase kPortReadCases[] = {
    {"EmptyEditStoresNotGiven",    {{"", -1}}},
    {"DigitsAreReadAsDecimal",     {{"790", 790}, {"0", 0}, {"007", 7}, {"65536", 65536}}},
    {"ReadsLeadingDigitsAsAtoiDoes", {{"12ab", 12}, {"ab", 0}, {" 42", 42}, {"99999999999", INT_MAX}}},
    // A blank is text: atoi gives 0, not "not given".
    {"OnlyAZeroLengthEditIsEmpty", {{" ", 0}}},
};
// clang-format on

// The server list: the recent hosts in enumeration order, then the file's host.
struct ServersListed {
    std::vector<std::string> recent;
    const char* host;
    std::vector<std::string> list;
};
struct ServerListCase {
    const char* name;
    std::vector<ServersListed> examples;
};
void PrintTo(const ServerListCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const ServerListCase kServerListCases[] = {
    {"RecentHostsKeepTheirOrderAndTheHostComesLast", {{{"zeta", "alpha", "mid"}, "typed.example", {"zeta", "alpha", "mid", "typed.example"}}}},
    {"HostAlreadyListedIsNotAddedAgain",             {{{"zeta", "alpha"}, "alpha", {"zeta", "alpha"}}}},
    {"EmptyHostAddsNothing",                         {{{"zeta"}, "", {"zeta"}}, {{}, "", {}}}},
    {"NoRecentHostsLeavesOnlyTheHost",               {{{}, "host", {"host"}}}},
    {"MatchIsExactSoCaseDiffersIsAnotherHost",       {{{"Server"}, "server", {"Server", "server"}}, {{"server "}, "server", {"server ", "server"}}}},
};
// clang-format on

// Where "vserver.dll" is looked for: beside the module.
struct SiblingNamed {
    const char* modulePath;
    const char* sibling;
    const char* path;
};
struct SiblingPathCase {
    const char* name;
    std::vector<SiblingNamed> examples;
};
void PrintTo(const SiblingPathCase& row, std::ostream* out) { *out << row.name; }

// clang-format off
const SiblingPathCase kSiblingPathCases[] = {
    {"ReplacesTheModulesNameAfterTheLastBackslash", {{"C:\\Program Files\\VOXA\\vqcprop64.dll", kServerModuleName, "C:\\Program Files\\VOXA\\vserver.dll"}}},
    {"ForwardSlashCountsAsASeparatorToo",           {{"Z:/build/dir\\sub/vqcprop64.dll", "vserver.dll", "Z:/build/dir\\sub/vserver.dll"},
                                                     {"Z:\\a/b\\vqcprop64.dll", "vserver.dll", "Z:\\a/b\\vserver.dll"}}},
    {"PathWithoutSeparatorIsReplacedWhole",         {{"vqcprop64.dll", "vserver.dll", "vserver.dll"}, {"", "vserver.dll", "vserver.dll"}}},
    {"TrailingSeparatorKeepsTheWholeDirectory",     {{"C:\\dir\\", "vserver.dll", "C:\\dir\\vserver.dll"}}},
};
// clang-format on

class OpeningConnectionType : public ::testing::TestWithParam<OpeningTypeCase> {};

TEST_P(OpeningConnectionType, FollowsTheRecordsFlags) {
    ConnectionSettings record = RecordAt(726);
    record.localConnect = GetParam().localConnect;
    record.optionK = GetParam().optionK;
    EXPECT_EQ(ConnectionTypeOf(record), GetParam().opensAs);
}

INSTANTIATE_TEST_SUITE_P(ConnectionTypeSelection, OpeningConnectionType, ::testing::ValuesIn(kOpeningTypeCases),
                         RowName());

class ServicePortShown : public ::testing::TestWithParam<PortShownCase> {};

TEST_P(ServicePortShown, AsTheRowSays) {
    for (const PortShown& e : GetParam().examples) EXPECT_EQ(ServicePortText(e.port, e.encrypt), e.text) << e.port;
}

INSTANTIATE_TEST_SUITE_P(ServicePortDisplay, ServicePortShown, ::testing::ValuesIn(kPortShownCases), RowName());

class ServicePortRead : public ::testing::TestWithParam<PortReadCase> {};

TEST_P(ServicePortRead, AsTheRowSays) {
    for (const PortRead& e : GetParam().examples)
        EXPECT_EQ(ServicePortFromText(e.text), e.port) << '"' << e.text << '"';
}

INSTANTIATE_TEST_SUITE_P(ServicePortEdit, ServicePortRead, ::testing::ValuesIn(kPortReadCases), RowName());

class ServersOffered : public ::testing::TestWithParam<ServerListCase> {};

TEST_P(ServersOffered, AsTheRowSays) {
    for (const ServersListed& e : GetParam().examples) EXPECT_EQ(ServerList(e.recent, e.host), e.list) << e.host;
}

INSTANTIATE_TEST_SUITE_P(ServerList, ServersOffered, ::testing::ValuesIn(kServerListCases), RowName());

class ServerModuleSibling : public ::testing::TestWithParam<SiblingPathCase> {};

TEST_P(ServerModuleSibling, AsTheRowSays) {
    for (const SiblingNamed& e : GetParam().examples)
        EXPECT_EQ(SiblingPath(e.modulePath, e.sibling), e.path) << e.modulePath;
}

INSTANTIATE_TEST_SUITE_P(ServerModulePath, ServerModuleSibling, ::testing::ValuesIn(kSiblingPathCases), RowName());

}  // namespace
