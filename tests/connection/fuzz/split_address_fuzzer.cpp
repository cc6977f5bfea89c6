// SplitAddress on any text: never reads outside it, and the parts come from it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "connection/address_split.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);  // up to a zero byte
    // The sentinel holds a zero byte, which no part cut from a C string can.
    const std::string unset("\0unset", 6);
    std::string user = unset, host = unset;
    std::int32_t port = 0x5A5A5A5A;
    if (!SplitAddress(text.c_str(), &user, &host, &port)) std::abort();
    const std::string visible(text.c_str());
    if (host == unset) std::abort();  // the host is always assigned
    if (visible.find(host) == std::string::npos) std::abort();
    if (user != unset && (user.empty() || visible.compare(0, user.size(), user) != 0)) std::abort();
    if (visible.find(':') == std::string::npos && port != 0x5A5A5A5A) std::abort();
    return 0;
}
