#include "pages/save_failure_report.h"

#include "common/window_boundary.h"
#include "common/win_handles.h"
#include "pages/save_failure_text.h"

std::string SystemTextForError(DWORD error) {
    char* buffer = nullptr;
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                       nullptr, error, 0, reinterpret_cast<char*>(&buffer), 0, nullptr);
    const UniqueLocalMemory owned(buffer);
    return length > 0 && buffer ? std::string(buffer, length) : std::string();
}

void ReportSaveFailure(HWND sheet, const std::string& path, DWORD error, bool oldContentLost) noexcept {
    GuardWindowCall(
        [&] {
            const std::string text = SaveFailureText(path, SystemTextForError(error), error, oldContentLost);
            char title[256] = {};
            GetWindowTextA(sheet, title, static_cast<int>(sizeof(title)));
            MessageBoxA(sheet, text.c_str(), title, MB_OK | MB_ICONERROR);
        },
        [] {});
}
