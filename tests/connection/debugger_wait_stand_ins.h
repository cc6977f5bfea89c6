// Stand-ins for the reader's debugger wait (SetDebuggerWaitHooks): a debugger always present,
// every break counted in g_breaks, no sleeping and nothing announced, so a test can count
// the waits a --debug element starts without waiting.
#pragma once

#include <windows.h>

namespace debugger_wait_stand_ins {

inline int g_breaks = 0;
inline bool AlwaysPresent() { return true; }
inline void CountBreak() { ++g_breaks; }
inline void NoSleep(DWORD) {}
inline void NoAnnounce(const char*) {}

}  // namespace debugger_wait_stand_ins
