#include "tools/vqctool/help_text.h"

#include "tools/vqctool/record_fields.h"
#include "tools/vqctool/type_names.h"

namespace vqctool {

namespace {

constexpr char kOverview[] =
    "usage: vqctool COMMAND [OPTIONS] FILES...\n"
    "\n"
    "Reads and writes connection files (.vqc) with the rules of their Properties pages.\n"
    "FILES are files, folders (their .vqc files; -r for subfolders too) and wildcards.\n"
    "\n"
    "commands:\n"
    "  show [--json] [-r] FILES...                     what each file holds\n"
    "  set FIELD=VALUE... [--dry-run] [-r] [--client-version N] FILES...\n"
    "                                                  change fields in every file\n"
    "  check [--json] [-r] [--client-version N] FILES...\n"
    "                                                  what a rewrite for a client would lose\n"
    "  icon set FILES... --from SOURCE [--index N]     embed icon N of an .ico, .exe or .dll\n"
    "  icon export FILE OUT.ico                        the embedded icon as an .ico file\n"
    "  icon remove FILES...                            take the embedded icon out\n"
    "  new FILE FIELD=VALUE... [--force]               a new connection file\n"
    "  rewrite IN OUT [--client-version N]             IN written again as OUT\n"
    "  --version                                       the program's version\n"
    "\n"
    "vqctool COMMAND --help tells more. Exit status: 0 done, 1 some file failed or would\n"
    "change, 2 usage error (nothing touched).\n";

constexpr char kClientVersion[] =
    "  --client-version N  write for client version N (620 is 6.20); without it, the\n"
    "                      client installed beside vqctool.exe, else 726\n";

std::string FieldList() {
    std::string text = "fields:\n ";
    std::size_t column = 1;
    for (const RecordField& field : kRecordFields) {
        if (!field.settable) continue;
        const std::string name = std::string(" ") + field.name;
        if (column + name.size() > 78) {
            text += "\n ";
            column = 1;
        }
        text += name;
        column += name.size();
    }
    text += "\n  connection-type=" + ConnectionTypeNames() + "\n";
    text += "  login-type=" + LoginTypeNames() + "\n";
    text += "  route=" + RouteNames() + "\n";
    text += "Flags take true or false; an empty port stands for its default.\n";
    return text;
}

}  // namespace

std::string HelpText(std::string_view topic) {
    if (topic == "show")
        return "usage: vqctool show [--json] [-r] FILES...\n"
               "  Every field of each file's record. --json: one array with an object per file\n"
               "  (fields by name, routeName, connectionType, loginType, icon, smallIcon; error\n"
               "  for a file that could not be read).\n";
    if (topic == "set")
        return "usage: vqctool set FIELD=VALUE... [--dry-run] [-r] [--client-version N] FILES...\n"
               "  Sets the fields in every file and writes it as the Properties pages' Apply does.\n"
               "  Each file is written beside itself, then replaces it. --dry-run: only tell.\n" +
               std::string(kClientVersion) + FieldList();
    if (topic == "check")
        return "usage: vqctool check [--json] [-r] [--client-version N] FILES...\n"
               "  What writing each file for the client would lose or change, and options the\n"
               "  client cannot take. Status 1 when any file would change meaning.\n" +
               std::string(kClientVersion);
    if (topic == "icon" || topic == "icon set" || topic == "icon export" || topic == "icon remove")
        return "usage: vqctool icon set FILES... --from SOURCE [--index N] [--dry-run] [-r]\n"
               "       vqctool icon export FILE OUT.ico\n"
               "       vqctool icon remove FILES... [--dry-run] [-r]\n"
               "  set embeds icon N (from 0) of an .ico, .exe or .dll at both sizes, as the\n"
               "  Options page does; export writes the embedded icon (both sizes) as an .ico file.\n" +
               std::string(kClientVersion);
    if (topic == "new")
        return "usage: vqctool new FILE FIELD=VALUE... [--force] [--client-version N]\n"
               "  A new connection file from the fields; an existing file only with --force.\n" +
               std::string(kClientVersion) + FieldList();
    if (topic == "rewrite")
        return "usage: vqctool rewrite IN OUT [--client-version N]\n"
               "  Reads IN and writes it as OUT for the client version.\n";
    return kOverview;
}

}  // namespace vqctool
