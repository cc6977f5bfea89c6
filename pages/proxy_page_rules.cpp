#include "pages/proxy_page_rules.h"

#include <limits>

#include "common/ansi_text.h"
#include "resources/dialog_ids.h"

using namespace dialog_ids;

namespace proxy_page {

namespace {

constexpr std::int32_t kEveryVersionFrom = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kEveryVersionTo = std::numeric_limits<std::int32_t>::max();

constexpr std::uint32_t kConnectDirectlyText = 37;
constexpr std::uint32_t kConnectViaProxyText = 38;
constexpr std::uint32_t kConnectViaBrokerText = 39;

// Brokers exist only for the clients of this range; later clients dropped them.
constexpr std::int32_t kFirstBrokerClient = 620;
constexpr std::int32_t kLastBrokerClient = 689;

bool OffersEveryVersion(const RouteEntry& entry) noexcept {
    return entry.firstClientVersion == kEveryVersionFrom && entry.lastClientVersion == kEveryVersionTo;
}

bool IsEntry(int selection, const RouteListIndices& indices, RouteEntryPosition entry) noexcept {
    return selection >= 0 && selection == indices.index[entry];
}

}  // namespace

// clang-format off
const RouteEntry kRouteEntries[kRouteEntryCount] = {
    // text id               offered from        to                 route          mask
    {kConnectDirectlyText,  kEveryVersionFrom,  kEveryVersionTo,   kRouteDirect, kDirectLayout},
    {kConnectViaProxyText,  kEveryVersionFrom,  kEveryVersionTo,   kRouteProxy,  kProxyLayout},
    {kConnectViaBrokerText, kFirstBrokerClient, kLastBrokerClient, kRouteBroker, kBrokerLayout},
};
// clang-format on

// clang-format off
const LayoutRow kProxyLayoutRows[kLayoutRowCount] = {
    {kProxyHostLabel, kProxyLayout},
    {kProxyHostEdit, kProxyLayout},
    {kProxyPortLabel, kProxyLayout},
    {kProxyPortEdit, kProxyLayout},
    {kProxyUserLabel, kProxyLayout},
    {kProxyUserEdit, kProxyLayout},
    {kBrokerHostLabel, kBrokerLayout},
    {kBrokerHostEdit, kBrokerLayout},
    {kBrokerPortLabel, kBrokerLayout},
    {kBrokerPortEdit, kBrokerLayout},
    {kDialUpCheckBox, kBrokerLayout},
};
// clang-format on

// clang-format off
const TextEditRow kProxyTextEdits[kTextEditRowCount] = {
    {kProxyHostEdit, &ConnectionSettings::proxyHost},
    {kProxyUserEdit, &ConnectionSettings::proxyUser},
    {kBrokerHostEdit, &ConnectionSettings::brokerHost},
};
// clang-format on

// clang-format off
const PortEditRow kProxyPortEdits[kPortEditRowCount] = {
    {kProxyPortEdit, &ConnectionSettings::proxyPort, kDefaultProxyPort},
    {kBrokerPortEdit, &ConnectionSettings::brokerPort, kDefaultBrokerPort},
};
// clang-format on

bool IsRouteEntryOffered(const RouteEntry& entry, const ConnectionSettings* record) noexcept {
    if (!record) return OffersEveryVersion(entry);
    return record->clientVersion >= entry.firstClientVersion && record->clientVersion <= entry.lastClientVersion;
}

RouteEntryPosition InitialRouteEntry(const ConnectionSettings* record) noexcept {
    if (record && !record->proxyHost.empty()) return kProxyEntry;
    if (record && !record->brokerHost.empty()) return kBrokerEntry;
    return kDirectEntry;
}

std::uint32_t LayoutMaskForSelection(int selection, const RouteListIndices& indices) noexcept {
    if (IsEntry(selection, indices, kDirectEntry)) return kRouteEntries[kDirectEntry].layoutMask;
    if (IsEntry(selection, indices, kProxyEntry)) return kRouteEntries[kProxyEntry].layoutMask;
    return kBrokerLayout;
}

std::int32_t RouteForSelection(int selection, const RouteListIndices& indices) noexcept {
    if (IsEntry(selection, indices, kProxyEntry)) return kRouteEntries[kProxyEntry].route;
    if (IsEntry(selection, indices, kBrokerEntry)) return kRouteEntries[kBrokerEntry].route;
    return kRouteDirect;
}

ProxyPageDisplay DisplayFromRecord(const ConnectionSettings& record) {
    ProxyPageDisplay display;
    display.proxyHost = record.proxyHost;
    if (record.proxyPort != kDefaultProxyPort) {
        display.proxyPortFilled = true;
        ansi_text::AppendFormat(display.proxyPort, "%d", record.proxyPort);
        display.proxyUser = record.proxyUser;
    }
    display.brokerHost = record.brokerHost;
    if (record.brokerPort != kDefaultBrokerPort) {
        display.brokerPortFilled = true;
        ansi_text::AppendFormat(display.brokerPort, "%d", record.brokerPort);
        display.dialUpChecked = record.brokerUpperF != 0;
    }
    return display;
}

const TextEditRow* FindTextEdit(int controlId) noexcept {
    for (const TextEditRow& row : kProxyTextEdits) {
        if (row.controlId == controlId) return &row;
    }
    return nullptr;
}

const PortEditRow* FindPortEdit(int controlId) noexcept {
    for (const PortEditRow& row : kProxyPortEdits) {
        if (row.controlId == controlId) return &row;
    }
    return nullptr;
}

std::int32_t PortFromEditText(const PortEditRow& row, std::string_view text) noexcept {
    return text.empty() ? row.emptyValue : ansi_text::ParseDecimal(text);
}

void StoreRouteSelection(ConnectionSettings& record, int selection, const RouteListIndices& indices) noexcept {
    record.route = RouteForSelection(selection, indices);
}

void StoreEditedText(ConnectionSettings& record, const TextEditRow& row, std::string_view text) {
    record.*row.field = ansi_text::Trimmed(text);
    record.modified = 1;
}

void StoreEditedPort(ConnectionSettings& record, const PortEditRow& row, std::string_view text) noexcept {
    record.*row.field = PortFromEditText(row, text);
    record.modified = 1;
}

void StoreDialUpCheck(ConnectionSettings& record, bool checked) noexcept {
    record.brokerUpperF = checked ? 1 : 0;
    record.modified = 1;
}

}  // namespace proxy_page
