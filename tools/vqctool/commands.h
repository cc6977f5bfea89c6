// vqctool's commands, each over a checked command line; each returns the exit status:
// 0 done, 1 some file failed (or, for check, would change), 2 a usage error found late
// (an icon source without the icon asked for).
#pragma once

#include "tools/vqctool/command_line.h"

namespace vqctool {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

int RunShow(const Invocation& invocation);
int RunSet(const Invocation& invocation);
int RunNew(const Invocation& invocation);
int RunRewrite(const Invocation& invocation);
int RunCheck(const Invocation& invocation);
int RunIconSet(const Invocation& invocation);
int RunIconExport(const Invocation& invocation);
int RunIconRemove(const Invocation& invocation);

}  // namespace vqctool
