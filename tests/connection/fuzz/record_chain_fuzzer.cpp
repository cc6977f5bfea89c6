// The whole chain on any file text: the reader makes a record of it, the writer writes the
// record for a client version taken from the input, the reader reads those bytes into a
// fresh record and the writer writes that again. The second text must be the first, byte
// for byte, wherever the writer and the reader are meant to agree (record_chain.h).
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "record_chain.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string difference =
        record_chain::CheckChain(std::string_view(reinterpret_cast<const char*>(data), size));
    if (difference.empty()) return 0;
    std::fputs(difference.c_str(), stderr);
    std::abort();
}
