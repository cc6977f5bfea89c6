// vqctool: reads and writes connection files for administrators, many at a time, with the
// record, the reader and the writer the Properties pages use. `vqctool --help` lists the
// commands. Exit status: 0 done, 1 some file failed (or would change, for check), 2 usage.
#include <windows.h>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "common/hresult_error.h"
#include "tools/vqctool/command_line.h"
#include "tools/vqctool/commands.h"
#include "tools/vqctool/help_text.h"

// The arguments arrive as typed: patterns are expanded by vqctool itself, in path order.
extern "C" int _dowildcard;
int _dowildcard = 0;

namespace vqctool {

namespace {

int Run(const std::vector<std::string>& arguments) {
    const ParsedCommandLine parsed = ParseCommandLine(arguments);
    if (!parsed.invocation) {
        std::fprintf(stderr, "vqctool: %s\n%s", parsed.error.c_str(), HelpText(parsed.topic).c_str());
        return kExitUsage;
    }
    const Invocation& invocation = *parsed.invocation;
    if (invocation.command == Command::Help || invocation.help) {
        std::fputs(HelpText(parsed.topic).c_str(), stdout);
        return kExitOk;
    }
    switch (invocation.command) {
    case Command::Version: std::printf("vqctool %s\n", VQC_PRODUCT_VERSION); return kExitOk;
    case Command::Show: return RunShow(invocation);
    case Command::Set: return RunSet(invocation);
    case Command::Check: return RunCheck(invocation);
    case Command::IconSet: return RunIconSet(invocation);
    case Command::IconExport: return RunIconExport(invocation);
    case Command::IconRemove: return RunIconRemove(invocation);
    case Command::New: return RunNew(invocation);
    case Command::Rewrite: return RunRewrite(invocation);
    case Command::Help: break;
    }
    return kExitOk;
}

}  // namespace

}  // namespace vqctool

int main(int argc, char** argv) {
    try {
        // Output in large blocks: a run over thousands of files writes a lot.
        static char buffer[1 << 16];
        std::setvbuf(stdout, buffer, _IOFBF, sizeof(buffer));
        return vqctool::Run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (const HResultError& error) {
        std::fprintf(stderr, "vqctool: failed with HRESULT 0x%08lX\n", static_cast<unsigned long>(error.Code()));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vqctool: %s\n", error.what());
    }
    return vqctool::kExitFailed;
}
