// The icon's hex text parser on any text: at most two images handed back, none larger
// than the limit, and a refused header hands back nothing.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "connection/icon_stream.h"

namespace {

struct Checked : IconImageSink {
    int taken = 0;
    void TakeImage(std::uint32_t index, const std::uint8_t* bytes, std::uint32_t size) override {
        if (index != static_cast<std::uint32_t>(taken) || index > 1 || size > kMaxIconImageBytes) std::abort();
        volatile std::uint8_t sum = 0;
        for (std::uint32_t i = 0; i < size; ++i) sum = static_cast<std::uint8_t>(sum + bytes[i]);
        ++taken;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Checked sink;
    const std::int32_t result = ParseIconStream(std::string_view(reinterpret_cast<const char*>(data), size), sink);
    if (result != 0 && result != 1) std::abort();
    if (result == 0 && sink.taken != 0) std::abort();
    return 0;
}
