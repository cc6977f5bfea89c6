#include "shellext/client_version.h"

#include <string>

#include "common/ansi_text.h"

std::int32_t ClientVersionFromProductVersion(std::string_view productVersion) {
    std::string joined;
    int fields = 0;
    std::size_t position = 0;
    while (fields < 2) {
        position = productVersion.find_first_not_of('.', position);
        if (position == std::string_view::npos) break;
        std::size_t end = productVersion.find('.', position);
        if (end == std::string_view::npos) end = productVersion.size();
        joined.append(productVersion.substr(position, end - position));
        ++fields;
        position = end;
    }
    return ansi_text::ParseDecimal(joined);
}
