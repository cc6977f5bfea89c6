// Files a cloud provider (OneDrive, SharePoint) or offline files keep off the disk: opening
// one downloads it. The icon handler leaves such a file unopened, so that a folder view of
// many of them draws without fetching each; Properties, which the user asked for, reads it.
// Portable: the attribute bits are the file system's own numbers.
#pragma once

#include <cstdint>

namespace cloud_placeholder {

// The attribute bits that say the file's data is not on the disk. MinGW's headers lack the
// two recall bits, so every bit is named here with the value Windows gives it.
inline constexpr std::uint32_t kOffline = 0x00001000;             // FILE_ATTRIBUTE_OFFLINE
inline constexpr std::uint32_t kRecallOnOpen = 0x00040000;        // FILE_ATTRIBUTE_RECALL_ON_OPEN
inline constexpr std::uint32_t kRecallOnDataAccess = 0x00400000;  // FILE_ATTRIBUTE_RECALL_ON_DATA_ACCESS
// What the attribute query answers when it fails (INVALID_FILE_ATTRIBUTES): every bit set.
inline constexpr std::uint32_t kQueryFailed = 0xFFFFFFFF;

// Whether the icon handler leaves a file with these attributes unopened. A failed query
// says nothing about the file: it is opened as before.
bool LeaveUnopenedForIcon(std::uint32_t attributes) noexcept;

}  // namespace cloud_placeholder
