// Tells the user that Apply could not write the connection file: one modal message box
// owned by the sheet, titled as the sheet is, naming the file and the system's text for the
// error, and whether the file's old content is gone too. Returns when the user closes the box.
#pragma once

#include <windows.h>

#include <string>

void ReportSaveFailure(HWND sheet, const std::string& path, DWORD error, bool oldContentLost) noexcept;

// The system's own text for a Windows error in the user's language; empty when it has none.
std::string SystemTextForError(DWORD error);
