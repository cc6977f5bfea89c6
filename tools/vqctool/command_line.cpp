#include "tools/vqctool/command_line.h"

#include <cstring>

namespace vqctool {

namespace {

// What each command takes besides its files.
struct CommandRow {
    Command command;
    const char* name;
    bool json, recursive, dryRun, force, clientVersion, iconSource, edits;
    std::size_t minFiles, maxFiles;  // maxFiles 0: any number
};

// clang-format off
constexpr CommandRow kCommands[] = {
    //  command              name           json  -r     dry    force  version from   edits  files
    {Command::Show,       "show",        true,  true,  false, false, false, false, false, 1, 0},
    {Command::Set,        "set",         false, true,  true,  false, true,  false, true,  1, 0},
    {Command::Check,      "check",       true,  true,  false, false, true,  false, false, 1, 0},
    {Command::IconSet,    "icon set",    false, true,  true,  false, true,  true,  false, 1, 0},
    {Command::IconExport, "icon export", false, false, false, false, false, false, false, 2, 2},
    {Command::IconRemove, "icon remove", false, true,  true,  false, true,  false, false, 1, 0},
    {Command::New,        "new",         false, false, false, true,  true,  false, true,  1, 1},
    {Command::Rewrite,    "rewrite",     false, false, false, false, true,  false, false, 2, 2},
};
// clang-format on

const CommandRow* FindCommand(Command command) noexcept {
    for (const CommandRow& row : kCommands)
        if (row.command == command) return &row;
    return nullptr;
}

ParsedCommandLine Failure(std::string error, std::string topic) {
    ParsedCommandLine parsed;
    parsed.error = std::move(error);
    parsed.topic = std::move(topic);
    return parsed;
}

}  // namespace

const char* CommandName(Command command) noexcept {
    if (const CommandRow* row = FindCommand(command)) return row->name;
    return command == Command::Version ? "--version" : "";
}

ParsedCommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
    Invocation invocation;
    if (arguments.empty()) return Failure("no command given", "");
    std::size_t next = 1;
    const std::string& first = arguments[0];
    if (first == "--help" || first == "-h" || first == "/?" || first == "help") {
        if (arguments.size() > 1) return Failure("--help takes nothing more", "");
        ParsedCommandLine parsed;
        parsed.invocation = invocation;
        return parsed;
    }
    if (first == "--version") {
        if (arguments.size() > 1) return Failure("--version takes nothing more", "");
        invocation.command = Command::Version;
        ParsedCommandLine parsed;
        parsed.invocation = invocation;
        return parsed;
    }
    const CommandRow* row = nullptr;
    if (first == "icon") {
        if (arguments.size() < 2) return Failure("icon needs set, export or remove", "icon");
        for (const CommandRow& candidate : kCommands)
            if ("icon " + arguments[1] == candidate.name) row = &candidate;
        if (!row) {
            if (arguments[1] == "--help") {
                ParsedCommandLine parsed;
                invocation.command = Command::IconSet;
                invocation.help = true;
                parsed.invocation = invocation;
                parsed.topic = "icon";
                return parsed;
            }
            return Failure("unknown icon command \"" + arguments[1] + "\"", "icon");
        }
        next = 2;
    } else {
        for (const CommandRow& candidate : kCommands)
            if (first == candidate.name) row = &candidate;
        if (!row) return Failure("unknown command \"" + first + "\"", "");
    }
    invocation.command = row->command;
    const std::string topic = row->name;

    bool optionsEnded = false;
    bool editsEnded = !row->edits;
    // `new` names its file first, then its fields.
    const bool fileBeforeEdits = row->command == Command::New;
    for (std::size_t i = next; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (!optionsEnded && argument.size() > 1 && argument[0] == '-') {
            // The option's value: the next argument, taken; null at the end of the line.
            auto value = [&]() -> const std::string* { return i + 1 < arguments.size() ? &arguments[++i] : nullptr; };
            if (argument == "--") {
                optionsEnded = true;
            } else if (argument == "--help") {
                invocation.help = true;
            } else if (argument == "--json" && row->json) {
                invocation.json = true;
            } else if ((argument == "-r" || argument == "--recursive") && row->recursive) {
                invocation.recursive = true;
            } else if (argument == "--dry-run" && row->dryRun) {
                invocation.dryRun = true;
            } else if (argument == "--force" && row->force) {
                invocation.force = true;
            } else if (argument == "--client-version" && row->clientVersion) {
                const std::string* text = value();
                const auto number = text ? ParseNumber(*text) : std::nullopt;
                if (!number)
                    return Failure(
                        "--client-version needs a number" + (text ? ", not \"" + *text + "\"" : std::string()), topic);
                invocation.clientVersion = *number;
            } else if (argument == "--from" && row->iconSource) {
                const std::string* text = value();
                if (!text || text->empty()) return Failure("--from needs a file", topic);
                invocation.iconSource = *text;
            } else if (argument == "--index" && row->iconSource) {
                const std::string* text = value();
                const auto number = text ? ParseNumber(*text) : std::nullopt;
                if (!number || *number < 0)
                    return Failure(
                        "--index needs a number of 0 or more" + (text ? ", not \"" + *text + "\"" : std::string()),
                        topic);
                invocation.iconIndex = *number;
            } else {
                // NOLINTNEXTLINE(performance-inefficient-string-concatenation): built once, on the way out
                return Failure("unknown option \"" + argument + "\" for " + topic, topic);
            }
            continue;
        }
        const bool editPlace = !editsEnded && (!fileBeforeEdits || !invocation.files.empty());
        if (editPlace && LooksLikeEdit(argument)) {
            std::string error;
            auto edit = ParseEdit(argument, error);
            if (!edit) return Failure(error, topic);
            invocation.edits.push_back(std::move(*edit));
            continue;
        }
        if (!fileBeforeEdits) editsEnded = true;
        invocation.files.push_back(argument);
    }
    if (invocation.help) {
        ParsedCommandLine parsed;
        parsed.invocation = invocation;
        parsed.topic = topic;
        return parsed;
    }
    if (row->edits && invocation.edits.empty() && row->command == Command::Set)
        return Failure("set needs at least one FIELD=VALUE", topic);
    if (row->iconSource && invocation.iconSource.empty()) return Failure("icon set needs --from SOURCE", topic);
    if (invocation.files.size() < row->minFiles) return Failure(topic + " needs more files", topic);
    if (row->maxFiles && invocation.files.size() > row->maxFiles)
        return Failure(topic + " takes " + std::to_string(row->maxFiles) + (row->maxFiles == 1 ? " file" : " files"),
                       topic);
    ParsedCommandLine parsed;
    parsed.invocation = std::move(invocation);
    parsed.topic = topic;
    return parsed;
}

}  // namespace vqctool
