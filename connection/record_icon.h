// One of the record's two icons. When the reader made it from the file's -I image, the
// image stays beside it, and a copy (what the shell's icon request hands out) is made
// from the image again, exactly as the reader made the icon: under Wine, CopyIcon costs
// about ten times as much as making the icon did. An icon from anywhere else is copied
// with CopyIcon.
#pragma once

#include <windows.h>

#include "common/win_handles.h"
#include "connection/icon_codec.h"

class RecordIcon {
public:
    RecordIcon() = default;
    RecordIcon(const RecordIcon&) = delete;
    RecordIcon& operator=(const RecordIcon&) = delete;

    HICON Get() const noexcept { return handle_.Get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(handle_); }

    // Takes over an icon from elsewhere (destroying the one held) and forgets the image.
    void Reset(HICON icon = nullptr) noexcept;
    // Gives the icon up to the caller and forgets the image.
    HICON Detach() noexcept;
    // Takes over an icon the reader decoded, with its image.
    void ResetDecoded(DecodedIcon&& decoded) noexcept;

    // A new icon with the same image, owned by the caller; null when none is held.
    HICON Copy() const;

    // What the reader decoded the icon from (its image block empty otherwise), so that the
    // image's format can be told without asking Windows for the icon's bitmaps.
    const DecodedIcon& Decoded() const noexcept { return source_; }

private:
    UniqueIcon handle_;
    DecodedIcon source_;  // handle unused; image empty unless the icon was decoded
};
