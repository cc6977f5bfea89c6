// The Proxy page's rules without a window: the route list by client version, the entry
// the list opens with, the layout masks, what the edits show and what they store.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "connection/option_line.h"
#include "connection/option_walk.h"
#include "pages/proxy_page_rules.h"
#include "resources/dialog_ids.h"
#include "resources/local_strings.h"

using namespace dialog_ids;
using namespace proxy_page;

namespace {

ConnectionSettings RecordForClient(std::int32_t clientVersion) {
    ConnectionSettings record("C:\\conn\\a.vqc");
    record.clientVersion = clientVersion;
    return record;
}

// The text ids the list would hold, in list order.
std::vector<std::uint32_t> OfferedTextIds(const ConnectionSettings* record) {
    std::vector<std::uint32_t> ids;
    for (const RouteEntry& entry : kRouteEntries) {
        if (IsRouteEntryOffered(entry, record)) ids.push_back(entry.textId);
    }
    return ids;
}

std::vector<int> ShownControls(std::uint32_t mask) {
    std::vector<int> shown;
    for (const LayoutRow& row : kProxyLayoutRows) {
        if (IsShownForMask(row, mask)) shown.push_back(row.controlId);
    }
    return shown;
}

// The list as filled: every entry offered, found at its own position.
RouteListIndices AllThreeInOrder() {
    RouteListIndices indices;
    indices.index[kDirectEntry] = 0;
    indices.index[kProxyEntry] = 1;
    indices.index[kBrokerEntry] = 2;
    return indices;
}

RouteListIndices WithoutBroker() {
    RouteListIndices indices;
    indices.index[kDirectEntry] = 0;
    indices.index[kProxyEntry] = 1;
    return indices;
}

void ReadLine(std::vector<const char*> elements, ConnectionSettings& record) {
    elements.insert(elements.begin(), "C:\\client\\vclient.exe");
    LayOptions(elements.data(), static_cast<int>(elements.size()), record);
}

}  // namespace

// --- the route list ---

TEST(ProxyRouteEntries, TableHoldsTheThreeRoutesInListOrder) {
    EXPECT_EQ(kRouteEntries[0].textId, 37u);
    EXPECT_EQ(kRouteEntries[0].route, 0);
    EXPECT_EQ(kRouteEntries[0].layoutMask, 1u);
    EXPECT_EQ(kRouteEntries[1].textId, 38u);
    EXPECT_EQ(kRouteEntries[1].route, 1);
    EXPECT_EQ(kRouteEntries[1].layoutMask, 2u);
    EXPECT_EQ(kRouteEntries[2].textId, 39u);
    EXPECT_EQ(kRouteEntries[2].route, 2);
    EXPECT_EQ(kRouteEntries[2].layoutMask, 4u);
}

TEST(ProxyRouteEntries, TextIdsNameTheRouteTexts) {
    EXPECT_EQ(std::u16string(LocalStringText(kRouteEntries[kDirectEntry].textId, kEnglishUK)), u"Connect directly");
    EXPECT_EQ(std::u16string(LocalStringText(kRouteEntries[kProxyEntry].textId, kEnglishUK)),
              u"Connect via a proxy server");
    EXPECT_EQ(std::u16string(LocalStringText(kRouteEntries[kBrokerEntry].textId, kEnglishUK)),
              u"Connect via a connection broker");
}

TEST(ProxyRouteEntries, BrokerOfferedFrom620) {
    const ConnectionSettings record = RecordForClient(620);
    EXPECT_EQ(OfferedTextIds(&record), (std::vector<std::uint32_t>{37, 38, 39}));
}

TEST(ProxyRouteEntries, BrokerOfferedAt664And665) {
    const ConnectionSettings at664 = RecordForClient(664);
    const ConnectionSettings at665 = RecordForClient(665);
    EXPECT_EQ(OfferedTextIds(&at664), (std::vector<std::uint32_t>{37, 38, 39}));
    EXPECT_EQ(OfferedTextIds(&at665), (std::vector<std::uint32_t>{37, 38, 39}));
}

TEST(ProxyRouteEntries, BrokerOfferedUpTo689) {
    const ConnectionSettings record = RecordForClient(689);
    EXPECT_EQ(OfferedTextIds(&record), (std::vector<std::uint32_t>{37, 38, 39}));
}

TEST(ProxyRouteEntries, BrokerAbsentFrom690) {
    const ConnectionSettings record = RecordForClient(690);
    EXPECT_EQ(OfferedTextIds(&record), (std::vector<std::uint32_t>{37, 38}));
}

TEST(ProxyRouteEntries, BrokerAbsentAt619) {
    const ConnectionSettings record = RecordForClient(619);
    EXPECT_EQ(OfferedTextIds(&record), (std::vector<std::uint32_t>{37, 38}));
}

TEST(ProxyRouteEntries, BrokerAbsentForAnUnknownClient) {
    const ConnectionSettings record("a.vqc");  // clientVersion 726 when no version was read
    EXPECT_EQ(OfferedTextIds(&record), (std::vector<std::uint32_t>{37, 38}));
}

TEST(ProxyRouteEntries, OutsideTheBrokerRangeOnlyDirectAndProxy) {
    for (std::int32_t version : {INT32_MIN, -1, 0, 600, 619, 690, 726, INT32_MAX}) {
        const ConnectionSettings record = RecordForClient(version);
        EXPECT_TRUE(IsRouteEntryOffered(kRouteEntries[kDirectEntry], &record)) << version;
        EXPECT_TRUE(IsRouteEntryOffered(kRouteEntries[kProxyEntry], &record)) << version;
        EXPECT_FALSE(IsRouteEntryOffered(kRouteEntries[kBrokerEntry], &record)) << version;
    }
}

TEST(ProxyRouteEntries, InsideTheBrokerRangeAllThree) {
    for (std::int32_t version : {620, 621, 640, 664, 665, 688, 689}) {
        const ConnectionSettings record = RecordForClient(version);
        EXPECT_EQ(OfferedTextIds(&record), (std::vector<std::uint32_t>{37, 38, 39})) << version;
    }
}

TEST(ProxyRouteEntries, WithoutRecordOnlyDirectAndProxy) {
    EXPECT_EQ(OfferedTextIds(nullptr), (std::vector<std::uint32_t>{37, 38}));
}

// --- the entry the list opens with ---

TEST(ProxyInitialRoute, ProxyHostSelectsProxyEntry) {
    ConnectionSettings record;
    record.proxyHost = "proxy";
    EXPECT_EQ(InitialRouteEntry(&record), kProxyEntry);
}

TEST(ProxyInitialRoute, BothHostsSelectProxyEntry) {
    ConnectionSettings record;
    record.proxyHost = "proxy";
    record.brokerHost = "broker";
    record.route = kRouteBroker;
    EXPECT_EQ(InitialRouteEntry(&record), kProxyEntry);
}

TEST(ProxyInitialRoute, BrokerHostAloneSelectsBrokerEntry) {
    ConnectionSettings record;
    record.brokerHost = "broker";
    EXPECT_EQ(InitialRouteEntry(&record), kBrokerEntry);
}

TEST(ProxyInitialRoute, NoHostSelectsDirectWhateverTheRoute) {
    ConnectionSettings record;
    record.route = kRouteProxy;
    EXPECT_EQ(InitialRouteEntry(&record), kDirectEntry);
    record.route = kRouteBroker;
    EXPECT_EQ(InitialRouteEntry(&record), kDirectEntry);
}

TEST(ProxyInitialRoute, RouteFieldDoesNotDecide) {
    ConnectionSettings record;
    record.brokerHost = "broker";
    record.route = kRouteDirect;
    EXPECT_EQ(InitialRouteEntry(&record), kBrokerEntry);
}

TEST(ProxyInitialRoute, NoRecordSelectsDirect) { EXPECT_EQ(InitialRouteEntry(nullptr), kDirectEntry); }

TEST(ProxyInitialRoute, BrokerEntryAbsentLeavesNoSelection) {
    // At 690 the broker host still chooses the broker entry, whose index is -1.
    ConnectionSettings record = RecordForClient(690);
    record.brokerHost = "broker";
    const RouteListIndices indices = WithoutBroker();
    EXPECT_EQ(indices.index[InitialRouteEntry(&record)], -1);
}

// --- layout masks and route by selection ---

TEST(ProxyLayoutMask, EachEntryGivesItsMask) {
    const RouteListIndices indices = AllThreeInOrder();
    EXPECT_EQ(LayoutMaskForSelection(0, indices), 1u);
    EXPECT_EQ(LayoutMaskForSelection(1, indices), 2u);
    EXPECT_EQ(LayoutMaskForSelection(2, indices), 4u);
}

TEST(ProxyLayoutMask, NoSelectionGivesBrokerMask) {
    EXPECT_EQ(LayoutMaskForSelection(-1, AllThreeInOrder()), 4u);
    EXPECT_EQ(LayoutMaskForSelection(-1, WithoutBroker()), 4u);
}

TEST(ProxyLayoutMask, UnknownIndexGivesBrokerMask) { EXPECT_EQ(LayoutMaskForSelection(7, WithoutBroker()), 4u); }

TEST(ProxyLayoutMask, EntriesAreMatchedByTheirFoundIndex) {
    RouteListIndices indices;
    indices.index[kDirectEntry] = 2;
    indices.index[kProxyEntry] = 0;
    indices.index[kBrokerEntry] = 1;
    EXPECT_EQ(LayoutMaskForSelection(2, indices), 1u);
    EXPECT_EQ(LayoutMaskForSelection(0, indices), 2u);
    EXPECT_EQ(LayoutMaskForSelection(1, indices), 4u);
}

TEST(ProxyRouteSelection, EachEntryGivesItsRoute) {
    const RouteListIndices indices = AllThreeInOrder();
    EXPECT_EQ(RouteForSelection(0, indices), 0);
    EXPECT_EQ(RouteForSelection(1, indices), 1);
    EXPECT_EQ(RouteForSelection(2, indices), 2);
}

TEST(ProxyRouteSelection, NoSelectionIsDirectEvenWithoutBrokerEntry) {
    EXPECT_EQ(RouteForSelection(-1, AllThreeInOrder()), 0);
    EXPECT_EQ(RouteForSelection(-1, WithoutBroker()), 0);
}

TEST(ProxyRouteSelection, StoreSetsRouteAndLeavesModifiedClear) {
    ConnectionSettings record;
    StoreRouteSelection(record, 2, AllThreeInOrder());
    EXPECT_EQ(record.route, 2);
    EXPECT_EQ(record.modified, 0);
    StoreRouteSelection(record, 1, AllThreeInOrder());
    EXPECT_EQ(record.route, 1);
    EXPECT_EQ(record.modified, 0);
    StoreRouteSelection(record, 0, AllThreeInOrder());
    EXPECT_EQ(record.route, 0);
    EXPECT_EQ(record.modified, 0);
}

TEST(ProxyRouteSelection, StoreLeavesModifiedSetWhenItWas) {
    ConnectionSettings record;
    record.modified = 1;
    StoreRouteSelection(record, 1, AllThreeInOrder());
    EXPECT_EQ(record.route, 1);
    EXPECT_EQ(record.modified, 1);
}

// --- the layout table ---

TEST(ProxyLayoutRows, DirectShowsNothingButTheList) { EXPECT_EQ(ShownControls(kDirectLayout), std::vector<int>{}); }

TEST(ProxyLayoutRows, ProxyShowsTheProxyGroup) {
    EXPECT_EQ(ShownControls(kProxyLayout), (std::vector<int>{1025, 1026, 1027, 1028, 1029, 1030}));
}

TEST(ProxyLayoutRows, BrokerShowsTheBrokerGroup) {
    EXPECT_EQ(ShownControls(kBrokerLayout), (std::vector<int>{1031, 1032, 1033, 1034, 1035}));
}

TEST(ProxyLayoutRows, RouteListIsNeverHidden) {
    for (const LayoutRow& row : kProxyLayoutRows) EXPECT_NE(row.controlId, 1002);
}

TEST(ProxyLayoutRows, GroupsNeverShowTogether) {
    for (const LayoutRow& row : kProxyLayoutRows) {
        EXPECT_TRUE(row.mask == kProxyLayout || row.mask == kBrokerLayout) << row.controlId;
    }
}

// --- what the page shows when it opens ---

TEST(ProxyDisplay, FreshRecordShowsEverythingEmpty) {
    const ProxyPageDisplay display = DisplayFromRecord(ConnectionSettings{});
    EXPECT_EQ(display.proxyHost, "");
    EXPECT_FALSE(display.proxyPortFilled);
    EXPECT_EQ(display.proxyPort, "");
    EXPECT_EQ(display.proxyUser, "");
    EXPECT_EQ(display.brokerHost, "");
    EXPECT_FALSE(display.brokerPortFilled);
    EXPECT_EQ(display.brokerPort, "");
    EXPECT_FALSE(display.dialUpChecked);
}

TEST(ProxyDisplay, DefaultProxyPortHidesPortAndUser) {
    ConnectionSettings record;
    record.proxyHost = "proxy";
    record.proxyUser = "admin";
    record.proxyPort = 8080;
    const ProxyPageDisplay display = DisplayFromRecord(record);
    EXPECT_EQ(display.proxyHost, "proxy");
    EXPECT_FALSE(display.proxyPortFilled);
    EXPECT_EQ(display.proxyPort, "");
    EXPECT_EQ(display.proxyUser, "");
}

TEST(ProxyDisplay, OtherProxyPortShowsPortAndUser) {
    ConnectionSettings record;
    record.proxyUser = "admin";
    record.proxyPort = 3128;
    const ProxyPageDisplay display = DisplayFromRecord(record);
    EXPECT_TRUE(display.proxyPortFilled);
    EXPECT_EQ(display.proxyPort, "3128");
    EXPECT_EQ(display.proxyUser, "admin");
}

TEST(ProxyDisplay, ProxyPortZeroAndNegativeAreShownAsNumbers) {
    ConnectionSettings record;
    record.proxyPort = 0;
    EXPECT_EQ(DisplayFromRecord(record).proxyPort, "0");
    record.proxyPort = -5;
    EXPECT_EQ(DisplayFromRecord(record).proxyPort, "-5");
}

TEST(ProxyDisplay, DefaultBrokerPortHidesPortAndLeavesBoxUnchecked) {
    ConnectionSettings record;
    record.brokerHost = "broker";
    record.brokerUpperF = 1;
    record.brokerPort = 14600;
    const ProxyPageDisplay display = DisplayFromRecord(record);
    EXPECT_EQ(display.brokerHost, "broker");
    EXPECT_FALSE(display.brokerPortFilled);
    EXPECT_EQ(display.brokerPort, "");
    EXPECT_FALSE(display.dialUpChecked);
}

TEST(ProxyDisplay, OtherBrokerPortShowsPortAndBox) {
    ConnectionSettings record;
    record.brokerUpperF = 1;
    record.brokerPort = 3000;
    ProxyPageDisplay display = DisplayFromRecord(record);
    EXPECT_TRUE(display.brokerPortFilled);
    EXPECT_EQ(display.brokerPort, "3000");
    EXPECT_TRUE(display.dialUpChecked);
    record.brokerUpperF = 0;
    display = DisplayFromRecord(record);
    EXPECT_FALSE(display.dialUpChecked);
}

TEST(ProxyDisplay, HostsAreShownAsTheyStand) {
    ConnectionSettings record;
    record.proxyHost = " proxy ";
    record.brokerHost = "bro ker";
    const ProxyPageDisplay display = DisplayFromRecord(record);
    EXPECT_EQ(display.proxyHost, " proxy ");
    EXPECT_EQ(display.brokerHost, "bro ker");
}

// --- what the edits store ---

TEST(ProxyTextEdits, TableMapsEachEditToItsField) {
    EXPECT_EQ(kProxyTextEdits[0].controlId, 1026);
    EXPECT_EQ(kProxyTextEdits[0].field, &ConnectionSettings::proxyHost);
    EXPECT_EQ(kProxyTextEdits[1].controlId, 1030);
    EXPECT_EQ(kProxyTextEdits[1].field, &ConnectionSettings::proxyUser);
    EXPECT_EQ(kProxyTextEdits[2].controlId, 1032);
    EXPECT_EQ(kProxyTextEdits[2].field, &ConnectionSettings::brokerHost);
}

TEST(ProxyTextEdits, FindReturnsTheRowOrNull) {
    EXPECT_EQ(FindTextEdit(1026), &kProxyTextEdits[0]);
    EXPECT_EQ(FindTextEdit(1030), &kProxyTextEdits[1]);
    EXPECT_EQ(FindTextEdit(1032), &kProxyTextEdits[2]);
    EXPECT_EQ(FindTextEdit(1028), nullptr);
    EXPECT_EQ(FindTextEdit(1002), nullptr);
    EXPECT_EQ(FindTextEdit(1035), nullptr);
}

TEST(ProxyTextEdits, StoreTrimsAndSetsModified) {
    ConnectionSettings record;
    StoreEditedText(record, *FindTextEdit(1026), "  proxy.example \t");
    EXPECT_EQ(record.proxyHost, "proxy.example");
    EXPECT_EQ(record.modified, 1);
}

TEST(ProxyTextEdits, StoreEachFieldAlone) {
    ConnectionSettings record;
    StoreEditedText(record, *FindTextEdit(1030), " admin ");
    StoreEditedText(record, *FindTextEdit(1032), "\r\nbroker\n");
    EXPECT_EQ(record.proxyHost, "");
    EXPECT_EQ(record.proxyUser, "admin");
    EXPECT_EQ(record.brokerHost, "broker");
}

TEST(ProxyTextEdits, StoreEmptyTextEmptiesTheField) {
    ConnectionSettings record;
    record.proxyUser = "admin";
    StoreEditedText(record, *FindTextEdit(1030), "   ");
    EXPECT_EQ(record.proxyUser, "");
    EXPECT_EQ(record.modified, 1);
}

TEST(ProxyPortEdits, TableMapsEachEditToItsFieldAndDefault) {
    EXPECT_EQ(kProxyPortEdits[0].controlId, 1028);
    EXPECT_EQ(kProxyPortEdits[0].field, &ConnectionSettings::proxyPort);
    EXPECT_EQ(kProxyPortEdits[0].emptyValue, 8080);
    EXPECT_EQ(kProxyPortEdits[1].controlId, 1034);
    EXPECT_EQ(kProxyPortEdits[1].field, &ConnectionSettings::brokerPort);
    EXPECT_EQ(kProxyPortEdits[1].emptyValue, 14600);
}

TEST(ProxyPortEdits, FindReturnsTheRowOrNull) {
    EXPECT_EQ(FindPortEdit(1028), &kProxyPortEdits[0]);
    EXPECT_EQ(FindPortEdit(1034), &kProxyPortEdits[1]);
    EXPECT_EQ(FindPortEdit(1026), nullptr);
    EXPECT_EQ(FindPortEdit(1018), nullptr);
}

TEST(ProxyPortEdits, EmptiedProxyPortStores8080) {
    ConnectionSettings record;
    record.proxyPort = 3128;
    StoreEditedPort(record, *FindPortEdit(1028), "");
    EXPECT_EQ(record.proxyPort, 8080);
    EXPECT_EQ(record.modified, 1);
}

TEST(ProxyPortEdits, EmptiedBrokerPortStores14600) {
    ConnectionSettings record;
    record.brokerPort = 3000;
    StoreEditedPort(record, *FindPortEdit(1034), "");
    EXPECT_EQ(record.brokerPort, 14600);
    EXPECT_EQ(record.modified, 1);
}

TEST(ProxyPortEdits, TextIsReadAsAtoiWould) {
    const PortEditRow& proxy = *FindPortEdit(1028);
    EXPECT_EQ(PortFromEditText(proxy, "9000"), 9000);
    EXPECT_EQ(PortFromEditText(proxy, "0"), 0);
    EXPECT_EQ(PortFromEditText(proxy, "0012"), 12);
    EXPECT_EQ(PortFromEditText(proxy, "12ab"), 12);
    EXPECT_EQ(PortFromEditText(proxy, "99999"), 99999);
    EXPECT_EQ(PortFromEditText(proxy, "abc"), 0);
}

TEST(ProxyPortEdits, BlankTextIsNotEmptyAndReadsZero) {
    EXPECT_EQ(PortFromEditText(*FindPortEdit(1028), " "), 0);
    EXPECT_EQ(PortFromEditText(*FindPortEdit(1034), " "), 0);
}

TEST(ProxyPortEdits, StoreTouchesOnlyItsOwnPort) {
    ConnectionSettings record;
    StoreEditedPort(record, *FindPortEdit(1034), "3000");
    EXPECT_EQ(record.brokerPort, 3000);
    EXPECT_EQ(record.proxyPort, 8080);
}

TEST(ProxyDialUp, CheckSetsUpperFAndModified) {
    ConnectionSettings record;
    StoreDialUpCheck(record, true);
    EXPECT_EQ(record.brokerUpperF, 1);
    EXPECT_EQ(record.modified, 1);
}

TEST(ProxyDialUp, UncheckClearsUpperFAndSetsModified) {
    ConnectionSettings record;
    record.brokerUpperF = 1;
    StoreDialUpCheck(record, false);
    EXPECT_EQ(record.brokerUpperF, 0);
    EXPECT_EQ(record.modified, 1);
}

// --- the coupled fields through a read and a write ---

TEST(ProxyCoupling, UserHiddenAtDefaultPortStillWrittenAfterAnotherEdit) {
    ConnectionSettings record = RecordForClient(665);
    ReadLine({"-c", "admin@proxy"}, record);
    ASSERT_EQ(record.proxyPort, 8080);
    ASSERT_EQ(record.proxyUser, "admin");
    EXPECT_EQ(DisplayFromRecord(record).proxyUser, "");
    StoreEditedText(record, *FindTextEdit(1026), "proxy2");
    EXPECT_EQ(BuildOptionLine(record, nullptr), "-c admin@proxy2 ");
}

TEST(ProxyCoupling, UncheckedBoxAtDefaultPortStillWritesUpperF) {
    ConnectionSettings record = RecordForClient(665);
    ReadLine({"-f", "xFoo"}, record);
    ASSERT_EQ(record.brokerUpperF, 1);
    ASSERT_EQ(record.brokerPort, 14600);
    EXPECT_FALSE(DisplayFromRecord(record).dialUpChecked);
    StoreEditedText(record, *FindTextEdit(1032), "xFoo2");
    EXPECT_EQ(BuildOptionLine(record, nullptr), "-F xFoo2 ");
}

TEST(ProxyCoupling, ClearedPortsAreLeftOutOfTheLine) {
    ConnectionSettings record = RecordForClient(665);
    ReadLine({"-c", "proxy:3128"}, record);
    StoreEditedPort(record, *FindPortEdit(1028), "");
    EXPECT_EQ(BuildOptionLine(record, nullptr), "-c proxy ");
}
