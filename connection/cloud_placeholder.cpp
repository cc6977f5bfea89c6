#include "connection/cloud_placeholder.h"

namespace cloud_placeholder {

bool LeaveUnopenedForIcon(std::uint32_t attributes) noexcept {
    if (attributes == kQueryFailed) return false;
    return (attributes & (kOffline | kRecallOnOpen | kRecallOnDataAccess)) != 0;
}

}  // namespace cloud_placeholder
