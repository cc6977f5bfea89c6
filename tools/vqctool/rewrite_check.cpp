#include "tools/vqctool/rewrite_check.h"

#include <algorithm>
#include <string_view>

#include "pages/connection_page_rules.h"
#include "pages/proxy_page_rules.h"
#include "tools/vqctool/record_fields.h"
#include "tools/vqctool/type_names.h"

namespace vqctool {

namespace cp = connection_page;
namespace pp = proxy_page;

namespace {

// Clients older than this know no proxy or broker options at all.
constexpr std::int32_t kFirstClientWithRoutes = 620;

bool IsRouteField(const RecordField& field) noexcept {
    using S = ConnectionSettings;
    return field.text == &S::proxyHost || field.text == &S::proxyUser || field.text == &S::brokerHost ||
           field.number == &S::proxyPort || field.number == &S::brokerPort || field.number == &S::route ||
           field.flag == &S::brokerUpperF;
}

// The option letters the reader lays over the record, and those of them that take the next
// argument as their value.
constexpr std::string_view kReadLetters = "-FfIiKLMNRSsVacdhluv";
constexpr std::string_view kLettersWithValue = "FfISVachuv";

bool IsCommandLineOption(const std::string& element) noexcept {
    return element.size() > 1 && element[0] == '-' && element[1] == 'C';
}

// The option elements before -C, without the values of the options that take one.
std::vector<std::string> OptionElements(const std::vector<std::string>& arguments) {
    std::vector<std::string> options;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string& element = arguments[i];
        if (IsCommandLineOption(element)) break;
        if (element.size() < 2 || element[0] != '-') continue;
        options.push_back(element);
        if (kLettersWithValue.find(element[1]) != std::string_view::npos) ++i;  // its value, whatever it looks like
    }
    return options;
}

// The elements after -C (empty when there is none).
std::vector<std::string> CommandArguments(const std::vector<std::string>& arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i)
        if (IsCommandLineOption(arguments[i]))
            return {arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1, arguments.end()};
    return {};
}

// The arguments as a command line would show them: those with a blank in double quotes.
std::string Shown(const std::vector<std::string>& arguments) {
    std::string text;
    for (const std::string& argument : arguments) {
        if (!text.empty()) text += ' ';
        text += argument.find(' ') != std::string::npos ? "\"" + argument + "\"" : argument;
    }
    return text;
}

std::string Version(std::int32_t version) { return "client " + std::to_string(version); }

std::string ReasonFor(const RecordField& field, const ConnectionSettings& before) {
    using S = ConnectionSettings;
    const std::int32_t version = before.clientVersion;
    if (field.flag == &S::optionT) return "-T is written but never read back";
    if (field.flag == &S::encrypt && (version < cp::kEncryptionFromVersion || version == cp::kEncryptionMissingVersion))
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
        findings.push_back(
            {field.name, FieldValueText(field, before), FieldValueText(field, after), ReasonFor(field, before)});
    }
    return findings;
}

std::vector<CheckFinding> CompareArguments(const std::vector<std::string>& file,
                                           const std::vector<std::string>& rewritten) {
    std::vector<CheckFinding> findings;
    const std::vector<std::string> written = OptionElements(rewritten);
    for (const std::string& element : OptionElements(file)) {
        const char letter = element[1];
        if (kReadLetters.find(letter) != std::string_view::npos) continue;
        if (std::find(written.begin(), written.end(), element) != written.end()) continue;
        findings.push_back({"option " + element, element, "",
                            letter == 'T' ? "-T is never read back, so a rewrite drops it"
                                          : element + " is never read, so a rewrite drops it"});
    }
    const std::vector<std::string> before = CommandArguments(file);
    const std::vector<std::string> after = CommandArguments(rewritten);
    if (before != after) {
        const bool quoted = std::any_of(before.begin(), before.end(),
                                        [](const std::string& a) { return a.find(' ') != std::string::npos; });
        findings.push_back({"commandLine", Shown(before), Shown(after),
                            quoted ? "quotes in -C are lost" : "-C is not written back as it was"});
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
        findings.push_back(
            {"login-type", LoginTypeText(login), "", Version(version) + " is not offered this login type"});
    if (connection == cp::ConnectionType::Remote && version >= kFirstClientWithRoutes) {
        for (const pp::RouteEntry& entry : pp::kRouteEntries) {
            const bool used = entry.route == record.route &&
                              !(entry.route == kRouteBroker ? record.brokerHost : record.proxyHost).empty();
            if (used && entry.route != kRouteDirect && !pp::IsRouteEntryOffered(entry, &record))
                findings.push_back(
                    {"routeName", RouteText(entry.route), "", Version(version) + " is not offered this route"});
        }
    }
    return findings;
}

std::string FindingText(const CheckFinding& finding) {
    const bool setting = finding.field == "connection-type" || finding.field == "login-type" ||
                         finding.field == "routeName" || finding.field.rfind("option ", 0) == 0;
    return finding.field + ": " + finding.before + (setting ? "" : " -> " + finding.after) + " (" + finding.reason +
           ")";
}

}  // namespace vqctool
