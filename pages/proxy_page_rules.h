// The Proxy page's rules as data and plain functions: which routes the list offers for a
// client version, which entry opens selected, what each route shows, what the edits
// display and what they store. Portable; the page window (proxy_page.cpp) applies them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "connection/connection_settings.h"

namespace proxy_page {

// Layout masks: which group a route shows.
constexpr std::uint32_t kDirectLayout = 1;
constexpr std::uint32_t kProxyLayout = 2;
constexpr std::uint32_t kBrokerLayout = 4;  // also any selection that is neither of the others

// One entry of the route list, in the order the list is filled.
struct RouteEntry {
    std::uint32_t textId;             // string id of the entry's text
    std::int32_t firstClientVersion;  // offered from this client version ...
    std::int32_t lastClientVersion;   // ... up to this one, inclusive
    std::int32_t route;               // the record's route when the entry is selected
    std::uint32_t layoutMask;
};

constexpr int kRouteEntryCount = 3;
enum RouteEntryPosition : int { kDirectEntry = 0, kProxyEntry = 1, kBrokerEntry = 2 };
extern const RouteEntry kRouteEntries[kRouteEntryCount];

// Whether the list offers the entry. Without a record no version is known and only the
// entries offered to every version are added.
bool IsRouteEntryOffered(const RouteEntry& entry, const ConnectionSettings* record) noexcept;

// The list index of each entry, found by its exact text after filling; -1 when absent.
struct RouteListIndices {
    int index[kRouteEntryCount] = {-1, -1, -1};
};

// The entry the list opens with, chosen from the host texts rather than from route: the
// proxy entry when there is a proxy host, else the broker entry when there is a broker
// host, else "Connect directly" (also without a record). The chosen entry may be one
// the list does not hold; its index is then -1 and nothing is selected.
RouteEntryPosition InitialRouteEntry(const ConnectionSettings* record) noexcept;

// The layout mask of a list selection (CB_ERR for none): "Connect directly" 1, the
// proxy entry 2, anything else, no selection included, 4.
std::uint32_t LayoutMaskForSelection(int selection, const RouteListIndices& indices) noexcept;

// The route a list selection stores: 1 for the proxy entry, 2 for the broker entry,
// else 0. No selection is no entry and stores 0.
std::int32_t RouteForSelection(int selection, const RouteListIndices& indices) noexcept;

// The controls the layout rule shows or hides, with the masks that show them. The
// route list is not among them: it is always shown.
struct LayoutRow {
    int controlId;
    std::uint32_t mask;
};
constexpr int kLayoutRowCount = 11;
extern const LayoutRow kProxyLayoutRows[kLayoutRowCount];

constexpr bool IsShownForMask(const LayoutRow& row, std::uint32_t selectionMask) noexcept {
    return (row.mask & selectionMask) != 0;
}

// What the page's controls show when it opens. The proxy port and user are filled in
// only when the port is not 8080, and the broker port and dial-up box only when the
// broker port is not 14600: a default port leaves the user empty (or the box unchecked)
// as well, whatever the record holds. Controls not filled in keep the template's empty
// text and clear check.
struct ProxyPageDisplay {
    std::string proxyHost;
    bool proxyPortFilled = false;  // proxyPort and proxyUser are put into their edits
    std::string proxyPort;
    std::string proxyUser;
    std::string brokerHost;
    bool brokerPortFilled = false;  // brokerPort and dialUpChecked are put into their controls
    std::string brokerPort;
    bool dialUpChecked = false;
};
ProxyPageDisplay DisplayFromRecord(const ConnectionSettings& record);

// The edits whose text, trimmed, is copied into a record field.
struct TextEditRow {
    int controlId;
    std::string ConnectionSettings::*field;
};
constexpr int kTextEditRowCount = 3;
extern const TextEditRow kProxyTextEdits[kTextEditRowCount];

// The port edits: the decimal value of the text (as atoi), or the port's default when
// the edit is empty.
struct PortEditRow {
    int controlId;
    std::int32_t ConnectionSettings::*field;
    std::int32_t emptyValue;
};
constexpr int kPortEditRowCount = 2;
extern const PortEditRow kProxyPortEdits[kPortEditRowCount];

// The row of a control id, or null when the control is not such an edit.
const TextEditRow* FindTextEdit(int controlId) noexcept;
const PortEditRow* FindPortEdit(int controlId) noexcept;

std::int32_t PortFromEditText(const PortEditRow& row, std::string_view text) noexcept;

// The record changes of the page's handlers. A route change sets route alone and leaves
// modified as it was; every other edit sets modified.
void StoreRouteSelection(ConnectionSettings& record, int selection, const RouteListIndices& indices) noexcept;
void StoreEditedText(ConnectionSettings& record, const TextEditRow& row, std::string_view text);
void StoreEditedPort(ConnectionSettings& record, const PortEditRow& row, std::string_view text) noexcept;
void StoreDialUpCheck(ConnectionSettings& record, bool checked) noexcept;

}  // namespace proxy_page
