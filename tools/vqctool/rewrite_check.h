// What writing a record for a client version would lose or change: the fields that differ
// once the writer's text is read back, each with the reason as far as it is known, and the
// settings the pages do not offer that client (a route, connection or login type it cannot
// take). Portable: the Windows side does the writing and the reading.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "connection/connection_settings.h"

namespace vqctool {

struct CheckFinding {
    std::string field;   // a field name, or "connection-type", "login-type", "routeName", "icon"
    std::string before;  // the value now
    std::string after;   // the value after the rewrite ("" for a setting the client cannot take)
    std::string reason;
};

// before: the record as read, with the client version set; after: the same record read back
// from what the writer made of it.
std::vector<CheckFinding> CompareRewrite(const ConnectionSettings& before, const ConnectionSettings& after);

// What the two texts' argument vectors (program path first, as the reader splits them) show
// that the records cannot: options in the file the reader never reads, which a rewrite
// therefore drops (-T among them), and -C arguments that do not come back the same (quotes).
std::vector<CheckFinding> CompareArguments(const std::vector<std::string>& file,
                                           const std::vector<std::string>& rewritten);

// The settings of the record that the pages would not offer its client version.
std::vector<CheckFinding> UnofferedSettings(const ConnectionSettings& record);

// "field: before -> after (reason)" or "field: before (reason)".
std::string FindingText(const CheckFinding& finding);

}  // namespace vqctool
