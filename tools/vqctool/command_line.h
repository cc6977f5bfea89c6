// vqctool's command line as plain data: which command, its options, its FIELD=VALUE edits
// and its file arguments, every argument checked before anything runs. Portable.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/vqctool/field_edits.h"

namespace vqctool {

enum class Command : std::uint8_t {
    Help,  // vqctool --help, or no arguments at all is usage
    Version,
    Show,
    Set,
    Check,
    IconSet,
    IconExport,
    IconRemove,
    New,
    Rewrite,
};

struct Invocation {
    Command command = Command::Help;
    bool help = false;  // COMMAND --help
    bool json = false;
    bool recursive = false;  // -r: folders with their subfolders
    bool dryRun = false;
    bool force = false;
    std::optional<std::int32_t> clientVersion;
    std::string iconSource;  // icon set --from
    int iconIndex = 0;       // icon set --index
    std::vector<FieldEdit> edits;
    std::vector<std::string> files;  // files, folders and patterns, as given
};

struct ParsedCommandLine {
    std::optional<Invocation> invocation;
    std::string error;  // what is wrong, when there is no invocation
    std::string topic;  // the command whose usage goes with the error ("" for the overview)
};

// arguments without the program name.
ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments);

// The command's name as typed ("icon set"), for messages and help.
const char* CommandName(Command command) noexcept;

}  // namespace vqctool
