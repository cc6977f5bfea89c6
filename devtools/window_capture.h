// Pictures of windows as they are on the screen, for the screenshots of the pages.
#pragma once

#include <windows.h>

#include <string>

namespace window_capture {

// Writes the whole window (frame included) as a 24-bit PNG file through the system's
// imaging component (WIC). Joins a COM apartment on the calling thread for the time it
// takes. False when the window could not be read or the file not written.
bool SaveWindowPng(HWND window, const std::string& path);

}  // namespace window_capture
