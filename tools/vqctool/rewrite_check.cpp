#include "tools/vqctool/rewrite_check.h"

#include <algorithm>

#include "pages/connection_page_rules.h"
#include "pages/proxy_page_rules.h"
#include "tools/vqctool/record_fields.h"
#include "tools/vqctool/type_names.h"

namespace vqctool {

namespace cp = connection_page;

namespace {

// Clients older than this know no proxy or broker options at all.
constexpr std::int32_t kFirstClientWithRoutes = 620;

bool IsRouteField(const RecordField& field) noexcept {
    using S = ConnectionSettings;
    return field.text == &S::proxyHost || field.text == &S::proxyUser || field.text == &S::brokerHost ||
           field.number == &S::proxyPort || field.number == &S::brokerPort || field.number == &S::route ||
           field.flag == &S::brokerUpperF;
}

std::string Version(std::int32_t version) { return "client " + std::to_string(version); }

std::string ReasonFor(const RecordField& field, const ConnectionSettings& before) {
    using S = ConnectionSettings;
    const std::int32_t version = before.clientVersion;
    if (field.flag == &S::optionT) return "-T is written but never read back";
    if (field.flag == &S::encrypt &&
        (version < cp::kEncryptionFromVersion || version == cp::kEncryptionMissingVersion))
        return Version(version) + " cannot take -l";
    if (IsRouteField(field) && version < kFirstClientWithRoutes)
        return Version(version) + " takes no proxy or broker (-c, -f)";
    if (field.text == &S::commandLine && before.commandLine.find('"') != std::string::npos)
        return "quotes in -C are not read back as written";
    return "not read back as it was";
}

}  // namespace

std::vector<CheckFinding> CompareRewrite(const ConnectionSettings& before, const ConnectionSettings& after) {
    std::vector<CheckFinding> findings;
    for (const RecordField& field : kRecordFields) {
        if (!field.settable || SameFieldValue(field, before, after)) continue;
        findings.push_back({field.name, FieldValueText(field, before), FieldValueText(field, after),
                            ReasonFor(field, before)});
    }
    return findings;
}

std::vector<CheckFinding> UnofferedSettings(const ConnectionSettings& record) {
    std::vector<CheckFinding> findings;
    const std::int32_t version = record.clientVersion;
    const cp::ConnectionType connection = cp::ConnectionTypeOf(record);
    // "vserver.dll" is a matter of the machine, not of the client version.
    if (!cp::IsOffered(cp::EntryOf(connection), &record, true))
        findings.push_back({"connection-type", ConnectionTypeText(connection), "",
                            Version(version) + " is not offered this connection type"});
    const cp::LoginType login = cp::LoginTypeOf(record);
    const std::vector<cp::LoginType> logins = cp::OfferedLoginTypes(&record, [] { return true; });
    if (std::find(logins.begin(), logins.end(), login) == logins.end())
        findings.push_back({"login-type", LoginTypeText(login), "", Version(version) + " is not offered this login type"});
    if (connection == cp::ConnectionType::Remote && version >= kFirstClientWithRoutes) {
        for (const RouteEntry& entry : kRouteEntries) {
            const bool used = entry.route == record.route &&
                              !(entry.route == kRouteBroker ? record.brokerHost : record.proxyHost).empty();
            if (used && entry.route != kRouteDirect && !IsRouteEntryOffered(entry, &record))
                findings.push_back({"routeName", RouteText(entry.route), "", Version(version) + " is not offered this route"});
        }
    }
    return findings;
}

std::string FindingText(const CheckFinding& finding) {
    const bool setting = finding.field == "connection-type" || finding.field == "login-type" || finding.field == "routeName";
    return finding.field + ": " + finding.before + (setting ? "" : " -> " + finding.after) + " (" + finding.reason + ")";
}

}  // namespace vqctool
