// vqctool set against the pages' Apply: the same file, the same edits made once by a user
// on the Connection and Proxy pages of the shell's sheet (the built DLL beside a stand-in
// client) and once by the tool on a copy; the two files must be byte for byte the same.
#include <gtest/gtest.h>

#include "connection/icon_stream.h"
#include "resources/dialog_ids.h"
#include "tests/pages/page_test_support.h"
#include "tests/pages/user_actions.h"
#include "tests/support/test_icons.h"
#include "tests/tools/vqctool_run.h"

using namespace page_test;
using vqctool_test::Quoted;
using vqctool_test::RunTool;
using vqctool_test::ToolRun;

namespace {

// A remote connection with encryption and an icon of its own (so the Options page keeps it).
std::string StartingFile() {
    const IconImage images[] = {MakeTestIconImage(32, 32), MakeTestIconImage(16, 32, 2)};
    return "-h old.example -l -u bob \r\n-I \"" + HexTextOf(BuildIconStream(images, 2)) + "\" -C bookmark";
}

constexpr char kToolEdits[] =
    "set host=new.example \"login-type=Cache password\" login=admin route=proxy proxyHost=gate proxyPort=3128 ";

// The user's edits on the sheet of the file, then Apply; the file's bytes afterwards.
std::string ApplyOnThePages(const ExtensionCopy& dll, const std::string& file, bool clearEncryption) {
    ShellPropertySheet sheet(dll.GetClassObject(), file);
    EXPECT_TRUE(sheet.Open());
    if (!sheet.Sheet()) return "<no sheet>";
    const HWND connection = ShowPageTitled(sheet.Sheet(), "Connection");
    EXPECT_NE(connection, nullptr);
    ReplaceText(ComboEdit(GetDlgItem(connection, dialog_ids::kServerBox)), "new.example");
    EXPECT_NE(ChooseListEntry(connection, dialog_ids::kLoginTypeList, "Cache password"), CB_ERR);
    TypeText(connection, dialog_ids::kLoginEdit, "admin");
    if (clearEncryption) {
        EXPECT_TRUE(IsChecked(connection, dialog_ids::kEncryptionCheck));
        ClickControl(connection, dialog_ids::kEncryptionCheck);
    }
    const HWND proxy = ShowPageTitled(sheet.Sheet(), "Proxy");
    EXPECT_NE(proxy, nullptr);
    EXPECT_NE(ChooseListEntry(proxy, dialog_ids::kProxyRouteList, "Connect via a proxy server"), CB_ERR);
    TypeText(proxy, dialog_ids::kProxyHostEdit, "gate");
    TypeText(proxy, dialog_ids::kProxyPortEdit, "3128");
    EXPECT_TRUE(Apply(sheet.Sheet()));
    sheet.Destroy();
    return ReadFileBytes(file);
}

}  // namespace

TEST(VqctoolApplyEquality, SetForAGivenClientVersionWritesWhatApplyWrites) {
    const ExtensionCopy dll("tool-apply", "client_6_65");
    ASSERT_NE(dll.Module(), nullptr);
    const std::string pageFile = dll.File("page.vqc");
    const std::string toolFile = dll.File("tool.vqc");
    WriteFileBytes(pageFile, StartingFile());
    WriteFileBytes(toolFile, StartingFile());

    const std::string applied = ApplyOnThePages(dll, pageFile, true);
    EXPECT_EQ(applied.rfind("-h new.example -R -c gate:3128 -u admin \r\n-I \"", 0), 0u) << applied.substr(0, 80);

    const ToolRun run = RunTool(std::string(kToolEdits) + "encrypt=false --client-version 665 " + Quoted(toolFile));
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(ReadFileBytes(toolFile), applied);
}

TEST(VqctoolApplyEquality, SetBesideTheClientWritesWhatApplyWritesForIt) {
    // Client 6.40 never gets -l: the encryption stays in the record but is not written, by
    // the pages or by the tool, which finds the client as the DLL does.
    const ExtensionCopy dll("tool-apply-probe", "client_6_40_0_12");
    ASSERT_NE(dll.Module(), nullptr);
    const std::string tool = dll.File("vqctool.exe");
    ASSERT_TRUE(CopyFileA(vqctool_test::BuiltToolPath().c_str(), tool.c_str(), FALSE));
    const std::string pageFile = dll.File("page.vqc");
    const std::string toolFile = dll.File("tool.vqc");
    WriteFileBytes(pageFile, StartingFile());
    WriteFileBytes(toolFile, StartingFile());

    ASSERT_EQ(GetFileAttributesA(dll.File("vclient.dll").c_str()) & FILE_ATTRIBUTE_DIRECTORY, 0u);
    const std::string applied = ApplyOnThePages(dll, pageFile, false);
    EXPECT_EQ(applied.rfind("-h new.example -R -c gate:3128 -u admin \r\n-I \"", 0), 0u) << applied.substr(0, 80);

    const ToolRun run = RunTool(std::string(kToolEdits) + Quoted(toolFile), "", tool);
    EXPECT_EQ(run.exitCode, 0u) << run.err;
    EXPECT_EQ(ReadFileBytes(toolFile), applied);
}
