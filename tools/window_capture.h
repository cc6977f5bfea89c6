// Pictures of windows as they are on the screen, for the screenshots of the pages.
#pragma once

#include <windows.h>

#include <string>

namespace window_capture {

// Writes the whole window (frame included) as a 24-bit BMP file. False when the window could
// not be read or the file not written.
bool SaveWindowBitmap(HWND window, const std::string& path);

}  // namespace window_capture
