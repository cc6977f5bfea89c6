// One of the record's two icons. When the reader made it from the file's -I image, the
// image stays beside it: the icon handler hands the reader's own handle out (the shell's
// icon request is the only one that ever sees it), and whatever asks the record for its icon
// afterwards (the pages) gets one made from the image again, exactly as the reader made it.
// Making an icon from its image is also how a second copy is made: under Wine, CopyIcon
// costs about ten times as much. An icon from anywhere else is copied with CopyIcon.
#pragma once

#include <windows.h>

#include "common/win_handles.h"
#include "connection/icon_codec.h"

class RecordIcon {
public:
    RecordIcon() = default;
    RecordIcon(const RecordIcon&) = delete;
    RecordIcon& operator=(const RecordIcon&) = delete;

    // The record's own icon, made from the image again when the one the reader made was
    // handed out; null when none is held (or the platform no longer takes the image).
    HICON Get() const noexcept;
    // Whether an icon is held: one the platform accepted, or the image it was made from.
    explicit operator bool() const noexcept { return handle_ || !source_.image.empty(); }

    // Takes over an icon from elsewhere (destroying the one held) and forgets the image.
    void Reset(HICON icon = nullptr) noexcept;
    // Gives the icon up to the caller and forgets the image.
    HICON Detach() noexcept;
    // Takes over an icon the reader decoded, with its image.
    void ResetDecoded(DecodedIcon&& decoded) noexcept;

    // A new icon with the same image, owned by the caller; null when none is held.
    HICON Copy() const;
    // An icon with the same image, owned by the caller: the reader's own handle when it is
    // still held (the record keeps the image and makes its own again when asked), a copy
    // otherwise; null when none is held.
    HICON HandOut();

    // What the reader decoded the icon from (its image block empty otherwise), so that the
    // image's format can be told without asking Windows for the icon's bitmaps.
    const DecodedIcon& Decoded() const noexcept { return source_; }

private:
    mutable UniqueIcon handle_;  // made again from source_ on demand once handed out
    DecodedIcon source_;         // handle unused; image empty unless the icon was decoded
};
