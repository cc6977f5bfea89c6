// The icon pair of a connection file to and from the hex text that travels as the
// argument of -I: icon handles <-> DIB bytes here, the stream and the text in icon_stream.
// This is the icon block's one owner: the reader and the writer call it and RecordIcon keeps
// its DecodedIcon to remake copies, while it includes none of them, only icon_stream below.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

#include "common/win_handles.h"

// With out null only measures; otherwise writes the text at *out (no terminator) and
// advances *out past it. Returns the number of characters, line breaks included, plus
// one. icon must be set; smallIcon may be null and then gives a one-image stream. Returns
// 0 (nothing written) when icon is null or its bitmaps cannot be read. A black-and-white
// icon (no colour bitmap) becomes a 1-bit image with a black-and-white colour table.
std::uint64_t EncodeIcons(char** out, HICON icon, HICON smallIcon);

// Sets both outputs to null, then makes image 0 into *iconOut at its own size and image 1
// into *smallIconOut at the system small-icon size. text may be null (no icons). The
// result is ParseIconStream's: 0 for a refused header, else 1 (see icon_stream.h).
std::int32_t DecodeIcons(const char* text, HICON* iconOut, HICON* smallIconOut);

// An icon the decoder made, with the image block it was made from and the size it was
// asked for (0 by 0: the image's own size). The icon is the caller's.
struct DecodedIcon {
    UniqueIcon handle;
    std::vector<std::uint8_t> image;
    int width = 0;
    int height = 0;
};

// DecodeIcons, keeping each image block beside its icon (an icon that could not be made
// keeps no block).
std::int32_t DecodeIconImages(const char* text, DecodedIcon* icon, DecodedIcon* smallIcon);

// A new icon made from a decoded image exactly as the decoder made the first one; null
// when the block is empty or refused.
HICON RemakeIcon(const DecodedIcon& decoded) noexcept;
