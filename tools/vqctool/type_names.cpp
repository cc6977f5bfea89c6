#include "tools/vqctool/type_names.h"

#include <array>

#include "common/ansi_text.h"
#include "pages/proxy_page_rules.h"
#include "resources/local_strings.h"

namespace vqctool {

namespace cp = connection_page;
namespace pp = proxy_page;

namespace {

// The English text of a string id; the table's English texts are ASCII.
std::string EnglishText(std::uint32_t id) {
    std::string text;
    if (const char16_t* wide = LocalStringText(id, kEnglishUK))
        for (; *wide; ++wide) text.push_back(*wide < 0x80 ? static_cast<char>(*wide) : '?');
    return text;
}

constexpr std::array<const char*, pp::kRouteEntryCount> kRouteKeywords = {"direct", "proxy", "broker"};
constexpr std::array<const char*, cp::kConnectionTypeCount> kConnectionKeywords = {"remote", "local", "discovery"};
constexpr std::array<const char*, cp::kLoginTypeCount> kLoginKeywords = {
    "password", "cache-password", "text-window", "nt-domain", "nt-no-logon", "windows-domain"};

const pp::RouteEntry* RouteEntryOf(std::int32_t route) noexcept {
    for (const pp::RouteEntry& entry : pp::kRouteEntries)
        if (entry.route == route) return &entry;
    return nullptr;
}

// A name on the command line stands for a list's entry when it is the entry's keyword or the
// entry's English text, in either case.
bool NamesEntry(std::string_view name, std::string_view keyword, std::uint32_t textId) {
    return ansi_text::EqualsIgnoringCase(name, keyword) || ansi_text::EqualsIgnoringCase(name, EnglishText(textId));
}

template <typename Keywords, typename TextOf>
std::string NameList(const Keywords& keywords, TextOf textOf) {
    std::string list;
    for (std::size_t i = 0; i < keywords.size(); ++i) {
        if (!list.empty()) list += ", ";
        list += std::string(keywords[i]) + " (" + textOf(i) + ")";
    }
    return list;
}

}  // namespace

std::string RouteText(std::int32_t route) {
    const pp::RouteEntry* entry = RouteEntryOf(route);
    return entry ? EnglishText(entry->textId) : std::string();
}

std::string ShownRouteText(const ConnectionSettings& record) {
    return EnglishText(pp::kRouteEntries[pp::InitialRouteEntry(&record)].textId);
}

std::string ConnectionTypeText(cp::ConnectionType type) { return EnglishText(cp::EntryOf(type).textId); }

std::string LoginTypeText(cp::LoginType type) { return EnglishText(cp::EntryOf(type).textId); }

const char* RouteKeyword(std::int32_t route) noexcept {
    for (int i = 0; i < pp::kRouteEntryCount; ++i)
        if (pp::kRouteEntries[i].route == route) return kRouteKeywords[static_cast<std::size_t>(i)];
    return "";
}

const char* ConnectionTypeKeyword(cp::ConnectionType type) noexcept {
    return kConnectionKeywords[static_cast<std::size_t>(type)];
}

const char* LoginTypeKeyword(cp::LoginType type) noexcept { return kLoginKeywords[static_cast<std::size_t>(type)]; }

std::optional<std::int32_t> RouteByName(std::string_view name) {
    for (int i = 0; i < pp::kRouteEntryCount; ++i)
        if (NamesEntry(name, kRouteKeywords[static_cast<std::size_t>(i)], pp::kRouteEntries[i].textId))
            return pp::kRouteEntries[i].route;
    return std::nullopt;
}

std::optional<cp::ConnectionType> ConnectionTypeByName(std::string_view name) {
    for (const cp::ConnectionTypeEntry& entry : cp::kConnectionTypes)
        if (NamesEntry(name, ConnectionTypeKeyword(entry.type), entry.textId)) return entry.type;
    return std::nullopt;
}

std::optional<cp::LoginType> LoginTypeByName(std::string_view name) {
    for (const cp::LoginTypeEntry& entry : cp::kLoginTypes)
        if (NamesEntry(name, LoginTypeKeyword(entry.type), entry.textId)) return entry.type;
    return std::nullopt;
}

std::string RouteNames() {
    return NameList(kRouteKeywords, [](std::size_t i) { return EnglishText(pp::kRouteEntries[i].textId); });
}

std::string ConnectionTypeNames() {
    return NameList(kConnectionKeywords,
                    [](std::size_t i) { return ConnectionTypeText(static_cast<cp::ConnectionType>(i)); });
}

std::string LoginTypeNames() {
    return NameList(kLoginKeywords, [](std::size_t i) { return LoginTypeText(static_cast<cp::LoginType>(i)); });
}

}  // namespace vqctool
