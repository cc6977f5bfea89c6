// What the Connection page offers, shows and enables, as tables and pure functions of the
// record's fields, the client version, whether "vserver.dll" sits beside the module and
// the user's domain answer. The page's window code only applies what these return.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "connection/connection_settings.h"
#include "resources/dialog_ids.h"

namespace connection_page {

// The Connection page's control ids run from the first to the last without a gap.
constexpr int kFirstControlId = dialog_ids::kConnectionTypeLabel;
constexpr int kLastControlId = dialog_ids::kLegacyProtocolCheck;

// Client versions that gate entries and controls.
constexpr std::int32_t kDiscoveryFromVersion = 665;    // "Discover service" offered
constexpr std::int32_t kDomainLoginFromVersion = 690;  // domain credentials replace NT logins
constexpr std::int32_t kEncryptionFromVersion = 620;
constexpr std::int32_t kEncryptionMissingVersion = 640;  // this one client never gets -l
constexpr std::int32_t kLegacyProtocolFirstVersion = 665;
constexpr std::int32_t kLegacyProtocolLastVersion = 689;

// Service ports the client uses when the file names none.
constexpr std::int32_t kDefaultServicePort = 790;
constexpr std::int32_t kDefaultEncryptedServicePort = 4790;

// ---- Connection types (kConnectionTypeList, sorted by the combo box) ----

enum class ConnectionType : std::uint8_t { Remote, Local, Discovery };
constexpr std::size_t kConnectionTypeCount = 3;

enum class ConnectionTypeOffered : std::uint8_t {
    Always,
    WhenServerModulePresent,         // "vserver.dll" beside this module
    WhenRecordFromDiscoveryVersion,  // a record whose client is 665 or newer
};

struct ConnectionTypeEntry {
    ConnectionType type;
    std::uint32_t textId;  // string table id of the list text
    ConnectionTypeOffered offered;
    std::uint8_t localConnect;  // record fields set when the entry is selected
    std::uint8_t optionK;
    int mask;  // layout mask (see kLayoutTable)
};

// Indexed by ConnectionType.
extern const std::array<ConnectionTypeEntry, kConnectionTypeCount> kConnectionTypes;

const ConnectionTypeEntry& EntryOf(ConnectionType type) noexcept;

// Whether the entry goes into the list; record is null for a page made without one.
bool IsOffered(const ConnectionTypeEntry& entry, const ConnectionSettings* record, bool serverModulePresent) noexcept;

// The entries to add, in table order (the list sorts them itself).
std::vector<ConnectionType> OfferedConnectionTypes(const ConnectionSettings* record, bool serverModulePresent);

// List positions of the entries after filling, by ConnectionType; -1 when not added.
using ConnectionTypeIndices = std::array<int, kConnectionTypeCount>;

// The type a list selection stands for: the remote or local entry when the selection is
// that entry's (added) position; anything else, no selection included, is discovery.
ConnectionType ConnectionTypeAt(int selection, const ConnectionTypeIndices& indices) noexcept;

// The type a record opens with: local wins over discovery, discovery needs optionK.
ConnectionType ConnectionTypeOf(const ConnectionSettings& record) noexcept;

// Sets localConnect and optionK as the type's entry says.
void StoreConnectionType(ConnectionSettings& record, ConnectionType type) noexcept;

// ---- Login types (kLoginTypeList, in table order) ----

enum class LoginType : std::uint8_t {
    AlwaysRequirePassword,
    CachePassword,
    TextWindow,
    NtDomain,
    NtNoLogon,
    WindowsDomainCredentials,
};
constexpr std::size_t kLoginTypeCount = 6;

enum class LoginTypeOffered : std::uint8_t {
    Always,
    BelowDomainLoginVersion,         // client older than 690
    FromDomainLoginVersionInDomain,  // client 690 or newer and the user is in a domain
};

using LoginFlag = std::uint8_t ConnectionSettings::*;

struct LoginTypeEntry {
    LoginType type;
    std::uint32_t textId;
    LoginTypeOffered offered;
    LoginFlag flag;  // set on selection, the other four cleared; null for none
    int mask;        // enabling mask (see kLoginTypeEnableTable)
};

// In the order the entries are added to the list.
extern const std::array<LoginTypeEntry, kLoginTypeCount> kLoginTypes;

// The five flags of which a selection sets at most one.
extern const std::array<LoginFlag, 5> kLoginFlags;

const LoginTypeEntry& EntryOf(LoginType type) noexcept;

// The client version the lists are judged by: the record's, or the unknown version's
// when the page has no record.
std::int32_t ClientVersionOf(const ConnectionSettings* record) noexcept;

// The entries to add, in order. askInDomain is called at most once, and only for a record
// whose client is 690 or newer; without a record the domain entry is never offered.
std::vector<LoginType> OfferedLoginTypes(const ConnectionSettings* record, const std::function<bool()>& askInDomain);

using LoginTypeIndices = std::array<int, kLoginTypeCount>;

// The login type at a list position; none when no added entry sits there.
std::optional<LoginType> LoginTypeAt(int selection, const LoginTypeIndices& indices) noexcept;

// The type a record opens with, by priority: cache password, NT domain, Windows domain
// credentials, NT no logon, text window, else always require password.
LoginType LoginTypeOf(const ConnectionSettings& record) noexcept;

// Sets the type's own flag and clears the other four.
void StoreLoginType(ConnectionSettings& record, LoginType type) noexcept;

// ---- Layout rule: the connection type decides what is shown ----

struct LayoutRow {
    int mask;
    std::array<int, 12> controls;  // unused places hold 0
};
extern const std::array<LayoutRow, 4> kLayoutTable;

enum class LayoutAction : std::uint8_t { Show, Hide, Enable };

struct LayoutStep {
    int controlId;
    LayoutAction action;
    friend bool operator==(const LayoutStep&, const LayoutStep&) = default;
};

// The steps in the order they are carried out: show or hide every control of the table
// by the type's mask (table order), enable the remote login edit for the discovery mask,
// then, only with a record, the version hidings of encryption (below 620 or exactly 640)
// and the legacy protocol (outside 665..689), which therefore win over the mask.
std::vector<LayoutStep> PlanLayout(ConnectionType selection, const ConnectionSettings* record);

// ---- Login-type rule: the login type decides what is enabled ----

struct EnableRow {
    int controlId;
    int mask;
};
extern const std::array<EnableRow, 5> kLoginTypeEnableTable;

enum class LegacyProtocolCheck : std::uint8_t { Leave, Check, Uncheck };

struct EnableStep {
    int controlId;
    bool enabled;
    friend bool operator==(const EnableStep&, const EnableStep&) = default;
};

struct LoginTypeRule {
    std::vector<EnableStep> enable;   // in table order
    LegacyProtocolCheck legacyCheck;  // applied to the check box only, never to the record
};

// No selection counts as "Always require password".
LoginTypeRule PlanLoginTypeRule(std::optional<LoginType> selection);

// ---- Texts and numbers ----

// Edits whose trimmed text goes straight into a text field of the record.
struct TextEditField {
    int controlId;
    std::string ConnectionSettings::*field;
};
// In the order the page fills them when it opens.
extern const std::array<TextEditField, 7> kTextEdits;

const TextEditField* FindTextEdit(int controlId) noexcept;

// Check boxes and their flags; the legacy protocol box deliberately leaves `modified` alone.
struct CheckBoxField {
    int controlId;
    std::uint8_t ConnectionSettings::*flag;
    bool setsModified;
};
extern const std::array<CheckBoxField, 2> kCheckBoxes;

const CheckBoxField* FindCheckBox(int controlId) noexcept;

// The port the client uses when none is written.
std::int32_t DefaultServicePort(bool encrypt) noexcept;

// The port edit's text when the page opens: empty for "not given" and for the default of
// the current encryption setting, the number otherwise.
std::string ServicePortText(std::int32_t servicePort, bool encrypt);

// The port an edit's text stands for: -1 for an empty edit, else atoi's value.
std::int32_t ServicePortFromText(std::string_view text) noexcept;

// The file that "vserver.dll" would be beside this module: the module's path with the part
// after its last backslash or slash replaced by the name (the whole path when it has neither).
std::string SiblingPath(std::string_view modulePath, std::string_view fileName);
constexpr char kServerModuleName[] = "vserver.dll";

// The server list: the recent hosts in their order, then the file's host when it is not
// empty and not already listed (exact match).
std::vector<std::string> ServerList(std::vector<std::string> recentHosts, const std::string& host);

}  // namespace connection_page
