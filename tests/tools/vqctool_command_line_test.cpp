// vqctool's command line as plain data: commands, options, edits and files, and every
// usage error found before anything runs.
#include <gtest/gtest.h>

#include "tools/vqctool/command_line.h"
#include "tools/vqctool/help_text.h"

using namespace vqctool;

namespace {

ParsedCommandLine Parse(const std::vector<std::string>& arguments) { return ParseCommandLine(arguments); }

}  // namespace

TEST(VqctoolCommandLine, ShowTakesJsonRecursiveAndFilesInOrder) {
    const ParsedCommandLine parsed = Parse({"show", "--json", "a.vqc", "-r", "folder", "*.vqc"});
    ASSERT_TRUE(parsed.invocation) << parsed.error;
    EXPECT_EQ(parsed.invocation->command, Command::Show);
    EXPECT_TRUE(parsed.invocation->json);
    EXPECT_TRUE(parsed.invocation->recursive);
    EXPECT_EQ(parsed.invocation->files, (std::vector<std::string>{"a.vqc", "folder", "*.vqc"}));
}

TEST(VqctoolCommandLine, SetTakesEditsBeforeFilesAndTheClientVersion) {
    const ParsedCommandLine parsed =
        Parse({"set", "host=new", "encrypt=true", "--client-version", "640", "a.vqc", "x=y.vqc", "--dry-run"});
    ASSERT_TRUE(parsed.invocation) << parsed.error;
    const Invocation& invocation = *parsed.invocation;
    EXPECT_EQ(invocation.command, Command::Set);
    ASSERT_EQ(invocation.edits.size(), 2u);
    EXPECT_EQ(invocation.edits[0].text, "new");
    EXPECT_TRUE(invocation.edits[1].flag);
    EXPECT_EQ(invocation.clientVersion, 640);
    EXPECT_TRUE(invocation.dryRun);
    // After the first file, a name with "=" is a file.
    EXPECT_EQ(invocation.files, (std::vector<std::string>{"a.vqc", "x=y.vqc"}));
}

TEST(VqctoolCommandLine, IconCommandsAreTwoWords) {
    const ParsedCommandLine set = Parse({"icon", "set", "a.vqc", "b.vqc", "--from", "x.ico", "--index", "3"});
    ASSERT_TRUE(set.invocation) << set.error;
    EXPECT_EQ(set.invocation->command, Command::IconSet);
    EXPECT_EQ(set.invocation->iconSource, "x.ico");
    EXPECT_EQ(set.invocation->iconIndex, 3);
    EXPECT_EQ(set.invocation->files.size(), 2u);
    const ParsedCommandLine exported = Parse({"icon", "export", "a.vqc", "a.ico"});
    ASSERT_TRUE(exported.invocation);
    EXPECT_EQ(exported.invocation->command, Command::IconExport);
    const ParsedCommandLine removed = Parse({"icon", "remove", "a.vqc"});
    ASSERT_TRUE(removed.invocation);
    EXPECT_EQ(removed.invocation->command, Command::IconRemove);
}

TEST(VqctoolCommandLine, NewNamesItsFileFirst) {
    const ParsedCommandLine parsed = Parse({"new", "a.vqc", "host=server", "login=bob", "--force"});
    ASSERT_TRUE(parsed.invocation) << parsed.error;
    EXPECT_EQ(parsed.invocation->files, std::vector<std::string>{"a.vqc"});
    EXPECT_EQ(parsed.invocation->edits.size(), 2u);
    EXPECT_TRUE(parsed.invocation->force);
}

TEST(VqctoolCommandLine, HelpOfACommandIsNoError) {
    const ParsedCommandLine parsed = Parse({"set", "--help"});
    ASSERT_TRUE(parsed.invocation);
    EXPECT_TRUE(parsed.invocation->help);
    EXPECT_EQ(parsed.topic, "set");
    EXPECT_NE(HelpText("set").find("connection-type="), std::string::npos);
    EXPECT_NE(HelpText("").find("icon export FILE OUT.ico"), std::string::npos);
}

TEST(VqctoolCommandLine, EveryBadArgumentIsAUsageErrorNamingIt) {
    const struct {
        std::vector<std::string> arguments;
        const char* named;
        // clang-format off
    } cases[] = {
        {{}, "no command"},
        // clang-format on
        {{"list", "a.vqc"}, "list"},
        {{"show"}, "needs more files"},
        {{"show", "--dry-run", "a.vqc"}, "--dry-run"},
        {{"set", "a.vqc"}, "FIELD=VALUE"},
        {{"set", "hots=x", "a.vqc"}, "hots"},
        {{"set", "servicePort=12x", "a.vqc"}, "servicePort"},
        {{"set", "servicePort=99999999999", "a.vqc"}, "servicePort"},
        {{"set", "encrypt=maybe", "a.vqc"}, "encrypt"},
        {{"set", "route=carrier-pigeon", "a.vqc"}, "carrier-pigeon"},
        {{"set", "connection-type=teleport", "a.vqc"}, "teleport"},
        {{"set", "login-type=guess", "a.vqc"}, "guess"},
        {{"set", "lastError=5", "a.vqc"}, "lastError"},
        {{"set", "clientVersion=620", "a.vqc"}, "clientVersion"},
        {{"set", "host=x", "--client-version", "6x", "a.vqc"}, "6x"},
        {{"set", "host=x", "a.vqc", "--client-version"}, "--client-version"},
        {{"check", "--client-version", "abc", "a.vqc"}, "abc"},
        {{"icon", "set", "a.vqc"}, "--from"},
        {{"icon", "set", "a.vqc", "--from", "x.ico", "--index", "-1"}, "-1"},
        {{"icon", "paint", "a.vqc"}, "paint"},
        {{"icon", "export", "a.vqc"}, "needs more files"},
        {{"icon", "export", "a.vqc", "b.ico", "c.ico"}, "takes 2 files"},
        {{"new", "a.vqc", "host=x", "b.vqc"}, "takes 1 file"},
        {{"rewrite", "a.vqc"}, "needs more files"},
        {{"--version", "x"}, "--version"},
    };
    for (const auto& c : cases) {
        const ParsedCommandLine parsed = Parse(c.arguments);
        std::string joined;
        for (const std::string& argument : c.arguments) joined += argument + " ";
        EXPECT_FALSE(parsed.invocation) << joined;
        EXPECT_NE(parsed.error.find(c.named), std::string::npos) << joined << "-> " << parsed.error;
    }
}
