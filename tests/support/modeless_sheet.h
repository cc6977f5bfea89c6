// A modeless property sheet of page handles, as the shell shows one, and the message pump
// that lets its windows do their work between a test's (or a benchmark's) steps.
#pragma once

#include <windows.h>
#include <prsht.h>

#include <vector>

namespace test_support {

// Dispatches every message waiting in this thread's queue.
void PumpMessages();

// Shows the pages in a modeless PropertySheetA with PSH_MODELESS | extraFlags and the
// caption, then pumps messages. Answers the sheet's window in the form GetParent and the
// other window calls give it; null when the sheet could not be made.
HWND ShowModelessSheet(std::vector<HPROPSHEETPAGE>& pages, const char* caption, DWORD extraFlags = 0);

}  // namespace test_support
