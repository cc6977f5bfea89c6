#include "connection/address_split.h"

#include <string_view>

#include "common/ansi_text.h"

bool SplitAddress(const char* text, std::string* userOut, std::string* hostOut, std::int32_t* portOut) {
    if (!text) return false;
    const std::string_view address(text);
    constexpr std::ptrdiff_t kNone = -1;

    const std::size_t atFound = address.find('@');
    const std::ptrdiff_t at = atFound == std::string_view::npos ? kNone : static_cast<std::ptrdiff_t>(atFound);
    const std::size_t colonFound = address.find(':');
    const std::ptrdiff_t colon = colonFound == std::string_view::npos ? kNone : static_cast<std::ptrdiff_t>(colonFound);

    const std::string_view user = at == kNone ? std::string_view() : address.substr(0, at);

    const std::size_t hostStart = static_cast<std::size_t>(at + 1);
    std::string_view host;
    std::string_view portText;
    if (colon > 0) {
        // The host ends at the colon; a colon before the '@' gives a negative length.
        const std::ptrdiff_t length = colon - (at + 1);
        if (length > 0) host = address.substr(hostStart, static_cast<std::size_t>(length));
        portText = address.substr(static_cast<std::size_t>(colon) + 1);
    } else {
        host = address.substr(hostStart);
        if (colon == 0) portText = address.substr(1);
    }

    if (userOut && !user.empty()) userOut->assign(user);
    if (hostOut) hostOut->assign(host);
    if (portOut && !portText.empty()) *portOut = ansi_text::ParseDecimal(portText);
    return true;
}
