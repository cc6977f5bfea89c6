#include "pages/connection_page_rules.h"

#include <algorithm>

#include "common/ansi_text.h"
#include "resources/dialog_ids.h"

using namespace dialog_ids;

namespace connection_page {

const std::array<ConnectionTypeEntry, kConnectionTypeCount> kConnectionTypes = {{
    // clang-format off
    //  type                      text  offered                                          local K  mask
    {ConnectionType::Remote,    34, ConnectionTypeOffered::Always,                         0, 0, 1},
    {ConnectionType::Local,     35, ConnectionTypeOffered::WhenServerModulePresent,        1, 0, 2},
    // clang-format on
    {ConnectionType::Discovery, 36, ConnectionTypeOffered::WhenRecordFromDiscoveryVersion, 0, 1, 4},
}};

const std::array<LoginTypeEntry, kLoginTypeCount> kLoginTypes = {{
    // clang-format off
    //  type                                  text  offered                                          flag                            mask
    {LoginType::AlwaysRequirePassword,    28, LoginTypeOffered::Always,                         nullptr,                        0x01},
    {LoginType::CachePassword,            29, LoginTypeOffered::Always,                         &ConnectionSettings::optionR,   0x02},
    {LoginType::TextWindow,               30, LoginTypeOffered::Always,                         &ConnectionSettings::optionT,   0x04},
    {LoginType::NtDomain,                 31, LoginTypeOffered::BelowDomainLoginVersion,        &ConnectionSettings::optionN,   0x08},
    {LoginType::NtNoLogon,                33, LoginTypeOffered::BelowDomainLoginVersion,        &ConnectionSettings::optionL,   0x10},
    {LoginType::WindowsDomainCredentials, 32, LoginTypeOffered::FromDomainLoginVersionInDomain, &ConnectionSettings::optionNM,  0x20},
    // clang-format on
}};

const std::array<LoginFlag, 5> kLoginFlags = {
    &ConnectionSettings::optionR, &ConnectionSettings::optionT,  &ConnectionSettings::optionN,
    &ConnectionSettings::optionL, &ConnectionSettings::optionNM,
};

const std::array<LayoutRow, 4> kLayoutTable = {{
    {1,
     {kLoginLabel, kLoginEdit, kLegacyProtocolCheck, kServerLabel, kServerBox, kLoginTypeLabel, kLoginTypeList,
      kEncryptionCheck, kAnswerBackLabel, kAnswerBackEdit, kServicePortLabel, kServicePortEdit}},
    {2, {kCommandLineLabel, kCommandLineEdit, kStartDirectoryLabel, kStartDirectoryEdit}},
    {3, {kBookmarkLabel, kBookmarkEdit, kServiceNameLabel, kServiceNameEdit}},
    {4, {kDiscoveryLoginLabel, kDiscoveryLoginEdit}},
}};

const std::array<EnableRow, 5> kLoginTypeEnableTable = {{
    {kLoginEdit, 0x03},
    {kServiceNameEdit, 0x33},
    {kBookmarkEdit, 0x3B},
    {kEncryptionCheck, 0x2B},
    {kLegacyProtocolCheck, 0x03},
}};

const std::array<TextEditField, 7> kTextEdits = {{
    {kLoginEdit, &ConnectionSettings::login},
    {kDiscoveryLoginEdit, &ConnectionSettings::login},
    {kCommandLineEdit, &ConnectionSettings::localTarget},
    {kStartDirectoryEdit, &ConnectionSettings::startDirectory},
    {kBookmarkEdit, &ConnectionSettings::commandLine},
    {kServiceNameEdit, &ConnectionSettings::serviceName},
    {kAnswerBackEdit, &ConnectionSettings::answerBack},
}};

const std::array<CheckBoxField, 2> kCheckBoxes = {{
    {kEncryptionCheck, &ConnectionSettings::encrypt, true},
    {kLegacyProtocolCheck, &ConnectionSettings::noOptionM, false},
}};

const ConnectionTypeEntry& EntryOf(ConnectionType type) noexcept {
    return kConnectionTypes[static_cast<std::size_t>(type)];
}

const LoginTypeEntry& EntryOf(LoginType type) noexcept { return kLoginTypes[static_cast<std::size_t>(type)]; }

bool IsOffered(const ConnectionTypeEntry& entry, const ConnectionSettings* record, bool serverModulePresent) noexcept {
    switch (entry.offered) {
    case ConnectionTypeOffered::Always: return true;
    case ConnectionTypeOffered::WhenServerModulePresent: return serverModulePresent;
    case ConnectionTypeOffered::WhenRecordFromDiscoveryVersion:
        return record != nullptr && record->clientVersion >= kDiscoveryFromVersion;
    }
    return false;
}

std::vector<ConnectionType> OfferedConnectionTypes(const ConnectionSettings* record, bool serverModulePresent) {
    std::vector<ConnectionType> offered;
    for (const ConnectionTypeEntry& entry : kConnectionTypes)
        if (IsOffered(entry, record, serverModulePresent)) offered.push_back(entry.type);
    return offered;
}

ConnectionType ConnectionTypeAt(int selection, const ConnectionTypeIndices& indices) noexcept {
    // An entry that was not added has index -1, which must not match "no selection".
    for (ConnectionType type : {ConnectionType::Remote, ConnectionType::Local}) {
        const int index = indices[static_cast<std::size_t>(type)];
        if (index >= 0 && index == selection) return type;
    }
    return ConnectionType::Discovery;
}

ConnectionType ConnectionTypeOf(const ConnectionSettings& record) noexcept {
    if (record.localConnect) return ConnectionType::Local;
    if (!record.optionK) return ConnectionType::Remote;
    return ConnectionType::Discovery;
}

void StoreConnectionType(ConnectionSettings& record, ConnectionType type) noexcept {
    const ConnectionTypeEntry& entry = EntryOf(type);
    record.localConnect = entry.localConnect;
    record.optionK = entry.optionK;
}

std::int32_t ClientVersionOf(const ConnectionSettings* record) noexcept {
    return record ? record->clientVersion : kUnknownClientVersion;
}

std::vector<LoginType> OfferedLoginTypes(const ConnectionSettings* record, const std::function<bool()>& askInDomain) {
    const std::int32_t version = ClientVersionOf(record);
    std::vector<LoginType> offered;
    for (const LoginTypeEntry& entry : kLoginTypes) {
        bool add = false;
        switch (entry.offered) {
        case LoginTypeOffered::Always: add = true; break;
        case LoginTypeOffered::BelowDomainLoginVersion: add = version < kDomainLoginFromVersion; break;
        case LoginTypeOffered::FromDomainLoginVersionInDomain:
            add = record != nullptr && version >= kDomainLoginFromVersion && askInDomain && askInDomain();
            break;
        }
        if (add) offered.push_back(entry.type);
    }
    return offered;
}

std::optional<LoginType> LoginTypeAt(int selection, const LoginTypeIndices& indices) noexcept {
    if (selection < 0) return std::nullopt;
    for (const LoginTypeEntry& entry : kLoginTypes)
        if (indices[static_cast<std::size_t>(entry.type)] == selection) return entry.type;
    return std::nullopt;
}

LoginType LoginTypeOf(const ConnectionSettings& record) noexcept {
    if (record.optionR) return LoginType::CachePassword;
    if (record.optionN) return LoginType::NtDomain;
    if (record.optionNM) return LoginType::WindowsDomainCredentials;
    if (record.optionL) return LoginType::NtNoLogon;
    if (record.optionT) return LoginType::TextWindow;
    return LoginType::AlwaysRequirePassword;
}

void StoreLoginType(ConnectionSettings& record, LoginType type) noexcept {
    const LoginFlag own = EntryOf(type).flag;
    for (LoginFlag flag : kLoginFlags) record.*flag = (flag == own) ? 1 : 0;
}

std::vector<LayoutStep> PlanLayout(ConnectionType selection, const ConnectionSettings* record) {
    const int mask = EntryOf(selection).mask;
    std::vector<LayoutStep> steps;
    for (const LayoutRow& row : kLayoutTable)
        for (int control : row.controls)
            if (control != 0) steps.push_back({control, (row.mask & mask) ? LayoutAction::Show : LayoutAction::Hide});
    if (mask == EntryOf(ConnectionType::Discovery).mask) steps.push_back({kLoginEdit, LayoutAction::Enable});
    if (record) {
        const std::int32_t version = record->clientVersion;
        if (version < kEncryptionFromVersion || version == kEncryptionMissingVersion)
            steps.push_back({kEncryptionCheck, LayoutAction::Hide});
        if (version < kLegacyProtocolFirstVersion || version > kLegacyProtocolLastVersion)
            steps.push_back({kLegacyProtocolCheck, LayoutAction::Hide});
    }
    return steps;
}

LoginTypeRule PlanLoginTypeRule(std::optional<LoginType> selection) {
    const LoginType type = selection.value_or(LoginType::AlwaysRequirePassword);
    const int mask = EntryOf(type).mask;
    LoginTypeRule rule{{}, LegacyProtocolCheck::Leave};
    for (const EnableRow& row : kLoginTypeEnableTable) rule.enable.push_back({row.controlId, (row.mask & mask) != 0});
    if (type == LoginType::NtDomain) rule.legacyCheck = LegacyProtocolCheck::Check;
    if (type == LoginType::WindowsDomainCredentials) rule.legacyCheck = LegacyProtocolCheck::Uncheck;
    return rule;
}

const TextEditField* FindTextEdit(int controlId) noexcept {
    for (const TextEditField& edit : kTextEdits)
        if (edit.controlId == controlId) return &edit;
    return nullptr;
}

const CheckBoxField* FindCheckBox(int controlId) noexcept {
    for (const CheckBoxField& box : kCheckBoxes)
        if (box.controlId == controlId) return &box;
    return nullptr;
}

std::int32_t DefaultServicePort(bool encrypt) noexcept {
    return encrypt ? kDefaultEncryptedServicePort : kDefaultServicePort;
}

std::string ServicePortText(std::int32_t servicePort, bool encrypt) {
    if (servicePort == kServicePortNotGiven || servicePort == DefaultServicePort(encrypt)) return {};
    std::string text;
    ansi_text::AppendFormat(text, "%d", servicePort);
    return text;
}

std::int32_t ServicePortFromText(std::string_view text) noexcept {
    if (text.empty()) return kServicePortNotGiven;
    return ansi_text::ParseDecimal(text);
}

std::string SiblingPath(std::string_view modulePath, std::string_view fileName) {
    const std::size_t separator = modulePath.find_last_of("\\/");
    std::string path(separator == std::string_view::npos ? std::string_view{} : modulePath.substr(0, separator + 1));
    path += fileName;
    return path;
}

std::vector<std::string> ServerList(std::vector<std::string> recentHosts, const std::string& host) {
    if (!host.empty() && std::find(recentHosts.begin(), recentHosts.end(), host) == recentHosts.end())
        recentHosts.push_back(host);
    return recentHosts;
}

}  // namespace connection_page
