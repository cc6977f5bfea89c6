// The names of routes, connection types and login types: the English text each page's list
// shows (taken from the pages' own tables and string table) and a short keyword for
// scripts. Lookups accept either, in any case. Portable.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "connection/connection_settings.h"
#include "pages/connection_page_rules.h"

namespace vqctool {

// The list text of the Proxy page's entry for a route value (0, 1, 2); empty for another.
std::string RouteText(std::int32_t route);
// The route the Proxy page opens with for the record, by its list text.
std::string ShownRouteText(const ConnectionSettings& record);
std::string ConnectionTypeText(connection_page::ConnectionType type);
std::string LoginTypeText(connection_page::LoginType type);

const char* RouteKeyword(std::int32_t route) noexcept;
const char* ConnectionTypeKeyword(connection_page::ConnectionType type) noexcept;
const char* LoginTypeKeyword(connection_page::LoginType type) noexcept;

std::optional<std::int32_t> RouteByName(std::string_view name);
std::optional<connection_page::ConnectionType> ConnectionTypeByName(std::string_view name);
std::optional<connection_page::LoginType> LoginTypeByName(std::string_view name);

// Every accepted name of a kind, "keyword" or "keyword (Page text)", comma-separated, for
// messages and the help.
std::string RouteNames();
std::string ConnectionTypeNames();
std::string LoginTypeNames();

}  // namespace vqctool
